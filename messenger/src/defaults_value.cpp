#include "defaults_value.h"

#include <Foundation/NSNumber.h>

#include <objc/string.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>

namespace messenger {

namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool parseInteger(const std::string& text, long& out) {
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, out);
    return ec == std::errc() && ptr == end;
}

bool parseReal(const std::string& text, double& out) {
    if (text.empty() || text.find_first_of(".eE") == std::string::npos) return false;
    // Only plain decimal forms: no "inf", "nan" or hexadecimal.
    if (text.find_first_not_of("0123456789+-.eE") != std::string::npos) return false;
    char* end = nullptr;
    out = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size();
}

}  // namespace

objc::Strong<objc_object> parseDefaultsValue(const std::string& text) {
    const std::string word = lower(text);
    if (word == "true" || word == "yes") return NSNumber::create(true);
    if (word == "false" || word == "no") return NSNumber::create(false);
    long integer = 0;
    if (parseInteger(text, integer)) return NSNumber::create(integer);
    double real = 0;
    if (parseReal(text, real)) return NSNumber::create(real);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return NSString::create(text.substr(1, text.size() - 2));
    }
    return NSString::create(text);
}

std::string describeDefaultsValue(id value) {
    if (value == nullptr) return "(nil)";
    if (auto* text = objc::cast<NSString>(value)) return text->utf8();
    if (auto* number = objc::cast<NSNumber>(value)) {
        if (number->isBoolean()) return number->boolValue() ? "true" : "false";
        return number->stringValue()->utf8();
    }
    NSString* description = static_cast<NSObject*>(value)->description();
    return description != nullptr ? description->utf8() : std::string();
}

}  // namespace messenger
