#include <UIKit/NSStringDrawing.h>

#include <UIKit/UIFont.h>
#include <UIKit/text_layout.h>

#include <Foundation/NSDictionary.h>

#include <objc/image.h>

#include <algorithm>
#include <cmath>

NSString* const NSFontAttributeName = objc::constantString("NSFont");
NSString* const NSForegroundColorAttributeName = objc::constantString("NSColor");

namespace {

// The font named in the attributes; the platform's default otherwise.
UIFont* fontOf(NSDictionary* attributes) {
    id font = attributes != nullptr ? attributes->objectForKey(NSFontAttributeName) : nullptr;
    if (UIFont* given = objc::cast<UIFont>(font)) return given;
    return UIFont::systemFontOfSize(12);
}

CGSize sizeWithAttributes(NSString* self, SEL, NSDictionary* attributes) {
    uikit::TextBlock block{self->utf8(), fontOf(attributes)};
    return uikit::measureText(block, 0);
}

CGRect boundingRectWithSize(NSString* self, SEL, CGSize size, NSStringDrawingOptions options,
                            NSDictionary* attributes, id) {
    uikit::TextBlock block{self->utf8(), fontOf(attributes)};
    // Without the line fragment origin the text is measured as one line.
    const bool stacked = (options & NSStringDrawingUsesLineFragmentOrigin) != 0;
    block.numberOfLines = stacked ? 0 : 1;
    if ((options & NSStringDrawingTruncatesLastVisibleLine) != 0) {
        block.lineBreakMode = NSLineBreakByTruncatingTail;
    }
    CGSize measured = uikit::measureText(block, stacked ? size.width : 0);
    // A height limit keeps whole lines that fit, at least one.
    if (stacked && size.height > 0 && measured.height > size.height) {
        const CGFloat line = block.font->lineHeight();
        measured.height = std::max(line, std::floor(size.height / line) * line);
    }
    return CGRectMake(0, 0, measured.width, measured.height);
}

void attach(Class cls) {
    objc::ClassBuilder<NSString> b(cls);
    b.imp<&sizeWithAttributes>("sizeWithAttributes:")
        .imp<&boundingRectWithSize>("boundingRectWithSize:options:attributes:context:");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({}, {objc::Category{"NSString", "UIKitStringDrawing", &attach}}), true);

}  // namespace
