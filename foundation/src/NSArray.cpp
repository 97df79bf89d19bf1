#include <Foundation/NSArray.h>

#include <objc/image.h>

#include <cstdio>
#include <string>

#include "collection_sorting.h"
#include "property_list_text.h"

namespace {

using objc::msgSend;
using objc::sel;
using Objects = std::vector<objc::Strong<objc_object>>;

std::string methodName(const NSArray* self, const char* method) {
    return std::string("*** -[") + object_getClassName(const_cast<NSArray*>(self)) + " " + method +
           "]";
}

}  // namespace

OBJC_DEFINE_CLASS(NSArray, NSObject, "NSArray")
OBJC_REGISTER_CLASS(NSArray)

void NSArray::objcDefine(objc::ClassBuilder<NSArray>& b) {
    b.classMethod<&NSArray::imp_array>("array")
        .classMethod<&NSArray::imp_arrayWithObject>("arrayWithObject:")
        .classMethod<&NSArray::imp_arrayWithObjectsCount>("arrayWithObjects:count:")
        .classMethod<&NSArray::imp_arrayWithArray>("arrayWithArray:")
        .method<&NSArray::imp_initWithArray>("initWithArray:")
        .method<&NSArray::imp_initWithObjectsCount>("initWithObjects:count:")
        .method<&NSArray::imp_count>("count")
        .method<&NSArray::imp_objectAtIndex>("objectAtIndex:")
        .method<&NSArray::imp_objectAtIndex>("objectAtIndexedSubscript:")
        .method<&NSArray::imp_firstObject>("firstObject")
        .method<&NSArray::imp_lastObject>("lastObject")
        .method<&NSArray::imp_containsObject>("containsObject:")
        .method<&NSArray::imp_indexOfObject>("indexOfObject:")
        .method<&NSArray::imp_isEqual>("isEqual:")
        .method<&NSArray::imp_isEqualToArray>("isEqualToArray:")
        .method<&NSArray::imp_hash>("hash")
        .method<&NSArray::imp_arrayByAddingObject>("arrayByAddingObject:")
        .method<&NSArray::imp_arrayByAddingObjectsFromArray>("arrayByAddingObjectsFromArray:")
        .method<&NSArray::imp_subarrayWithRange>("subarrayWithRange:")
        .method<&NSArray::imp_componentsJoinedByString>("componentsJoinedByString:")
        .method<&NSArray::imp_sortedArrayUsingSelector>("sortedArrayUsingSelector:")
        .method<&NSArray::imp_sortedArrayUsingComparator>("sortedArrayUsingComparator:")
        .method<&NSArray::imp_enumerateObjectsUsingBlock>("enumerateObjectsUsingBlock:")
        .method<&NSArray::imp_makeObjectsPerformSelector>("makeObjectsPerformSelector:")
        .method<&NSArray::imp_description>("description")
        .method<&NSArray::imp_descriptionWithLocaleIndent>("descriptionWithLocale:indent:")
        .method<&NSArray::imp_copyWithZone>("copyWithZone:")
        .method<&NSArray::imp_mutableCopyWithZone>("mutableCopyWithZone:");
}

// ---- C++ interface ----

objc::Strong<NSArray> NSArray::create(std::vector<id> objects) {
    return objc::adopt(newArray(objcClass(), objects));
}

objc::Strong<NSArray> NSArray::create(std::initializer_list<id> objects) {
    return create(std::vector<id>(objects));
}

id NSArray::at(std::size_t i) const {
    if (i >= objects_.size()) raiseIndex("objectAtIndex:", i);
    return objects_[i].get();
}

id NSArray::Iterator::operator*() const {
    check();
    return array_->objects_[index_].get();
}

NSArray::Iterator& NSArray::Iterator::operator++() {
    check();
    ++index_;
    return *this;
}

void NSArray::Iterator::check() const {
    array_->checkMutations(mutations_);
    if (index_ >= array_->objects_.size()) array_->raiseIndex("objectAtIndex:", index_);
}

// ---- shared with the mutable subclass ----

NSArray* NSArray::newArray(Class cls, const std::vector<id>& objects) {
    id obj = msgSend<id>(msgSend<id>(cls, sel<"alloc">()), sel<"init">());
    auto* array = objc::cast<NSArray>(obj);
    if (array == nullptr) {
        objc_release(obj);
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("not an array class: ") + class_getName(cls));
    }
    try {
        array->assignObjects(objects);
    } catch (...) {
        objc_release(array);
        throw;
    }
    return array;
}

void NSArray::assignObjects(const std::vector<id>& objects) {
    Objects fresh;
    fresh.reserve(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (objects[i] == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "*** -[NSArray initWithObjects:count:]: attempt to insert nil object from "
                        "objects[" +
                            std::to_string(i) + "]");
        }
        fresh.push_back(objc::retained(objects[i]));
    }
    objects_.swap(fresh);
    ++mutations_;
    // The old elements are released last, when the array is already consistent.
}

std::vector<id> NSArray::rawObjects() const {
    std::vector<id> raw;
    raw.reserve(objects_.size());
    for (const auto& o : objects_) raw.push_back(o.get());
    return raw;
}

void NSArray::checkMutations(std::uint64_t mutations) const {
    if (mutations != mutations_) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%p", static_cast<const void*>(this));
        objc::raise(objc::exception_name::Generic,
                    std::string("*** Collection <") +
                        object_getClassName(const_cast<NSArray*>(this)) + ": " + buffer +
                        "> was mutated while being enumerated.");
    }
}

void NSArray::raiseIndex(const char* method, NSUInteger index) const {
    const std::string bounds = objects_.empty()
                                   ? std::string("for empty array")
                                   : "[0 .. " + std::to_string(objects_.size() - 1) + "]";
    objc::raise(
        objc::exception_name::Range,
        methodName(this, method) + ": index " + std::to_string(index) + " beyond bounds " + bounds);
}

Objects NSArray::sortedObjects(const std::function<NSInteger(id, id)>& compare) const {
    Objects sorted = objects_;
    foundation::detail::stableSort(
        sorted, [&](const auto& a, const auto& b) { return compare(a.get(), b.get()) < 0; });
    return sorted;
}

// ---- messages ----

NSArray* NSArray::imp_array(Class cls) {
    return objc::autorelease(newArray(cls, {}));
}

NSArray* NSArray::imp_arrayWithObject(Class cls, id object) {
    if (object == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** +[NSArray arrayWithObject:]: attempt to insert nil object");
    }
    return objc::autorelease(newArray(cls, {object}));
}

NSArray* NSArray::imp_arrayWithObjectsCount(Class cls, const id* objects, NSUInteger count) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithObjects:count:">(), objects, count);
    return static_cast<NSArray*>(objc_autorelease(obj));
}

NSArray* NSArray::imp_arrayWithArray(Class cls, NSArray* other) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithArray:">(), other);
    return static_cast<NSArray*>(objc_autorelease(obj));
}

NSArray* NSArray::imp_initWithArray(NSArray* other) {
    if (other != nullptr && other != this) objects_ = other->objects_;
    ++mutations_;
    return this;
}

NSArray* NSArray::imp_initWithObjectsCount(const id* objects, NSUInteger count) {
    try {
        if (objects == nullptr && count > 0) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "*** -[NSArray initWithObjects:count:]: pointer to objects is NULL");
        }
        assignObjects(std::vector<id>(objects, objects + count));
    } catch (...) {
        objc_release(this);  // a failed init frees the object, as alloc/init callers expect
        throw;
    }
    return this;
}

id NSArray::imp_objectAtIndex(NSUInteger i) const {
    if (i >= objects_.size()) raiseIndex("objectAtIndex:", i);
    return objects_[i].get();
}

id NSArray::imp_firstObject() const {
    return objects_.empty() ? nullptr : objects_.front().get();
}

id NSArray::imp_lastObject() const {
    return objects_.empty() ? nullptr : objects_.back().get();
}

bool NSArray::imp_containsObject(id object) const {
    return imp_indexOfObject(object) != static_cast<NSUInteger>(NSNotFound);
}

NSUInteger NSArray::imp_indexOfObject(id object) const {
    if (object == nullptr) return static_cast<NSUInteger>(NSNotFound);
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        id element = objects_[i].get();
        if (element == object || msgSend<bool>(element, sel<"isEqual:">(), object)) return i;
    }
    return static_cast<NSUInteger>(NSNotFound);
}

bool NSArray::imp_isEqual(id other) {
    if (other == this) return true;
    auto* array = objc::cast<NSArray>(other);
    return array != nullptr && msgSend<bool>(this, sel<"isEqualToArray:">(), array);
}

bool NSArray::imp_isEqualToArray(NSArray* other) {
    if (other == this) return true;
    if (other == nullptr || other->objects_.size() != objects_.size()) return false;
    // Both arrays are held while elements compare themselves.
    const Objects mine = objects_;
    const Objects theirs = other->objects_;
    for (std::size_t i = 0; i < mine.size(); ++i) {
        id a = mine[i].get();
        id b = theirs[i].get();
        if (a != b && !msgSend<bool>(a, sel<"isEqual:">(), b)) return false;
    }
    return true;
}

NSArray* NSArray::imp_arrayByAddingObject(id object) const {
    if (object == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    methodName(this, "arrayByAddingObject:") + ": object cannot be nil");
    }
    std::vector<id> raw = rawObjects();
    raw.push_back(object);
    return objc::autorelease(newArray(NSArray::objcClass(), raw));
}

NSArray* NSArray::imp_arrayByAddingObjectsFromArray(NSArray* other) const {
    std::vector<id> raw = rawObjects();
    if (other != nullptr) {
        for (const auto& o : other->objects_) raw.push_back(o.get());
    }
    return objc::autorelease(newArray(NSArray::objcClass(), raw));
}

NSArray* NSArray::imp_subarrayWithRange(NSRange range) const {
    const std::size_t n = objects_.size();
    if (range.location > n || range.length > n - range.location) {
        const std::string bounds =
            n == 0 ? std::string("for empty array") : "[0 .. " + std::to_string(n - 1) + "]";
        objc::raise(objc::exception_name::Range, methodName(this, "subarrayWithRange:") +
                                                     ": range {" + std::to_string(range.location) +
                                                     ", " + std::to_string(range.length) +
                                                     "} extends beyond bounds " + bounds);
    }
    const auto first = objects_.begin() + static_cast<std::ptrdiff_t>(range.location);
    std::vector<id> raw;
    raw.reserve(range.length);
    for (auto it = first; it != first + static_cast<std::ptrdiff_t>(range.length); ++it) {
        raw.push_back(it->get());
    }
    return objc::autorelease(newArray(NSArray::objcClass(), raw));
}

NSString* NSArray::imp_componentsJoinedByString(NSString* separator) const {
    const Objects held = objects_;
    std::u16string text;
    for (std::size_t i = 0; i < held.size(); ++i) {
        if (i > 0 && separator != nullptr) text += separator->units();
        auto* description = msgSend<NSString*>(held[i].get(), sel<"description">());
        if (description != nullptr) text += description->units();
    }
    return foundation::detail::autoreleasedString(std::move(text));
}

NSArray* NSArray::imp_sortedArrayUsingSelector(SEL comparator) const {
    const Objects sorted = sortedObjects(foundation::detail::selectorComparison(comparator));
    std::vector<id> raw;
    for (const auto& o : sorted) raw.push_back(o.get());
    return objc::autorelease(newArray(NSArray::objcClass(), raw));
}

NSArray* NSArray::imp_sortedArrayUsingComparator(objc::BlockBase* comparator) const {
    const Objects sorted = sortedObjects(foundation::detail::blockComparison(comparator));
    std::vector<id> raw;
    for (const auto& o : sorted) raw.push_back(o.get());
    return objc::autorelease(newArray(NSArray::objcClass(), raw));
}

void NSArray::imp_enumerateObjectsUsingBlock(Enumerator* block) const {
    auto* body = objc::blockCast<void(id, NSUInteger, bool*)>(block);
    if (body == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    methodName(this, "enumerateObjectsUsingBlock:") + ": block cannot be nil");
    }
    const objc::Strong<objc_object> keepAlive = objc::retained(const_cast<NSArray*>(this));
    const std::uint64_t mutations = mutations_;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        bool stop = false;
        (*body)(objects_[i].get(), i, &stop);
        checkMutations(mutations);
        if (stop) break;
    }
}

void NSArray::imp_makeObjectsPerformSelector(SEL selector) const {
    const objc::Strong<objc_object> keepAlive = objc::retained(const_cast<NSArray*>(this));
    const std::uint64_t mutations = mutations_;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        msgSend<void>(objects_[i].get(), selector);
        checkMutations(mutations);
    }
}

NSString* NSArray::imp_description() {
    return msgSend<NSString*>(this, sel<"descriptionWithLocale:indent:">(),
                              static_cast<id>(nullptr), NSUInteger{0});
}

NSString* NSArray::imp_descriptionWithLocaleIndent(id locale, NSUInteger level) const {
    const Objects held = objects_;
    std::u16string text = u"(\n";
    for (std::size_t i = 0; i < held.size(); ++i) {
        foundation::detail::appendIndent(text, level + 1);
        foundation::detail::appendElementDescription(text, held[i].get(), locale, level + 1);
        if (i + 1 < held.size()) text.push_back(u',');
        text.push_back(u'\n');
    }
    foundation::detail::appendIndent(text, level);
    text.push_back(u')');
    return foundation::detail::autoreleasedString(std::move(text));
}

// Immutable: the array is its own copy.
id NSArray::imp_copyWithZone(void*) {
    return objc_retain(this);
}

id NSArray::imp_mutableCopyWithZone(void*) const {
    return newArray(NSMutableArray::objcClass(), rawObjects());
}
