#include <UIKit/UIFont.h>

#include <Foundation/NSString.h>

#include <objc/image.h>

#include "font_face.h"

OBJC_DEFINE_CLASS(UIFont, NSObject, "UIFont")
OBJC_REGISTER_CLASS(UIFont)

void UIFont::objcDefine(objc::ClassBuilder<UIFont>& b) {
    b.method<&UIFont::imp_init>("init")
        .classMethod<&UIFont::imp_systemFontOfSize>("systemFontOfSize:")
        .classMethod<&UIFont::imp_boldSystemFontOfSize>("boldSystemFontOfSize:")
        .classMethod<&UIFont::imp_fontWithNameSize>("fontWithName:size:")
        .method<&UIFont::imp_fontWithSize>("fontWithSize:")
        .method<&UIFont::imp_pointSize>("pointSize")
        .property<&UIFont::name_>("fontName", objc::Readonly | objc::Nonatomic)
        .method<&UIFont::imp_familyName>("familyName")
        .method<&UIFont::imp_lineHeight>("lineHeight")
        .method<&UIFont::imp_ascender>("ascender")
        .method<&UIFont::imp_descender>("descender")
        .method<&UIFont::imp_isEqual>("isEqual:")
        .method<&UIFont::imp_hash>("hash")
        .method<&UIFont::imp_description>("description")
        .method<&UIFont::imp_copyWithZone>("copyWithZone:");
}

UIFont* UIFont::imp_init() {
    // A font made without a face is the system font at the platform's 12.
    face_ = uikit::TextEngine::shared().systemFace(12, false);
    name_ = objc::retained(NSSTR("DejaVuSans"));
    return this;
}

UIFont* UIFont::make(std::shared_ptr<const uikit::FontFace> face, NSString* name) {
    auto font = objc::adopt(static_cast<UIFont*>(objc::alloc<UIFont>()->init()));
    UIFont* self = font.get();
    self->face_ = std::move(face);
    self->name_ = objc::retained(name);
    return objc::autorelease(font.leak());
}

UIFont* UIFont::imp_systemFontOfSize(Class, CGFloat size) {
    return make(uikit::TextEngine::shared().systemFace(size, false), NSSTR("DejaVuSans"));
}

UIFont* UIFont::imp_boldSystemFontOfSize(Class, CGFloat size) {
    return make(uikit::TextEngine::shared().systemFace(size, true), NSSTR("DejaVuSans-Bold"));
}

UIFont* UIFont::imp_fontWithNameSize(Class, NSString* name, CGFloat size) {
    if (name == nullptr) return nullptr;
    auto face = uikit::TextEngine::shared().namedFace(name->utf8(), size);
    if (!face) return nullptr;
    return make(std::move(face), NSString::create(name->units()).get());
}

UIFont* UIFont::imp_fontWithSize(CGFloat size) {
    return make(uikit::TextEngine::shared().resized(*face_, size), name_.get());
}

CGFloat UIFont::imp_pointSize() const {
    return face_->size();
}

NSString* UIFont::imp_familyName() const {
    return objc::autorelease(NSString::create(face_->family()).leak());
}

CGFloat UIFont::imp_lineHeight() const {
    return face_->ascent() + face_->descent();
}

CGFloat UIFont::imp_ascender() const {
    return face_->ascent();
}

CGFloat UIFont::imp_descender() const {
    return -face_->descent();
}

bool UIFont::imp_isEqual(id other) {
    if (other == this) return true;
    const UIFont* that = objc::cast<UIFont>(other);
    if (that == nullptr) return false;
    // Faces are shared, so the same face at the same size is the same object.
    return face_ == that->face_ && name_->isEqualToString(that->name_.get());
}

NSUInteger UIFont::imp_hash() const {
    return std::hash<const void*>{}(face_.get());
}

NSString* UIFont::imp_description() {
    return NSString::stringWithFormat(NSSTR("<UIFont: %@ %gpt>"), name_.get(), face_->size());
}
