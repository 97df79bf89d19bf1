#include <UIKit/UILabel.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UILabel, UIView, "UILabel")
OBJC_REGISTER_CLASS(UILabel)

void UILabel::objcDefine(objc::ClassBuilder<UILabel>& b) {
    // The text is a copy, so that a mutable string changed later does not
    // change the label.
    b.property<&UILabel::text_>("text", objc::Copy | objc::Nonatomic)
        .property<&UILabel::alignment_>("textAlignment", objc::Nonatomic)
        .property<&UILabel::lines_>("numberOfLines", objc::Nonatomic)
        .method<&UILabel::imp_drawRect>("drawRect:");
}

void UILabel::imp_drawRect(CGRect /*rect*/) {
    // Text drawing hook: the label's text is drawn here by the text layout
    // function (laid-out text into the current context's cairo_t at the
    // bounds, in the text colour). Until it is wired, the text is not drawn.
}
