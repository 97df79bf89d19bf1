#include <UIKit/UITableViewCell.h>

#include <UIKit/device_profile.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UITableViewCell, UIView, "UITableViewCell")
OBJC_REGISTER_CLASS(UITableViewCell)

void UITableViewCell::objcDefine(objc::ClassBuilder<UITableViewCell>& b) {
    using C = UITableViewCell;
    b.method<&C::imp_initWithFrame>("initWithFrame:")
        .method<&C::imp_initWithStyleReuseIdentifier>("initWithStyle:reuseIdentifier:")
        .property<&C::style_>("style", objc::Readonly | objc::Nonatomic)
        .property<&C::reuseIdentifier_>("reuseIdentifier",
                                        objc::Readonly | objc::Copy | objc::Nonatomic)
        .property<&C::contentView_>("contentView", objc::Readonly | objc::Nonatomic)
        .property<&C::textLabel_>("textLabel", objc::Readonly | objc::Nonatomic)
        .property<&C::detailTextLabel_>("detailTextLabel", objc::Readonly | objc::Nonatomic)
        .property<&C::imageView_>("imageView", objc::Readonly | objc::Nonatomic)
        .property<&C::accessoryType_>("accessoryType", objc::Nonatomic)
        .method<&C::imp_accessoryView>("accessoryView")
        .method<&C::imp_setAccessoryView>("setAccessoryView:")
        .property<&C::selectionStyle_>("selectionStyle", objc::Nonatomic)
        .method<&C::imp_isSelected>("isSelected")
        .method<&C::imp_setSelected>("setSelected:")
        .method<&C::imp_setSelectedAnimated>("setSelected:animated:")
        .method<&C::imp_isHighlighted>("isHighlighted")
        .method<&C::imp_setHighlighted>("setHighlighted:")
        .method<&C::imp_setHighlightedAnimated>("setHighlighted:animated:");
    defineDrawing(b);
}

namespace {

// The platform's row: full screen width, 44 points high.
constexpr CGFloat kRowHeight = 44;
constexpr CGFloat kRowWidth = 320;

}  // namespace

UITableViewCell* UITableViewCell::imp_initWithFrame(CGRect frame) {
    // A cell made with -init or -initWithFrame: has the default style.
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    build(UITableViewCellStyleDefault, nullptr);
    return this;
}

UITableViewCell* UITableViewCell::imp_initWithStyleReuseIdentifier(UITableViewCellStyle style,
                                                                   NSString* reuseIdentifier) {
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(),
                             CGRectMake(0, 0, kRowWidth, kRowHeight));
    build(style, reuseIdentifier);
    return this;
}

void UITableViewCell::build(UITableViewCellStyle style, NSString* reuseIdentifier) {
    if (contentView_) return;  // built already
    const bool known =
        style >= UITableViewCellStyleDefault && style <= UITableViewCellStyleSubtitle;
    style_ = known ? style : UITableViewCellStyleDefault;
    reuseIdentifier_ = reuseIdentifier != nullptr
                           ? objc::adopt(static_cast<NSString*>(reuseIdentifier->copy()))
                           : nullptr;
    selectionStyle_ = uikit::systemVersionAtLeast("7.0") ? UITableViewCellSelectionStyleDefault
                                                         : UITableViewCellSelectionStyleBlue;
    contentView_ = UIView::create(bounds());
    contentView_->setAutoresizingMask(UIViewAutoresizingFlexibleWidth |
                                      UIViewAutoresizingFlexibleHeight);
    addSubview(contentView_.get());
    imageView_ = UIImageView::create();
    contentView_->addSubview(imageView_.get());
    textLabel_ = UILabel::create();
    contentView_->addSubview(textLabel_.get());
    if (style_ != UITableViewCellStyleDefault) {
        detailTextLabel_ = UILabel::create();
        contentView_->addSubview(detailTextLabel_.get());
    }
    // The platform's type sizes: a subtitle is small; the value 2 style has
    // a small bold title beside its detail.
    if (style_ == UITableViewCellStyleSubtitle) {
        detailTextLabel_->setFont(UIFont::systemFontOfSize(12));
    } else if (style_ == UITableViewCellStyleValue2) {
        textLabel_->setFont(UIFont::boldSystemFontOfSize(12));
        detailTextLabel_->setFont(UIFont::systemFontOfSize(12));
    }
}

void UITableViewCell::imp_setAccessoryView(UIView* view) {
    if (view == accessoryView_.get()) return;
    const objc::Strong<UIView> keep = objc::retained(view);
    if (accessoryView_ && accessoryView_->superview() == this) {
        accessoryView_->removeFromSuperview();
    }
    accessoryView_ = keep;
    if (view != nullptr) addSubview(view);
}

void UITableViewCell::imp_setSelected(bool selected) {
    setSelectedAnimated(selected, false);
}

void UITableViewCell::imp_setSelectedAnimated(bool selected, bool /*animated*/) {
    selected_ = selected;
}

void UITableViewCell::imp_setHighlighted(bool highlighted) {
    setHighlightedAnimated(highlighted, false);
}

void UITableViewCell::imp_setHighlightedAnimated(bool highlighted, bool /*animated*/) {
    highlighted_ = highlighted;
}
