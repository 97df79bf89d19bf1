#include "localization_matching.h"

#include <algorithm>
#include <cctype>

namespace foundation::detail {
namespace {

std::string normalized(const std::string& code) {
    std::string out = code;
    for (char& c : out) {
        c = c == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

std::string languagePart(const std::string& normalizedCode) {
    return normalizedCode.substr(0, normalizedCode.find('-'));
}

}  // namespace

std::vector<std::string> matchLocalizations(const std::vector<std::string>& available,
                                            const std::vector<std::string>& preferred,
                                            const std::string& developmentRegion) {
    std::vector<std::string> keys;
    keys.reserve(available.size());
    for (const auto& a : available) keys.push_back(normalized(a));
    const auto findKey = [&](const std::string& key) -> const std::string* {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            // "Base" holds interface files, not a language anybody prefers.
            if (keys[i] == key && keys[i] != "base") return &available[i];
        }
        return nullptr;
    };

    std::vector<std::string> result;
    const auto add = [&](const std::string& name) {
        if (std::find(result.begin(), result.end(), name) == result.end()) result.push_back(name);
    };
    for (const auto& language : preferred) {
        std::string key = normalized(language);
        if (key.empty()) continue;
        const std::string* match = findKey(key);
        while (match == nullptr && key.find('-') != std::string::npos) {
            key.erase(key.rfind('-'));
            match = findKey(key);
        }
        if (match == nullptr) {
            const std::string lang = languagePart(key);
            for (std::size_t i = 0; i < keys.size() && match == nullptr; ++i) {
                if (keys[i] != "base" && languagePart(keys[i]) == lang) match = &available[i];
            }
        }
        if (match != nullptr) add(*match);
    }
    if (result.empty()) {
        if (const std::string* dev = findKey(normalized(developmentRegion))) {
            add(*dev);
        } else if (!available.empty()) {
            add(available.front());
        }
    }
    return result;
}

}  // namespace foundation::detail
