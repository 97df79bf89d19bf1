// Property lists to and from bytes: XML or binary, as on the platform.
#pragma once

#include <objc/object.h>
#include <objc/options.h>

class NSData;
class NSError;

enum NSPropertyListFormat : NSUInteger {
    NSPropertyListOpenStepFormat = 1,
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

enum NSPropertyListMutabilityOptions : NSUInteger {
    NSPropertyListImmutable = 0,
    NSPropertyListMutableContainers = 1,
    NSPropertyListMutableContainersAndLeaves = 2,
};
OBJC_OPTIONS(NSPropertyListMutabilityOptions);
using NSPropertyListReadOptions = NSPropertyListMutabilityOptions;
// No options are defined for writing; callers pass {}.
enum NSPropertyListWriteOptions : NSUInteger {};
OBJC_OPTIONS(NSPropertyListWriteOptions);

class PV_EXPORT NSPropertyListSerialization : public NSObject {
    OBJC_CLASS(NSPropertyListSerialization)

    // The encoded list (autoreleased), or nil with *error set when the object
    // is not a property list or the format cannot be written (OpenStep).
    // Booleans stay booleans, integers integers and reals reals.
    static NSData* dataWithPropertyList(id plist, NSPropertyListFormat format,
                                        NSPropertyListWriteOptions options, NSError** error) {
        return objc::msgSend<NSData*>(objcClass(),
                                      objc::sel<"dataWithPropertyList:format:options:error:">(),
                                      plist, format, options, error);
    }
    // The decoded objects (autoreleased; mutable containers or leaves when
    // asked), or nil with *error set. *format receives the format read.
    static id propertyListWithData(NSData* data, NSPropertyListReadOptions options,
                                   NSPropertyListFormat* format, NSError** error) {
        return objc::msgSend<id>(objcClass(),
                                 objc::sel<"propertyListWithData:options:format:error:">(), data,
                                 options, format, error);
    }
    static bool propertyListIsValidForFormat(id plist, NSPropertyListFormat format) {
        return objc::msgSend<bool>(objcClass(), objc::sel<"propertyList:isValidForFormat:">(),
                                   plist, format);
    }

    NSPropertyListSerialization() = default;

  private:
    static NSData* imp_dataWithPropertyList(Class cls, id plist, NSPropertyListFormat format,
                                            NSPropertyListWriteOptions options, NSError** error);
    static id imp_propertyListWithData(Class cls, NSData* data, NSPropertyListReadOptions options,
                                       NSPropertyListFormat* format, NSError** error);
    static bool imp_propertyListIsValidForFormat(Class cls, id plist, NSPropertyListFormat format);
};
