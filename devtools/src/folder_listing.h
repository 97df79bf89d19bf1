// Reading one folder for the file browser: its entries classified (links
// followed) and sorted for display.
#pragma once

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <optional>
#include <string>
#include <vector>

namespace tolbrenn::detail {

struct FolderListing {
    std::vector<ParcelvaneFileBrowserViewController::Entry> entries;
    std::string error;  // the system's reason when the folder cannot be read
};

// `path` is absolute. Folders first, then files and broken links, each group
// in the platform's order for names shown to people.
FolderListing readFolder(const std::string& path);

// The path with `name` appended ("/" + "etc" is "/etc").
std::string joinPath(const std::string& folder, const std::string& name);
// The folder holding `path`; "/" for "/" and its children.
std::string parentPath(const std::string& path);
// An absolute path without "." / ".." parts or repeated and trailing
// slashes; relative paths start at the current folder. Links are kept.
std::string normalizePath(const std::string& path);
// The path with every link resolved, or nullopt with errno's text in
// `error` when it cannot be (a dangling link or a loop).
std::optional<std::string> realPath(const std::string& path, std::string* error);

}  // namespace tolbrenn::detail
