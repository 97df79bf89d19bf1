// Hash-map keys for identifiers, tags and MIME types: all of them compare
// without regard to ASCII case, and lookups take string_views without copying.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace mobilecoreservices {

constexpr char asciiLower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

std::string asciiLower(std::string_view s);
bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept;

struct CaseInsensitiveHash {
    using is_transparent = void;
    // Deliberately not noexcept: libstdc++ then stores each key's hash in its
    // node and compares keys only when hashes match, instead of comparing
    // (case-folding) every key of a small table or of a bucket.
    std::size_t operator()(std::string_view s) const;
};

struct CaseInsensitiveEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept {
        return equalsIgnoringCase(a, b);
    }
};

struct ExactHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const noexcept {
        return std::hash<std::string_view>{}(s);
    }
};

template <class V>
using CaseInsensitiveMap =
    std::unordered_map<std::string, V, CaseInsensitiveHash, CaseInsensitiveEqual>;
using CaseInsensitiveSet =
    std::unordered_set<std::string, CaseInsensitiveHash, CaseInsensitiveEqual>;
template <class V>
using ExactMap = std::unordered_map<std::string, V, ExactHash, std::equal_to<>>;

}  // namespace mobilecoreservices
