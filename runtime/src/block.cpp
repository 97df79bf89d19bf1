#include <objc/block.h>

OBJC_DEFINE_CLASS(objc::BlockBase, NSObject, "NSBlock")

void objc::BlockBase::objcDefine(ClassBuilder<BlockBase>& b) {
    b.method<&BlockBase::imp_copyWithZone>("copyWithZone:");
}

void objc::blockSignatureMismatch() {
    raise(exception_name::InvalidArgument, "a block was called with a signature it does not have");
}
