#include <UIKit/CALayer.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(CALayer, NSObject, "CALayer")
OBJC_REGISTER_CLASS(CALayer)

void CALayer::objcDefine(objc::ClassBuilder<CALayer>& b) {
    b.method<&CALayer::imp_cornerRadius>("cornerRadius")
        .method<&CALayer::imp_setCornerRadius>("setCornerRadius:")
        .method<&CALayer::imp_masksToBounds>("masksToBounds")
        .method<&CALayer::imp_setMasksToBounds>("setMasksToBounds:")
        .method<&CALayer::imp_borderWidth>("borderWidth")
        .method<&CALayer::imp_setBorderWidth>("setBorderWidth:")
        .method<&CALayer::imp_opacity>("opacity")
        .method<&CALayer::imp_setOpacity>("setOpacity:");
}
