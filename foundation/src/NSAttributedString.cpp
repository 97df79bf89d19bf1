#include <Foundation/NSAttributedString.h>

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

#include <objc/exception.h>
#include <objc/image.h>

OBJC_DEFINE_CLASS(NSAttributedString, NSObject, "NSAttributedString")
OBJC_REGISTER_CLASS(NSAttributedString)

void NSAttributedString::objcDefine(objc::ClassBuilder<NSAttributedString>& b) {
    b.method<&NSAttributedString::imp_initWithString>("initWithString:")
        .method<&NSAttributedString::imp_initWithStringAttributes>("initWithString:attributes:")
        .property<&NSAttributedString::string_>("string", objc::Readonly | objc::Nonatomic)
        .method<&NSAttributedString::imp_attributesAtIndex>("attributesAtIndex:effectiveRange:")
        .method<&NSAttributedString::imp_attributeAtIndex>("attribute:atIndex:effectiveRange:")
        .method<&NSAttributedString::imp_description>("description")
        .method<&NSAttributedString::imp_copyWithZone>("copyWithZone:")
        .method<&NSAttributedString::imp_isEqual>("isEqual:")
        .method<&NSAttributedString::imp_length>("length")
        .method<&NSAttributedString::imp_hash>("hash");
}

NSAttributedString* NSAttributedString::imp_initWithString(NSString* string) {
    return initWithStringAttributes(string, nullptr);
}

NSAttributedString* NSAttributedString::imp_initWithStringAttributes(NSString* string,
                                                                     NSDictionary* attributes) {
    // Copies, so that mutable arguments changed later do not change this.
    string_ = string != nullptr ? NSString::create(string->units()) : NSString::create("");
    attributes_ = attributes != nullptr
                      ? objc::adopt(static_cast<NSDictionary*>(attributes->copy()))
                      : NSDictionary::create({});
    return this;
}

NSDictionary* NSAttributedString::imp_attributesAtIndex(NSUInteger index, NSRange* range) {
    const NSUInteger length = string_->units().size();
    if (index >= length) {
        objc::raise(objc::exception_name::Range, "attributesAtIndex: index " +
                                                     std::to_string(index) + " beyond length " +
                                                     std::to_string(length));
    }
    if (range != nullptr) *range = NSMakeRange(0, length);
    return attributes_.get();
}

id NSAttributedString::imp_attributeAtIndex(NSString* name, NSUInteger index, NSRange* range) {
    return imp_attributesAtIndex(index, range)->objectForKey(name);
}

NSString* NSAttributedString::imp_description() {
    return string_.get();
}

bool NSAttributedString::imp_isEqual(id other) {
    if (other == this) return true;
    auto* that = objc::cast<NSAttributedString>(other);
    if (that == nullptr) return false;
    return string_->isEqualToString(that->string_.get()) &&
           attributes_->isEqualToDictionary(that->attributes_.get());
}
