// Putting a sent document's file into the host's media folders. A plain
// blocking function that may run on any thread: the copy keeps the
// original's holes, appears under its final name only when complete, and
// gives up on a file that stops giving data.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace host {

// Called on the copying thread, about every 100 ms and once at the end.
using CopyProgress = std::function<void(std::uint64_t copied, std::uint64_t total)>;

// How long a copy may go without getting any data before it fails.
inline constexpr std::chrono::milliseconds kDefaultStallTimeout{30'000};

// Unfinished copies carry this prefix (where the file system cannot make an
// unnamed file); finished ones never do.
inline constexpr std::string_view kPartialCopyPrefix = ".partial-";

struct StoredFile {
    std::filesystem::path path;
    std::uint64_t size = 0;
    bool moved = false;
};

// Puts `source` into `folder` (which exists) under a unique name made from
// `name`: moved when `takeOver` (the host owns the file) and a rename can do
// it, copied otherwise. Throws std::system_error when the source is not a
// regular file (EISDIR, ENODEV or EINVAL, with the kind named), cannot be
// read or written, or gives no data for `stallTimeout` (ETIMEDOUT). A failed
// call leaves nothing in `folder` and the source as it was.
StoredFile storeFile(const std::filesystem::path& source, const std::filesystem::path& folder,
                     const std::string& name, bool takeOver, const CopyProgress& progress = {},
                     std::chrono::milliseconds stallTimeout = kDefaultStallTimeout);

// Copies what `in` gives, from where it stands to its end, to `out`; for
// descriptors whose reads can wait (pipes, pseudo-files). Answers the bytes
// copied; throws std::system_error (ETIMEDOUT when no data came for
// `stallTimeout`).
std::uint64_t copyToEnd(int in, int out, std::chrono::milliseconds stallTimeout,
                        const CopyProgress& progress = {});

// Removes the unfinished copies that a killed run left in the chats' folders
// under `mediaRoot` ("<home>/Library/Media"); finished files stay. For
// start-up, before any send; never throws.
void removeLeftoverCopies(const std::filesystem::path& mediaRoot);

}  // namespace host
