#include <Foundation/NSPropertyListSerialization.h>

#include "property_list.h"

#include <Foundation/NSData.h>
#include <Foundation/NSError.h>

#include <objc/image.h>

#include <algorithm>

using foundation::detail::PlistFormat;
using foundation::detail::PlistMutability;

OBJC_DEFINE_CLASS(NSPropertyListSerialization, NSObject, "NSPropertyListSerialization")
OBJC_REGISTER_CLASS(NSPropertyListSerialization)

void NSPropertyListSerialization::objcDefine(objc::ClassBuilder<NSPropertyListSerialization>& b) {
    b.classMethod<&NSPropertyListSerialization::imp_dataWithPropertyList>(
         "dataWithPropertyList:format:options:error:")
        .classMethod<&NSPropertyListSerialization::imp_propertyListWithData>(
            "propertyListWithData:options:format:error:")
        .classMethod<&NSPropertyListSerialization::imp_propertyListIsValidForFormat>(
            "propertyList:isValidForFormat:");
}

NSData* NSPropertyListSerialization::imp_dataWithPropertyList(Class, id plist,
                                                              NSPropertyListFormat format,
                                                              NSPropertyListWriteOptions,
                                                              NSError** error) {
    if (format != NSPropertyListXMLFormat_v1_0 && format != NSPropertyListBinaryFormat_v1_0) {
        foundation::setError(error, NSCocoaErrorDomain, NSPropertyListWriteInvalidError,
                             "Property list format " + std::to_string(format) +
                                 " cannot be written; use XML (100) or binary (200).");
        return nullptr;
    }
    const auto bytes =
        foundation::detail::encodePropertyList(plist, static_cast<PlistFormat>(format));
    if (!bytes) {
        foundation::setError(error, NSCocoaErrorDomain, NSPropertyListWriteInvalidError,
                             "Property list invalid for format: " + bytes.error().message);
        return nullptr;
    }
    return objc::autorelease(NSData::create(std::string_view(*bytes)).leak());
}

id NSPropertyListSerialization::imp_propertyListWithData(Class, NSData* data,
                                                         NSPropertyListReadOptions options,
                                                         NSPropertyListFormat* format,
                                                         NSError** error) {
    if (data == nullptr) {
        foundation::setError(error, NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                             "The data couldn\u2019t be read because there is none.");
        return nullptr;
    }
    const auto mutability = static_cast<PlistMutability>(
        std::min<NSPropertyListReadOptions>(options, NSPropertyListMutableContainersAndLeaves));
    PlistFormat read = PlistFormat::XML;
    auto object = foundation::detail::decodePropertyList(data->view(), mutability, &read);
    if (!object) {
        foundation::setError(error, NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                             "The data couldn\u2019t be read because it isn\u2019t in the correct "
                             "format: " +
                                 object.error().message + ".");
        return nullptr;
    }
    if (format != nullptr) *format = static_cast<NSPropertyListFormat>(read);
    return objc_autorelease(object->leak());
}

bool NSPropertyListSerialization::imp_propertyListIsValidForFormat(Class, id plist,
                                                                   NSPropertyListFormat format) {
    if (format != NSPropertyListXMLFormat_v1_0 && format != NSPropertyListBinaryFormat_v1_0) {
        return false;
    }
    return foundation::detail::isPropertyList(plist);
}
