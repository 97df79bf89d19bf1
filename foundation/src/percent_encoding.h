// Percent encoding as URLs use it, shared by NSString and NSURL.
#pragma once

#include <Foundation/NSCharacterSet.h>

#include <optional>
#include <string>
#include <string_view>

namespace foundation::text {

// Every UTF-8 sequence whose code point is outside `allowed` becomes %XX
// escapes (upper-case hex) of its bytes.
std::string percentEncode(std::string_view utf8, const NSCharacterSet& allowed);

// The bytes that the escapes stand for; nullopt for a malformed escape.
std::optional<std::string> percentDecodeBytes(std::string_view text);

// Decoded text; nullopt for a malformed escape or bytes that are not UTF-8.
std::optional<std::string> percentDecode(std::string_view text);

bool isValidUtf8(std::string_view bytes);

}  // namespace foundation::text
