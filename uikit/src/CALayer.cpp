#include <UIKit/CALayer.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(CALayer, NSObject, "CALayer")
OBJC_REGISTER_CLASS(CALayer)

void CALayer::objcDefine(objc::ClassBuilder<CALayer>& b) {
    b.property<&CALayer::cornerRadius_>("cornerRadius", objc::Nonatomic)
        .property<&CALayer::masksToBounds_>("masksToBounds", objc::Nonatomic)
        .property<&CALayer::borderWidth_>("borderWidth", objc::Nonatomic)
        .property<&CALayer::opacity_>("opacity", objc::Nonatomic);
}
