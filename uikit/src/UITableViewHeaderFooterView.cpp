#include <UIKit/UITableViewHeaderFooterView.h>

#include <objc/image.h>

#include <algorithm>
#include <cmath>

OBJC_DEFINE_CLASS(UITableViewHeaderFooterView, UIView, "UITableViewHeaderFooterView")
OBJC_REGISTER_CLASS(UITableViewHeaderFooterView)

void UITableViewHeaderFooterView::objcDefine(objc::ClassBuilder<UITableViewHeaderFooterView>& b) {
    using V = UITableViewHeaderFooterView;
    b.method<&V::imp_initWithFrame>("initWithFrame:")
        .method<&V::imp_initWithReuseIdentifier>("initWithReuseIdentifier:")
        .property<&V::reuseIdentifier_>("reuseIdentifier",
                                        objc::Readonly | objc::Copy | objc::Nonatomic)
        .property<&V::contentView_>("contentView", objc::Readonly | objc::Nonatomic)
        .property<&V::textLabel_>("textLabel", objc::Readonly | objc::Nonatomic)
        .property<&V::detailTextLabel_>("detailTextLabel", objc::Readonly | objc::Nonatomic)
        .method<&V::imp_sizeThatFits>("sizeThatFits:");
}

UITableViewHeaderFooterView* UITableViewHeaderFooterView::imp_initWithFrame(CGRect frame) {
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), frame);
    build();
    return this;
}

UITableViewHeaderFooterView* UITableViewHeaderFooterView::imp_initWithReuseIdentifier(
    NSString* reuseIdentifier) {
    objc::superSend<UIView*>(this, objc::sel<"initWithFrame:">(), CGRectZero);
    build();
    reuseIdentifier_ = reuseIdentifier != nullptr
                           ? objc::adopt(static_cast<NSString*>(reuseIdentifier->copy()))
                           : nullptr;
    return this;
}

void UITableViewHeaderFooterView::build() {
    if (contentView_) return;  // built already
    contentView_ = UIView::create(bounds());
    addSubview(contentView_.get());
    for (auto* label : {&textLabel_, &detailTextLabel_}) {
        *label = UILabel::create();
        (*label)->setFont(UIFont::systemFontOfSize(13));
        (*label)->setNumberOfLines(0);
        contentView_->addSubview(label->get());
    }
}

CGSize UITableViewHeaderFooterView::imp_sizeThatFits(CGSize size) {
    const CGFloat width = std::max<CGFloat>(size.width - 2 * kSideMargin, 1);
    const CGFloat text = textLabel_->sizeThatFits(CGSizeMake(width, 0)).height;
    const CGFloat detail = detailTextLabel_->sizeThatFits(CGSizeMake(width, 0)).height;
    if (text + detail == 0) return CGSizeMake(size.width, 0);
    return CGSizeMake(size.width, std::ceil(text + detail + 2 * kVerticalPadding));
}
