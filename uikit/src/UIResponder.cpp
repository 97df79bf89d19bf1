#include <UIKit/UIResponder.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UIResponder, NSObject, "UIResponder")
OBJC_REGISTER_CLASS(UIResponder)

void UIResponder::objcDefine(objc::ClassBuilder<UIResponder>& b) {
    b.method<&UIResponder::imp_nextResponder>("nextResponder");
}
