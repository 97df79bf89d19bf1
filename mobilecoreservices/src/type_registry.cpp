#include "type_registry.h"

#include <algorithm>
#include <deque>

namespace mobilecoreservices {

namespace {

std::vector<std::string> words(const char* text) {
    std::vector<std::string> out;
    std::string_view rest = text;
    while (!rest.empty()) {
        const auto space = rest.find(' ');
        if (space != 0) out.emplace_back(rest.substr(0, space));
        if (space == std::string_view::npos) break;
        rest.remove_prefix(space + 1);
    }
    return out;
}

template <class Vector, class Value>
void appendUnique(Vector& v, const Value& value) {
    if (std::find(v.begin(), v.end(), value) == v.end()) v.push_back(value);
}

void appendUniqueIgnoringCase(std::vector<std::string>& v, std::string_view value) {
    for (const auto& s : v) {
        if (equalsIgnoringCase(s, value)) return;
    }
    v.emplace_back(value);
}

bool isExtensionClass(std::string_view tagClass) {
    return equalsIgnoringCase(tagClass, kFilenameExtensionTagClass);
}
bool isMimeClass(std::string_view tagClass) {
    return equalsIgnoringCase(tagClass, kMimeTypeTagClass);
}

// What a file of an unknown MIME type still is, by its top-level type.
std::string_view kindOfMediaType(std::string_view mimeType) {
    const auto slash = mimeType.find('/');
    if (slash == std::string_view::npos) return {};
    const auto top = mimeType.substr(0, slash);
    if (equalsIgnoringCase(top, "image")) return "public.image";
    if (equalsIgnoringCase(top, "audio")) return "public.audio";
    if (equalsIgnoringCase(top, "video")) return "public.movie";
    if (equalsIgnoringCase(top, "text")) return "public.text";
    if (equalsIgnoringCase(top, "font")) return "public.font";
    return {};
}

constexpr std::string_view kData = "public.data";

}  // namespace

std::string normalizedMimeType(std::string_view mimeType) {
    mimeType = mimeType.substr(0, mimeType.find(';'));
    const auto first = mimeType.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = mimeType.find_last_not_of(" \t");
    return asciiLower(mimeType.substr(first, last - first + 1));
}

TypeRegistry::TypeRegistry(std::span<const CoreTypeEntry> table, SharedMimeDatabase mimeDatabase)
    : mime_(std::move(mimeDatabase)) {
    for (const auto& entry : table) {
        TypeDeclaration declaration{entry.identifier,        words(entry.conformsTo),
                                    words(entry.extensions), words(entry.mimeTypes),
                                    entry.description,       {}};
        const auto [it, inserted] =
            declarations_.emplace(declaration.identifier, std::move(declaration));
        if (!inserted) continue;  // the first declaration of an identifier stands
        // Map nodes never move, so the indexes can point at them; the table's
        // order is the order of preference.
        const TypeDeclaration* d = &it->second;
        for (const auto& e : d->extensions) appendUnique(byExtension_[e], d);
        for (const auto& m : d->mimeTypes) appendUnique(byMimeType_[m], d);
    }
    computeAncestors();
}

const TypeRegistry& TypeRegistry::shared() {
    // Initialised once, even when many threads arrive together.
    static const TypeRegistry registry(
        coreTypeTable(), SharedMimeDatabase::load(SharedMimeDatabase::systemDirectories()));
    return registry;
}

void TypeRegistry::computeAncestors() {
    for (auto& [key, declaration] : declarations_) {
        auto& ancestors = declaration.ancestors;
        std::vector<std::string_view> pending{declaration.identifier};
        while (!pending.empty()) {
            const auto next = pending.back();
            pending.pop_back();
            if (!ancestors.emplace(next).second) continue;  // seen: also ends cycles
            if (const auto* d = this->declaration(next)) {
                for (const auto& parent : d->conformsTo) pending.emplace_back(parent);
            }
        }
    }
}

const TypeDeclaration* TypeRegistry::declaration(std::string_view identifier) const {
    const auto it = declarations_.find(identifier);
    return it == declarations_.end() ? nullptr : &it->second;
}

TypeRegistry::Candidates TypeRegistry::candidatesForMimeType(std::string_view mimeType) const {
    Candidates out;
    if (const auto it = byMimeType_.find(mimeType); it != byMimeType_.end()) out = it->second;
    const auto canonical = mime_.canonicalMimeType(mimeType);
    if (const auto it = byMimeType_.find(canonical); it != byMimeType_.end()) {
        for (const auto* d : it->second) appendUnique(out, d);
    }
    return out;
}

TypeRegistry::Candidates TypeRegistry::candidatesForExtension(std::string_view extension) const {
    if (const auto it = byExtension_.find(extension); it != byExtension_.end()) return it->second;
    // Not in the table: a declared type may still claim the MIME type that
    // the shared database gives the extension (jpe -> image/jpeg).
    Candidates out;
    for (const auto m : mime_.mimeTypesForExtension(extension)) {
        for (const auto* d : candidatesForMimeType(m)) appendUnique(out, d);
    }
    return out;
}

std::vector<std::string> TypeRegistry::identifiersForTag(std::string_view tagClass,
                                                         std::string_view tag,
                                                         std::string_view conformingTo) const {
    // The payload separates entries with NUL and keys from values with '='.
    if (tagClass.empty() || tagClass.find_first_of(std::string_view("=\0", 2)) != tagClass.npos ||
        tag.find('\0') != tag.npos || conformingTo.find('\0') != conformingTo.npos) {
        return {};
    }
    std::string mimeType;
    Candidates candidates;
    if (isExtensionClass(tagClass)) {
        if (tag.starts_with('.')) tag.remove_prefix(1);
        candidates = candidatesForExtension(tag);
    } else if (isMimeClass(tagClass)) {
        mimeType = normalizedMimeType(tag);
        tag = mimeType;
        candidates = candidatesForMimeType(tag);
    }
    std::vector<std::string> out;
    for (const auto* d : candidates) {
        if (conformingTo.empty() || d->ancestors.contains(conformingTo)) {
            out.push_back(d->identifier);
        }
    }
    if (out.empty()) {
        auto dynamic = dynamicIdentifierFor(tagClass, tag);
        if (!conformingTo.empty() && !conformsTo(dynamic, conformingTo)) {
            dynamic.conformsTo.emplace_back(conformingTo);
        }
        out.push_back(dynamic.encode());
    }
    return out;
}

DynamicIdentifier TypeRegistry::dynamicIdentifierFor(std::string_view tagClass,
                                                     std::string_view tag) const {
    DynamicIdentifier dynamic;
    if (isExtensionClass(tagClass)) {
        // Extensions match in any case, so the made-up identifier must not
        // depend on it.
        dynamic.tags.push_back({std::string(kFilenameExtensionTagClass), asciiLower(tag)});
        if (const auto mimes = mime_.mimeTypesForExtension(tag); !mimes.empty()) {
            dynamic.tags.push_back({std::string(kMimeTypeTagClass), std::string(mimes.front())});
        }
    } else if (isMimeClass(tagClass)) {
        // Extension first, as from the extension's side: both sides of a
        // shared-database pair make the same identifier.
        if (const auto extensions = mime_.extensionsForMimeType(tag); !extensions.empty()) {
            dynamic.tags.push_back(
                {std::string(kFilenameExtensionTagClass), std::string(extensions.front())});
        }
        dynamic.tags.push_back({std::string(kMimeTypeTagClass), std::string(tag)});
    } else {
        dynamic.tags.push_back({std::string(tagClass), std::string(tag)});
    }
    return dynamic;
}

std::vector<std::string> TypeRegistry::tagsWithClass(std::string_view identifier,
                                                     std::string_view tagClass) const {
    std::vector<std::string> out;
    const bool extensions = isExtensionClass(tagClass);
    const bool mimeTypes = isMimeClass(tagClass);
    if (const auto* d = declaration(identifier)) {
        if (extensions) {
            out = d->extensions;
            // The database may know more names for the same MIME types.
            for (const auto& m : d->mimeTypes) {
                for (const auto e : mime_.extensionsForMimeType(m))
                    appendUniqueIgnoringCase(out, e);
            }
        } else if (mimeTypes) {
            out = d->mimeTypes;
        }
        return out;
    }
    const auto dynamic = DynamicIdentifier::decode(identifier);
    if (!dynamic) return out;
    for (const auto tag : dynamic->tagsWithClass(tagClass)) out.emplace_back(tag);
    if (out.empty() && extensions) {
        for (const auto m : dynamic->tagsWithClass(kMimeTypeTagClass)) {
            for (const auto e : mime_.extensionsForMimeType(m)) appendUniqueIgnoringCase(out, e);
        }
    } else if (out.empty() && mimeTypes) {
        for (const auto m : mimeTypesOf(*dynamic)) appendUniqueIgnoringCase(out, m);
    }
    return out;
}

bool TypeRegistry::conformsTo(std::string_view identifier, std::string_view other) const {
    if (identifier.empty() || other.empty()) return false;
    if (equalsIgnoringCase(identifier, other)) return true;
    if (const auto* d = declaration(identifier)) return d->ancestors.contains(other);
    if (const auto dynamic = DynamicIdentifier::decode(identifier)) {
        return conformsTo(*dynamic, other);
    }
    return false;
}

bool TypeRegistry::conformsTo(const DynamicIdentifier& dynamic, std::string_view other) const {
    // A parent made up in turn is encoded inside this one, hence shorter:
    // the recursion ends.
    for (const auto& parent : parentsOf(dynamic)) {
        if (conformsTo(parent, other)) return true;
    }
    return false;
}

std::vector<std::string_view> TypeRegistry::mimeTypesOf(const DynamicIdentifier& dynamic) const {
    auto out = dynamic.tagsWithClass(kMimeTypeTagClass);
    if (out.empty()) {
        for (const auto e : dynamic.tagsWithClass(kFilenameExtensionTagClass)) {
            for (const auto m : mime_.mimeTypesForExtension(e)) appendUnique(out, m);
        }
    }
    return out;
}

std::vector<std::string> TypeRegistry::parentsOf(const DynamicIdentifier& dynamic) const {
    std::vector<std::string> out = dynamic.conformsTo;
    if (!dynamic.describesFile()) return out;
    for (const auto mimeType : mimeTypesOf(dynamic)) {
        // Up the database's subclass links to the nearest declared types.
        CaseInsensitiveSet seen;
        std::deque<std::string_view> pending{mimeType};
        while (!pending.empty()) {
            const auto next = pending.front();
            pending.pop_front();
            if (!seen.emplace(next).second) continue;
            if (const auto declared = candidatesForMimeType(next); !declared.empty()) {
                appendUniqueIgnoringCase(out, declared.front()->identifier);
                continue;
            }
            for (const auto parent : mime_.parentsOf(next)) pending.push_back(parent);
        }
        if (const auto kind = kindOfMediaType(mimeType); !kind.empty()) {
            appendUniqueIgnoringCase(out, kind);
        }
    }
    appendUniqueIgnoringCase(out, kData);
    return out;
}

std::optional<std::string> TypeRegistry::description(std::string_view identifier) const {
    if (const auto* d = declaration(identifier)) return d->description;
    const auto dynamic = DynamicIdentifier::decode(identifier);
    if (!dynamic) return std::nullopt;
    // As file browsers name a kind they do not know: by its extension.
    if (const auto extensions = dynamic->tagsWithClass(kFilenameExtensionTagClass);
        !extensions.empty() && !extensions.front().empty()) {
        std::string name(extensions.front());
        for (char& c : name) c = c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
        return name + " file";
    }
    return std::nullopt;
}

}  // namespace mobilecoreservices
