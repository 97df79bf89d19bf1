#include <UIKit/UIGraphics.h>

#include <UIKit/UIImage.h>
#include <UIKit/UIScreen.h>

#include <Foundation/NSLog.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

struct CGContext {
    cairo_t* cairo = nullptr;
    cairo_surface_t* surface = nullptr;  // owned: image contexts only
    bool ownsCairo = false;
    CGFloat scale = 1;
    bool opaque = false;

    CGContext() = default;
    CGContext(const CGContext&) = delete;
    CGContext& operator=(const CGContext&) = delete;
    ~CGContext() {
        if (ownsCairo) cairo_destroy(cairo);
        if (surface != nullptr) cairo_surface_destroy(surface);
    }
};

namespace {

// Refuses contexts whose pixels would not fit in memory sensibly.
constexpr double kMaxPixels = double{1 << 26};

struct Entry {
    CGContextRef context;
    std::unique_ptr<CGContext> owned;  // set for image contexts
};

std::vector<Entry>& stack() {
    thread_local std::vector<Entry> contexts;
    return contexts;
}

}  // namespace

void UIGraphicsBeginImageContextWithOptions(CGSize size, bool opaque, CGFloat scale) {
    if (!(scale > 0)) scale = UIScreen::mainScreen()->scale();
    const double width = std::ceil(size.width * scale);
    const double height = std::ceil(size.height * scale);
    if (!(size.width > 0) || !(size.height > 0) || !(width * height <= kMaxPixels)) {
        NSLog(NSSTR("UIGraphicsBeginImageContext() failed to allocate CGBitmapContext: size={%g, "
                    "%g}, scale=%g"),
              size.width, size.height, scale);
        return;
    }
    auto context = std::make_unique<CGContext>();
    context->surface =
        cairo_image_surface_create(opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
                                   static_cast<int>(width), static_cast<int>(height));
    context->cairo = cairo_create(context->surface);
    context->ownsCairo = true;
    context->scale = scale;
    context->opaque = opaque;
    // Drawing code works in points.
    cairo_scale(context->cairo, scale, scale);
    CGContextRef ref = context.get();
    stack().push_back({ref, std::move(context)});
}

void UIGraphicsBeginImageContext(CGSize size) {
    UIGraphicsBeginImageContextWithOptions(size, false, 1.0);
}

CGContextRef UIGraphicsGetCurrentContext() {
    const auto& contexts = stack();
    return contexts.empty() ? nullptr : contexts.back().context;
}

UIImage* UIGraphicsGetImageFromCurrentImageContext() {
    CGContextRef context = UIGraphicsGetCurrentContext();
    if (context == nullptr || context->surface == nullptr) return nullptr;
    cairo_surface_t* surface = context->surface;
    cairo_surface_flush(surface);
    const auto width = static_cast<std::size_t>(cairo_image_surface_get_width(surface));
    const auto height = static_cast<std::size_t>(cairo_image_surface_get_height(surface));
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
    const unsigned char* data = cairo_image_surface_get_data(surface);
    // Cairo keeps premultiplied native-endian ARGB words; images are straight RGBA bytes.
    std::vector<std::uint8_t> rgba(width * height * 4);
    std::uint8_t* out = rgba.data();
    for (std::size_t y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (std::size_t x = 0; x < width; ++x, out += 4) {
            const std::uint32_t p = row[x];
            const std::uint32_t a = context->opaque ? 255 : p >> 24;
            std::uint32_t r = (p >> 16) & 0xff, g = (p >> 8) & 0xff, b = p & 0xff;
            if (a != 255 && a != 0) {
                r = (r * 255 + a / 2) / a;
                g = (g * 255 + a / 2) / a;
                b = (b * 255 + a / 2) / a;
            }
            out[0] = static_cast<std::uint8_t>(r);
            out[1] = static_cast<std::uint8_t>(g);
            out[2] = static_cast<std::uint8_t>(b);
            out[3] = static_cast<std::uint8_t>(a);
        }
    }
    return objc::autorelease(
        UIImage::create(width, height, std::move(rgba), context->scale).leak());
}

void UIGraphicsEndImageContext() {
    auto& contexts = stack();
    if (contexts.empty() || !contexts.back().owned) {
        NSLog(NSSTR("UIGraphicsEndImageContext() called without a current image context"));
        return;
    }
    contexts.pop_back();
}

void UIGraphicsPushContext(CGContextRef context) {
    if (context != nullptr) stack().push_back({context, nullptr});
}

void UIGraphicsPopContext() {
    auto& contexts = stack();
    if (contexts.empty() || contexts.back().owned) return;
    contexts.pop_back();
}

void CGContextSaveGState(CGContextRef c) {
    if (c != nullptr) cairo_save(c->cairo);
}

void CGContextRestoreGState(CGContextRef c) {
    if (c != nullptr) cairo_restore(c->cairo);
}

void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty) {
    if (c != nullptr) cairo_translate(c->cairo, tx, ty);
}

void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy) {
    if (c != nullptr) cairo_scale(c->cairo, sx, sy);
}

void CGContextClipToRect(CGContextRef c, CGRect r) {
    if (c == nullptr) return;
    cairo_rectangle(c->cairo, r.origin.x, r.origin.y, r.size.width, r.size.height);
    cairo_clip(c->cairo);
}

void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color) {
    if (c != nullptr) uikit::setSourceColor(c->cairo, color);
}

void CGContextSetStrokeColorWithColor(CGContextRef c, CGColorRef color) {
    // Cairo has one source for both.
    if (c != nullptr) uikit::setSourceColor(c->cairo, color);
}

void CGContextSetLineWidth(CGContextRef c, CGFloat width) {
    if (c != nullptr) cairo_set_line_width(c->cairo, width);
}

void CGContextFillRect(CGContextRef c, CGRect r) {
    if (c == nullptr) return;
    cairo_rectangle(c->cairo, r.origin.x, r.origin.y, r.size.width, r.size.height);
    cairo_fill(c->cairo);
}

void CGContextStrokeRect(CGContextRef c, CGRect r) {
    if (c == nullptr) return;
    cairo_rectangle(c->cairo, r.origin.x, r.origin.y, r.size.width, r.size.height);
    cairo_stroke(c->cairo);
}

void CGContextFillEllipseInRect(CGContextRef c, CGRect r) {
    if (c == nullptr || !(r.size.width > 0) || !(r.size.height > 0)) return;
    cairo_save(c->cairo);
    cairo_translate(c->cairo, r.origin.x + r.size.width / 2, r.origin.y + r.size.height / 2);
    cairo_scale(c->cairo, r.size.width / 2, r.size.height / 2);
    cairo_arc(c->cairo, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(c->cairo);
    cairo_fill(c->cairo);
}

namespace uikit {

cairo_t* cairoContext(CGContextRef context) {
    return context != nullptr ? context->cairo : nullptr;
}

CGContextRef contextForCairo(cairo_t* cairo) {
    auto context = std::make_unique<CGContext>();
    context->cairo = cairo;
    return context.release();
}

void destroyContext(CGContextRef context) {
    std::unique_ptr<CGContext> owned(context);
}

void setSourceRGBA(cairo_t* cairo, const RGBA& c) {
    cairo_set_source_rgba(cairo, c.red, c.green, c.blue, c.alpha);
}

void setSourceColor(cairo_t* cairo, CGColorRef color, CGFloat alpha) {
    RGBA c = rgbaOf(color);
    c.alpha *= alpha;
    setSourceRGBA(cairo, c);
}

void roundedRectPath(cairo_t* cairo, CGRect r, CGFloat radius) {
    const double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
    radius = std::min<CGFloat>({radius, w / 2, h / 2});
    if (!(radius > 0)) {
        cairo_rectangle(cairo, x, y, w, h);
        return;
    }
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x + w - radius, y + radius, radius, -kQuarter, 0);
    cairo_arc(cairo, x + w - radius, y + h - radius, radius, 0, kQuarter);
    cairo_arc(cairo, x + radius, y + h - radius, radius, kQuarter, 2 * kQuarter);
    cairo_arc(cairo, x + radius, y + radius, radius, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(cairo);
}

void drawImage(cairo_t* cairo, UIImage* image, CGRect rect) {
    if (image == nullptr || !(rect.size.width > 0) || !(rect.size.height > 0)) return;
    const std::size_t width = image->pixelWidth(), height = image->pixelHeight();
    cairo_surface_t* surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height));
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
    unsigned char* data = cairo_image_surface_get_data(surface);
    const auto pixels = image->rgba();
    for (std::size_t y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(data + y * stride);
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* p = pixels.data() + (y * width + x) * 4;
            const std::uint32_t a = p[3];
            const auto pre = [a](std::uint32_t v) { return (v * a + 127) / 255; };
            row[x] = (a << 24) | (pre(p[0]) << 16) | (pre(p[1]) << 8) | pre(p[2]);
        }
    }
    cairo_surface_mark_dirty(surface);
    cairo_save(cairo);
    cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    cairo_clip(cairo);
    cairo_translate(cairo, rect.origin.x, rect.origin.y);
    cairo_scale(cairo, rect.size.width / static_cast<double>(width),
                rect.size.height / static_cast<double>(height));
    cairo_set_source_surface(cairo, surface, 0, 0);
    cairo_paint(cairo);
    cairo_restore(cairo);
    cairo_surface_destroy(surface);
}

}  // namespace uikit
