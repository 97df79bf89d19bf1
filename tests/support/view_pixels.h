// A view drawn into an image context and read back through its PNG, so that
// tests look at the pixels a user would get.
#pragma once

#include <UIKit/UIGraphics.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIView.h>

#include <Foundation/NSData.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace testsupport {

inline objc::Strong<UIImage> drawnView(UIView* view, bool opaque = true, CGFloat scale = 1) {
    objc::AutoreleasePool pool;
    const CGRect bounds = view->bounds();
    UIGraphicsBeginImageContextWithOptions(bounds.size, opaque, scale);
    view->drawViewHierarchyInRect(bounds, false);
    UIImage* image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    NSData* png = UIImagePNGRepresentation(image);
    return png != nullptr ? UIImage::decodePNG(png->span(), scale) : nullptr;
}

using Pixel = std::array<int, 4>;

// The pixel under a point (in points).
inline Pixel pixelAt(UIImage* image, CGFloat x, CGFloat y) {
    const CGFloat scale = image->scale();
    const auto p =
        image->pixelAt(static_cast<std::size_t>(x * scale), static_cast<std::size_t>(y * scale));
    return {p[0], p[1], p[2], p[3]};
}

inline bool near(const Pixel& a, const Pixel& b, int tolerance = 3) {
    for (std::size_t i = 0; i < 4; ++i) {
        if (std::abs(a[i] - b[i]) > tolerance) return false;
    }
    return true;
}

}  // namespace testsupport
