// A view showing one text, measured and broken into lines by Pango.
#pragma once

#include <UIKit/NSStringDrawing.h>
#include <UIKit/UIFont.h>
#include <UIKit/UIView.h>
#include <UIKit/text_layout.h>

#include <Foundation/NSAttributedString.h>

#include <objc/string.h>

class UIColor;

class PV_EXPORT UILabel : public UIView {
    OBJC_CLASS(UILabel)

    static objc::Strong<UILabel> create(CGRect frame = CGRectZero) {
        return objc::adopt(static_cast<UILabel*>(objc::alloc<UILabel>()->initWithFrame(frame)));
    }

    // The label keeps a copy; nil clears it. Setting it drops attributed text.
    NSString* text() { return objc::msgSend<NSString*>(this, objc::sel<"text">()); }
    void setText(NSString* text) { objc::msgSend<void>(this, objc::sel<"setText:">(), text); }
    // Setting it sets the text to its string; the font at its start is used.
    NSAttributedString* attributedText() {
        return objc::msgSend<NSAttributedString*>(this, objc::sel<"attributedText">());
    }
    void setAttributedText(NSAttributedString* text) {
        objc::msgSend<void>(this, objc::sel<"setAttributedText:">(), text);
    }
    // The system font at 17 points by default; nil restores that.
    UIFont* font() { return objc::msgSend<UIFont*>(this, objc::sel<"font">()); }
    void setFont(UIFont* font) { objc::msgSend<void>(this, objc::sel<"setFont:">(), font); }
    // nil (the default) draws black.
    UIColor* textColor() { return objc::msgSend<UIColor*>(this, objc::sel<"textColor">()); }
    void setTextColor(UIColor* color) {
        objc::msgSend<void>(this, objc::sel<"setTextColor:">(), color);
    }
    NSTextAlignment textAlignment() {
        return objc::msgSend<NSTextAlignment>(this, objc::sel<"textAlignment">());
    }
    void setTextAlignment(NSTextAlignment alignment) {
        objc::msgSend<void>(this, objc::sel<"setTextAlignment:">(), alignment);
    }
    // 0 means as many lines as the text needs; 1 by default.
    NSInteger numberOfLines() {
        return objc::msgSend<NSInteger>(this, objc::sel<"numberOfLines">());
    }
    void setNumberOfLines(NSInteger lines) {
        objc::msgSend<void>(this, objc::sel<"setNumberOfLines:">(), lines);
    }
    // Truncating the tail by default.
    NSLineBreakMode lineBreakMode() {
        return objc::msgSend<NSLineBreakMode>(this, objc::sel<"lineBreakMode">());
    }
    void setLineBreakMode(NSLineBreakMode mode) {
        objc::msgSend<void>(this, objc::sel<"setLineBreakMode:">(), mode);
    }
    // The width a multi-line label wraps at for its intrinsic size; 0: none.
    CGFloat preferredMaxLayoutWidth() {
        return objc::msgSend<CGFloat>(this, objc::sel<"preferredMaxLayoutWidth">());
    }
    void setPreferredMaxLayoutWidth(CGFloat width) {
        objc::msgSend<void>(this, objc::sel<"setPreferredMaxLayoutWidth:">(), width);
    }

    // Measured, rounded up to whole points; zero for no text.
    CGSize intrinsicContentSize() {
        return objc::msgSend<CGSize>(this, objc::sel<"intrinsicContentSize">());
    }
    // Multi-line text wraps at the size's width (none for 0 or less).
    CGSize sizeThatFits(CGSize size) {
        return objc::msgSend<CGSize>(this, objc::sel<"sizeThatFits:">(), size);
    }
    void sizeToFit() { objc::msgSend<void>(this, objc::sel<"sizeToFit">()); }

    // What the label lays out, for drawing it (uikit::drawText); the text
    // lives as long as the label keeps it.
    uikit::TextBlock textBlock();

    UILabel() = default;

  private:
    void imp_setText(NSString* text);
    NSAttributedString* imp_attributedText();
    void imp_setAttributedText(NSAttributedString* text);
    UIFont* imp_font();
    CGSize imp_intrinsicContentSize();
    CGSize imp_sizeThatFits(CGSize size);
    void imp_sizeToFit();
    CGSize measure(CGFloat width);
    void imp_drawRect(CGRect rect);

    objc::Strong<NSString> text_;
    objc::Strong<NSAttributedString> attributedText_;
    objc::Strong<UIFont> font_;
    objc::Strong<UIColor> textColor_;
    NSTextAlignment alignment_ = NSTextAlignmentNatural;
    NSInteger lines_ = 1;
    NSLineBreakMode lineBreakMode_ = NSLineBreakByTruncatingTail;
    CGFloat preferredMaxLayoutWidth_ = 0;
};
