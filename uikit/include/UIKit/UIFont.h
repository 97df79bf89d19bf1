// A font face at a size. The system font is DejaVu Sans (bold: DejaVu Sans
// Bold), with Noto Sans Arabic for Arabic letters, so that measured sizes
// are the same on every machine.
//
// Metrics come from Pango; the face behind a font (name and size) is looked
// up once and shared by every UIFont asking for it.
#pragma once

#include <objc/class_builder.h>
#include <objc/string.h>

#include <memory>

namespace uikit {
class FontFace;
}

class PV_EXPORT UIFont : public NSObject {
    OBJC_CLASS(UIFont)

    static UIFont* systemFontOfSize(CGFloat size) {
        return objc::msgSend<UIFont*>(objcClass(), objc::sel<"systemFontOfSize:">(), size);
    }
    static UIFont* boldSystemFontOfSize(CGFloat size) {
        return objc::msgSend<UIFont*>(objcClass(), objc::sel<"boldSystemFontOfSize:">(), size);
    }
    // nil when no installed font has that family, full or PostScript name.
    static UIFont* fontWithNameSize(NSString* name, CGFloat size) {
        return objc::msgSend<UIFont*>(objcClass(), objc::sel<"fontWithName:size:">(), name, size);
    }

    // The same face at another size.
    UIFont* fontWithSize(CGFloat size) {
        return objc::msgSend<UIFont*>(this, objc::sel<"fontWithSize:">(), size);
    }
    CGFloat pointSize() { return objc::msgSend<CGFloat>(this, objc::sel<"pointSize">()); }
    NSString* fontName() { return objc::msgSend<NSString*>(this, objc::sel<"fontName">()); }
    NSString* familyName() { return objc::msgSend<NSString*>(this, objc::sel<"familyName">()); }
    // Ascender plus descender's depth, in points.
    CGFloat lineHeight() { return objc::msgSend<CGFloat>(this, objc::sel<"lineHeight">()); }
    CGFloat ascender() { return objc::msgSend<CGFloat>(this, objc::sel<"ascender">()); }
    // Below the baseline, so negative.
    CGFloat descender() { return objc::msgSend<CGFloat>(this, objc::sel<"descender">()); }

    // The face for laying out text, without a message.
    const uikit::FontFace& face() const noexcept { return *face_; }

    UIFont() = default;

  private:
    UIFont* imp_init();
    static UIFont* imp_systemFontOfSize(Class cls, CGFloat size);
    static UIFont* imp_boldSystemFontOfSize(Class cls, CGFloat size);
    static UIFont* imp_fontWithNameSize(Class cls, NSString* name, CGFloat size);
    static UIFont* make(std::shared_ptr<const uikit::FontFace> face, NSString* name);
    UIFont* imp_fontWithSize(CGFloat size);
    CGFloat imp_pointSize() const;
    NSString* imp_familyName() const;
    CGFloat imp_lineHeight() const;
    CGFloat imp_ascender() const;
    CGFloat imp_descender() const;
    bool imp_isEqual(id other);
    NSUInteger imp_hash() const;
    NSString* imp_description();
    id imp_copyWithZone(void*) { return objc_retain(this); }

    std::shared_ptr<const uikit::FontFace> face_;
    objc::Strong<NSString> name_;
};
