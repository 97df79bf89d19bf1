// A hash table keyed by NSString for the user defaults: open addressing over
// a power-of-two array (no division on lookup), the strings' cached hashes,
// and equality by comparing UTF-16 units directly (no message).
#pragma once

#include <objc/string.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace foundation::detail {

// A key as stored: an immutable string and its hash.
struct StoredKey {
    objc::Strong<NSString> string;
    NSUInteger hash = 0;
};
// A key as looked up, without a reference of its own.
struct KeyRef {
    NSString* string;
    NSUInteger hash;
};

// Keys are short: a plain loop beats a call to memcmp.
inline bool sameText(NSString* a, NSString* b) noexcept {
    if (a == b) return true;
    const std::u16string& x = a->units();
    const std::u16string& y = b->units();
    const std::size_t n = x.size();
    if (n != y.size()) return false;
    const char16_t* p = x.data();
    const char16_t* q = y.data();
    for (std::size_t i = 0; i < n; ++i) {
        if (p[i] != q[i]) return false;
    }
    return true;
}

template <class V>
class KeyTable {
  public:
    struct Entry {
        objc::Strong<NSString> key;  // null: empty slot
        NSUInteger hash = 0;
        V value{};
    };

    std::size_t size() const noexcept { return count_; }
    bool empty() const noexcept { return count_ == 0; }

    V* find(KeyRef k) noexcept {
        const std::size_t i = slotOf(k);
        return i != kNone ? &slots_[i].value : nullptr;
    }
    const V* find(KeyRef k) const noexcept { return const_cast<KeyTable*>(this)->find(k); }

    // The value slot of the key, added (empty) when missing; the key is
    // stored only then.
    V& at(StoredKey&& key) {
        if (V* existing = find(KeyRef{key.string.get(), key.hash})) return *existing;
        if ((count_ + 1) * 2 > slots_.size()) grow();
        std::size_t i = index(key.hash);
        while (slots_[i].key) i = (i + 1) & mask();
        slots_[i].key = std::move(key.string);
        slots_[i].hash = key.hash;
        ++count_;
        return slots_[i].value;
    }

    // Answers the removed value (so the caller releases it outside its lock).
    V take(KeyRef k) {
        std::size_t hole = slotOf(k);
        if (hole == kNone) return V{};
        V removed = std::move(slots_[hole].value);
        slots_[hole] = Entry{};
        --count_;
        // Backward shift: later entries of the probe run move up, so that
        // lookups need no tombstones.
        for (std::size_t j = (hole + 1) & mask(); slots_[j].key; j = (j + 1) & mask()) {
            const std::size_t home = index(slots_[j].hash);
            const bool between =
                hole <= j ? (home > hole && home <= j) : (home > hole || home <= j);
            if (!between) {
                slots_[hole] = std::move(slots_[j]);
                slots_[j] = Entry{};
                hole = j;
            }
        }
        return removed;
    }

    template <class F>
    void forEach(F&& fn) const {
        for (const Entry& e : slots_) {
            if (e.key) fn(e.key, e.value);
        }
    }
    // The same, with each key's hash.
    template <class F>
    void forEachEntry(F&& fn) const {
        for (const Entry& e : slots_) {
            if (e.key) fn(e);
        }
    }

    void reserve(std::size_t n) {
        while (n * 2 > slots_.size()) grow();
    }
    void swap(KeyTable& other) noexcept {
        slots_.swap(other.slots_);
        std::swap(count_, other.count_);
        std::swap(shift_, other.shift_);
    }

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t slotOf(KeyRef k) const noexcept {
        if (count_ == 0) return kNone;
        for (std::size_t i = index(k.hash);; i = (i + 1) & mask()) {
            const Entry& e = slots_[i];
            if (!e.key) return kNone;
            if (e.hash == k.hash && sameText(e.key.get(), k.string)) return i;
        }
    }
    std::size_t mask() const noexcept { return slots_.size() - 1; }
    // Fibonacci hashing spreads the string hash's bits over the table.
    std::size_t index(NSUInteger hash) const noexcept {
        return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15ull) >> shift_);
    }
    void grow() {
        std::vector<Entry> old = std::move(slots_);
        const std::size_t capacity = old.empty() ? 16 : old.size() * 2;
        slots_ = std::vector<Entry>(capacity);
        shift_ = 64 - static_cast<unsigned>(__builtin_ctzll(capacity));
        count_ = 0;
        for (Entry& e : old) {
            if (!e.key) continue;
            std::size_t i = index(e.hash);
            while (slots_[i].key) i = (i + 1) & mask();
            slots_[i] = std::move(e);
            ++count_;
        }
    }

    std::vector<Entry> slots_;
    std::size_t count_ = 0;
    unsigned shift_ = 64;
};

}  // namespace foundation::detail
