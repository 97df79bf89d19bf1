// Graphics contexts: a CGContextRef wraps a Cairo context. Image contexts
// are kept on a stack per thread; the top one is the current context that
// drawRect: and renderInContext: draw into.
#pragma once

#include <UIKit/CGColor.h>

#include <objc/encoding.h>
#include <objc/geometry.h>

class UIImage;
struct CGContext;
using CGContextRef = CGContext*;
typedef struct _cairo cairo_t;

template <>
struct objc::TypeEncoding<CGContext> : objc::StructEncoding<"CGContext"> {};

// Begins an image context of `size` points at `scale` pixels a point (0:
// the main screen's scale). An opaque context has no alpha: what is left
// transparent comes out black. A size that is not positive (or too large)
// begins nothing and logs why.
PV_EXPORT void UIGraphicsBeginImageContextWithOptions(CGSize size, bool opaque, CGFloat scale);
// Transparent, at scale 1.
PV_EXPORT void UIGraphicsBeginImageContext(CGSize size);
// The context on top of this thread's stack, or null.
PV_EXPORT CGContextRef UIGraphicsGetCurrentContext();
// The current image context's pixels as an image (autoreleased), or nil.
PV_EXPORT UIImage* UIGraphicsGetImageFromCurrentImageContext();
// Ends the current image context; without one it only logs.
PV_EXPORT void UIGraphicsEndImageContext();
// Makes a context current for drawing code, and takes it off again.
PV_EXPORT void UIGraphicsPushContext(CGContextRef context);
PV_EXPORT void UIGraphicsPopContext();

// Drawing state and primitives (null contexts are ignored).
PV_EXPORT void CGContextSaveGState(CGContextRef context);
PV_EXPORT void CGContextRestoreGState(CGContextRef context);
PV_EXPORT void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty);
PV_EXPORT void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
PV_EXPORT void CGContextClipToRect(CGContextRef context, CGRect rect);
PV_EXPORT void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
PV_EXPORT void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color);
PV_EXPORT void CGContextSetLineWidth(CGContextRef context, CGFloat width);
PV_EXPORT void CGContextFillRect(CGContextRef context, CGRect rect);
PV_EXPORT void CGContextStrokeRect(CGContextRef context, CGRect rect);
PV_EXPORT void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);

namespace uikit {

// The Cairo context for platform drawing code; null for null.
PV_EXPORT cairo_t* cairoContext(CGContextRef context);
// A context over Cairo drawing that the caller owns (the context does not
// own `cairo`); destroy it with destroyContext.
PV_EXPORT CGContextRef contextForCairo(cairo_t* cairo);
PV_EXPORT void destroyContext(CGContextRef context);

// Sets the colour as Cairo's source, multiplied by `alpha`.
PV_EXPORT void setSourceColor(cairo_t* cairo, CGColorRef color, CGFloat alpha = 1);
PV_EXPORT void setSourceRGBA(cairo_t* cairo, const RGBA& color);
// A rounded rectangle path (radius 0: a plain rectangle).
PV_EXPORT void roundedRectPath(cairo_t* cairo, CGRect rect, CGFloat radius);
// Draws the image's pixels into `rect` (in the current user space).
PV_EXPORT void drawImage(cairo_t* cairo, UIImage* image, CGRect rect);

}  // namespace uikit
