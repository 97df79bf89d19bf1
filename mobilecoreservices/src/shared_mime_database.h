// The freedesktop.org shared MIME-info database, as far as file names and
// MIME types go: extension globs with their weights (globs2), subclass links
// (subclasses) and alias names (aliases). Immutable once loaded, so that any
// number of threads may read it.
#pragma once

#include "string_keys.h"

#include <filesystem>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace mobilecoreservices {

class SharedMimeDatabase {
  public:
    SharedMimeDatabase() = default;

    // Reads each directory's globs2, subclasses and aliases; earlier
    // directories take precedence, as XDG_DATA_DIRS orders them. Missing or
    // unreadable files are skipped and malformed lines ignored.
    static SharedMimeDatabase load(const std::vector<std::filesystem::path>& directories);
    // The "mime" folder of every directory in XDG_DATA_DIRS (by default
    // /usr/local/share and /usr/share).
    static std::vector<std::filesystem::path> systemDirectories();

    // MIME types for a file-name extension (no leading dot), best first.
    // Case-sensitive globs match the extension exactly, the others in any case.
    std::vector<std::string_view> mimeTypesForExtension(std::string_view extension) const;
    // Extensions for a MIME type (or one of its aliases), best first.
    std::vector<std::string_view> extensionsForMimeType(std::string_view mimeType) const;
    // The canonical name of an alias; any other name as it is.
    std::string_view canonicalMimeType(std::string_view mimeType) const noexcept;
    // The MIME types a MIME type directly specialises, including the
    // implicit text/plain of every text/ type.
    std::vector<std::string_view> parentsOf(std::string_view mimeType) const;

    bool empty() const noexcept { return extensionsByMime_.empty() && parents_.empty(); }

  private:
    struct Glob {
        int weight;
        int directoryRank;  // 0 is the directory that takes precedence
        std::string mimeType;
        std::string extension;
        bool caseSensitive;
    };
    static void readGlobs(std::istream& in, int directoryRank, std::vector<Glob>& globs);
    void readSubclasses(std::istream& in);
    void readAliases(std::istream& in);
    void index(std::vector<Glob> globs);

    ExactMap<std::vector<std::string>> mimeByExactExtension_;
    CaseInsensitiveMap<std::vector<std::string>> mimeByExtension_;
    CaseInsensitiveMap<std::vector<std::string>> extensionsByMime_;
    CaseInsensitiveMap<std::vector<std::string>> parents_;
    CaseInsensitiveMap<std::string> aliases_;
};

}  // namespace mobilecoreservices
