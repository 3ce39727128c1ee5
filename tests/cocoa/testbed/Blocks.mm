// Makes blocks Objective-C objects, as on a Mac: code can send them copy, retain and release and store them in
// collections. The blocks runtime library provides only empty class structures for the gcc runtime.

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
// In +load, because a static constructor may run before the runtime registers the class.
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
