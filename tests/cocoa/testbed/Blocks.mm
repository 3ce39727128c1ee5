// Makes blocks Objective-C objects, as on macOS. Blocks then accept the messages copy, retain and release, and can be
// stored in collections. With GCC's Objective-C runtime, the class structures of blocks are empty. This file copies the
// class NSBlock into these structures.

#import <Foundation/Foundation.h>

#include <Block.h>

#include <cstring>

extern "C" {
extern void* _NSConcreteStackBlock[32];
extern void* _NSConcreteGlobalBlock[32];
extern void* _NSConcreteMallocBlock[32];
}

@interface NSBlock : NSObject
@end

@implementation NSBlock
// This code is in +load, because a static constructor could run before the runtime registers the class.
+ (void)load
{
    [self instanceMethodForSelector:@selector(copy)]; // forces the runtime to create the method table
    constexpr size_t SizeOfClass = 18 * sizeof(void*);
    for (void** const blockClass : {_NSConcreteStackBlock, _NSConcreteGlobalBlock, _NSConcreteMallocBlock}) {
        std::memcpy(blockClass, (void*)self, SizeOfClass);
    }
}

- (id)copy
{
    return (id)Block_copy((void const*)self);
}

- (id)copyWithZone:(NSZone*)zone
{
    (void)zone;
    return [self copy];
}

- (id)retain
{
    return [self copy];
}

- (oneway void)release
{
    Block_release((void const*)self);
}

- (NSUInteger)retainCount
{
    return 1;
}
@end
