// What platform/macos.mm uses of the AppKit framework; see Foundation/Foundation.h beside this directory.
#pragma once

#import <Foundation/Foundation.h>

@interface NSSound : NSObject
+ (nullable NSSound*)soundNamed:(nonnull NSString*)name;
- (BOOL)play;
@end
