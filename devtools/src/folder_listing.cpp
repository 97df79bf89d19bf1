#include "folder_listing.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSError.h>
#include <Foundation/NSFileManager.h>

#include <objc/string.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

namespace tolbrenn::detail {

namespace {

using Entry = ParcelvaneFileBrowserViewController::Entry;

Entry classify(const std::string& folder, const std::string& name) {
    Entry entry;
    entry.name = name;
    entry.path = joinPath(folder, name);
    struct stat own {};
    if (::lstat(entry.path.c_str(), &own) != 0) {
        // Gone between listing and looking: show it, but it cannot be opened.
        entry.kind = Entry::Kind::BrokenLink;
        return entry;
    }
    entry.isSymbolicLink = S_ISLNK(own.st_mode);
    struct stat target = own;
    // stat() follows the whole chain and fails with ELOOP on a cycle, so a
    // loop costs one call rather than a walk.
    if (entry.isSymbolicLink && ::stat(entry.path.c_str(), &target) != 0) {
        entry.kind = Entry::Kind::BrokenLink;
        return entry;
    }
    if (S_ISDIR(target.st_mode)) {
        entry.kind = Entry::Kind::Folder;
    } else {
        entry.kind = Entry::Kind::File;
        entry.size = static_cast<unsigned long long>(target.st_size);
        entry.sizeText = ParcelvaneFileBrowserViewController::formatSize(entry.size);
    }
    return entry;
}

struct Sortable {
    Entry entry;
    objc::Strong<NSString> key;
};

bool before(const Sortable& a, const Sortable& b) {
    const bool aFolder = a.entry.kind == Entry::Kind::Folder;
    const bool bFolder = b.entry.kind == Entry::Kind::Folder;
    if (aFolder != bFolder) return aFolder;
    const NSComparisonResult order = a.key->localizedStandardCompare(b.key.get());
    if (order != NSOrderedSame) return order == NSOrderedAscending;
    // Names equal to the eye ("a" and "A") still get a fixed order.
    return a.entry.name < b.entry.name;
}

}  // namespace

objc::Result<std::vector<Entry>> readFolder(const std::string& path) {
    const objc::AutoreleasePool pool;
    NSError* error = nullptr;
    NSArray* names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath(
        NSString::create(path).get(), &error);
    if (names == nullptr) {
        return objc::Error{0, error != nullptr
                                  ? std::string(error->localizedDescription()->UTF8String())
                                  : std::string("Unknown error")};
    }
    std::vector<Sortable> items;
    const NSUInteger count = names->count();
    items.reserve(count);
    for (NSUInteger i = 0; i < count; ++i) {
        auto* name = static_cast<NSString*>(names->objectAtIndex(i));
        items.push_back({classify(path, name->UTF8String()), objc::retained(name)});
    }
    std::sort(items.begin(), items.end(), before);
    std::vector<Entry> entries;
    entries.reserve(items.size());
    for (auto& item : items) entries.push_back(std::move(item.entry));
    return entries;
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '/') return folder + name;
    return folder + "/" + name;
}

std::string parentPath(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos || slash == 0) return "/";
    return path.substr(0, slash);
}

std::string normalizePath(const std::string& path) {
    std::filesystem::path p(path.empty() ? std::string("/") : path);
    if (p.is_relative()) {
        std::error_code code;
        const auto current = std::filesystem::current_path(code);
        p = (code ? std::filesystem::path("/") : current) / p;
    }
    std::string normal = p.lexically_normal().string();
    while (normal.size() > 1 && normal.back() == '/') normal.pop_back();
    return normal;
}

objc::Result<std::string> realPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    if (resolved == nullptr) {
        const int code = errno;
        return objc::Error{code, std::generic_category().message(code)};
    }
    return std::string(resolved.get());
}

std::string brokenLinkReason(const std::string& path) {
    const auto real = realPath(path);
    return real ? std::string("No such file or directory") : real.error().message;
}

}  // namespace tolbrenn::detail
