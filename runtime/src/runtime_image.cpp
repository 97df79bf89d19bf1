// The runtime's own classes exist as soon as the library is loaded, so that
// they can be found by name before any C++ code has touched them.
#include <objc/block.h>
#include <objc/image.h>
#include <objc/invocation.h>
#include <objc/string.h>

namespace {
[[maybe_unused]] const bool kImageLoaded = (objc::loadImage({
                                                &NSObject::objcClass,
                                                &NSString::objcClass,
                                                &objc::BlockBase::objcClass,
                                                &NSMethodSignature::objcClass,
                                                &NSInvocation::objcClass,
                                            }),
                                            true);
}  // namespace
