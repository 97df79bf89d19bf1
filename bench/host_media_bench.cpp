// Sending a large document: a handed-over file inside the container should
// cost a rename and a row, a copy from outside about what `cp` costs.
#include <Host/ChatStore.h>
#include <Host/WADocumentAttachment.h>

#include <Foundation/NSURL.h>

#include <objc/strong.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ratios.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kFileSize = std::uint64_t{1} << 30;
constexpr std::uint64_t kSpaceNeeded = std::uint64_t{3} << 30;

// A container and an outside folder under a temporary folder, gone at the end.
class MediaScratch {
  public:
    MediaScratch() {
        std::string pattern = (fs::temp_directory_path() / "host-media-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) return;
        root_ = pattern;
        fs::create_directories(home() / "tmp" / "Inbox");
        fs::create_directories(home() / "Documents");
        fs::create_directories(outside());
        store_ = std::make_unique<host::SqliteChatStore>(
            (home() / "Documents" / "ChatStorage.sqlite").string());
    }
    ~MediaScratch() {
        store_.reset();
        std::error_code error;
        if (!root_.empty()) fs::remove_all(root_, error);
    }
    MediaScratch(const MediaScratch&) = delete;
    MediaScratch& operator=(const MediaScratch&) = delete;

    // Empty when the folder or the space is missing.
    std::string problem() const {
        if (root_.empty()) return "cannot make a temporary folder";
        struct statvfs info {};
        if (::statvfs(root_.c_str(), &info) != 0) return "cannot read the free space";
        if (static_cast<std::uint64_t>(info.f_bavail) * info.f_frsize < kSpaceNeeded) {
            return "less than 3 GiB free in " + root_.string();
        }
        return {};
    }
    fs::path home() const { return root_ / "home"; }
    fs::path outside() const { return root_ / "outside"; }
    host::ChatStore& store() { return *store_; }

    // A real 1 GiB file (every block written), flushed so that later syncs
    // do not pay for it.
    static bool makeFile(const fs::path& path) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) return false;
        std::vector<char> block(std::size_t{8} << 20, 'm');
        bool ok = true;
        for (std::uint64_t done = 0; ok && done < kFileSize; done += block.size()) {
            ok = ::write(fd, block.data(), block.size()) == static_cast<ssize_t>(block.size());
        }
        ok = ok && ::fsync(fd) == 0;
        ::close(fd);
        return ok;
    }

  private:
    fs::path root_;
    std::unique_ptr<host::ChatStore> store_;
};

// Writes the 1 GiB file, or marks the benchmark skipped and answers false.
bool prepare(benchmark::State& state, const MediaScratch& scratch, const fs::path& file) {
    if (const std::string problem = scratch.problem(); !problem.empty()) {
        state.SkipWithError(problem.c_str());
        return false;
    }
    if (!MediaScratch::makeFile(file)) {
        state.SkipWithError("cannot write the 1 GiB file");
        return false;
    }
    return true;
}

host::Message send(MediaScratch& scratch, const fs::path& file, bool transfer) {
    auto attachment = WADocumentAttachment::create(NSURL::fileURL(file.string()).get(), transfer);
    return host::sendDocument(scratch.store(), "Bench", *attachment, scratch.home());
}

void BM_SendMovedFromInbox(benchmark::State& state) {
    objc::AutoreleasePool pool;
    MediaScratch scratch;
    const fs::path inbox = scratch.home() / "tmp" / "Inbox" / "Film.mov";
    if (!prepare(state, scratch, inbox)) return;
    for (auto _ : state) {
        const host::Message sent = send(scratch, inbox, true);
        state.PauseTiming();
        fs::rename(sent.filePath, inbox);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_SendMovedFromInbox)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SendCopiedFromOutside(benchmark::State& state) {
    objc::AutoreleasePool pool;
    MediaScratch scratch;
    const fs::path original = scratch.outside() / "Film.mov";
    if (!prepare(state, scratch, original)) return;
    for (auto _ : state) {
        const host::Message sent = send(scratch, original, true);
        state.PauseTiming();
        fs::remove(sent.filePath);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_SendCopiedFromOutside)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CpBaseline(benchmark::State& state) {
    MediaScratch scratch;
    const fs::path original = scratch.outside() / "Film.mov";
    const fs::path copy = scratch.home() / "Film-copy.mov";
    if (!prepare(state, scratch, original)) return;
    std::string program = "cp", from = original.string(), to = copy.string();
    std::vector<char*> argv{program.data(), from.data(), to.data(), nullptr};
    for (auto _ : state) {
        pid_t pid = 0;
        int status = 0;
        if (::posix_spawnp(&pid, "cp", nullptr, nullptr, argv.data(), environ) != 0 ||
            ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("cp failed");
            break;
        }
        state.PauseTiming();
        fs::remove(copy);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CpBaseline)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCH_BOUND("send a 1 GiB file from the Inbox (a move)",
            "BM_SendMovedFromInbox/iterations:3/real_time", 5e6);
BENCH_RATIO("send a 1 GiB file from outside (a copy) vs cp",
            "BM_SendCopiedFromOutside/iterations:3/real_time",
            "BM_CpBaseline/iterations:3/real_time", 1.2);
