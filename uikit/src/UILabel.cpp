#include <UIKit/UILabel.h>

#include <Foundation/NSDictionary.h>
#include <UIKit/UIGraphics.h>
#include <UIKit/text_layout.h>

#include <objc/image.h>

#include <cmath>

OBJC_DEFINE_CLASS(UILabel, UIView, "UILabel")
OBJC_REGISTER_CLASS(UILabel)

void UILabel::objcDefine(objc::ClassBuilder<UILabel>& b) {
    // Declared as the platform declares them; the accessors that do more
    // than load and store replace the generated ones.
    b.property<&UILabel::text_>("text", objc::Copy | objc::Nonatomic)
        .method<&UILabel::imp_setText>("setText:")
        .property<&UILabel::attributedText_>("attributedText", objc::Copy | objc::Nonatomic)
        .method<&UILabel::imp_attributedText>("attributedText")
        .method<&UILabel::imp_setAttributedText>("setAttributedText:")
        .property<&UILabel::font_>("font", objc::Nonatomic)
        .method<&UILabel::imp_font>("font")
        .property<&UILabel::textColor_>("textColor", objc::Nonatomic)
        .property<&UILabel::alignment_>("textAlignment", objc::Nonatomic)
        .property<&UILabel::lines_>("numberOfLines", objc::Nonatomic)
        .property<&UILabel::lineBreakMode_>("lineBreakMode", objc::Nonatomic)
        .property<&UILabel::preferredMaxLayoutWidth_>("preferredMaxLayoutWidth", objc::Nonatomic)
        .method<&UILabel::imp_intrinsicContentSize>("intrinsicContentSize")
        .method<&UILabel::imp_sizeThatFits>("sizeThatFits:")
        .method<&UILabel::imp_sizeToFit>("sizeToFit")
        .method<&UILabel::imp_drawRect>("drawRect:");
}

void UILabel::imp_setText(NSString* text) {
    // A copy, so that a mutable string changed later does not change the label.
    text_ = text != nullptr ? NSString::create(text->units()) : nullptr;
    attributedText_ = nullptr;
}

NSAttributedString* UILabel::imp_attributedText() {
    if (attributedText_ || !text_) return attributedText_.get();
    // Plain text answers as attributed text in the label's own style.
    std::vector<std::pair<id, id>> attributes{{NSFontAttributeName, font()}};
    if (textColor_) attributes.emplace_back(NSForegroundColorAttributeName, textColor_.get());
    // Made afresh: kept, it would pin the font and colour of this moment.
    return objc::autorelease(
        NSAttributedString::create(text_.get(), NSDictionary::create(attributes)).leak());
}

void UILabel::imp_setAttributedText(NSAttributedString* text) {
    attributedText_ =
        text != nullptr ? objc::adopt(static_cast<NSAttributedString*>(text->copy())) : nullptr;
    text_ = text != nullptr ? objc::retained(attributedText_->string()) : nullptr;
}

UIFont* UILabel::imp_font() {
    if (!font_) font_ = objc::retained(UIFont::systemFontOfSize(17));
    return font_.get();
}

uikit::TextBlock UILabel::textBlock() {
    uikit::TextBlock block;
    if (text_) block.utf8 = text_->utf8();
    block.font = font();
    if (attributedText_ && attributedText_->length() > 0) {
        id font = attributedText_->attributeDictionary()->objectForKey(NSFontAttributeName);
        if (UIFont* given = objc::cast<UIFont>(font)) block.font = given;
    }
    block.numberOfLines = lines_;
    block.lineBreakMode = lineBreakMode_;
    block.alignment = alignment_;
    return block;
}

CGSize UILabel::measure(CGFloat width) {
    if (!text_ || text_->units().empty()) return CGSizeMake(0, 0);
    const CGSize size = uikit::measureText(textBlock(), lines_ == 1 ? 0 : width);
    return CGSizeMake(std::ceil(size.width), std::ceil(size.height));
}

CGSize UILabel::imp_intrinsicContentSize() {
    return measure(preferredMaxLayoutWidth_);
}

CGSize UILabel::imp_sizeThatFits(CGSize size) {
    return measure(size.width);
}

void UILabel::imp_sizeToFit() {
    CGRect frame = this->frame();
    frame.size = sizeThatFits(bounds().size);
    setFrame(frame);
}

void UILabel::imp_drawRect(CGRect /*rect*/) {
    if (!text_ || text_->units().empty()) return;
    cairo_t* const cr = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cr == nullptr) return;
    // No colour set draws black, as the platform's default text colour.
    uikit::TextColor color;
    if (textColor_) {
        const uikit::RGBA& c = textColor_->rgba();
        color = {c.red, c.green, c.blue, c.alpha};
    }
    uikit::drawText(cr, bounds(), textBlock(), color);
}
