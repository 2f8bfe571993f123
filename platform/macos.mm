// macOS through its frameworks: the user's directories, preferences and sounds. The only Objective-C++ of the project.
// It asks for neither reference counting by the compiler nor blocks, and builds with the former as well.
#import <AppKit/NSSound.h>
#import <Foundation/Foundation.h>

#include <memory>

#include "platform/darwin.h"
#include "platform/platform.h"

namespace orvane::platform {

namespace {

// Text that is not UTF-8 has no string: nil.
NSString* toNSString(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

// Text that has no UTF-8 form, such as half a surrogate pair, comes out empty.
std::string toUTF8(NSString* string) {
  const char* bytes = [string UTF8String];
  return bytes == nullptr ? std::string()
                          : std::string(bytes, [string lengthOfBytesUsingEncoding:NSUTF8StringEncoding]);
}

// The preferences of `suite`, or nil. The system opens no suite by the name of the program's own bundle; that is the
// application's where the program lies in it, and then the standard preferences are the ones.
NSUserDefaults* preferencesOf(NSString* suite) {
  if ([suite isEqual:[[NSBundle mainBundle] bundleIdentifier]]) return [NSUserDefaults standardUserDefaults];
  NSUserDefaults* const preferences = [[NSUserDefaults alloc] initWithSuiteName:suite];
#if !__has_feature(objc_arc)
  [preferences autorelease];
#endif
  return preferences;
}

// Nothing tells when a sound has been played to its end, so each one that was ever started is kept.
void keep(NSSound* sound, NSString* name) {
  static NSMutableDictionary* const kept = [[NSMutableDictionary alloc] init];
  @synchronized(kept) {
    [kept setObject:sound forKey:name];
  }
}

void playNow(void* context) {
  const std::unique_ptr<const std::string> name(static_cast<const std::string*>(context));
  @autoreleasepool {
    NSString* const soundName = toNSString(*name);
    NSSound* const sound = soundName == nil ? nil : [NSSound soundNamed:soundName];
    if (sound == nil) return;
    keep(sound, soundName);
    [sound play];
  }
}

}  // namespace

std::string homeDirectory() {
  @autoreleasepool {
    return toUTF8(NSHomeDirectory());
  }
}

std::optional<std::string> applicationSupportDirectory() {
  @autoreleasepool {
    NSArray* const directories =
        NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, YES);
    if ([directories count] == 0) return std::nullopt;
    return toUTF8([directories objectAtIndex:0]);
  }
}

std::vector<std::string> preferencesStringArray(const std::string& domain, const std::string& key) {
  std::vector<std::string> strings;
  @autoreleasepool {
    NSString* const suite = toNSString(domain);
    NSString* const name = toNSString(key);
    // No name at all would open this program's own preferences.
    if (suite == nil || name == nil) return strings;
    // The system's global domain is no suite either. It reads as empty, because a message to nil answers nil.
    for (NSString* string in [preferencesOf(suite) stringArrayForKey:name]) strings.push_back(toUTF8(string));
  }
  return strings;
}

void playSystemSound(const std::string& name) { runUserInitiated(new std::string(name), playNow); }

}  // namespace orvane::platform
