// A view showing one text.
#pragma once

#include <UIKit/UIView.h>

#include <objc/string.h>

enum NSTextAlignment : NSInteger {
    NSTextAlignmentLeft = 0,
    NSTextAlignmentCenter = 1,
    NSTextAlignmentRight = 2,
    NSTextAlignmentJustified = 3,
    NSTextAlignmentNatural = 4,
};

class PV_EXPORT UILabel : public UIView {
    OBJC_CLASS(UILabel)

    static objc::Strong<UILabel> create(CGRect frame = CGRectZero) {
        return objc::adopt(static_cast<UILabel*>(objc::alloc<UILabel>()->initWithFrame(frame)));
    }

    // The label keeps a copy; nil clears it.
    NSString* text() { return objc::msgSend<NSString*>(this, objc::sel<"text">()); }
    void setText(NSString* text) { objc::msgSend<void>(this, objc::sel<"setText:">(), text); }
    NSTextAlignment textAlignment() {
        return objc::msgSend<NSTextAlignment>(this, objc::sel<"textAlignment">());
    }
    void setTextAlignment(NSTextAlignment alignment) {
        objc::msgSend<void>(this, objc::sel<"setTextAlignment:">(), alignment);
    }
    // 0 means as many lines as the text needs.
    NSInteger numberOfLines() {
        return objc::msgSend<NSInteger>(this, objc::sel<"numberOfLines">());
    }
    void setNumberOfLines(NSInteger lines) {
        objc::msgSend<void>(this, objc::sel<"setNumberOfLines:">(), lines);
    }

    UILabel() = default;

  private:
    void imp_drawRect(CGRect rect);

    objc::Strong<NSString> text_;
    NSTextAlignment alignment_ = NSTextAlignmentNatural;
    NSInteger lines_ = 1;
};
