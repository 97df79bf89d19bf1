#include "plist_input.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>

namespace foundation::detail {
namespace {

// A binary property list ends in a trailer that locates the offset table;
// every object is reached through that table, as libplist reaches them.
class BinaryKeyCheck {
  public:
    explicit BinaryKeyCheck(std::string_view bytes) : bytes_(bytes) {}

    // False when a dictionary key holds U+0000 or the layout is too broken
    // to tell; libplist rejects the latter anyway.
    bool keysAreSafe() {
        constexpr std::size_t kHeader = 8, kTrailer = 32;
        if (bytes_.size() < kHeader + kTrailer) return false;
        const std::size_t trailer = bytes_.size() - kTrailer;
        offsetSize_ = byte(trailer + 6);
        refSize_ = byte(trailer + 7);
        const auto count = number(trailer + 8, 8);
        const auto table = number(trailer + 24, 8);
        if (!count || !table || offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 ||
            refSize_ > 8 || *table > trailer || *count > (trailer - *table) / offsetSize_) {
            return false;
        }
        objects_ = static_cast<std::size_t>(*count);
        table_ = static_cast<std::size_t>(*table);
        for (std::size_t i = 0; i < objects_; ++i) {
            const auto at = objectOffset(i);
            if (!at) return false;
            if ((byte(*at) >> 4) == 0xD && !dictionaryKeysAreSafe(*at)) return false;
        }
        return true;
    }

  private:
    unsigned byte(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }

    // A big-endian unsigned number of `size` bytes, if it lies in the data.
    std::optional<std::uint64_t> number(std::size_t at, std::size_t size) const {
        if (at > bytes_.size() || size > bytes_.size() - at) return std::nullopt;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) value = (value << 8) | byte(at + i);
        return value;
    }

    std::optional<std::size_t> objectOffset(std::size_t index) const {
        const auto offset = number(table_ + index * offsetSize_, offsetSize_);
        if (!offset || *offset >= table_) return std::nullopt;
        return static_cast<std::size_t>(*offset);
    }

    // The element count of the object at `at` and where its contents start.
    std::optional<std::pair<std::size_t, std::size_t>> counted(std::size_t at) const {
        const std::size_t low = byte(at) & 0xF;
        if (low != 0xF) return std::pair{low, at + 1};
        if (at + 1 >= table_ || (byte(at + 1) >> 4) != 0x1 || (byte(at + 1) & 0xF) > 3) {
            return std::nullopt;
        }
        const std::size_t size = std::size_t{1} << (byte(at + 1) & 0xF);
        const auto count = number(at + 2, size);
        if (!count || *count > table_) return std::nullopt;
        return std::pair{static_cast<std::size_t>(*count), at + 2 + size};
    }

    bool dictionaryKeysAreSafe(std::size_t at) const {
        const auto dict = counted(at);
        if (!dict) return false;
        const auto [count, refs] = *dict;
        if (refs > table_ || count > (table_ - refs) / refSize_) return false;
        for (std::size_t k = 0; k < count; ++k) {
            const auto index = number(refs + k * refSize_, refSize_);
            if (!index || *index >= objects_) return false;
            const auto key = objectOffset(static_cast<std::size_t>(*index));
            if (!key || !stringHasNoNul(*key)) return false;
        }
        return true;
    }

    // Keys that are not strings are left for libplist to refuse.
    bool stringHasNoNul(std::size_t at) const {
        const unsigned kind = byte(at) >> 4;
        if (kind != 0x5 && kind != 0x6 && kind != 0x7) return true;
        const auto string = counted(at);
        if (!string) return false;
        const auto [count, start] = *string;
        const std::size_t unit = kind == 0x6 ? 2 : 1;
        if (start > table_ || count > (table_ - start) / unit) return false;
        for (std::size_t i = 0; i < count; ++i) {
            bool zero = true;
            for (std::size_t b = 0; b < unit; ++b) zero = zero && byte(start + i * unit + b) == 0;
            if (zero) return false;
        }
        return true;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t refSize_ = 0;
    std::size_t objects_ = 0;
    std::size_t table_ = 0;
};

}  // namespace

void PlistNodeDeleter::operator()(void* node) const {
    plist_free(node);
}

objc::Result<PlistNode> readPlist(std::string_view bytes, bool* binary) {
    const auto fail = [](const char* why) { return objc::Error{0, why}; };
    if (bytes.empty()) return fail("the data is empty");
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        return fail("the data is too large");
    }
    const auto length = static_cast<std::uint32_t>(bytes.size());
    const bool isBinary = plist_is_binary(bytes.data(), length) != 0;
    plist_t node = nullptr;
    if (isBinary) {
        if (!BinaryKeyCheck(bytes).keysAreSafe()) {
            return fail("the binary property list is damaged or has a key with a NUL character");
        }
        plist_from_bin(bytes.data(), length, &node);
    } else {
        // XML allows U+0000 nowhere, so a raw NUL byte is never valid.
        if (std::memchr(bytes.data(), 0, bytes.size()) != nullptr)
            return fail("the data holds a NUL byte, which XML never does");
        plist_from_xml(bytes.data(), length, &node);
    }
    if (node == nullptr) return fail("the data isn't a property list in XML or binary format");
    if (binary != nullptr) *binary = isBinary;
    return PlistNode(node);
}

}  // namespace foundation::detail
