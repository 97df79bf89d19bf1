#include "WAChatMessagesView.h"

#include <UIKit/UILabel.h>

#include <objc/image.h>

#include <cairo.h>

#include <algorithm>

OBJC_DEFINE_CLASS(WAChatMessagesView, UIView, "WAChatMessagesView")
OBJC_REGISTER_CLASS(WAChatMessagesView)

namespace {

constexpr uikit::RGBA kBackground{236.0 / 255, 229.0 / 255, 221.0 / 255, 1};
constexpr uikit::RGBA kOutgoing{220.0 / 255, 248.0 / 255, 198.0 / 255, 1};
constexpr uikit::RGBA kIncoming{1, 1, 1, 1};
constexpr CGFloat kBubbleHeight = 34;
constexpr CGFloat kGap = 6;
constexpr CGFloat kSide = 8;
constexpr CGFloat kCorner = 8;
constexpr CGFloat kWidthShare = 0.7;
constexpr CGFloat kTextInset = 10;

}  // namespace

void WAChatMessagesView::objcDefine(objc::ClassBuilder<WAChatMessagesView>& b) {
    b.method<&WAChatMessagesView::imp_drawRect>("drawRect:");
}

objc::Strong<WAChatMessagesView> WAChatMessagesView::create(CGRect frame,
                                                            std::shared_ptr<host::ChatStore> store,
                                                            std::string contact) {
    auto view = objc::adopt(
        static_cast<WAChatMessagesView*>(objc::alloc<WAChatMessagesView>()->initWithFrame(frame)));
    view->store_ = std::move(store);
    view->contact_ = std::move(contact);
    return view;
}

void WAChatMessagesView::imp_drawRect(CGRect rect) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr) return;
    uikit::setSourceRGBA(cairo, kBackground);
    cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_fill(cairo);
    // The labels are this drawing's: made afresh for the messages as they are now.
    for (const auto& sub : std::vector(subviewList())) sub->removeFromSuperview();
    bubbles_.clear();
    const CGFloat width = bounds().size.width * kWidthShare;
    CGFloat y = kGap;
    for (const host::Message& message : store_->messages(contact_)) {
        const CGFloat x = message.outgoing ? bounds().size.width - kSide - width : kSide;
        const CGRect bubble = CGRectMake(x, y, width, kBubbleHeight);
        bubbles_.push_back(bubble);
        uikit::setSourceRGBA(cairo, message.outgoing ? kOutgoing : kIncoming);
        uikit::roundedRectPath(cairo, bubble, kCorner);
        cairo_fill(cairo);
        auto label =
            UILabel::create(CGRectMake(x + kTextInset, y, width - 2 * kTextInset, kBubbleHeight));
        label->setText(NSString::create(message.text).get());
        addSubview(label.get());
        y += kBubbleHeight + kGap;
    }
}
