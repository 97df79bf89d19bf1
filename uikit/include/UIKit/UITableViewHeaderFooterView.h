// A section's header or footer view: its text in a label (wrapped, 13
// points) inside a content view, reusable by identifier.
#pragma once

#include <UIKit/UILabel.h>
#include <UIKit/UIView.h>

class PV_EXPORT UITableViewHeaderFooterView : public UIView {
    OBJC_CLASS(UITableViewHeaderFooterView)

    static objc::Strong<UITableViewHeaderFooterView> create(NSString* reuseIdentifier = nullptr) {
        return objc::adopt(
            objc::alloc<UITableViewHeaderFooterView>()->initWithReuseIdentifier(reuseIdentifier));
    }

    UITableViewHeaderFooterView* initWithReuseIdentifier(NSString* reuseIdentifier) {
        return objc::msgSend<UITableViewHeaderFooterView*>(
            this, objc::sel<"initWithReuseIdentifier:">(), reuseIdentifier);
    }
    NSString* reuseIdentifier() {
        return objc::msgSend<NSString*>(this, objc::sel<"reuseIdentifier">());
    }
    UIView* contentView() { return objc::msgSend<UIView*>(this, objc::sel<"contentView">()); }
    UILabel* textLabel() { return objc::msgSend<UILabel*>(this, objc::sel<"textLabel">()); }
    UILabel* detailTextLabel() {
        return objc::msgSend<UILabel*>(this, objc::sel<"detailTextLabel">());
    }
    // As wide as asked; as high as the text wrapped between the side margins,
    // plus the padding above and below. Zero high without text.
    CGSize sizeThatFits(CGSize size) {
        return objc::msgSend<CGSize>(this, objc::sel<"sizeThatFits:">(), size);
    }

    // The text's inset from the view's sides and from its top and bottom.
    static constexpr CGFloat kSideMargin = 15;
    static constexpr CGFloat kVerticalPadding = 8;

    UITableViewHeaderFooterView() = default;

  private:
    UITableViewHeaderFooterView* imp_initWithFrame(CGRect frame);
    UITableViewHeaderFooterView* imp_initWithReuseIdentifier(NSString* reuseIdentifier);
    CGSize imp_sizeThatFits(CGSize size);
    // Builds the subviews once, for whichever initializer runs.
    void build();

    objc::Strong<NSString> reuseIdentifier_;
    objc::Strong<UIView> contentView_;
    objc::Strong<UILabel> textLabel_;
    objc::Strong<UILabel> detailTextLabel_;
};
