// UIView's drawing members and the drawing of view trees.
#include <UIKit/UIView.h>

#include "view_drawing.h"

#include <cairo.h>

#include <algorithm>

void UIView::defineDrawing(objc::ClassBuilder<UIView>& b) {
    b.method<&UIView::imp_backgroundColor>("backgroundColor")
        .method<&UIView::imp_setBackgroundColor>("setBackgroundColor:")
        .property<&UIView::alpha_>("alpha", objc::Nonatomic)
        .method<&UIView::imp_setAlpha>("setAlpha:")
        .property<&UIView::clipsToBounds_>("clipsToBounds", objc::Nonatomic)
        .property<&UIView::contentMode_>("contentMode", objc::Nonatomic)
        .property<&UIView::tintColor_>("tintColor", objc::Nonatomic)
        .method<&UIView::imp_tintColor>("tintColor")
        .method<&UIView::imp_drawRect>("drawRect:")
        .method<&UIView::imp_drawViewHierarchyInRect>(
            "drawViewHierarchyInRect:afterScreenUpdates:");
}

void UIView::imp_setBackgroundColor(UIColor* color) {
    backgroundColor_ = objc::retained(color);
    layer()->setBackgroundColor(color != nullptr ? color->CGColor() : nullptr);
}

void UIView::imp_setAlpha(CGFloat alpha) {
    alpha_ = std::clamp<CGFloat>(alpha, 0, 1);
}

UIColor* UIView::imp_tintColor() {
    if (tintColor_) return tintColor_.get();
    if (superview_ != nullptr) return superview_->tintColor();
    // The system blue.
    return UIColor::colorWithRGBA(0, 122.0 / 255, 1, 1);
}

bool UIView::imp_drawViewHierarchyInRect(CGRect rect, bool /*afterScreenUpdates*/) {
    CGContextRef context = UIGraphicsGetCurrentContext();
    if (context == nullptr) return false;
    uikit::drawViewAt(context, this, rect);
    return true;
}

namespace uikit {

void drawViewContent(CGContextRef context, UIView* view) {
    CALayer* layer = view->layer();
    if (view->isHidden() || layer->isHidden()) return;
    const CGFloat alpha = view->alpha() * layer->opacity();
    if (!(alpha > 0)) return;
    cairo_t* cairo = cairoContext(context);
    const CGRect bounds = view->bounds();
    cairo_save(cairo);
    const bool group = alpha < 1;
    if (group) cairo_push_group(cairo);
    layer->drawBackground(cairo, bounds);
    cairo_save(cairo);
    if (view->clipsToBounds() || layer->masksToBounds()) {
        roundedRectPath(cairo, bounds, layer->cornerRadius());
        cairo_clip(cairo);
    }
    UIGraphicsPushContext(context);
    cairo_save(cairo);
    view->drawRect(bounds);
    cairo_restore(cairo);
    UIGraphicsPopContext();
    // A copy: drawing code may change the subviews.
    for (const auto& sub : std::vector(view->subviewList())) drawSubview(context, sub.get());
    cairo_restore(cairo);
    // The border lies above the content, as the platform composites it.
    layer->drawBorder(cairo, bounds);
    if (group) {
        cairo_pop_group_to_source(cairo);
        cairo_paint_with_alpha(cairo, alpha);
    }
    cairo_restore(cairo);
}

void drawSubview(CGContextRef context, UIView* view) {
    drawViewAt(context, view, view->frame());
}

void drawViewAt(CGContextRef context, UIView* view, CGRect frame) {
    const CGRect bounds = view->bounds();
    cairo_t* cairo = cairoContext(context);
    cairo_save(cairo);
    cairo_translate(cairo, frame.origin.x, frame.origin.y);
    // An empty view may still show subviews that overflow it: unscaled.
    const auto ratio = [](CGFloat to, CGFloat from) { return from > 0 && to > 0 ? to / from : 1; };
    cairo_scale(cairo, ratio(frame.size.width, bounds.size.width),
                ratio(frame.size.height, bounds.size.height));
    cairo_translate(cairo, -bounds.origin.x, -bounds.origin.y);
    drawViewContent(context, view);
    cairo_restore(cairo);
}

}  // namespace uikit
