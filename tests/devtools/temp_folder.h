// A scratch folder for a test, removed with everything in it afterwards.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class TempFolder {
  public:
    TempFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "pv-devtools-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
        // The real path, so tests compare with what realpath() answers.
        path_ = std::filesystem::canonical(pattern).string();
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    // A file of `size` bytes (parents created).
    std::string file(const std::string& name, std::size_t size = 0) const {
        const std::string full = *this / name;
        std::filesystem::create_directories(std::filesystem::path(full).parent_path());
        std::ofstream(full, std::ios::binary) << std::string(size, 'x');
        return full;
    }
    std::string folder(const std::string& name) const {
        const std::string full = *this / name;
        std::filesystem::create_directories(full);
        return full;
    }
    std::string link(const std::string& name, const std::string& target) const {
        const std::string full = *this / name;
        std::filesystem::create_symlink(target, full);
        return full;
    }

  private:
    std::string path_;
};

inline bool runningAsRoot() {
    return ::geteuid() == 0;
}
