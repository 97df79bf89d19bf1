#include <UIKit/UILabel.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UILabel, UIView, "UILabel")
OBJC_REGISTER_CLASS(UILabel)

void UILabel::objcDefine(objc::ClassBuilder<UILabel>& b) {
    // The text is a copy, so that a mutable string changed later does not
    // change the label.
    b.property<&UILabel::text_>("text", objc::Copy | objc::Nonatomic)
        .property<&UILabel::alignment_>("textAlignment", objc::Nonatomic)
        .property<&UILabel::lines_>("numberOfLines", objc::Nonatomic);
}
