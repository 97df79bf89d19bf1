// A scratch folder for a test, removed with everything in it afterwards.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

class TempFolder {
  public:
    TempFolder() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "pv-devtools-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp failed";
        path_ = std::filesystem::canonical(pattern).string();  // as realpath() answers
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    void file(const std::string& name, std::size_t size = 0) const {
        std::filesystem::create_directories(std::filesystem::path(*this / name).parent_path());
        std::ofstream(*this / name, std::ios::binary) << std::string(size, 'x');
    }
    void folder(const std::string& name) const {
        std::filesystem::create_directories(*this / name);
    }
    void link(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, *this / name);
    }

  private:
    std::string path_;
};
