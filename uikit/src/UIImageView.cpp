#include <UIKit/UIImageView.h>

#include <objc/image.h>

#include <cairo.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIImageView, UIView, "UIImageView")
OBJC_REGISTER_CLASS(UIImageView)

void UIImageView::objcDefine(objc::ClassBuilder<UIImageView>& b) {
    b.method<&UIImageView::imp_initWithImage>("initWithImage:")
        .property<&UIImageView::image_>("image", objc::Nonatomic)
        .method<&UIImageView::imp_drawRect>("drawRect:");
}

UIImageView* UIImageView::imp_initWithImage(UIImage* image) {
    const CGSize size = image != nullptr ? image->size() : CGSize{};
    initWithFrame(CGRectMake(0, 0, size.width, size.height));
    setImage(image);
    return this;
}

namespace {

// Where the image goes in the bounds for the content mode.
CGRect placeImage(CGSize image, CGRect bounds, UIViewContentMode mode) {
    const CGSize box = bounds.size;
    CGSize size = image;
    switch (mode) {
        case UIViewContentModeScaleToFill:
        case UIViewContentModeRedraw:
            return bounds;
        case UIViewContentModeScaleAspectFit:
        case UIViewContentModeScaleAspectFill: {
            const CGFloat sx = box.width / image.width, sy = box.height / image.height;
            const CGFloat s =
                mode == UIViewContentModeScaleAspectFit ? std::min(sx, sy) : std::max(sx, sy);
            size = CGSize{image.width * s, image.height * s};
            break;
        }
        default:
            break;
    }
    return CGRect{{bounds.origin.x + (box.width - size.width) / 2,
                   bounds.origin.y + (box.height - size.height) / 2},
                  size};
}

}  // namespace

void UIImageView::imp_drawRect(CGRect rect) {
    cairo_t* cairo = uikit::cairoContext(UIGraphicsGetCurrentContext());
    if (cairo == nullptr || !image_) return;
    const CGSize size = image_->size();
    if (!(size.width > 0) || !(size.height > 0)) return;
    // Content that overflows is clipped only when the view clips.
    uikit::drawImage(cairo, image_.get(), placeImage(size, rect, contentMode()));
}
