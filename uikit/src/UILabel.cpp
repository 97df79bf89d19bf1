#include <UIKit/UILabel.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UILabel, UIView, "UILabel")
OBJC_REGISTER_CLASS(UILabel)

void UILabel::objcDefine(objc::ClassBuilder<UILabel>& b) {
    b.method<&UILabel::imp_text>("text")
        .method<&UILabel::imp_setText>("setText:")
        .method<&UILabel::imp_textAlignment>("textAlignment")
        .method<&UILabel::imp_setTextAlignment>("setTextAlignment:")
        .method<&UILabel::imp_numberOfLines>("numberOfLines")
        .method<&UILabel::imp_setNumberOfLines>("setNumberOfLines:");
}

void UILabel::imp_setText(NSString* text) {
    // A copy, so that a mutable string changed later does not change the label.
    text_ = text != nullptr ? objc::adopt(static_cast<NSString*>(text->copy())) : nullptr;
}
