#include <Foundation/NSArray.h>

#include <objc/image.h>

#include <algorithm>
#include <string>

#include "collection_sorting.h"

namespace {

using objc::msgSend;
using objc::sel;
using Objects = std::vector<objc::Strong<objc_object>>;

[[noreturn]] void raiseNil(const char* method) {
    objc::raise(objc::exception_name::InvalidArgument,
                std::string("*** -[NSMutableArray ") + method + "]: object cannot be nil");
}

}  // namespace

OBJC_DEFINE_CLASS(NSMutableArray, NSArray, "NSMutableArray")
OBJC_REGISTER_CLASS(NSMutableArray)

void NSMutableArray::objcDefine(objc::ClassBuilder<NSMutableArray>& b) {
    b.classMethod<&NSMutableArray::imp_arrayWithCapacity>("arrayWithCapacity:")
        .method<&NSMutableArray::imp_initWithCapacity>("initWithCapacity:")
        .method<&NSMutableArray::imp_addObject>("addObject:")
        .method<&NSMutableArray::imp_insertObjectAtIndex>("insertObject:atIndex:")
        .method<&NSMutableArray::imp_removeObjectAtIndex>("removeObjectAtIndex:")
        .method<&NSMutableArray::imp_removeObject>("removeObject:")
        .method<&NSMutableArray::imp_removeLastObject>("removeLastObject")
        .method<&NSMutableArray::imp_removeAllObjects>("removeAllObjects")
        .method<&NSMutableArray::imp_replaceObjectAtIndexWithObject>(
            "replaceObjectAtIndex:withObject:")
        .method<&NSMutableArray::imp_setObjectAtIndexedSubscript>("setObject:atIndexedSubscript:")
        .method<&NSMutableArray::imp_addObjectsFromArray>("addObjectsFromArray:")
        .method<&NSMutableArray::imp_exchangeObjectAtIndexWithObjectAtIndex>(
            "exchangeObjectAtIndex:withObjectAtIndex:")
        .method<&NSMutableArray::imp_sortUsingSelector>("sortUsingSelector:")
        .method<&NSMutableArray::imp_sortUsingComparator>("sortUsingComparator:")
        .method<&NSMutableArray::imp_copyWithZone>("copyWithZone:");
}

objc::Strong<NSMutableArray> NSMutableArray::create() {
    return create(std::vector<id>{});
}

objc::Strong<NSMutableArray> NSMutableArray::create(std::vector<id> objects) {
    return objc::adopt(static_cast<NSMutableArray*>(newArray(objcClass(), objects)));
}

objc::Strong<NSMutableArray> NSMutableArray::create(std::initializer_list<id> objects) {
    return create(std::vector<id>(objects));
}

NSMutableArray* NSMutableArray::imp_arrayWithCapacity(Class cls, NSUInteger capacity) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithCapacity:">(), capacity);
    return static_cast<NSMutableArray*>(objc_autorelease(obj));
}

NSMutableArray* NSMutableArray::imp_initWithCapacity(NSUInteger capacity) {
    // A hint only: an absurd capacity must not fail the allocation.
    objects_.reserve(std::min<NSUInteger>(capacity, 1u << 16));
    return this;
}

void NSMutableArray::imp_addObject(id object) {
    if (object == nullptr) raiseNil("addObject:");
    objects_.push_back(objc::retained(object));
    ++mutations_;
}

void NSMutableArray::imp_insertObjectAtIndex(id object, NSUInteger index) {
    if (object == nullptr) raiseNil("insertObject:atIndex:");
    if (index > objects_.size()) raiseIndex("insertObject:atIndex:", index);
    objects_.insert(objects_.begin() + static_cast<std::ptrdiff_t>(index), objc::retained(object));
    ++mutations_;
}

void NSMutableArray::imp_removeObjectAtIndex(NSUInteger index) {
    if (index >= objects_.size()) raiseIndex("removeObjectAtIndex:", index);
    // Released only after the array is consistent again: its dealloc may look at us.
    const objc::Strong<objc_object> removed = std::move(objects_[static_cast<std::size_t>(index)]);
    objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(index));
    ++mutations_;
}

void NSMutableArray::imp_removeObject(id object) {
    if (object == nullptr) return;
    // Decide first (isEqual: may run arbitrary code), then change the array.
    const std::uint64_t mutations = mutations_;
    std::vector<bool> remove(objects_.size());
    bool any = false;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        id element = objects_[i].get();
        remove[i] = element == object || msgSend<bool>(element, sel<"isEqual:">(), object);
        any = any || remove[i];
    }
    checkMutations(mutations);
    if (!any) return;
    Objects kept;
    Objects removed;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        (remove[i] ? removed : kept).push_back(std::move(objects_[i]));
    }
    objects_.swap(kept);
    ++mutations_;
}

// Removing from an empty array does nothing.
void NSMutableArray::imp_removeLastObject() {
    if (objects_.empty()) return;
    const objc::Strong<objc_object> removed = std::move(objects_.back());
    objects_.pop_back();
    ++mutations_;
}

void NSMutableArray::imp_removeAllObjects() {
    Objects removed;
    removed.swap(objects_);
    ++mutations_;
}

void NSMutableArray::imp_replaceObjectAtIndexWithObject(NSUInteger index, id object) {
    if (object == nullptr) raiseNil("replaceObjectAtIndex:withObject:");
    if (index >= objects_.size()) raiseIndex("replaceObjectAtIndex:withObject:", index);
    objc::Strong<objc_object> old = objc::retained(object);
    objects_[static_cast<std::size_t>(index)].swap(old);
    ++mutations_;
}

void NSMutableArray::imp_setObjectAtIndexedSubscript(id object, NSUInteger index) {
    if (object == nullptr) raiseNil("setObject:atIndexedSubscript:");
    if (index == objects_.size()) {
        imp_addObject(object);
        return;
    }
    if (index > objects_.size()) raiseIndex("setObject:atIndexedSubscript:", index);
    imp_replaceObjectAtIndexWithObject(index, object);
}

void NSMutableArray::imp_addObjectsFromArray(NSArray* other) {
    if (other == nullptr) return;
    // A copy first: the other array may be this one.
    const Objects added = elementsOf(other);
    objects_.insert(objects_.end(), added.begin(), added.end());
    ++mutations_;
}

void NSMutableArray::imp_exchangeObjectAtIndexWithObjectAtIndex(NSUInteger a, NSUInteger b) {
    if (a >= objects_.size()) raiseIndex("exchangeObjectAtIndex:withObjectAtIndex:", a);
    if (b >= objects_.size()) raiseIndex("exchangeObjectAtIndex:withObjectAtIndex:", b);
    objects_[a].swap(objects_[b]);
    ++mutations_;
}

void NSMutableArray::imp_sortUsingSelector(SEL comparator) {
    const std::uint64_t mutations = mutations_;
    Objects sorted = sortedObjects(foundation::detail::selectorComparison(comparator));
    checkMutations(mutations);
    objects_.swap(sorted);
    ++mutations_;
}

void NSMutableArray::imp_sortUsingComparator(objc::BlockBase* comparator) {
    const std::uint64_t mutations = mutations_;
    Objects sorted = sortedObjects(foundation::detail::blockComparison(comparator));
    checkMutations(mutations);
    objects_.swap(sorted);
    ++mutations_;
}

// The copy of a mutable array is an immutable one.
id NSMutableArray::imp_copyWithZone(void*) const {
    return newArray(NSArray::objcClass(), rawObjects());
}
