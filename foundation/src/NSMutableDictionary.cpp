#include <Foundation/NSDictionary.h>

#include <objc/image.h>

#include <algorithm>
#include <string>

namespace {

using objc::msgSend;
using objc::sel;

std::string describeKey(id key) {
    auto* text = msgSend<NSString*>(key, sel<"description">());
    return text != nullptr ? text->utf8() : std::string("(null)");
}

}  // namespace

OBJC_DEFINE_CLASS(NSMutableDictionary, NSDictionary, "NSMutableDictionary")
OBJC_REGISTER_CLASS(NSMutableDictionary)

void NSMutableDictionary::objcDefine(objc::ClassBuilder<NSMutableDictionary>& b) {
    b.classMethod<&NSMutableDictionary::imp_dictionaryWithCapacity>("dictionaryWithCapacity:")
        .method<&NSMutableDictionary::imp_initWithCapacity>("initWithCapacity:")
        .method<&NSMutableDictionary::imp_setObjectForKey>("setObject:forKey:")
        .method<&NSMutableDictionary::imp_setObjectForKeyedSubscript>(
            "setObject:forKeyedSubscript:")
        .method<&NSMutableDictionary::imp_removeObjectForKey>("removeObjectForKey:")
        .method<&NSMutableDictionary::imp_removeAllObjects>("removeAllObjects")
        .method<&NSMutableDictionary::imp_addEntriesFromDictionary>("addEntriesFromDictionary:")
        .method<&NSMutableDictionary::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSMutableDictionary> NSMutableDictionary::create() {
    return create(std::vector<std::pair<id, id>>{});
}

objc::Strong<NSMutableDictionary> NSMutableDictionary::create(
    std::initializer_list<std::pair<id, id>> pairs) {
    return create(std::vector<std::pair<id, id>>(pairs));
}

objc::Strong<NSMutableDictionary> NSMutableDictionary::create(
    const std::vector<std::pair<id, id>>& pairs) {
    return objc::adopt(static_cast<NSMutableDictionary*>(newDictionary(objcClass(), pairs)));
}

NSMutableDictionary* NSMutableDictionary::imp_dictionaryWithCapacity(Class cls,
                                                                     NSUInteger capacity) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithCapacity:">(), capacity);
    return static_cast<NSMutableDictionary*>(objc_autorelease(obj));
}

NSMutableDictionary* NSMutableDictionary::imp_initWithCapacity(NSUInteger capacity) {
    // A hint only: an absurd capacity must not fail the allocation.
    reserve(std::min<NSUInteger>(capacity, 1u << 16));
    return this;
}

void NSMutableDictionary::imp_setObjectForKey(id object, id key) {
    if (key == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableDictionary setObject:forKey:]: key cannot be nil");
    }
    if (object == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableDictionary setObject:forKey:]: object cannot be nil (key: " +
                        describeKey(key) + ")");
    }
    put(key, object);
}

void NSMutableDictionary::imp_setObjectForKeyedSubscript(id object, id key) {
    if (key == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableDictionary setObject:forKeyedSubscript:]: key cannot be nil");
    }
    if (object == nullptr) {
        const Entry removed = take(key);
        return;
    }
    put(key, object);
}

void NSMutableDictionary::imp_removeObjectForKey(id key) {
    if (key == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSMutableDictionary removeObjectForKey:]: key cannot be nil");
    }
    // Released here, after the table is consistent: a dealloc may look at it.
    const Entry removed = take(key);
}

void NSMutableDictionary::imp_removeAllObjects() {
    const std::vector<Entry> removed = takeAll();
}

void NSMutableDictionary::imp_addEntriesFromDictionary(NSDictionary* other) {
    if (other == nullptr || other == this) return;
    // Held while they go in: setting a value may release the other dictionary's last owner.
    const objc::Strong<objc_object> held = objc::retained(static_cast<id>(other));
    const std::vector<std::pair<id, id>> pairs = pairsOf(other);
    reserve(count_ + pairs.size());
    for (const auto& [key, value] : pairs) put(key, value);
}

// The copy of a mutable dictionary is an immutable one.
id NSMutableDictionary::imp_copyWithZone(void*) const {
    return newDictionary(NSDictionary::objcClass(), rawPairs());
}
