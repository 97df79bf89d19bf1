// What the harnesses share: the libFuzzer entry point's signature and a way
// to cut one input into several strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzzing {

inline std::string_view bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// The input cut at newlines into at most `count` parts (the last keeps the
// rest, newlines and all); missing parts are empty.
inline std::vector<std::string_view> parts(std::string_view input, std::size_t count) {
    std::vector<std::string_view> out;
    while (out.size() + 1 < count) {
        const auto end = input.find('\n');
        if (end == std::string_view::npos) break;
        out.push_back(input.substr(0, end));
        input.remove_prefix(end + 1);
    }
    out.push_back(input);
    out.resize(count);
    return out;
}

}  // namespace fuzzing
