// Text with attributes (a font, a colour) over ranges of its UTF-16 units.
//
// The attribute names and what their values mean belong to the layers that
// draw text; this class only keeps them. It is immutable: one run of
// attributes covers the whole string.
#pragma once

#include <objc/string.h>

class NSDictionary;

class PV_EXPORT NSAttributedString : public NSObject {
    OBJC_CLASS(NSAttributedString)

    // An owned string; nil text is taken as empty, nil attributes as none.
    static objc::Strong<NSAttributedString> create(NSString* string,
                                                   NSDictionary* attributes = nullptr) {
        return objc::adopt(
            objc::alloc<NSAttributedString>()->initWithStringAttributes(string, attributes));
    }

    NSAttributedString* initWithString(NSString* string) {
        return objc::msgSend<NSAttributedString*>(this, objc::sel<"initWithString:">(), string);
    }
    NSAttributedString* initWithStringAttributes(NSString* string, NSDictionary* attributes) {
        return objc::msgSend<NSAttributedString*>(this, objc::sel<"initWithString:attributes:">(),
                                                  string, attributes);
    }
    NSString* string() { return objc::msgSend<NSString*>(this, objc::sel<"string">()); }
    NSUInteger length() { return objc::msgSend<NSUInteger>(this, objc::sel<"length">()); }
    // The attributes at a unit index and, when `range` is not null, the range
    // they cover. An index past the end raises NSRangeException.
    NSDictionary* attributesAtIndexEffectiveRange(NSUInteger index, NSRange* range) {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"attributesAtIndex:effectiveRange:">(),
                                            index, range);
    }
    // One attribute's value at the index (nil when absent), with its range.
    id attributeAtIndexEffectiveRange(NSString* name, NSUInteger index, NSRange* range) {
        return objc::msgSend<id>(this, objc::sel<"attribute:atIndex:effectiveRange:">(), name,
                                 index, range);
    }

    // The whole run's attributes without a message (never null).
    NSDictionary* attributeDictionary() const noexcept { return attributes_.get(); }

    NSAttributedString() = default;

  private:
    NSAttributedString* imp_initWithString(NSString* string);
    NSAttributedString* imp_initWithStringAttributes(NSString* string, NSDictionary* attributes);
    NSDictionary* imp_attributesAtIndex(NSUInteger index, NSRange* range);
    id imp_attributeAtIndex(NSString* name, NSUInteger index, NSRange* range);
    NSString* imp_description();
    id imp_copyWithZone(void*) { return objc_retain(this); }
    bool imp_isEqual(id other);
    NSUInteger imp_length() const { return string_->units().size(); }
    NSUInteger imp_hash() const { return string_->units().size(); }

    objc::Strong<NSString> string_;
    objc::Strong<NSDictionary> attributes_;
};
