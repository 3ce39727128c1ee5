// Blocks as objects of Objective-C, as they are on a Mac: they are copied, retained and released by messages and may
// stand in collections. The library of blocks has only blank classes for gcc's runtime.

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
// Not a static constructor: those may run before the class is known.
+ (void)load
{
    [self instanceMethodForSelector:@selector(copy)]; // now its table of methods is there
    constexpr size_t SizeOfClass = 18 * sizeof(void*);
    for (void** const blank : {_NSConcreteStackBlock, _NSConcreteGlobalBlock, _NSConcreteMallocBlock}) {
        std::memcpy(blank, (void*)self, SizeOfClass);
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
