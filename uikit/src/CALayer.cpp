#include <UIKit/CALayer.h>

#include "view_drawing.h"

#include <objc/image.h>

#include <cairo.h>

OBJC_DEFINE_CLASS(CALayer, NSObject, "CALayer")
OBJC_REGISTER_CLASS(CALayer)

void CALayer::objcDefine(objc::ClassBuilder<CALayer>& b) {
    b.property<&CALayer::cornerRadius_>("cornerRadius", objc::Nonatomic)
        .property<&CALayer::masksToBounds_>("masksToBounds", objc::Nonatomic)
        .property<&CALayer::borderWidth_>("borderWidth", objc::Nonatomic)
        .property<&CALayer::opacity_>("opacity", objc::Nonatomic)
        .property<&CALayer::hidden_>("hidden", objc::Nonatomic | objc::getter("isHidden"))
        .method<&CALayer::imp_backgroundColor>("backgroundColor")
        .method<&CALayer::imp_setBackgroundColor>("setBackgroundColor:")
        .method<&CALayer::imp_borderColor>("borderColor")
        .method<&CALayer::imp_setBorderColor>("setBorderColor:")
        .method<&CALayer::imp_renderInContext>("renderInContext:");
}

void CALayer::drawBackground(cairo_t* cairo, CGRect bounds) const {
    if (background_.get() == nullptr) return;
    uikit::setSourceColor(cairo, background_.get());
    uikit::roundedRectPath(cairo, bounds, cornerRadius_);
    cairo_fill(cairo);
}

void CALayer::drawBorder(cairo_t* cairo, CGRect bounds) const {
    if (!(borderWidth_ > 0)) return;
    // A layer without a border colour draws its border black, as the platform does.
    if (border_.get() != nullptr) {
        uikit::setSourceColor(cairo, border_.get());
    } else {
        cairo_set_source_rgb(cairo, 0, 0, 0);
    }
    // The border lies inside the bounds.
    const CGFloat inset = borderWidth_ / 2;
    const CGRect inner{{bounds.origin.x + inset, bounds.origin.y + inset},
                       {bounds.size.width - borderWidth_, bounds.size.height - borderWidth_}};
    if (!(inner.size.width >= 0) || !(inner.size.height >= 0)) return;
    uikit::roundedRectPath(cairo, inner, cornerRadius_ - inset);
    cairo_set_line_width(cairo, borderWidth_);
    cairo_stroke(cairo);
}

void CALayer::imp_renderInContext(CGContextRef context) {
    cairo_t* cairo = uikit::cairoContext(context);
    if (cairo == nullptr) return;
    if (view_ != nullptr) {
        uikit::drawViewContent(context, view_);
        return;
    }
    if (hidden_) return;
    // A free-standing layer has no geometry of its own here: nothing to draw.
}
