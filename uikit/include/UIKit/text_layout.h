// Laying out and drawing text with Pango, for labels and the views that
// draw text: the one place where text is measured, so that what a view
// measures is what it draws.
#pragma once

#include <UIKit/NSStringDrawing.h>

#include <string_view>

class UIFont;
using cairo_t = struct _cairo;

namespace uikit {

// A text and how to break it; the text is UTF-8 as NSString::utf8() gives it.
struct TextBlock {
    std::string_view utf8;
    UIFont* font = nullptr;  // null: the system font at 17 points
    // 0: as many as the text needs. 1 lays out the first paragraph only.
    NSInteger numberOfLines = 0;
    NSLineBreakMode lineBreakMode = NSLineBreakByWordWrapping;
    NSTextAlignment alignment = NSTextAlignmentNatural;
};

struct TextColor {
    double red = 0, green = 0, blue = 0, alpha = 1;
};

// The size of the laid-out lines in fractional points; a width of 0 or less
// (or infinity) leaves lines unbroken except at newlines. Empty text is one
// line high.
PV_EXPORT CGSize measureText(const TextBlock& block, CGFloat width);

// Draws the text into `rect` (user space of `cr`) as a label does: broken
// to the rect's width, centred vertically, clipped to the rect, truncated
// as the mode says. The context's state is left as it was.
PV_EXPORT void drawText(cairo_t* cr, CGRect rect, const TextBlock& block, TextColor color);

// Whether the text's first strong character is right-to-left.
PV_EXPORT bool isRightToLeft(std::string_view utf8);

}  // namespace uikit
