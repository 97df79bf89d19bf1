// Drawing a view tree into a context: shared by views that draw other views
// (a table draws its cells) and by layers asked to render.
#pragma once

#include <UIKit/UIGraphics.h>

#include <objc/string.h>

class UIView;

namespace uikit {

// Draws the view in its bounds' coordinates: background, drawRect:,
// subviews back to front, border; with its alpha and clipping. A hidden
// view draws nothing.
void drawViewContent(CGContextRef context, UIView* view);
// Draws a subview where its superview shows it (the current coordinates
// are the superview's bounds').
void drawSubview(CGContextRef context, UIView* view);
// Draws the view as if its frame were `frame` in the current coordinates.
void drawViewAt(CGContextRef context, UIView* view, CGRect frame);

// Whether a title or message has anything to draw (nil and "" do not).
inline bool hasText(NSString* text) {
    return text != nullptr && text->length() > 0;
}

}  // namespace uikit
