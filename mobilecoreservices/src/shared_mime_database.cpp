#include "shared_mime_database.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>

namespace mobilecoreservices {

namespace {

// The lines of a database file that carry data: no comments, no blanks.
template <class F>
void forEachLine(std::istream& in, F&& f) {
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.front() == '#') continue;
        f(std::string_view(line));
    }
}

std::vector<std::string_view> split(std::string_view s, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto at = s.find(separator);
        parts.push_back(s.substr(0, at));
        if (at == std::string_view::npos) return parts;
        s.remove_prefix(at + 1);
    }
}

// "child parent" and "alias canonical" lines: two names and nothing else.
bool splitPair(std::string_view line, std::string_view& first, std::string_view& second) {
    const auto space = line.find(' ');
    if (space == std::string_view::npos || space == 0) return false;
    first = line.substr(0, space);
    second = line.substr(space + 1);
    return !second.empty() && second.find(' ') == std::string_view::npos;
}

template <class Vector, class Value>
void appendUnique(Vector& v, const Value& value) {
    if (std::find(v.begin(), v.end(), value) == v.end()) v.emplace_back(value);
}

}  // namespace

SharedMimeDatabase SharedMimeDatabase::load(const std::vector<std::filesystem::path>& directories) {
    SharedMimeDatabase db;
    std::vector<Glob> globs;
    // Lowest precedence first, so that a __NOGLOBS__ line clears only what
    // the directories below it said.
    for (std::size_t i = directories.size(); i-- > 0;) {
        std::ifstream in(directories[i] / "globs2");
        if (in) readGlobs(in, static_cast<int>(i), globs);
    }
    for (const auto& dir : directories) {
        if (std::ifstream in(dir / "aliases"); in) db.readAliases(in);
        if (std::ifstream in(dir / "subclasses"); in) db.readSubclasses(in);
    }
    db.index(std::move(globs));
    return db;
}

std::vector<std::filesystem::path> SharedMimeDatabase::systemDirectories() {
    const char* env = std::getenv("XDG_DATA_DIRS");
    const std::string_view dirs =
        env != nullptr && *env != '\0' ? env : "/usr/local/share/:/usr/share/";
    std::vector<std::filesystem::path> out;
    for (const auto dir : split(dirs, ':')) {
        if (!dir.empty()) out.push_back(std::filesystem::path(dir) / "mime");
    }
    return out;
}

void SharedMimeDatabase::readGlobs(std::istream& in, int directoryRank, std::vector<Glob>& globs) {
    forEachLine(in, [&](std::string_view line) {
        // weight:type:glob[:flags]
        const auto fields = split(line, ':');
        if (fields.size() < 3) return;
        int weight = 0;
        const auto w = fields[0];
        if (std::from_chars(w.data(), w.data() + w.size(), weight).ec != std::errc{}) return;
        const auto mimeType = fields[1];
        const auto pattern = fields[2];
        if (mimeType.find('/') == std::string_view::npos) return;
        if (pattern == "__NOGLOBS__") {
            std::erase_if(globs, [&](const Glob& g) {
                return g.directoryRank > directoryRank && equalsIgnoringCase(g.mimeType, mimeType);
            });
            return;
        }
        // Only "*.ext" globs name an extension; whole names and wildcards
        // inside the extension say nothing about one.
        if (!pattern.starts_with("*.") || pattern.size() == 2) return;
        const auto extension = pattern.substr(2);
        if (extension.find_first_of("*?[") != std::string_view::npos) return;
        bool caseSensitive = false;
        if (fields.size() > 3) {
            for (const auto flag : split(fields[3], ',')) caseSensitive |= flag == "cs";
        }
        globs.push_back({weight, directoryRank, asciiLower(mimeType),
                         caseSensitive ? std::string(extension) : asciiLower(extension),
                         caseSensitive});
    });
}

void SharedMimeDatabase::readSubclasses(std::istream& in) {
    forEachLine(in, [&](std::string_view line) {
        std::string_view child, parent;
        if (splitPair(line, child, parent)) {
            appendUnique(parents_[asciiLower(child)], asciiLower(parent));
        }
    });
}

void SharedMimeDatabase::readAliases(std::istream& in) {
    forEachLine(in, [&](std::string_view line) {
        std::string_view alias, canonical;
        // The directory that takes precedence is read first and keeps its say.
        if (splitPair(line, alias, canonical)) aliases_.emplace(alias, asciiLower(canonical));
    });
}

void SharedMimeDatabase::index(std::vector<Glob> globs) {
    std::stable_sort(globs.begin(), globs.end(), [](const Glob& a, const Glob& b) {
        if (a.weight != b.weight) return a.weight > b.weight;
        return a.directoryRank < b.directoryRank;
    });
    for (const auto& g : globs) {
        if (g.caseSensitive) {
            appendUnique(mimeByExactExtension_[g.extension], g.mimeType);
        } else {
            appendUnique(mimeByExtension_[g.extension], g.mimeType);
        }
        appendUnique(extensionsByMime_[g.mimeType], g.extension);
    }
}

std::vector<std::string_view> SharedMimeDatabase::mimeTypesForExtension(
    std::string_view extension) const {
    std::vector<std::string_view> out;
    if (const auto it = mimeByExactExtension_.find(extension); it != mimeByExactExtension_.end()) {
        for (const auto& m : it->second) appendUnique(out, m);
    }
    if (const auto it = mimeByExtension_.find(extension); it != mimeByExtension_.end()) {
        for (const auto& m : it->second) appendUnique(out, m);
    }
    return out;
}

std::vector<std::string_view> SharedMimeDatabase::extensionsForMimeType(
    std::string_view mimeType) const {
    auto it = extensionsByMime_.find(mimeType);
    if (it == extensionsByMime_.end()) it = extensionsByMime_.find(canonicalMimeType(mimeType));
    if (it == extensionsByMime_.end()) return {};
    return {it->second.begin(), it->second.end()};
}

std::string_view SharedMimeDatabase::canonicalMimeType(std::string_view mimeType) const noexcept {
    const auto it = aliases_.find(mimeType);
    return it == aliases_.end() ? mimeType : std::string_view(it->second);
}

std::vector<std::string_view> SharedMimeDatabase::parentsOf(std::string_view mimeType) const {
    const auto canonical = canonicalMimeType(mimeType);
    std::vector<std::string_view> out;
    if (const auto it = parents_.find(canonical); it != parents_.end()) {
        for (const auto& p : it->second) out.emplace_back(p);
    }
    constexpr std::string_view kPlainText = "text/plain";
    if (canonical.size() > 5 && equalsIgnoringCase(canonical.substr(0, 5), "text/") &&
        !equalsIgnoringCase(canonical, kPlainText)) {
        bool present = false;
        for (const auto p : out) present |= equalsIgnoringCase(p, kPlainText);
        if (!present) out.push_back(kPlainText);
    }
    return out;
}

}  // namespace mobilecoreservices
