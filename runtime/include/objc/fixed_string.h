// The compile-time string of the runtime: selector names given as template
// arguments (objc::sel<"add:">()) and the type encodings computed from C++
// types are both FixedStrings.
#pragma once

#include <cstddef>
#include <string_view>

namespace objc {

// A string usable as a template argument and joinable at compile time. N is
// the length; the text is always terminated.
template <std::size_t N>
struct FixedString {
    char chars[N + 1]{};

    constexpr FixedString() = default;
    constexpr FixedString(const char (&s)[N + 1]) {  // NOLINT: implicit so literals convert
        for (std::size_t i = 0; i < N; ++i) chars[i] = s[i];
    }

    static constexpr std::size_t size() { return N; }
    constexpr const char* c_str() const { return chars; }
    constexpr std::string_view view() const { return {chars, N}; }

    template <std::size_t M>
    constexpr bool operator==(const FixedString<M>& other) const {
        return view() == other.view();
    }
    constexpr bool operator==(std::string_view other) const { return view() == other; }
};

template <std::size_t M>
FixedString(const char (&)[M]) -> FixedString<M - 1>;

// Joins any number of pieces into one string.
template <std::size_t... N>
constexpr auto concat(const FixedString<N>&... parts) {
    FixedString<(N + ... + 0)> out;
    std::size_t pos = 0;
    const auto append = [&](std::string_view piece) {
        for (const char c : piece) out.chars[pos++] = c;
    };
    (append(parts.view()), ...);
    return out;
}

template <std::size_t A, std::size_t B>
constexpr auto operator+(const FixedString<A>& a, const FixedString<B>& b) {
    return concat(a, b);
}

// The decimal digits of V, as array counts are written.
template <std::size_t V>
constexpr auto decimal() {
    constexpr std::size_t kDigits = [] {
        std::size_t n = 1;
        for (std::size_t v = V; v >= 10; v /= 10) ++n;
        return n;
    }();
    FixedString<kDigits> out;
    std::size_t v = V;
    for (std::size_t i = kDigits; i-- > 0; v /= 10) out.chars[i] = static_cast<char>('0' + v % 10);
    return out;
}

}  // namespace objc
