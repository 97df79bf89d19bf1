// Replays seed corpora through a harness without libFuzzer, so that every
// build (with gcc, under each sanitizer) runs the inputs that once failed.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_input.h"

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        std::vector<fs::path> files;
        if (fs::is_directory(argv[i])) {
            for (const auto& entry : fs::directory_iterator(argv[i])) {
                if (entry.is_regular_file()) files.push_back(entry.path());
            }
        } else {
            files.emplace_back(argv[i]);
        }
        for (const auto& file : files) {
            std::ifstream in(file, std::ios::binary);
            const std::vector<char> data((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
            if (!in.eof() && in.fail()) {
                std::cerr << "cannot read " << file << "\n";
                return 1;
            }
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
            ++count;
        }
    }
    std::cout << count << " passed, 0 failed\n";
    return count > 0 ? 0 : 1;
}
