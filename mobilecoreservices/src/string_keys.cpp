#include "string_keys.h"

#include <cstdint>
#include <cstring>

namespace mobilecoreservices {

namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101ull;
constexpr std::uint64_t kHighBits = 0x8080808080808080ull;

// Up to eight bytes, zero-padded: how the loops below read a string. Fixed
// sizes only, so that no call to memcpy remains.
std::uint64_t load(const char* p, std::size_t n) noexcept {
    std::uint64_t word = 0;
    if (n >= 8) {
        std::memcpy(&word, p, 8);
    } else if (n >= 4) {
        // Two overlapping halves; the shared bytes are equal, so OR is exact.
        std::uint32_t low = 0, high = 0;
        std::memcpy(&low, p, 4);
        std::memcpy(&high, p + n - 4, 4);
        word = low | (std::uint64_t{high} << ((n - 4) * 8));
    } else if (n > 0) {
        const auto byte = [&](std::size_t i) {
            return std::uint64_t{static_cast<unsigned char>(p[i])} << (i * 8);
        };
        word = byte(0) | byte(n / 2) | byte(n - 1);
    }
    return word;
}

// ASCII A-Z to a-z in all eight bytes at once; lookups hash and compare
// every key, so a byte at a time would be their main cost.
std::uint64_t lower8(std::uint64_t word) noexcept {
    const std::uint64_t heptets = word & ~kHighBits;
    const std::uint64_t atLeastA = heptets + (0x80 - 'A') * kOnes;
    const std::uint64_t aboveZ = heptets + (0x80 - 'Z' - 1) * kOnes;
    const std::uint64_t upper = atLeastA & ~aboveZ & ~word & kHighBits;
    return word | (upper >> 2);
}

}  // namespace

std::string asciiLower(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = asciiLower(c);
    return out;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); i += 8) {
        const std::size_t n = a.size() - i;
        if (lower8(load(a.data() + i, n)) != lower8(load(b.data() + i, n))) return false;
    }
    return true;
}

std::size_t CaseInsensitiveHash::operator()(std::string_view s) const {
    std::uint64_t h = 0x9e3779b97f4a7c15ull ^ s.size();
    for (std::size_t i = 0; i < s.size(); i += 8) {
        h = (h ^ lower8(load(s.data() + i, s.size() - i))) * 0xff51afd7ed558ccdull;
        h ^= h >> 32;
    }
    return static_cast<std::size_t>(h);
}

}  // namespace mobilecoreservices
