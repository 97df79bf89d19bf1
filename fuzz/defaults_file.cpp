// The user-defaults file as loaded at start-up: any bytes in the file end in
// readable defaults or in the file kept aside, never in a crash.
#include <Foundation/NSDictionary.h>
#include <Foundation/NSUserDefaults.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz_input.h"

namespace {

// Made at the first input and removed with everything in it at exit.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string name =
            (std::filesystem::temp_directory_path() / "defaults-fuzz-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) std::abort();
        path_ = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

const std::filesystem::path& folder() {
    static const ScratchFolder scratch;
    return scratch.path();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto file = folder() / "app.plist";
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    {
        objc::AutoreleasePool pool;
        auto defaults = NSUserDefaults::create(file.string());
        (void)defaults->dictionaryRepresentation()->count();
    }
    // Files kept aside would pile up over millions of runs.
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder(), ignored)) {
        std::filesystem::remove(entry.path(), ignored);
    }
    return 0;
}
