// Runs platform/macos.mm on a system without Apple's frameworks, against GNUstep's. Takes the home directory that the
// user database names, which must be a private one: the preferences domains that are read back are written into it.
#import <AppKit/NSSound.h>
#import <Foundation/Foundation.h>
#include <objc/runtime.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/darwin.h"
#include "platform/platform.h"
#include "tests/macos/gnustep_suite.h"

@implementation NSUserDefaults (Suite)
- (id)initWithSuiteName:(NSString*)name {
  // As on macOS, where the global domain is no suite.
  if ([name isEqualToString:NSGlobalDomain]) {
    [self release];
    return nil;
  }
  if ((self = [self init])) {
    // Without synchronize the suite reads as empty.
    [self addSuiteNamed:name];
    [self synchronize];
  }
  return self;
}
@end

namespace {

int failures = 0;
int queued = 0;
int played = 0;
IMP originalPlay = nullptr;

// Runs the sound's own play as well: without a device it must still come back.
BOOL countedPlay(id sound, SEL selector) {
  ++played;
  return reinterpret_cast<BOOL (*)(id, SEL)>(originalPlay)(sound, selector);
}

void check(bool holds, const char* what) {
  std::printf("%s: %s\n", holds ? "ok" : "FAILED", what);
  if (!holds) ++failures;
}

NSString* domainPath(const std::string& home, NSString* domain) {
  return [NSString stringWithFormat:@"%s/Library/Preferences/%@.plist", home.c_str(), domain];
}

// The form in which macOS keeps its domains.
bool writeBinaryDomain(const std::string& home, NSString* domain, NSDictionary* content) {
  NSData* data = [NSPropertyListSerialization dataFromPropertyList:content
                                                            format:NSPropertyListBinaryFormat_v1_0
                                                  errorDescription:nullptr];
  return data != nil && [data writeToFile:domainPath(home, domain) atomically:YES];
}

// Written out in full, because GNUstep's own writer spoils characters beyond the basic plane.
const char textDomain[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <key>augments.active</key>
  <array><string>concise</string><string>Prüf-Wort</string><string>rocket 🚀</string><string></string></array>
  <key>empty</key>
  <array></array>
  <key>string</key>
  <string>concise</string>
  <key>number</key>
  <integer>5</integer>
  <key>mixed</key>
  <array><string>concise</string><integer>5</integer></array>
  <key>nested</key>
  <array><array><string>concise</string></array></array>
  <key>object</key>
  <dict><key>concise</key><string>concise</string></dict>
</dict>
</plist>
)";

void checkPreferences(const std::string& home) {
  using orvane::platform::preferencesStringArray;
  const std::vector<std::string> none;
  const std::vector<std::string> words = {"concise", "Prüf-Wort", "rocket 🚀", ""};
  NSMutableArray* array = [NSMutableArray array];
  for (const std::string& word : words) [array addObject:[NSString stringWithUTF8String:word.c_str()]];
  NSDictionary* content = @{
    @"augments.active" : array,
    @"empty" : @[],
    @"string" : @"concise",
    @"number" : @5,
    @"mixed" : @[ @"concise", @5 ],
    @"nested" : @[ @[ @"concise" ] ],
    @"object" : @{@"concise" : @"concise"},
  };
  check(writeBinaryDomain(home, @"com.example.Binary", content), "a binary domain is written");
  NSData* text = [NSData dataWithBytes:textDomain length:sizeof textDomain - 1];
  check([text writeToFile:domainPath(home, @"com.example.Text") atomically:YES], "a text domain is written");
  for (const char* domain : {"com.example.Text", "com.example.Binary"}) {
    check(preferencesStringArray(domain, "augments.active") == words, "an array of strings is read back in its order");
    for (const char* key : {"empty", "string", "number", "mixed", "nested", "object", "missing", "", "\xFF"}) {
      check(preferencesStringArray(domain, key) == none, "no strings where there is no array of strings");
    }
  }
  check(preferencesStringArray("com.example.Missing", "augments.active") == none, "a missing domain is empty");
  check(preferencesStringArray("\xFF", "augments.active") == none, "a domain whose name is not UTF-8 is empty");
  check(preferencesStringArray("NSGlobalDomain", "augments.active") == none, "a domain that is no suite is empty");
}

void checkSound() {
  Method play = class_getInstanceMethod([NSSound class], @selector(play));
  originalPlay = method_setImplementation(play, reinterpret_cast<IMP>(countedPlay));
  check([NSSound soundNamed:@"Tink"] != nil, "the system sound is there");
  orvane::platform::playSystemSound("Tink");
  check(queued == 1 && played == 1, "the system sound is played, on the queue");
  orvane::platform::playSystemSound("NoSuchSound");
  orvane::platform::playSystemSound("\xFF");
  check(queued == 3 && played == 1, "a sound that is not there is not played");
  orvane::platform::playSystemSound("Tink");
  check(played == 2, "the system sound is played again");
}

}  // namespace

// Stands in for the system's queue, which does not exist here.
void orvane::platform::runUserInitiated(void* context, void (*task)(void* context)) {
  ++queued;
  task(context);
}

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  const std::string home = arguments[1];
  mkdir((home + "/Library").c_str(), 0700);
  mkdir((home + "/Library/Preferences").c_str(), 0700);
  @autoreleasepool {
    check(orvane::platform::homeDirectory() == home, "the home directory is the user database's");
    // GNUstep spells the directory's last component without a blank.
    check(orvane::platform::applicationSupportDirectory() == home + "/Library/ApplicationSupport",
          "the Application Support directory is below the home directory");
    checkPreferences(home);
    checkSound();
  }
  std::printf("%d failure(s)\n", failures);
  return failures == 0 ? 0 : 1;
}
