// A fresh folder in $TMPDIR, removed with everything in it when the object goes.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace testsupport {

// Writes the file whole, making the folders above it, and answers its path.
inline std::string writeFile(const std::filesystem::path& file, std::string_view bytes = {}) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file.string();
}

class ScratchFolder {
  public:
    explicit ScratchFolder(std::string_view prefix = "pv-test") {
        std::string pattern =
            (std::filesystem::temp_directory_path() / (std::string(prefix) + "-XXXXXX")).string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a scratch folder " + pattern);
        }
        // As realpath() answers, so that paths the code under test gives back compare equal.
        path_ = std::filesystem::canonical(pattern).string();
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::string& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const {
        return std::filesystem::path(path_) / name;
    }

    // Writes the file below the folder, as writeFile does.
    std::string write(std::string_view name, std::string_view bytes = {}) const {
        return writeFile(*this / name, bytes);
    }
    // Makes the folder and those above it, and answers its path.
    std::string folder(std::string_view name) const {
        const std::filesystem::path made = *this / name;
        std::filesystem::create_directories(made);
        return made.string();
    }
    // A symbolic link at `name` that points to `target`, as given.
    void link(std::string_view name, const std::string& target) const {
        std::filesystem::create_symlink(target, *this / name);
    }

  private:
    std::string path_;
};

// A file's bytes, whole; empty when it cannot be read.
inline std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace testsupport
