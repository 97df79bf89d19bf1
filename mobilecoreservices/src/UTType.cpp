#include <MobileCoreServices/UTType.h>

#include "dynamic_identifier.h"
#include "type_registry.h"

#include <objc/strong.h>

#include <string>
#include <vector>

using mobilecoreservices::TypeRegistry;

// The same names as the registry's, which reads them without messages.
NSString* const kUTTagClassFilenameExtension = objc::constantString("public.filename-extension");
NSString* const kUTTagClassMIMEType = objc::constantString("public.mime-type");
NSString* const kUTTagClassNSPboardType = objc::constantString("com.apple.nspboard-type");
NSString* const kUTTagClassOSType = objc::constantString("com.apple.ostype");

namespace {

std::string_view text(NSString* s) {
    return s == nullptr ? std::string_view() : s->utf8();
}

NSString* createString(std::string_view s) {
    return NSString::create(s).leak();
}

NSArray* createArray(const std::vector<std::string>& strings) {
    std::vector<objc::Strong<NSString>> held;
    held.reserve(strings.size());
    std::vector<id> objects;
    for (const auto& s : strings) objects.push_back(held.emplace_back(NSString::create(s)).get());
    return NSArray::create(std::move(objects)).leak();
}

std::vector<std::string> identifiersForTag(CFStringRef tagClass, CFStringRef tag,
                                           CFStringRef conformingTo) {
    if (tagClass == nullptr || tag == nullptr) return {};
    return TypeRegistry::shared().identifiersForTag(text(tagClass), text(tag), text(conformingTo));
}

}  // namespace

CFStringRef UTTypeCreatePreferredIdentifierForTag(CFStringRef inTagClass, CFStringRef inTag,
                                                  CFStringRef inConformingToUTI) {
    const auto identifiers = identifiersForTag(inTagClass, inTag, inConformingToUTI);
    return identifiers.empty() ? nullptr : createString(identifiers.front());
}

CFArrayRef UTTypeCreateAllIdentifiersForTag(CFStringRef inTagClass, CFStringRef inTag,
                                            CFStringRef inConformingToUTI) {
    const auto identifiers = identifiersForTag(inTagClass, inTag, inConformingToUTI);
    return identifiers.empty() ? nullptr : createArray(identifiers);
}

CFStringRef UTTypeCopyPreferredTagWithClass(CFStringRef inUTI, CFStringRef inTagClass) {
    if (inUTI == nullptr || inTagClass == nullptr) return nullptr;
    const auto tags = TypeRegistry::shared().tagsWithClass(text(inUTI), text(inTagClass));
    return tags.empty() ? nullptr : createString(tags.front());
}

CFArrayRef UTTypeCopyAllTagsWithClass(CFStringRef inUTI, CFStringRef inTagClass) {
    if (inUTI == nullptr || inTagClass == nullptr) return nullptr;
    const auto tags = TypeRegistry::shared().tagsWithClass(text(inUTI), text(inTagClass));
    return tags.empty() ? nullptr : createArray(tags);
}

Boolean UTTypeEqual(CFStringRef inUTI1, CFStringRef inUTI2) {
    if (inUTI1 == nullptr || inUTI2 == nullptr) return false;
    return mobilecoreservices::equalsIgnoringCase(text(inUTI1), text(inUTI2));
}

Boolean UTTypeConformsTo(CFStringRef inUTI, CFStringRef inConformsToUTI) {
    if (inUTI == nullptr || inConformsToUTI == nullptr) return false;
    return TypeRegistry::shared().conformsTo(text(inUTI), text(inConformsToUTI));
}

CFStringRef UTTypeCopyDescription(CFStringRef inUTI) {
    if (inUTI == nullptr) return nullptr;
    const auto description = TypeRegistry::shared().description(text(inUTI));
    return description ? createString(*description) : nullptr;
}

Boolean UTTypeIsDeclared(CFStringRef inUTI) {
    return inUTI != nullptr && TypeRegistry::shared().declaration(text(inUTI)) != nullptr;
}

Boolean UTTypeIsDynamic(CFStringRef inUTI) {
    return inUTI != nullptr &&
           mobilecoreservices::DynamicIdentifier::decode(text(inUTI)).has_value();
}
