// What platform/macos.mm uses of the Foundation framework, and nothing else, declared from its public documentation. It
// lets the file be compiled for macOS on a machine that has no Apple SDK; it cannot show that Apple's own headers
// agree.
#pragma once

#include <objc/NSObject.h>
#include <stddef.h>

typedef unsigned long NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

// What the compiler's for-in loop needs.
typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState* _Nonnull)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

@protocol NSCopying
@end

@interface NSString : NSObject <NSCopying>
+ (nullable instancetype)stringWithUTF8String:(const char* _Nonnull)bytes;
@property(readonly, nullable) const char* UTF8String __attribute__((objc_returns_inner_pointer));
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding;
@end

@interface NSArray<__covariant Element> : NSObject <NSFastEnumeration>
@property(readonly) NSUInteger count;
- (nonnull Element)objectAtIndex:(NSUInteger)index;
@end

@interface NSMutableDictionary<Key, Value> : NSObject
- (void)setObject:(nonnull Value)value forKey:(nonnull Key<NSCopying>)key;
@end

@interface NSBundle : NSObject
@property(class, readonly, nonnull) NSBundle* mainBundle;
@property(readonly, nullable) NSString* bundleIdentifier;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, nonnull) NSUserDefaults* standardUserDefaults;
- (nullable instancetype)initWithSuiteName:(nullable NSString*)suite __attribute__((objc_designated_initializer));
- (nullable NSArray<NSString*>*)stringArrayForKey:(nonnull NSString*)key;
@end

typedef enum NSSearchPathDirectory : NSUInteger { NSApplicationSupportDirectory = 14 } NSSearchPathDirectory;
typedef enum NSSearchPathDomainMask : NSUInteger { NSUserDomainMask = 1 } NSSearchPathDomainMask;

#ifdef __cplusplus
extern "C" {
#endif
NSString* _Nonnull NSHomeDirectory(void);
NSArray<NSString*>* _Nonnull NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                                 NSSearchPathDomainMask domains, BOOL expandTilde);
#ifdef __cplusplus
}
#endif
