#include "dynamic_identifier.h"

#include "string_keys.h"

#include <cstdint>

namespace mobilecoreservices {

namespace {

constexpr std::string_view kAlphabet = "abcdefghijklmnopqrstuvwxyz234567";
// Payload entries are "key=value" separated by NUL bytes; the two common tag
// classes get one-letter keys to keep identifiers short. Every other tag
// class is written after kOtherClass, so that no tag class (not even "c" or
// "e") can pose as a conformance or as one of the common classes.
constexpr char kSeparator = '\0';
constexpr std::string_view kConformsKey = "c";
constexpr std::string_view kExtensionKey = "e";
constexpr std::string_view kMimeKey = "m";
constexpr char kOtherClass = '~';

std::string base32(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() * 8 + 4) / 5);
    std::uint32_t buffer = 0;
    int bits = 0;
    for (const char c : bytes) {
        buffer = (buffer << 8) | static_cast<unsigned char>(c);
        bits += 8;
        while (bits >= 5) {
            bits -= 5;
            out += kAlphabet[(buffer >> bits) & 31];
        }
    }
    if (bits > 0) out += kAlphabet[(buffer << (5 - bits)) & 31];
    return out;
}

std::optional<std::string> unbase32(std::string_view text) {
    std::string out;
    std::uint32_t buffer = 0;
    int bits = 0;
    for (const char raw : text) {
        const auto at = kAlphabet.find(asciiLower(raw));
        if (at == std::string_view::npos) return std::nullopt;
        buffer = (buffer << 5) | static_cast<std::uint32_t>(at);
        bits += 5;
        if (bits >= 8) {
            bits -= 8;
            out += static_cast<char>((buffer >> bits) & 0xff);
        }
    }
    // Exactly what base32() leaves over: fewer than a byte, all zero bits.
    // Anything else would let two texts decode to the same identifier.
    if (bits >= 5 || (buffer & ((1u << bits) - 1)) != 0) return std::nullopt;
    return out;
}

std::string keyFor(std::string_view tagClass) {
    if (tagClass == kFilenameExtensionTagClass) return std::string(kExtensionKey);
    if (tagClass == kMimeTypeTagClass) return std::string(kMimeKey);
    return kOtherClass + std::string(tagClass);
}

}  // namespace

bool DynamicIdentifier::hasPrefix(std::string_view identifier) noexcept {
    return identifier.size() >= kPrefix.size() &&
           equalsIgnoringCase(identifier.substr(0, kPrefix.size()), kPrefix);
}

std::string DynamicIdentifier::encode() const {
    std::string payload;
    auto add = [&](std::string_view key, std::string_view value) {
        if (!payload.empty()) payload += kSeparator;
        payload.append(key).append("=").append(value);
    };
    for (const auto& uti : conformsTo) add(kConformsKey, uti);
    for (const auto& tag : tags) add(keyFor(tag.tagClass), tag.value);
    return std::string(kPrefix) + base32(payload);
}

std::optional<DynamicIdentifier> DynamicIdentifier::decode(std::string_view identifier) {
    if (!hasPrefix(identifier)) return std::nullopt;
    const auto payload = unbase32(identifier.substr(kPrefix.size()));
    if (!payload || payload->empty()) return std::nullopt;
    DynamicIdentifier out;
    std::string_view rest = *payload;
    for (;;) {
        const auto end = rest.find(kSeparator);
        const auto entry = rest.substr(0, end);
        const auto equals = entry.find('=');
        if (equals == std::string_view::npos || equals == 0) return std::nullopt;
        const auto key = entry.substr(0, equals);
        const std::string value(entry.substr(equals + 1));
        if (key == kConformsKey) {
            out.conformsTo.push_back(value);
        } else if (key == kExtensionKey) {
            out.tags.push_back({std::string(kFilenameExtensionTagClass), value});
        } else if (key == kMimeKey) {
            out.tags.push_back({std::string(kMimeTypeTagClass), value});
        } else if (key.size() > 1 && key.front() == kOtherClass) {
            out.tags.push_back({std::string(key.substr(1)), value});
        } else {
            return std::nullopt;
        }
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return out;
}

std::vector<std::string_view> DynamicIdentifier::tagsWithClass(std::string_view tagClass) const {
    std::vector<std::string_view> out;
    for (const auto& tag : tags) {
        if (equalsIgnoringCase(tag.tagClass, tagClass)) out.emplace_back(tag.value);
    }
    return out;
}

bool DynamicIdentifier::describesFile() const noexcept {
    for (const auto& tag : tags) {
        if (tag.tagClass == kFilenameExtensionTagClass || tag.tagClass == kMimeTypeTagClass) {
            return true;
        }
    }
    return false;
}

}  // namespace mobilecoreservices
