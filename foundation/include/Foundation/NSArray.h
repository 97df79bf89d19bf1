// Ordered collections: NSArray (immutable) and NSMutableArray.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/block.h>
#include <objc/geometry.h>
#include <objc/object.h>
#include <objc/string.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <vector>

class NSMutableArray;

class PV_EXPORT NSArray : public NSObject {
    OBJC_CLASS(NSArray)

    // Comparator blocks answer NSOrderedAscending/Same/Descending; blocks typed
    // NSComparisonResult(id, id) are accepted as well.
    using Comparator = objc::Block<NSInteger(id, id)>;
    using Enumerator = objc::Block<void(id, NSUInteger, bool*)>;

    // An owned array holding the objects (each retained). A nil element
    // raises NSInvalidArgumentException.
    static objc::Strong<NSArray> create(std::vector<id> objects);
    static objc::Strong<NSArray> create(std::initializer_list<id> objects);

    // C++ iteration over the elements, without messages. Changing a mutable
    // array while iterating it raises NSGenericException.
    class Iterator {
      public:
        using iterator_category = std::input_iterator_tag;
        using value_type = id;
        using difference_type = std::ptrdiff_t;
        using pointer = const id*;
        using reference = id;

        Iterator() = default;
        id operator*() const;
        Iterator& operator++();
        Iterator operator++(int) {
            Iterator old = *this;
            ++*this;
            return old;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
            return a.index_ == b.index_;
        }

      private:
        friend class NSArray;
        Iterator(const NSArray* array, std::size_t index, std::uint64_t mutations)
            : array_(array), index_(index), mutations_(mutations) {}
        void check() const;

        const NSArray* array_ = nullptr;
        std::size_t index_ = 0;
        std::uint64_t mutations_ = 0;
    };
    Iterator begin() const noexcept { return {this, 0, mutations_}; }
    Iterator end() const noexcept { return {this, objects_.size(), mutations_}; }
    std::size_t size() const noexcept { return objects_.size(); }
    bool empty() const noexcept { return objects_.empty(); }
    // The element at i, without a message; raises NSRangeException past the end.
    id at(std::size_t i) const;

    // Autoreleased arrays of the receiving class.
    static NSArray* array() { return objc::msgSend<NSArray*>(objcClass(), objc::sel<"array">()); }
    static NSArray* arrayWithObject(id object) {
        return objc::msgSend<NSArray*>(objcClass(), objc::sel<"arrayWithObject:">(), object);
    }
    static NSArray* arrayWithObjectsCount(const id* objects, NSUInteger count) {
        return objc::msgSend<NSArray*>(objcClass(), objc::sel<"arrayWithObjects:count:">(), objects,
                                       count);
    }
    static NSArray* arrayWithArray(NSArray* other) {
        return objc::msgSend<NSArray*>(objcClass(), objc::sel<"arrayWithArray:">(), other);
    }
    NSArray* initWithArray(NSArray* other) {
        return objc::msgSend<NSArray*>(this, objc::sel<"initWithArray:">(), other);
    }
    NSArray* initWithObjectsCount(const id* objects, NSUInteger count) {
        return objc::msgSend<NSArray*>(this, objc::sel<"initWithObjects:count:">(), objects, count);
    }

    NSUInteger count() { return objc::msgSend<NSUInteger>(this, objc::sel<"count">()); }
    id objectAtIndex(NSUInteger i) {
        return objc::msgSend<id>(this, objc::sel<"objectAtIndex:">(), i);
    }
    id objectAtIndexedSubscript(NSUInteger i) {
        return objc::msgSend<id>(this, objc::sel<"objectAtIndexedSubscript:">(), i);
    }
    id firstObject() { return objc::msgSend<id>(this, objc::sel<"firstObject">()); }
    id lastObject() { return objc::msgSend<id>(this, objc::sel<"lastObject">()); }
    bool containsObject(id object) {
        return objc::msgSend<bool>(this, objc::sel<"containsObject:">(), object);
    }
    NSUInteger indexOfObject(id object) {
        return objc::msgSend<NSUInteger>(this, objc::sel<"indexOfObject:">(), object);
    }
    bool isEqualToArray(NSArray* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToArray:">(), other);
    }
    NSArray* arrayByAddingObject(id object) {
        return objc::msgSend<NSArray*>(this, objc::sel<"arrayByAddingObject:">(), object);
    }
    NSArray* arrayByAddingObjectsFromArray(NSArray* other) {
        return objc::msgSend<NSArray*>(this, objc::sel<"arrayByAddingObjectsFromArray:">(), other);
    }
    NSArray* subarrayWithRange(NSRange range) {
        return objc::msgSend<NSArray*>(this, objc::sel<"subarrayWithRange:">(), range);
    }
    NSString* componentsJoinedByString(NSString* separator) {
        return objc::msgSend<NSString*>(this, objc::sel<"componentsJoinedByString:">(), separator);
    }
    // Sorted by sending the selector (e.g. compare:) to elements; stable.
    NSArray* sortedArrayUsingSelector(SEL comparator) {
        return objc::msgSend<NSArray*>(this, objc::sel<"sortedArrayUsingSelector:">(), comparator);
    }
    NSArray* sortedArrayUsingComparator(objc::BlockBase* comparator) {
        return objc::msgSend<NSArray*>(this, objc::sel<"sortedArrayUsingComparator:">(),
                                       comparator);
    }
    void enumerateObjectsUsingBlock(Enumerator* block) {
        objc::msgSend<void>(this, objc::sel<"enumerateObjectsUsingBlock:">(), block);
    }
    void makeObjectsPerformSelector(SEL selector) {
        objc::msgSend<void>(this, objc::sel<"makeObjectsPerformSelector:">(), selector);
    }
    // The old-style property-list text, nested levels indented by four spaces.
    NSString* descriptionWithLocaleIndent(id locale, NSUInteger level) {
        return objc::msgSend<NSString*>(this, objc::sel<"descriptionWithLocale:indent:">(), locale,
                                        level);
    }

    NSArray() = default;

  protected:
    // For subclasses and this file's own helpers: the elements, each retained.
    std::vector<objc::Strong<objc_object>> objects_;
    // Bumped by every change, so that enumerations notice.
    std::uint64_t mutations_ = 0;

    // [[cls alloc] init] holding the objects; owned by the caller.
    static NSArray* newArray(Class cls, const std::vector<id>& objects);
    void assignObjects(const std::vector<id>& objects);
    std::vector<id> rawObjects() const;
    static const std::vector<objc::Strong<objc_object>>& elementsOf(const NSArray* a) noexcept {
        return a->objects_;
    }
    // The elements sorted by the comparison, held while it runs.
    std::vector<objc::Strong<objc_object>> sortedObjects(
        const std::function<NSInteger(id, id)>& compare) const;
    // Raises NSGenericException when the array changed since `mutations`.
    void checkMutations(std::uint64_t mutations) const;
    [[noreturn]] void raiseIndex(const char* method, NSUInteger index) const;

  private:
    static NSArray* imp_array(Class cls);
    static NSArray* imp_arrayWithObject(Class cls, id object);
    static NSArray* imp_arrayWithObjectsCount(Class cls, const id* objects, NSUInteger count);
    static NSArray* imp_arrayWithArray(Class cls, NSArray* other);
    NSArray* imp_initWithArray(NSArray* other);
    NSArray* imp_initWithObjectsCount(const id* objects, NSUInteger count);
    NSUInteger imp_count() const { return objects_.size(); }
    id imp_objectAtIndex(NSUInteger i) const;
    id imp_firstObject() const;
    id imp_lastObject() const;
    bool imp_containsObject(id object) const;
    NSUInteger imp_indexOfObject(id object) const;
    bool imp_isEqual(id other);
    bool imp_isEqualToArray(NSArray* other);
    NSUInteger imp_hash() const { return objects_.size(); }
    NSArray* imp_arrayByAddingObject(id object) const;
    NSArray* imp_arrayByAddingObjectsFromArray(NSArray* other) const;
    NSArray* imp_subarrayWithRange(NSRange range) const;
    NSString* imp_componentsJoinedByString(NSString* separator) const;
    NSArray* imp_sortedArrayUsingSelector(SEL comparator) const;
    NSArray* imp_sortedArrayUsingComparator(objc::BlockBase* comparator) const;
    void imp_enumerateObjectsUsingBlock(Enumerator* block) const;
    void imp_makeObjectsPerformSelector(SEL selector) const;
    NSString* imp_description();
    NSString* imp_descriptionWithLocaleIndent(id locale, NSUInteger level) const;
    id imp_copyWithZone(void* zone);
    id imp_mutableCopyWithZone(void* zone) const;
};

class PV_EXPORT NSMutableArray : public NSArray {
    OBJC_CLASS(NSMutableArray)

    static objc::Strong<NSMutableArray> create();
    static objc::Strong<NSMutableArray> create(std::vector<id> objects);
    static objc::Strong<NSMutableArray> create(std::initializer_list<id> objects);

    static NSMutableArray* array() {
        return objc::msgSend<NSMutableArray*>(objcClass(), objc::sel<"array">());
    }
    static NSMutableArray* arrayWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableArray*>(objcClass(), objc::sel<"arrayWithCapacity:">(),
                                              capacity);
    }
    NSMutableArray* initWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableArray*>(this, objc::sel<"initWithCapacity:">(), capacity);
    }

    void addObject(id object) { objc::msgSend<void>(this, objc::sel<"addObject:">(), object); }
    void insertObjectAtIndex(id object, NSUInteger index) {
        objc::msgSend<void>(this, objc::sel<"insertObject:atIndex:">(), object, index);
    }
    void removeObjectAtIndex(NSUInteger index) {
        objc::msgSend<void>(this, objc::sel<"removeObjectAtIndex:">(), index);
    }
    // Removes every element equal (isEqual:) to the object.
    void removeObject(id object) {
        objc::msgSend<void>(this, objc::sel<"removeObject:">(), object);
    }
    void removeLastObject() { objc::msgSend<void>(this, objc::sel<"removeLastObject">()); }
    void removeAllObjects() { objc::msgSend<void>(this, objc::sel<"removeAllObjects">()); }
    void replaceObjectAtIndexWithObject(NSUInteger index, id object) {
        objc::msgSend<void>(this, objc::sel<"replaceObjectAtIndex:withObject:">(), index, object);
    }
    // index == count appends.
    void setObjectAtIndexedSubscript(id object, NSUInteger index) {
        objc::msgSend<void>(this, objc::sel<"setObject:atIndexedSubscript:">(), object, index);
    }
    void addObjectsFromArray(NSArray* other) {
        objc::msgSend<void>(this, objc::sel<"addObjectsFromArray:">(), other);
    }
    void exchangeObjectAtIndexWithObjectAtIndex(NSUInteger a, NSUInteger b) {
        objc::msgSend<void>(this, objc::sel<"exchangeObjectAtIndex:withObjectAtIndex:">(), a, b);
    }
    void sortUsingSelector(SEL comparator) {
        objc::msgSend<void>(this, objc::sel<"sortUsingSelector:">(), comparator);
    }
    void sortUsingComparator(objc::BlockBase* comparator) {
        objc::msgSend<void>(this, objc::sel<"sortUsingComparator:">(), comparator);
    }

    NSMutableArray() = default;

  private:
    static NSMutableArray* imp_arrayWithCapacity(Class cls, NSUInteger capacity);
    NSMutableArray* imp_initWithCapacity(NSUInteger capacity);
    void imp_addObject(id object);
    void imp_insertObjectAtIndex(id object, NSUInteger index);
    void imp_removeObjectAtIndex(NSUInteger index);
    void imp_removeObject(id object);
    void imp_removeLastObject();
    void imp_removeAllObjects();
    void imp_replaceObjectAtIndexWithObject(NSUInteger index, id object);
    void imp_setObjectAtIndexedSubscript(id object, NSUInteger index);
    void imp_addObjectsFromArray(NSArray* other);
    void imp_exchangeObjectAtIndexWithObjectAtIndex(NSUInteger a, NSUInteger b);
    void imp_sortUsingSelector(SEL comparator);
    void imp_sortUsingComparator(objc::BlockBase* comparator);
    id imp_copyWithZone(void* zone) const;
};
