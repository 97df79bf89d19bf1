#include <Foundation/strings_table.h>

#include <objc/string.h>

#include "plist_input.h"

#include <plist/plist.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace foundation {
namespace {

// The text of the file as UTF-16 units, whatever its encoding.
std::u16string decode(std::string_view bytes) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const auto utf16 = [&](std::size_t start, bool bigEndian) {
        std::u16string units;
        units.reserve((bytes.size() - start) / 2);
        for (std::size_t i = start; i + 1 < bytes.size(); i += 2) {
            const unsigned hi = bigEndian ? byte(i) : byte(i + 1);
            const unsigned lo = bigEndian ? byte(i + 1) : byte(i);
            units.push_back(static_cast<char16_t>((hi << 8) | lo));
        }
        return units;
    };
    if (bytes.size() >= 3 && byte(0) == 0xEF && byte(1) == 0xBB && byte(2) == 0xBF) {
        return objc::utf8ToUtf16(bytes.substr(3));
    }
    if (bytes.size() >= 2 && byte(0) == 0xFF && byte(1) == 0xFE) return utf16(2, false);
    if (bytes.size() >= 2 && byte(0) == 0xFE && byte(1) == 0xFF) return utf16(2, true);
    // Without a mark, a zero byte beside an ASCII one gives UTF-16 away.
    if (bytes.size() >= 2 && bytes.size() % 2 == 0) {
        if (byte(0) != 0 && byte(1) == 0) return utf16(0, false);
        if (byte(0) == 0 && byte(1) != 0) return utf16(0, true);
    }
    return objc::utf8ToUtf16(bytes);
}

int hexValue(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    return -1;
}

bool isUnquotedCharacter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c == u'$' || c == u'+' || c == u'/' || c == u':' || c == u'.' || c == u'-';
}

// A recursive-descent reader over the decoded text; every step checks the end
// of input, so truncated or hostile files fail cleanly.
class Parser {
  public:
    explicit Parser(std::u16string_view text) : text_(text) {}

    objc::Result<StringsTable> parse() {
        StringsTable table;
        if (!skipSpace()) return malformed();
        while (pos_ < text_.size()) {
            std::u16string key;
            std::u16string value;
            if (!readString(key) || !skipSpace()) return malformed();
            if (peek() == u'=') {
                ++pos_;
                if (!skipSpace() || !readString(value) || !skipSpace()) return malformed();
            } else {
                value = key;
            }
            if (peek() != u';') return malformed();
            ++pos_;
            table.insert_or_assign(std::move(key), std::move(value));
            if (!skipSpace()) return malformed();
        }
        return table;
    }

  private:
    objc::Error malformed() const {
        return objc::Error{0, "malformed at character " + std::to_string(pos_ + 1)};
    }

    char16_t peek() const { return pos_ < text_.size() ? text_[pos_] : char16_t{0}; }
    bool at(std::u16string_view s) const { return text_.substr(pos_, s.size()) == s; }

    // Skips white space and comments; false on an unterminated comment.
    bool skipSpace() {
        while (pos_ < text_.size()) {
            const char16_t c = text_[pos_];
            if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v' ||
                c == 0xFEFF || c == 0x2028 || c == 0x2029) {
                ++pos_;
            } else if (at(u"/*")) {
                const auto end = text_.find(u"*/", pos_ + 2);
                if (end == std::u16string_view::npos) return false;
                pos_ = end + 2;
            } else if (at(u"//")) {
                const auto end = text_.find_first_of(u"\n\r", pos_);
                pos_ = end == std::u16string_view::npos ? text_.size() : end;
            } else {
                break;
            }
        }
        return true;
    }

    bool readString(std::u16string& out) {
        if (peek() == u'"') return readQuoted(out);
        const std::size_t start = pos_;
        while (pos_ < text_.size() && isUnquotedCharacter(text_[pos_])) ++pos_;
        if (pos_ == start) return false;
        out.assign(text_.substr(start, pos_ - start));
        return true;
    }

    bool readQuoted(std::u16string& out) {
        ++pos_;  // the opening quote
        while (pos_ < text_.size()) {
            const char16_t c = text_[pos_++];
            if (c == u'"') return true;
            if (c != u'\\') {
                out.push_back(c);
            } else if (!readEscape(out)) {
                return false;
            }
        }
        return false;  // no closing quote
    }

    bool readEscape(std::u16string& out) {
        if (pos_ >= text_.size()) return false;
        const char16_t c = text_[pos_++];
        static constexpr std::pair<char16_t, char16_t> kControls[] = {
            {u'a', u'\a'}, {u'b', u'\b'}, {u'f', u'\f'}, {u'n', u'\n'},
            {u'r', u'\r'}, {u't', u'\t'}, {u'v', u'\v'}};
        for (const auto& [letter, control] : kControls) {
            if (c == letter) {
                out.push_back(control);
                return true;
            }
        }
        if (c == u'U' || c == u'u') {
            // Up to four hex digits name one UTF-16 unit; surrogate pairs are
            // written as two escapes and combine by themselves.
            unsigned value = 0;
            int digits = 0;
            while (digits < 4 && pos_ < text_.size() && hexValue(text_[pos_]) >= 0) {
                value = value * 16 + static_cast<unsigned>(hexValue(text_[pos_++]));
                ++digits;
            }
            if (digits == 0) return false;
            out.push_back(static_cast<char16_t>(value));
            return true;
        }
        if (c >= u'0' && c <= u'7') {
            unsigned value = c - u'0';
            for (int digits = 1;
                 digits < 3 && pos_ < text_.size() && text_[pos_] >= u'0' && text_[pos_] <= u'7';
                 ++digits) {
                value = value * 8 + (text_[pos_++] - u'0');
            }
            out.push_back(static_cast<char16_t>(value & 0xFF));
            return true;
        }
        out.push_back(c);  // \" \\ \' and any other character stand for themselves
        return true;
    }

    std::u16string_view text_;
    std::size_t pos_ = 0;
};

bool looksLikePropertyList(std::string_view bytes) {
    std::size_t i = 0;
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") i = 3;
    while (i < bytes.size() &&
           (bytes[i] == ' ' || bytes[i] == '\t' || bytes[i] == '\n' || bytes[i] == '\r')) {
        ++i;
    }
    const std::string_view rest = bytes.substr(i);
    return bytes.substr(0, 8) == "bplist00" || rest.substr(0, 5) == "<?xml" ||
           rest.substr(0, 6) == "<plist" || rest.substr(0, 9) == "<!DOCTYPE";
}

objc::Result<StringsTable> parsePropertyListTable(std::string_view bytes) {
    const auto owner = detail::readPlist(bytes);
    if (!owner) return owner.error();
    plist_t root = owner->get();
    if (root == nullptr || plist_get_node_type(root) != PLIST_DICT) {
        return objc::Error{0, "the property list is not a dictionary"};
    }
    StringsTable table;
    plist_dict_iter it = nullptr;
    plist_dict_new_iter(root, &it);
    const std::unique_ptr<void, void (*)(void*)> iterOwner(it, &free);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(root, it, &key, &value);
        if (key == nullptr) break;
        const std::unique_ptr<char, void (*)(void*)> keyOwner(key, &free);
        if (value == nullptr || plist_get_node_type(value) != PLIST_STRING) {
            return objc::Error{0, std::string("the value of \"") + key + "\" is not a string"};
        }
        std::uint64_t length = 0;
        const char* text = plist_get_string_ptr(value, &length);
        table.insert_or_assign(objc::utf8ToUtf16(key),
                               objc::utf8ToUtf16(std::string_view(text, length)));
    }
    return table;
}

}  // namespace

objc::Result<StringsTable> parseStringsTable(std::string_view bytes) {
    if (looksLikePropertyList(bytes)) return parsePropertyListTable(bytes);
    const std::u16string text = decode(bytes);
    return Parser(text).parse();
}

}  // namespace foundation
