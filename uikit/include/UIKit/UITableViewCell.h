// One row of a table view: a content view holding the title label, the
// detail label (not for the default style) and the image view, plus an
// accessory (a standard mark or a view of the caller's, such as a switch).
//
// The accessory view is a subview of the cell, so viewWithTag: finds it.
#pragma once

#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIView.h>

#include <objc/string.h>

enum UITableViewCellStyle : NSInteger {
    UITableViewCellStyleDefault = 0,
    UITableViewCellStyleValue1 = 1,
    UITableViewCellStyleValue2 = 2,
    UITableViewCellStyleSubtitle = 3,
};

enum UITableViewCellAccessoryType : NSInteger {
    UITableViewCellAccessoryNone = 0,
    UITableViewCellAccessoryDisclosureIndicator = 1,
    UITableViewCellAccessoryDetailDisclosureButton = 2,
    UITableViewCellAccessoryCheckmark = 3,
    UITableViewCellAccessoryDetailButton = 4,
};

enum UITableViewCellSelectionStyle : NSInteger {
    UITableViewCellSelectionStyleNone = 0,
    UITableViewCellSelectionStyleBlue = 1,
    UITableViewCellSelectionStyleGray = 2,
    UITableViewCellSelectionStyleDefault = 3,
};

class PV_EXPORT UITableViewCell : public UIView {
    OBJC_CLASS(UITableViewCell)

    static objc::Strong<UITableViewCell> create(UITableViewCellStyle style,
                                                NSString* reuseIdentifier = nullptr) {
        return objc::adopt(
            objc::alloc<UITableViewCell>()->initWithStyleReuseIdentifier(style, reuseIdentifier));
    }

    // An unknown style is taken as the default style.
    UITableViewCell* initWithStyleReuseIdentifier(UITableViewCellStyle style,
                                                  NSString* reuseIdentifier) {
        return objc::msgSend<UITableViewCell*>(this, objc::sel<"initWithStyle:reuseIdentifier:">(),
                                               style, reuseIdentifier);
    }

    UITableViewCellStyle style() {
        return objc::msgSend<UITableViewCellStyle>(this, objc::sel<"style">());
    }
    NSString* reuseIdentifier() {
        return objc::msgSend<NSString*>(this, objc::sel<"reuseIdentifier">());
    }
    UIView* contentView() { return objc::msgSend<UIView*>(this, objc::sel<"contentView">()); }
    UILabel* textLabel() { return objc::msgSend<UILabel*>(this, objc::sel<"textLabel">()); }
    // nil for the default style, which has no detail text.
    UILabel* detailTextLabel() {
        return objc::msgSend<UILabel*>(this, objc::sel<"detailTextLabel">());
    }
    UIImageView* imageView() { return objc::msgSend<UIImageView*>(this, objc::sel<"imageView">()); }

    UITableViewCellAccessoryType accessoryType() {
        return objc::msgSend<UITableViewCellAccessoryType>(this, objc::sel<"accessoryType">());
    }
    void setAccessoryType(UITableViewCellAccessoryType type) {
        objc::msgSend<void>(this, objc::sel<"setAccessoryType:">(), type);
    }
    // Retained, and shown instead of the accessory type's mark while set.
    UIView* accessoryView() { return objc::msgSend<UIView*>(this, objc::sel<"accessoryView">()); }
    void setAccessoryView(UIView* view) {
        objc::msgSend<void>(this, objc::sel<"setAccessoryView:">(), view);
    }

    // Default on iOS 7 and later, blue before (from the device profile).
    UITableViewCellSelectionStyle selectionStyle() {
        return objc::msgSend<UITableViewCellSelectionStyle>(this, objc::sel<"selectionStyle">());
    }
    void setSelectionStyle(UITableViewCellSelectionStyle style) {
        objc::msgSend<void>(this, objc::sel<"setSelectionStyle:">(), style);
    }

    bool isSelected() { return objc::msgSend<bool>(this, objc::sel<"isSelected">()); }
    void setSelected(bool selected) {
        objc::msgSend<void>(this, objc::sel<"setSelected:">(), selected);
    }
    void setSelectedAnimated(bool selected, bool animated) {
        objc::msgSend<void>(this, objc::sel<"setSelected:animated:">(), selected, animated);
    }
    bool isHighlighted() { return objc::msgSend<bool>(this, objc::sel<"isHighlighted">()); }
    void setHighlighted(bool highlighted) {
        objc::msgSend<void>(this, objc::sel<"setHighlighted:">(), highlighted);
    }
    void setHighlightedAnimated(bool highlighted, bool animated) {
        objc::msgSend<void>(this, objc::sel<"setHighlighted:animated:">(), highlighted, animated);
    }

    // Places the content view, labels, image and accessory for the cell's
    // current width, as the table shows them (C++ side, no messages).
    void placeSubviews();

    UITableViewCell() = default;

  private:
    UITableViewCell* imp_initWithFrame(CGRect frame);
    UITableViewCell* imp_initWithStyleReuseIdentifier(UITableViewCellStyle style,
                                                      NSString* reuseIdentifier);
    UIView* imp_accessoryView() const { return accessoryView_.get(); }
    void imp_setAccessoryView(UIView* view);
    bool imp_isSelected() const { return selected_; }
    void imp_setSelected(bool selected);
    void imp_setSelectedAnimated(bool selected, bool animated);
    bool imp_isHighlighted() const { return highlighted_; }
    void imp_setHighlighted(bool highlighted);
    void imp_setHighlightedAnimated(bool highlighted, bool animated);
    void imp_drawRect(CGRect rect);
    static void defineDrawing(objc::ClassBuilder<UITableViewCell>& b);

    // Builds the subviews once, for whichever initializer runs.
    void build(UITableViewCellStyle style, NSString* reuseIdentifier);

    UITableViewCellStyle style_ = UITableViewCellStyleDefault;
    objc::Strong<NSString> reuseIdentifier_;
    objc::Strong<UIView> contentView_;
    objc::Strong<UILabel> textLabel_;
    objc::Strong<UILabel> detailTextLabel_;
    objc::Strong<UIImageView> imageView_;
    UITableViewCellAccessoryType accessoryType_ = UITableViewCellAccessoryNone;
    objc::Strong<UIView> accessoryView_;
    UITableViewCellSelectionStyle selectionStyle_ = UITableViewCellSelectionStyleDefault;
    bool selected_ = false;
    bool highlighted_ = false;
};
