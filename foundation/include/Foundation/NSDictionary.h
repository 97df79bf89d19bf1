// Keyed collections: NSDictionary (immutable) and NSMutableDictionary.
//
// Keys are compared with isEqual: and hash (sent as messages) and copied on
// insertion; values are retained. Enumeration follows insertion order.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/block.h>
#include <objc/object.h>
#include <objc/string.h>

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

class NSArray;

class PV_EXPORT NSDictionary : public NSObject {
    OBJC_CLASS(NSDictionary)

    using Enumerator = objc::Block<void(id, id, bool*)>;

    // An owned dictionary; a later pair replaces an earlier one with an equal
    // key. A nil key or value raises NSInvalidArgumentException.
    static objc::Strong<NSDictionary> create(std::initializer_list<std::pair<id, id>> pairs);
    static objc::Strong<NSDictionary> create(const std::vector<std::pair<id, id>>& pairs);

    std::size_t size() const noexcept { return count_; }
    bool empty() const noexcept { return count_ == 0; }
    // Calls fn(key, value) for every entry in insertion order. Changing the
    // dictionary meanwhile raises NSGenericException.
    template <class F>
    void forEach(F&& fn) const {
        const std::uint64_t mutations = mutations_;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const Entry& e = entries_[i];
            if (!e.key) continue;
            fn(static_cast<id>(e.key.get()), static_cast<id>(e.value.get()));
            checkMutations(mutations);
        }
    }

    static NSDictionary* dictionary() {
        return objc::msgSend<NSDictionary*>(objcClass(), objc::sel<"dictionary">());
    }
    static NSDictionary* dictionaryWithObjectForKey(id object, id key) {
        return objc::msgSend<NSDictionary*>(
            objcClass(), objc::sel<"dictionaryWithObject:forKey:">(), object, key);
    }
    // Raises NSInvalidArgumentException when the counts differ.
    static NSDictionary* dictionaryWithObjectsForKeys(NSArray* objects, NSArray* keys) {
        return objc::msgSend<NSDictionary*>(
            objcClass(), objc::sel<"dictionaryWithObjects:forKeys:">(), objects, keys);
    }
    static NSDictionary* dictionaryWithDictionary(NSDictionary* other) {
        return objc::msgSend<NSDictionary*>(objcClass(), objc::sel<"dictionaryWithDictionary:">(),
                                            other);
    }
    NSDictionary* initWithDictionary(NSDictionary* other) {
        return objc::msgSend<NSDictionary*>(this, objc::sel<"initWithDictionary:">(), other);
    }

    NSUInteger count() { return objc::msgSend<NSUInteger>(this, objc::sel<"count">()); }
    // nil for a nil or absent key.
    id objectForKey(id key) { return objc::msgSend<id>(this, objc::sel<"objectForKey:">(), key); }
    id objectForKeyedSubscript(id key) {
        return objc::msgSend<id>(this, objc::sel<"objectForKeyedSubscript:">(), key);
    }
    // Autoreleased arrays in enumeration order.
    NSArray* allKeys() { return objc::msgSend<NSArray*>(this, objc::sel<"allKeys">()); }
    NSArray* allValues() { return objc::msgSend<NSArray*>(this, objc::sel<"allValues">()); }
    NSArray* keysSortedByValueUsingSelector(SEL comparator) {
        return objc::msgSend<NSArray*>(this, objc::sel<"keysSortedByValueUsingSelector:">(),
                                       comparator);
    }
    void enumerateKeysAndObjectsUsingBlock(Enumerator* block) {
        objc::msgSend<void>(this, objc::sel<"enumerateKeysAndObjectsUsingBlock:">(), block);
    }
    bool isEqualToDictionary(NSDictionary* other) {
        return objc::msgSend<bool>(this, objc::sel<"isEqualToDictionary:">(), other);
    }
    // The old-style property-list text; keys that all answer compare: are sorted.
    NSString* descriptionWithLocaleIndent(id locale, NSUInteger level) {
        return objc::msgSend<NSString*>(this, objc::sel<"descriptionWithLocale:indent:">(), locale,
                                        level);
    }

    NSDictionary() = default;

  protected:
    struct Entry {
        objc::Strong<objc_object> key;  // null: removed
        objc::Strong<objc_object> value;
        NSUInteger hash = 0;
    };

    // The lookup. Answers the entry's position or npos; sends hash and
    // (for keys that are not identical) isEqual:.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t find(id key, NSUInteger hash) const;
    // Stores a copy of the key (or replaces the value of an equal key).
    void put(id key, id value);
    // Answers the removed entry so that the caller releases it last.
    Entry take(id key);
    // Takes everything out; the caller releases the result after the dictionary is consistent.
    std::vector<Entry> takeAll();
    void reserve(std::size_t count);
    void checkMutations(std::uint64_t mutations) const;
    // [[cls alloc] init] holding the pairs; owned by the caller.
    static NSDictionary* newDictionary(Class cls, const std::vector<std::pair<id, id>>& pairs);
    std::vector<std::pair<id, id>> rawPairs() const;
    static std::vector<std::pair<id, id>> pairsOf(const NSDictionary* d) { return d->rawPairs(); }
    void assignPairs(const std::vector<std::pair<id, id>>& pairs);
    void assignDictionary(NSDictionary* other);

    // Entries in insertion order; removed ones stay as holes until compacted.
    std::vector<Entry> entries_;
    // Open addressing over entries_: 0 empty, kDeleted a removed entry,
    // otherwise the entry's position + 1. The capacity is a power of two.
    std::vector<std::uint32_t> slots_;
    std::size_t count_ = 0;
    std::size_t deletedSlots_ = 0;
    unsigned shift_ = 64;  // 64 - log2(capacity)
    std::uint64_t mutations_ = 0;
    static constexpr std::uint32_t kDeleted = 0xFFFFFFFFu;

  private:
    // Compacts the entries and re-indexes them in a table of that capacity.
    void rebuild(std::size_t capacity);
    std::size_t findSlot(id key, NSUInteger hash) const;
    std::size_t slotOf(NSUInteger hash) const noexcept;

    static NSDictionary* imp_dictionary(Class cls);
    static NSDictionary* imp_dictionaryWithObjectForKey(Class cls, id object, id key);
    static NSDictionary* imp_dictionaryWithObjectsForKeys(Class cls, NSArray* objects,
                                                          NSArray* keys);
    static NSDictionary* imp_dictionaryWithDictionary(Class cls, NSDictionary* other);
    NSDictionary* imp_initWithDictionary(NSDictionary* other);
    NSDictionary* imp_initWithObjectsForKeys(NSArray* objects, NSArray* keys);
    id imp_objectForKey(id key) const;
    NSArray* imp_allKeys() const;
    NSArray* imp_allValues() const;
    NSArray* imp_keysSortedByValueUsingSelector(SEL comparator) const;
    void imp_enumerateKeysAndObjectsUsingBlock(Enumerator* block) const;
    bool imp_isEqual(id other);
    bool imp_isEqualToDictionary(NSDictionary* other);
    NSUInteger imp_hash() const { return count_; }
    NSString* imp_description();
    NSString* imp_descriptionWithLocaleIndent(id locale, NSUInteger level) const;
    id imp_copyWithZone(void* zone);
    id imp_mutableCopyWithZone(void* zone) const;
};

class PV_EXPORT NSMutableDictionary : public NSDictionary {
    OBJC_CLASS(NSMutableDictionary)

    static objc::Strong<NSMutableDictionary> create();
    static objc::Strong<NSMutableDictionary> create(std::initializer_list<std::pair<id, id>> pairs);
    static objc::Strong<NSMutableDictionary> create(const std::vector<std::pair<id, id>>& pairs);

    static NSMutableDictionary* dictionary() {
        return objc::msgSend<NSMutableDictionary*>(objcClass(), objc::sel<"dictionary">());
    }
    static NSMutableDictionary* dictionaryWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableDictionary*>(
            objcClass(), objc::sel<"dictionaryWithCapacity:">(), capacity);
    }
    NSMutableDictionary* initWithCapacity(NSUInteger capacity) {
        return objc::msgSend<NSMutableDictionary*>(this, objc::sel<"initWithCapacity:">(),
                                                   capacity);
    }

    // A nil object or key raises NSInvalidArgumentException.
    void setObjectForKey(id object, id key) {
        objc::msgSend<void>(this, objc::sel<"setObject:forKey:">(), object, key);
    }
    // A nil object removes the key.
    void setObjectForKeyedSubscript(id object, id key) {
        objc::msgSend<void>(this, objc::sel<"setObject:forKeyedSubscript:">(), object, key);
    }
    void removeObjectForKey(id key) {
        objc::msgSend<void>(this, objc::sel<"removeObjectForKey:">(), key);
    }
    void removeAllObjects() { objc::msgSend<void>(this, objc::sel<"removeAllObjects">()); }
    void addEntriesFromDictionary(NSDictionary* other) {
        objc::msgSend<void>(this, objc::sel<"addEntriesFromDictionary:">(), other);
    }

    NSMutableDictionary() = default;

  private:
    static NSMutableDictionary* imp_dictionaryWithCapacity(Class cls, NSUInteger capacity);
    NSMutableDictionary* imp_initWithCapacity(NSUInteger capacity);
    void imp_setObjectForKey(id object, id key);
    void imp_setObjectForKeyedSubscript(id object, id key);
    void imp_removeObjectForKey(id key);
    void imp_removeAllObjects();
    void imp_addEntriesFromDictionary(NSDictionary* other);
    id imp_copyWithZone(void* zone) const;
};
