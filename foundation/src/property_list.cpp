#include "property_list.h"

#include "plist_input.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSMutableString.h>
#include <Foundation/NSNumber.h>

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace foundation::detail {
namespace {

// Containers that hold themselves would recurse forever; real settings nest a
// few levels.
constexpr int kMaxDepth = 512;

std::string describe(id object) {
    if (object == nullptr) return "nil";
    NSString* text = static_cast<NSObject*>(object)->description();
    std::string result = text != nullptr ? text->utf8() : std::string("?");
    if (result.size() > 200) result = result.substr(0, 200) + "...";
    return result;
}

void setProblem(std::string* problem, id object, const std::string& path) {
    if (problem == nullptr) return;
    *problem = "object " + describe(object) + " of class " +
               (object != nullptr ? object_getClassName(object) : "nil");
    if (!path.empty()) *problem += " at " + path;
}

std::string keyPath(const std::string& path, NSString* key) {
    return path.empty() ? key->utf8() : path + "." + key->utf8();
}

std::string indexPath(const std::string& path, std::size_t i) {
    return path + "[" + std::to_string(i) + "]";
}

bool tooDeep(int depth, id object, const std::string& path, std::string* problem) {
    if (depth < kMaxDepth) return false;
    if (problem != nullptr) {
        *problem = "a container nested more than " + std::to_string(kMaxDepth) +
                   " levels deep (does it contain itself?) of class " +
                   object_getClassName(object) + (path.empty() ? "" : " at " + path);
    }
    return true;
}

bool isScalarPropertyList(id object) {
    return objc::isKindOf(object, NSString::objcClass()) ||
           objc::isKindOf(object, NSNumber::objcClass()) ||
           objc::isKindOf(object, NSData::objcClass()) ||
           objc::isKindOf(object, NSDate::objcClass());
}

bool check(id object, const std::string& path, std::string* problem, int depth) {
    if (object != nullptr && isScalarPropertyList(object)) return true;
    if (auto* array = objc::cast<NSArray>(object)) {
        if (tooDeep(depth, object, path, problem)) return false;
        std::size_t i = 0;
        for (id element : *array) {
            if (!check(element, indexPath(path, i++), problem, depth + 1)) return false;
        }
        return true;
    }
    if (auto* dictionary = objc::cast<NSDictionary>(object)) {
        if (tooDeep(depth, object, path, problem)) return false;
        bool ok = true;
        dictionary->forEach([&](id key, id value) {
            if (!ok) return;
            auto* name = objc::cast<NSString>(key);
            if (name == nullptr) {
                setProblem(problem, key, path.empty() ? "a dictionary key" : path + " (a key)");
                ok = false;
            } else {
                ok = check(value, keyPath(path, name), problem, depth + 1);
            }
        });
        return ok;
    }
    setProblem(problem, object, path);
    return false;
}

objc::Strong<objc_object> copyValue(id object, const std::string& path, std::string* problem,
                                    int depth) {
    if (object != nullptr && isScalarPropertyList(object)) {
        // copy answers the object itself for immutable values.
        return objc::adopt(static_cast<NSObject*>(object)->copy());
    }
    if (auto* array = objc::cast<NSArray>(object)) {
        if (tooDeep(depth, object, path, problem)) return nullptr;
        std::vector<objc::Strong<objc_object>> copies;
        copies.reserve(array->size());
        bool same = !objc::isKindOf(object, NSMutableArray::objcClass());
        std::size_t i = 0;
        for (id element : *array) {
            auto copy = copyValue(element, indexPath(path, i++), problem, depth + 1);
            if (!copy) return nullptr;
            same = same && copy.get() == element;
            copies.push_back(std::move(copy));
        }
        if (same) return objc::retained(object);
        std::vector<id> elements(copies.begin(), copies.end());
        return NSArray::create(std::move(elements));
    }
    if (auto* dictionary = objc::cast<NSDictionary>(object)) {
        if (tooDeep(depth, object, path, problem)) return nullptr;
        std::vector<std::pair<objc::Strong<objc_object>, objc::Strong<objc_object>>> copies;
        copies.reserve(dictionary->size());
        bool same = !objc::isKindOf(object, NSMutableDictionary::objcClass());
        bool ok = true;
        dictionary->forEach([&](id key, id value) {
            if (!ok) return;
            auto* name = objc::cast<NSString>(key);
            if (name == nullptr) {
                setProblem(problem, key, path.empty() ? "a dictionary key" : path + " (a key)");
                ok = false;
                return;
            }
            auto copy = copyValue(value, keyPath(path, name), problem, depth + 1);
            if (!copy) {
                ok = false;
                return;
            }
            same = same && copy.get() == value;
            copies.emplace_back(objc::retained(key), std::move(copy));
        });
        if (!ok) return nullptr;
        if (same) return objc::retained(object);
        std::vector<std::pair<id, id>> pairs;
        pairs.reserve(copies.size());
        for (const auto& [key, value] : copies) pairs.emplace_back(key.get(), value.get());
        return NSDictionary::create(pairs);
    }
    setProblem(problem, object, path);
    return nullptr;
}

// libplist keeps dates as whole seconds plus microseconds since 2001 in 32
// bits; dates outside 1933-2069 are clamped to that range.
plist_t newDate(NSTimeInterval interval) {
    constexpr double kMin = std::numeric_limits<std::int32_t>::min();
    constexpr double kMax = std::numeric_limits<std::int32_t>::max();
    if (!(interval >= kMin)) interval = kMin;  // also NaN
    if (interval > kMax) interval = kMax;
    double seconds = std::floor(interval);
    auto micros = static_cast<std::int32_t>(std::llround((interval - seconds) * 1e6));
    if (micros >= 1000000) {
        micros -= 1000000;
        seconds += 1;
    }
    if (seconds > kMax) seconds = kMax;
    return plist_new_date(static_cast<std::int32_t>(seconds), micros);
}

PlistNode toNode(id object, const std::string& path, std::string* problem, int depth) {
    if (auto* string = objc::cast<NSString>(object)) {
        return PlistNode(plist_new_string(string->utf8().c_str()));
    }
    if (auto* number = objc::cast<NSNumber>(object)) {
        switch (number->kind()) {
            case NSNumber::Kind::Bool:
                return PlistNode(plist_new_bool(number->signedStorage() != 0));
            case NSNumber::Kind::Signed:
                return PlistNode(
                    plist_new_uint(static_cast<std::uint64_t>(number->signedStorage())));
            case NSNumber::Kind::Unsigned:
                // Integers are signed 64-bit in the file; larger values wrap.
                return PlistNode(plist_new_uint(number->unsignedStorage()));
            case NSNumber::Kind::Float:
            case NSNumber::Kind::Double:
                return PlistNode(plist_new_real(number->doubleStorage()));
        }
    }
    if (auto* data = objc::cast<NSData>(object)) {
        const std::string_view bytes = data->view();
        return PlistNode(plist_new_data(bytes.data(), bytes.size()));
    }
    if (auto* date = objc::cast<NSDate>(object)) return PlistNode(newDate(date->interval()));
    if (auto* array = objc::cast<NSArray>(object)) {
        if (tooDeep(depth, object, path, problem)) return nullptr;
        PlistNode node(plist_new_array());
        std::size_t i = 0;
        for (id element : *array) {
            PlistNode child = toNode(element, indexPath(path, i++), problem, depth + 1);
            if (!child) return nullptr;
            plist_array_append_item(node.get(), child.release());
        }
        return node;
    }
    if (auto* dictionary = objc::cast<NSDictionary>(object)) {
        if (tooDeep(depth, object, path, problem)) return nullptr;
        std::vector<std::pair<NSString*, id>> entries;
        entries.reserve(dictionary->size());
        bool ok = true;
        dictionary->forEach([&](id key, id value) {
            auto* name = objc::cast<NSString>(key);
            if (name == nullptr && ok) {
                setProblem(problem, key, path.empty() ? "a dictionary key" : path + " (a key)");
                ok = false;
            }
            entries.emplace_back(name, value);
        });
        if (!ok) return nullptr;
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.first->units() < b.first->units(); });
        PlistNode node(plist_new_dict());
        for (const auto& [key, value] : entries) {
            PlistNode child = toNode(value, keyPath(path, key), problem, depth + 1);
            if (!child) return nullptr;
            plist_dict_set_item(node.get(), key->utf8().c_str(), child.release());
        }
        return node;
    }
    setProblem(problem, object, path);
    return nullptr;
}

objc::Strong<objc_object> fromNode(plist_t node, PlistMutability mutability, int depth) {
    if (node == nullptr || depth >= kMaxDepth) return nullptr;
    const bool mutableContainers = mutability != PlistMutability::Immutable;
    const bool mutableLeaves = mutability == PlistMutability::MutableContainersAndLeaves;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            return NSNumber::create(value != 0);
        }
        case PLIST_UINT: {
            std::uint64_t value = 0;
            plist_get_uint_val(node, &value);
            return NSNumber::create(static_cast<long long>(value));
        }
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            return NSNumber::create(value);
        }
        case PLIST_KEY:
        case PLIST_STRING: {
            std::uint64_t length = 0;
            const char* text = nullptr;
            char* key = nullptr;
            if (plist_get_node_type(node) == PLIST_STRING) {
                text = plist_get_string_ptr(node, &length);
            } else {
                plist_get_key_val(node, &key);
                text = key;
                length = key != nullptr ? std::char_traits<char>::length(key) : 0;
            }
            const std::string_view utf8(text != nullptr ? text : "", length);
            objc::Strong<objc_object> result;
            if (mutableLeaves) {
                result = NSMutableString::create(utf8);
            } else {
                result = NSString::create(utf8);
            }
            std::free(key);
            return result;
        }
        case PLIST_DATA: {
            std::uint64_t length = 0;
            const char* bytes = plist_get_data_ptr(node, &length);
            const auto* begin = reinterpret_cast<const std::uint8_t*>(bytes);
            const std::span<const std::uint8_t> span(begin, bytes != nullptr ? length : 0);
            if (mutableLeaves) return NSMutableData::create(span);
            return NSData::create(span);
        }
        case PLIST_DATE: {
            std::int32_t seconds = 0;
            std::int32_t micros = 0;
            plist_get_date_val(node, &seconds, &micros);
            // libplist answers the fraction without its sign; dates before
            // the reference date have negative seconds (within its first
            // second before, the sign is lost).
            const double fraction = micros / 1e6;
            return NSDate::create(static_cast<double>(seconds) +
                                  (seconds < 0 ? -fraction : fraction));
        }
        case PLIST_UID: {
            // As keyed archives show a reference in XML.
            std::uint64_t value = 0;
            plist_get_uid_val(node, &value);
            return NSDictionary::create(
                {{NSSTR("CF$UID"), NSNumber::create(static_cast<long long>(value)).get()}});
        }
        case PLIST_ARRAY: {
            const std::uint32_t count = plist_array_get_size(node);
            std::vector<objc::Strong<objc_object>> elements;
            elements.reserve(count);
            for (std::uint32_t i = 0; i < count; ++i) {
                auto element = fromNode(plist_array_get_item(node, i), mutability, depth + 1);
                if (!element) return nullptr;
                elements.push_back(std::move(element));
            }
            std::vector<id> raw(elements.begin(), elements.end());
            if (mutableContainers) return NSMutableArray::create(std::move(raw));
            return NSArray::create(std::move(raw));
        }
        case PLIST_DICT: {
            std::vector<std::pair<objc::Strong<objc_object>, objc::Strong<objc_object>>> entries;
            plist_dict_iter it = nullptr;
            plist_dict_new_iter(node, &it);
            const std::unique_ptr<void, void (*)(void*)> iterOwner(it, &std::free);
            for (;;) {
                char* key = nullptr;
                plist_t value = nullptr;
                plist_dict_next_item(node, it, &key, &value);
                if (key == nullptr) break;
                const std::unique_ptr<char, void (*)(void*)> keyOwner(key, &std::free);
                auto object = fromNode(value, mutability, depth + 1);
                if (!object) return nullptr;
                entries.emplace_back(NSString::create(key), std::move(object));
            }
            std::vector<std::pair<id, id>> pairs;
            pairs.reserve(entries.size());
            for (const auto& [key, value] : entries) pairs.emplace_back(key.get(), value.get());
            if (mutableContainers) return NSMutableDictionary::create(pairs);
            return NSDictionary::create(pairs);
        }
        case PLIST_NONE:
        default:
            return nullptr;
    }
}

}  // namespace

bool isPropertyList(id object, std::string* problem) {
    return check(object, {}, problem, 0);
}

objc::Result<objc::Strong<objc_object>> copyPropertyList(id object) {
    std::string problem;
    auto copy = copyValue(object, {}, &problem, 0);
    if (!copy) return objc::Error{0, std::move(problem)};
    return copy;
}

objc::Result<std::string> encodePropertyList(id object, PlistFormat format) {
    if (format != PlistFormat::XML && format != PlistFormat::Binary) {
        return objc::Error{0, "only the XML and binary formats can be written"};
    }
    std::string problem;
    const PlistNode root = toNode(object, {}, &problem, 0);
    if (!root) return objc::Error{0, std::move(problem)};
    char* bytes = nullptr;
    std::uint32_t length = 0;
    if (format == PlistFormat::XML) {
        plist_to_xml(root.get(), &bytes, &length);
    } else {
        plist_to_bin(root.get(), &bytes, &length);
    }
    if (bytes == nullptr) return objc::Error{0, "the property list could not be encoded"};
    std::string result(bytes, length);
    std::free(bytes);
    return result;
}

objc::Result<objc::Strong<objc_object>> decodePropertyList(std::string_view bytes,
                                                           PlistMutability mutability,
                                                           PlistFormat* format) {
    bool binary = false;
    const auto root = readPlist(bytes, &binary);
    if (!root) return root.error();
    auto object = fromNode(root->get(), mutability, 0);
    if (!object) {
        return objc::Error{0, "the property list holds an unsupported or too deeply nested value"};
    }
    if (format != nullptr) *format = binary ? PlistFormat::Binary : PlistFormat::XML;
    return object;
}

}  // namespace foundation::detail
