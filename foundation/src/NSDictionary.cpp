#include <Foundation/NSDictionary.h>

#include <Foundation/NSArray.h>

#include <objc/image.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <string>

#include "collection_sorting.h"
#include "property_list_text.h"

namespace {

using objc::msgSend;
using objc::sel;

[[gnu::always_inline]] inline NSUInteger hashOf(id key) {
    return msgSend<NSUInteger>(key, sel<"hash">());
}

// The smallest table that keeps `count` entries at most half full.
std::size_t capacityFor(std::size_t count) {
    return std::bit_ceil(std::max<std::size_t>(8, count * 2));
}

}  // namespace

OBJC_DEFINE_CLASS(NSDictionary, NSObject, "NSDictionary")
OBJC_REGISTER_CLASS(NSDictionary)

void NSDictionary::objcDefine(objc::ClassBuilder<NSDictionary>& b) {
    b.classMethod<&NSDictionary::imp_dictionary>("dictionary")
        .classMethod<&NSDictionary::imp_dictionaryWithObjectForKey>("dictionaryWithObject:forKey:")
        .classMethod<&NSDictionary::imp_dictionaryWithObjectsForKeys>(
            "dictionaryWithObjects:forKeys:")
        .classMethod<&NSDictionary::imp_dictionaryWithDictionary>("dictionaryWithDictionary:")
        .method<&NSDictionary::imp_initWithDictionary>("initWithDictionary:")
        .method<&NSDictionary::imp_initWithObjectsForKeys>("initWithObjects:forKeys:")
        .property<&NSDictionary::count_>("count", objc::Readonly | objc::Nonatomic)
        .method<&NSDictionary::imp_objectForKey>("objectForKey:")
        .method<&NSDictionary::imp_objectForKey>("objectForKeyedSubscript:")
        .method<&NSDictionary::imp_allKeys>("allKeys")
        .method<&NSDictionary::imp_allValues>("allValues")
        .method<&NSDictionary::imp_keysSortedByValueUsingSelector>(
            "keysSortedByValueUsingSelector:")
        .method<&NSDictionary::imp_enumerateKeysAndObjectsUsingBlock>(
            "enumerateKeysAndObjectsUsingBlock:")
        .method<&NSDictionary::imp_isEqual>("isEqual:")
        .method<&NSDictionary::imp_isEqualToDictionary>("isEqualToDictionary:")
        .method<&NSDictionary::imp_hash>("hash")
        .method<&NSDictionary::imp_description>("description")
        .method<&NSDictionary::imp_descriptionWithLocaleIndent>("descriptionWithLocale:indent:")
        .method<&NSDictionary::imp_copyWithZone>("copyWithZone:")
        .method<&NSDictionary::imp_mutableCopyWithZone>("mutableCopyWithZone:");
}

// ---- C++ interface ----

objc::Strong<NSDictionary> NSDictionary::create(std::initializer_list<std::pair<id, id>> pairs) {
    return create(std::vector<std::pair<id, id>>(pairs));
}

objc::Strong<NSDictionary> NSDictionary::create(const std::vector<std::pair<id, id>>& pairs) {
    return objc::adopt(newDictionary(objcClass(), pairs));
}

NSDictionary* NSDictionary::newDictionary(Class cls, const std::vector<std::pair<id, id>>& pairs) {
    id obj = msgSend<id>(msgSend<id>(cls, sel<"alloc">()), sel<"init">());
    auto* dictionary = objc::cast<NSDictionary>(obj);
    if (dictionary == nullptr) {
        objc_release(obj);
        objc::raise(objc::exception_name::InvalidArgument,
                    std::string("not a dictionary class: ") + class_getName(cls));
    }
    try {
        dictionary->assignPairs(pairs);
    } catch (...) {
        objc_release(dictionary);
        throw;
    }
    return dictionary;
}

// ---- the table ----

// Inline, as the lookups of this file are the hot path of every dictionary.
[[gnu::always_inline]] inline std::size_t NSDictionary::slotOf(NSUInteger hash) const noexcept {
    // Fibonacci hashing spreads pointer hashes, whose low bits are always zero.
    return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15ull) >> shift_);
}

[[gnu::always_inline]] inline std::size_t NSDictionary::findSlot(id key, NSUInteger hash) const {
    if (slots_.empty()) return npos;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = slotOf(hash);; i = (i + 1) & mask) {
        const std::uint32_t slot = slots_[i];
        if (slot == 0) return npos;
        if (slot == kDeleted) continue;
        const Entry& e = entries_[slot - 1];
        if (e.hash != hash) continue;
        id stored = e.key.get();
        if (stored == key) return i;
        const std::uint64_t mutations = mutations_;
        const bool equal = msgSend<bool>(key, sel<"isEqual:">(), stored);
        // isEqual: is user code; it must not have changed the table under the probe.
        if (mutations != mutations_) [[unlikely]]
            checkMutations(mutations);
        if (equal) return i;
    }
}

[[gnu::always_inline]] inline std::size_t NSDictionary::find(id key, NSUInteger hash) const {
    const std::size_t slot = findSlot(key, hash);
    return slot == npos ? npos : slots_[slot] - 1;
}

void NSDictionary::rebuild(std::size_t capacity) {
    // Closes the holes left by removals, keeping insertion order.
    std::size_t live = 0;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!entries_[i].key) continue;
        if (live != i) entries_[live] = std::move(entries_[i]);
        ++live;
    }
    entries_.resize(live);
    slots_.assign(capacity, 0);
    shift_ = 64u - static_cast<unsigned>(std::countr_zero(capacity));
    deletedSlots_ = 0;
    const std::size_t mask = capacity - 1;
    for (std::size_t e = 0; e < entries_.size(); ++e) {
        std::size_t i = slotOf(entries_[e].hash);
        while (slots_[i] != 0) i = (i + 1) & mask;
        slots_[i] = static_cast<std::uint32_t>(e + 1);
    }
}

void NSDictionary::reserve(std::size_t count) {
    const std::size_t capacity = capacityFor(count);
    if (capacity > slots_.size()) rebuild(capacity);
}

void NSDictionary::put(id key, id value) {
    const NSUInteger hash = hashOf(key);
    if (const std::size_t pos = find(key, hash); pos != npos) {
        // An equal key stays as it is; only the value changes.
        objc::Strong<objc_object> old = objc::retained(value);
        entries_[pos].value.swap(old);
        ++mutations_;
        return;
    }
    // Copied, so that changing the caller's key later cannot move the entry.
    objc::Strong<objc_object> copy = objc::adopt(msgSend<id>(key, sel<"copy">()));
    if (!copy) {
        objc::raise(
            objc::exception_name::InvalidArgument,
            std::string("*** the copy of a key of class ") + object_getClassName(key) + " is nil");
    }
    const NSUInteger copyHash = copy.get() == key ? hash : hashOf(copy.get());
    if ((count_ + deletedSlots_ + 1) * 4 > slots_.size() * 3) {
        rebuild(capacityFor(count_ + 1));
    }
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = slotOf(copyHash);
    while (slots_[i] != 0 && slots_[i] != kDeleted) i = (i + 1) & mask;
    if (slots_[i] == kDeleted) --deletedSlots_;
    entries_.push_back(Entry{std::move(copy), objc::retained(value), copyHash});
    slots_[i] = static_cast<std::uint32_t>(entries_.size());
    ++count_;
    ++mutations_;
}

NSDictionary::Entry NSDictionary::take(id key) {
    if (key == nullptr || count_ == 0) return {};
    const std::size_t slot = findSlot(key, hashOf(key));
    if (slot == npos) return {};
    Entry removed = std::move(entries_[slots_[slot] - 1]);
    slots_[slot] = kDeleted;
    ++deletedSlots_;
    --count_;
    ++mutations_;
    if (count_ == 0) {
        entries_.clear();
        std::fill(slots_.begin(), slots_.end(), 0u);
        deletedSlots_ = 0;
    } else if (entries_.size() > 2 * count_ + 8) {
        rebuild(slots_.size());
    }
    return removed;
}

std::vector<NSDictionary::Entry> NSDictionary::takeAll() {
    std::vector<Entry> removed;
    removed.swap(entries_);
    slots_.clear();
    shift_ = 64;
    count_ = 0;
    deletedSlots_ = 0;
    ++mutations_;
    return removed;
}

void NSDictionary::assignPairs(const std::vector<std::pair<id, id>>& pairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (pairs[i].first == nullptr || pairs[i].second == nullptr) {
            objc::raise(objc::exception_name::InvalidArgument,
                        std::string("*** -[NSDictionary initWithObjects:forKeys:count:]: "
                                    "attempt to insert nil ") +
                            (pairs[i].second == nullptr ? "object" : "key") + " from objects[" +
                            std::to_string(i) + "]");
        }
    }
    const std::vector<Entry> old = takeAll();
    reserve(pairs.size());
    for (const auto& [key, value] : pairs) put(key, value);
}

void NSDictionary::assignDictionary(NSDictionary* other) {
    std::vector<std::pair<id, id>> pairs;
    if (other != nullptr) {
        pairs.reserve(other->count_);
        other->forEach([&](id key, id value) { pairs.emplace_back(key, value); });
    }
    // The other dictionary may be this one; its entries are held until the end.
    const std::vector<Entry> held = other != nullptr ? other->entries_ : std::vector<Entry>{};
    assignPairs(pairs);
}

void NSDictionary::checkMutations(std::uint64_t mutations) const {
    if (mutations != mutations_) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%p", static_cast<const void*>(this));
        objc::raise(objc::exception_name::Generic,
                    std::string("*** Collection <") +
                        object_getClassName(const_cast<NSDictionary*>(this)) + ": " + buffer +
                        "> was mutated while being enumerated.");
    }
}

std::vector<std::pair<id, id>> NSDictionary::rawPairs() const {
    std::vector<std::pair<id, id>> pairs;
    pairs.reserve(count_);
    for (const Entry& e : entries_) {
        if (e.key) pairs.emplace_back(e.key.get(), e.value.get());
    }
    return pairs;
}

// ---- messages ----

NSDictionary* NSDictionary::imp_dictionary(Class cls) {
    return objc::autorelease(newDictionary(cls, {}));
}

NSDictionary* NSDictionary::imp_dictionaryWithObjectForKey(Class cls, id object, id key) {
    return objc::autorelease(newDictionary(cls, {{key, object}}));
}

NSDictionary* NSDictionary::imp_dictionaryWithObjectsForKeys(Class cls, NSArray* objects,
                                                             NSArray* keys) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithObjects:forKeys:">(), objects, keys);
    return static_cast<NSDictionary*>(objc_autorelease(obj));
}

NSDictionary* NSDictionary::imp_dictionaryWithDictionary(Class cls, NSDictionary* other) {
    id obj = msgSend<id>(cls, sel<"alloc">());
    obj = msgSend<id>(obj, sel<"initWithDictionary:">(), other);
    return static_cast<NSDictionary*>(objc_autorelease(obj));
}

NSDictionary* NSDictionary::imp_initWithDictionary(NSDictionary* other) {
    try {
        assignDictionary(other);
    } catch (...) {
        objc_release(this);  // a failed init frees the object
        throw;
    }
    return this;
}

NSDictionary* NSDictionary::imp_initWithObjectsForKeys(NSArray* objects, NSArray* keys) {
    try {
        const std::size_t objectCount = objects != nullptr ? objects->size() : 0;
        const std::size_t keyCount = keys != nullptr ? keys->size() : 0;
        if (objectCount != keyCount) {
            objc::raise(objc::exception_name::InvalidArgument,
                        "*** -[NSDictionary initWithObjects:forKeys:]: count of objects (" +
                            std::to_string(objectCount) + ") differs from count of keys (" +
                            std::to_string(keyCount) + ")");
        }
        std::vector<std::pair<id, id>> pairs;
        pairs.reserve(keyCount);
        for (std::size_t i = 0; i < keyCount; ++i) pairs.emplace_back(keys->at(i), objects->at(i));
        assignPairs(pairs);
    } catch (...) {
        objc_release(this);
        throw;
    }
    return this;
}

id NSDictionary::imp_objectForKey(id key) const {
    if (key == nullptr || count_ == 0) return nullptr;
    const std::size_t pos = find(key, hashOf(key));
    return pos == npos ? nullptr : entries_[pos].value.get();
}

NSArray* NSDictionary::imp_allKeys() const {
    std::vector<id> keys;
    keys.reserve(count_);
    for (const Entry& e : entries_) {
        if (e.key) keys.push_back(e.key.get());
    }
    return objc::autorelease(NSArray::create(std::move(keys)).leak());
}

NSArray* NSDictionary::imp_allValues() const {
    std::vector<id> values;
    values.reserve(count_);
    for (const Entry& e : entries_) {
        if (e.key) values.push_back(e.value.get());
    }
    return objc::autorelease(NSArray::create(std::move(values)).leak());
}

NSArray* NSDictionary::imp_keysSortedByValueUsingSelector(SEL comparator) const {
    const auto compare = foundation::detail::selectorComparison(comparator);
    std::vector<Entry> entries;
    entries.reserve(count_);
    for (const Entry& e : entries_) {
        if (e.key) entries.push_back(e);
    }
    foundation::detail::stableSort(entries, [&](const Entry& a, const Entry& b) {
        return compare(a.value.get(), b.value.get()) < 0;
    });
    std::vector<id> keys;
    keys.reserve(entries.size());
    for (const Entry& e : entries) keys.push_back(e.key.get());
    return objc::autorelease(NSArray::create(std::move(keys)).leak());
}

void NSDictionary::imp_enumerateKeysAndObjectsUsingBlock(Enumerator* block) const {
    auto* body = objc::blockCast<void(id, id, bool*)>(block);
    if (body == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument,
                    "*** -[NSDictionary enumerateKeysAndObjectsUsingBlock:]: block cannot be nil");
    }
    const objc::Strong<objc_object> keepAlive = objc::retained(const_cast<NSDictionary*>(this));
    const std::uint64_t mutations = mutations_;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const Entry& e = entries_[i];
        if (!e.key) continue;
        bool stop = false;
        (*body)(e.key.get(), e.value.get(), &stop);
        checkMutations(mutations);
        if (stop) break;
    }
}

bool NSDictionary::imp_isEqual(id other) {
    if (other == this) return true;
    auto* dictionary = objc::cast<NSDictionary>(other);
    return dictionary != nullptr && msgSend<bool>(this, sel<"isEqualToDictionary:">(), dictionary);
}

bool NSDictionary::imp_isEqualToDictionary(NSDictionary* other) {
    if (other == this) return true;
    if (other == nullptr || other->count_ != count_) return false;
    // Held, since values compare themselves with arbitrary code.
    const std::vector<Entry> mine = entries_;
    const objc::Strong<objc_object> theirs = objc::retained(static_cast<id>(other));
    for (const Entry& e : mine) {
        if (!e.key) continue;
        id value = msgSend<id>(other, sel<"objectForKey:">(), e.key.get());
        if (value == nullptr) return false;
        if (value != e.value.get() && !msgSend<bool>(e.value.get(), sel<"isEqual:">(), value)) {
            return false;
        }
    }
    return true;
}

NSString* NSDictionary::imp_description() {
    return msgSend<NSString*>(this, sel<"descriptionWithLocale:indent:">(),
                              static_cast<id>(nullptr), NSUInteger{0});
}

NSString* NSDictionary::imp_descriptionWithLocaleIndent(id locale, NSUInteger level) const {
    std::vector<Entry> entries;
    entries.reserve(count_);
    for (const Entry& e : entries_) {
        if (e.key) entries.push_back(e);
    }
    // As the platform does: sorted by key when the keys can be compared with
    // each other (all strings, or all of one class that answers compare:).
    bool sortable = !entries.empty();
    const Class first = sortable ? object_getClass(entries.front().key.get()) : nullptr;
    const bool strings = std::all_of(entries.begin(), entries.end(), [](const Entry& e) {
        return objc::isKindOf(e.key.get(), NSString::objcClass());
    });
    if (!strings) {
        sortable = sortable && class_respondsToSelector(first, sel<"compare:">()) &&
                   std::all_of(entries.begin(), entries.end(), [&](const Entry& e) {
                       return object_getClass(e.key.get()) == first;
                   });
    }
    if (strings && sortable) {
        // Literal order of the UTF-16 units, which is what compare: answers.
        foundation::detail::stableSort(entries, [](const Entry& a, const Entry& b) {
            return static_cast<NSString*>(a.key.get())->units() <
                   static_cast<NSString*>(b.key.get())->units();
        });
    } else if (sortable) {
        const auto compare = foundation::detail::selectorComparison(sel<"compare:">());
        foundation::detail::stableSort(entries, [&](const Entry& a, const Entry& b) {
            return compare(a.key.get(), b.key.get()) < 0;
        });
    }
    std::u16string text = u"{\n";
    for (const Entry& e : entries) {
        foundation::detail::appendIndent(text, level + 1);
        foundation::detail::appendElementDescription(text, e.key.get(), locale, level + 1);
        text += u" = ";
        foundation::detail::appendElementDescription(text, e.value.get(), locale, level + 1);
        text += u";\n";
    }
    foundation::detail::appendIndent(text, level);
    text.push_back(u'}');
    return foundation::detail::autoreleasedString(std::move(text));
}

// Immutable: the dictionary is its own copy.
id NSDictionary::imp_copyWithZone(void*) {
    return objc_retain(this);
}

id NSDictionary::imp_mutableCopyWithZone(void*) const {
    return newDictionary(NSMutableDictionary::objcClass(), rawPairs());
}
