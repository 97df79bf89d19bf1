// Conversion between runtime objects and property lists (libplist), shared by
// NSPropertyListSerialization, the collections' file methods, bundles and
// user defaults.
#pragma once

#include <objc/object.h>
#include <objc/result.h>

#include <string>
#include <string_view>

namespace foundation::detail {

enum class PlistFormat { OpenStep = 1, XML = 100, Binary = 200 };

enum class PlistMutability { Immutable = 0, MutableContainers = 1, MutableContainersAndLeaves = 2 };

// Whether the object is a property list: NSString, NSNumber, NSData, NSDate,
// and NSArray / NSDictionary (with NSString keys) of property lists.
// Otherwise *problem (when given) names the first offending object, its class
// and where it sits, e.g. `object <Foo: 0x...> of class Foo at [2].name`.
bool isPropertyList(id object, std::string* problem = nullptr);

// An immutable deep copy of a property list, or the problem as above.
// Immutable parts that hold only immutable parts are shared, not copied.
objc::Result<objc::Strong<objc_object>> copyPropertyList(id object);

// The encoded bytes. Dictionary keys are written in sorted order so that
// equal lists encode equally.
objc::Result<std::string> encodePropertyList(id object, PlistFormat format);

// The decoded objects; *format (when given) receives the format that was read.
objc::Result<objc::Strong<objc_object>> decodePropertyList(std::string_view bytes,
                                                           PlistMutability mutability,
                                                           PlistFormat* format = nullptr);

}  // namespace foundation::detail
