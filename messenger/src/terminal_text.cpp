#include "terminal_text.h"

#include <cstdio>

namespace messenger {

namespace {

std::string hexByte(unsigned char byte) {
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", byte);
    return text;
}

// The length of the well-formed UTF-8 sequence at the start of `text`, 0 when
// it is not one (a stray continuation byte, an overlong form, a surrogate).
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    std::size_t length = 0;
    unsigned char low = 0x80, high = 0xbf;  // bounds of the second byte
    if (lead >= 0xc2 && lead <= 0xdf) {
        length = 2;
    } else if (lead >= 0xe0 && lead <= 0xef) {
        length = 3;
        if (lead == 0xe0) low = 0xa0;
        if (lead == 0xed) high = 0x9f;
    } else if (lead >= 0xf0 && lead <= 0xf4) {
        length = 4;
        if (lead == 0xf0) low = 0x90;
        if (lead == 0xf4) high = 0x8f;
    } else {
        return 0;
    }
    if (text.size() < length || byte(1) < low || byte(1) > high) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(i) < 0x80 || byte(i) > 0xbf) return 0;
    }
    return length;
}

}  // namespace

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const auto c = static_cast<unsigned char>(text.front());
        if (c >= 0x20 && c < 0x7f) {
            out += static_cast<char>(c);
            text.remove_prefix(1);
            continue;
        }
        if (c < 0x80) {
            switch (c) {
                case '\n':
                    out += "\\n";
                    break;
                case '\r':
                    out += "\\r";
                    break;
                case '\t':
                    out += "\\t";
                    break;
                default:
                    out += hexByte(c);
            }
            text.remove_prefix(1);
            continue;
        }
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            out += hexByte(c);
            text.remove_prefix(1);
            continue;
        }
        // U+0080 to U+009F: terminals take some of them as escape sequences.
        if (length == 2 && c == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0) {
            char code[16];
            std::snprintf(code, sizeof code, "\\u{%x}", static_cast<unsigned char>(text[1]));
            out += code;
        } else {
            out.append(text.substr(0, length));
        }
        text.remove_prefix(length);
    }
    return out;
}

}  // namespace messenger
