// Reading one folder for the file browser: its entries classified (links
// followed) and sorted for display.
#pragma once

#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include <objc/result.h>

#include <string>
#include <vector>

namespace tolbrenn::detail {

// `path` is absolute. Folders first, then files and broken links, each group
// in the platform's order for names shown to people. The error's message is
// the system's reason when the folder cannot be read.
objc::Result<std::vector<ParcelvaneFileBrowserViewController::Entry>> readFolder(
    const std::string& path);

// The path with `name` appended ("/" + "etc" is "/etc").
std::string joinPath(const std::string& folder, const std::string& name);
// The folder holding `path`; "/" for "/" and its children.
std::string parentPath(const std::string& path);
// An absolute path without "." / ".." parts or repeated and trailing
// slashes; relative paths start at the current folder. Links are kept.
std::string normalizePath(const std::string& path);
// The path with every link resolved; errno and its text when it cannot be (a
// dangling link or a loop).
objc::Result<std::string> realPath(const std::string& path);
// Why the link at `path` cannot be followed ("No such file or directory" when
// it can be by now).
std::string brokenLinkReason(const std::string& path);

}  // namespace tolbrenn::detail
