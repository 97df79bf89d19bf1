// ParcelvaneHelper's size and number texts. The arithmetic is single
// precision on purpose: the texts must come out exactly as the library has
// always shown them, rounding quirks included.
#include "support/ParcelvaneHelper.h"

#include <Foundation/string_format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace {

enum class SizeBand { Bytes, Kilobytes, Megabytes, Gigabytes };

// The top band is tested first, each by what is left above its shift.
SizeBand bandOf(unsigned long long bytes) {
    if ((bytes >> 30) != 0) return SizeBand::Gigabytes;
    if ((bytes >> 20) != 0) return SizeBand::Megabytes;
    if ((bytes >> 10) != 0) return SizeBand::Kilobytes;
    return SizeBand::Bytes;
}

}  // namespace

float ParcelvaneHelper::imp_calculateFileSizeInUnit(Class, unsigned long long bytes) {
    const auto value = static_cast<float>(bytes);
    switch (bandOf(bytes)) {
        case SizeBand::Gigabytes:
            return value * 0x1p-30f;
        case SizeBand::Megabytes:
            return value * 0x1p-20f;
        case SizeBand::Kilobytes:
            return value * 0x1p-10f;
        case SizeBand::Bytes:
            break;
    }
    return value;
}

NSString* ParcelvaneHelper::imp_calculateUnit(Class, unsigned long long bytes) {
    switch (bandOf(bytes)) {
        case SizeBand::Gigabytes:
            return NSSTR("GB");
        case SizeBand::Megabytes:
            return NSSTR("MB");
        case SizeBand::Kilobytes:
            return NSSTR("KB");
        case SizeBand::Bytes:
            break;
    }
    return NSSTR("Bytes");
}

NSString* ParcelvaneHelper::imp_floatToString(Class, float value) {
    std::string text = objc::format(NSSTR("%.1f"), static_cast<double>(value))->utf8();
    // Only a text ending in "0" is trimmed: its zeros, then a point left bare.
    if (!text.empty() && text.back() == '0') {
        while (!text.empty() && text.back() == '0') text.pop_back();
        if (!text.empty() && text.back() == '.') text.pop_back();
    }
    return NSString::stringWithUTF8String(text.c_str());
}

NSString* ParcelvaneHelper::imp_abbreviateNumber(Class, int number) {
    if (number < 1000) {
        // Through float and back: below -2^24 this may change the number.
        const auto roundTripped = static_cast<int>(static_cast<float>(number));
        return objc::format(NSSTR("%d"), roundTripped);
    }
    const std::array<NSString*, 3> suffixes{NSSTR("K"), NSSTR("M"), NSSTR("B")};
    auto value = static_cast<float>(number);
    NSString* answer = nullptr;
    // Every suffix is tried, largest first, each on what the previous left.
    for (int i = 3; i >= 1; --i) {
        const auto size = static_cast<float>(static_cast<std::int32_t>(std::pow(10.0, 3.0 * i)));
        if (size <= value) {
            value = value / size;
            answer = objc::format(NSSTR("%@%@"), floatToString(value),
                                  suffixes[static_cast<std::size_t>(i - 1)]);
        }
    }
    return answer;
}
