// GNUstep Base 1.28 lacks this method of NSUserDefaults; gnustep_test.mm supplies it.
#pragma once

#import <Foundation/Foundation.h>

@interface NSUserDefaults (Suite)
- (id)initWithSuiteName:(NSString*)name;
@end
