// Measuring strings: the attribute names UIKit reads, alignment and line
// breaking, and NSString's measuring methods (attached by UIKit).
#pragma once

#include <objc/geometry.h>
#include <objc/options.h>
#include <objc/string.h>

class NSDictionary;

enum NSTextAlignment : NSInteger {
    NSTextAlignmentLeft = 0,
    NSTextAlignmentCenter = 1,
    NSTextAlignmentRight = 2,
    NSTextAlignmentJustified = 3,
    // Left for left-to-right text, right for right-to-left text.
    NSTextAlignmentNatural = 4,
};

enum NSLineBreakMode : NSInteger {
    NSLineBreakByWordWrapping = 0,
    NSLineBreakByCharWrapping = 1,
    NSLineBreakByClipping = 2,
    NSLineBreakByTruncatingHead = 3,
    NSLineBreakByTruncatingTail = 4,
    NSLineBreakByTruncatingMiddle = 5,
};

enum NSStringDrawingOptions : NSInteger {
    NSStringDrawingTruncatesLastVisibleLine = 1 << 5,
    // Lines stack from the origin; without it the text is one line.
    NSStringDrawingUsesLineFragmentOrigin = 1 << 0,
    NSStringDrawingUsesFontLeading = 1 << 1,
    NSStringDrawingUsesDeviceMetrics = 1 << 3,
};
OBJC_OPTIONS(NSStringDrawingOptions);

// A UIFont; the system font at 12 points when absent.
PV_EXPORT extern NSString* const NSFontAttributeName;
// A UIColor; kept for drawing, not used in measuring.
PV_EXPORT extern NSString* const NSForegroundColorAttributeName;

namespace uikit {

// -[NSString sizeWithAttributes:]: one line per paragraph, in fractional
// points (round up before sizing a view with it).
inline CGSize sizeWithAttributes(NSString* string, NSDictionary* attributes) {
    return objc::msgSend<CGSize>(string, objc::sel<"sizeWithAttributes:">(), attributes);
}

// -[NSString boundingRectWithSize:options:attributes:context:]; the context
// (an NSStringDrawingContext on the platform) is not used.
inline CGRect boundingRectWithSize(NSString* string, CGSize size, NSStringDrawingOptions options,
                                   NSDictionary* attributes, id context = nullptr) {
    return objc::msgSend<CGRect>(string,
                                 objc::sel<"boundingRectWithSize:options:attributes:context:">(),
                                 size, options, attributes, context);
}

}  // namespace uikit
