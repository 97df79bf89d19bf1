// -[NSDictionary initWithContentsOfFile:], +dictionaryWithContentsOfFile:,
// -writeToFile:atomically: and the same for NSArray: property-list files
// (XML or binary) read into immutable collections, written as XML, as the
// platform writes them.
#include "file_io.h"
#include "property_list.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSDictionary.h>

#include <objc/image.h>

namespace {

using foundation::detail::PlistFormat;
using foundation::detail::PlistMutability;

// The file's top-level object when it is of the class, else null.
objc::Strong<objc_object> readCollection(NSString* path, Class expected, bool mutableContainers) {
    if (path == nullptr) return nullptr;
    const auto bytes = foundation::detail::readFile(path->utf8());
    if (!bytes) return nullptr;
    auto object = foundation::detail::decodePropertyList(
        *bytes,
        mutableContainers ? PlistMutability::MutableContainers : PlistMutability::Immutable);
    if (!object || !objc::isKindOf(object->get(), expected)) return nullptr;
    return std::move(*object);
}

bool writeCollection(id self, NSString* path, bool atomically) {
    if (path == nullptr) return false;
    const auto bytes = foundation::detail::encodePropertyList(self, PlistFormat::XML);
    if (!bytes) return false;
    // Both ways replace the file in one step; atomically adds the flushes to disk.
    return foundation::detail::writeFileAtomically(path->utf8(), *bytes, atomically).ok();
}

// The receiver is a fresh allocation: it is released and the loaded
// collection answered instead, of the receiver's kind (mutable or not).
id initWithFile(id self, NSString* path, Class base, Class mutableClass) {
    const bool wantsMutable = objc::isKindOf(self, mutableClass);
    const Class cls = object_getClass(self);
    objc_release(self);
    auto loaded = readCollection(path, base, wantsMutable);
    if (!loaded) return nullptr;
    if (object_getClass(loaded.get()) == cls) return loaded.leak();
    // A subclass: build one of its own kind from the loaded contents.
    id fresh = objc::msgSend<id>(cls, objc::sel<"alloc">());
    const SEL init = base == NSDictionary::objcClass() ? objc::sel<"initWithDictionary:">()
                                                       : objc::sel<"initWithArray:">();
    return objc::msgSend<id>(fresh, init, loaded.get());
}

id dictionaryInitWithContentsOfFile(id self, SEL, NSString* path) {
    return initWithFile(self, path, NSDictionary::objcClass(), NSMutableDictionary::objcClass());
}
id collectionWithContentsOfFile(Class cls, SEL, NSString* path) {
    id object = objc::msgSend<id>(cls, objc::sel<"alloc">());
    return objc_autorelease(
        objc::msgSend<id>(object, objc::sel<"initWithContentsOfFile:">(), path));
}
id arrayInitWithContentsOfFile(id self, SEL, NSString* path) {
    return initWithFile(self, path, NSArray::objcClass(), NSMutableArray::objcClass());
}
bool writeToFile(id self, SEL, NSString* path, bool atomically) {
    return writeCollection(self, path, atomically);
}

void attachDictionaryMethods(Class cls) {
    objc::ClassBuilder<NSDictionary> b(cls);
    b.imp<&dictionaryInitWithContentsOfFile>("initWithContentsOfFile:")
        .classImp<&collectionWithContentsOfFile>("dictionaryWithContentsOfFile:")
        .imp<&writeToFile>("writeToFile:atomically:");
}

void attachArrayMethods(Class cls) {
    objc::ClassBuilder<NSArray> b(cls);
    b.imp<&arrayInitWithContentsOfFile>("initWithContentsOfFile:")
        .classImp<&collectionWithContentsOfFile>("arrayWithContentsOfFile:")
        .imp<&writeToFile>("writeToFile:atomically:");
}

[[maybe_unused]] const bool kAttached =
    (objc::loadImage({&NSDictionary::objcClass, &NSArray::objcClass},
                     {
                         {"NSDictionary", "PropertyListFiles", &attachDictionaryMethods},
                         {"NSArray", "PropertyListFiles", &attachArrayMethods},
                     }),
     true);

}  // namespace
