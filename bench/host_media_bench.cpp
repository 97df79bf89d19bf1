// Sending a large document: a handed-over Inbox file should cost a rename
// and a row, a copy from outside about what `cp` costs, in time and, for a
// sparse file, in disk.
#include <Host/chat_store.h>
#include <Host/WADocumentAttachment.h>

#include <Foundation/NSURL.h>

#include <UIKit/UIDocumentPickerViewController.h>

#include <objc/strong.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
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

constexpr std::uint64_t kRealSize = std::uint64_t{1} << 30;
constexpr std::uint64_t kSparseSize = std::uint64_t{2} << 30;
constexpr std::uint64_t kSpaceNeeded = std::uint64_t{3} << 30;

// A real file has every block written; a sparse one, a disk image say, is
// mostly holes with a few data extents.
enum class Kind { Real, Sparse };

// A container and an outside folder under a temporary folder, gone at the end.
class MediaScratch {
  public:
    MediaScratch() {
        std::string pattern = (fs::temp_directory_path() / "host-media-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) return;
        root_ = pattern;
        fs::create_directories(inbox());
        fs::create_directories(home() / "Documents");
        fs::create_directories(outside());
        store_ = std::make_unique<host::SqliteChatStore>(
            (home() / "Documents" / "ChatStorage.sqlite").string());
        fs::create_directories(media());
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
    fs::path inbox() const { return UIDocumentPickerViewController::inboxFolder(home().string()); }
    fs::path outside() const { return root_ / "outside"; }
    // Where sends store their copies: cp writes there too, so that both
    // write into the same folder of the same file system.
    fs::path media() {
        return home() / "Library" / "Media" / std::to_string(store_->chatId(kChat));
    }
    host::ChatStore& store() { return *store_; }

    static constexpr const char* kChat = "Bench";

    // Flushed, so that later syncs and writeback do not pay for it.
    static bool makeFile(const fs::path& path, Kind kind) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) return false;
        std::vector<char> block(std::size_t{8} << 20, 'm');
        const std::uint64_t size = kind == Kind::Real ? kRealSize : kSparseSize;
        // The sparse file: 8 MiB of data every 256 MiB.
        const std::uint64_t step = kind == Kind::Real ? block.size() : std::uint64_t{256} << 20;
        bool ok = true;
        for (std::uint64_t at = 0; ok && at < size; at += step) {
            ok = ::pwrite(fd, block.data(), block.size(), static_cast<off_t>(at)) ==
                 static_cast<ssize_t>(block.size());
        }
        ok = ok && ::ftruncate(fd, static_cast<off_t>(size)) == 0 && ::fsync(fd) == 0;
        ::close(fd);
        return ok;
    }

  private:
    fs::path root_;
    std::unique_ptr<host::ChatStore> store_;
};

// Writes the file, or marks the benchmark skipped and answers false.
bool prepare(benchmark::State& state, const MediaScratch& scratch, const fs::path& file,
             Kind kind) {
    if (const std::string problem = scratch.problem(); !problem.empty()) {
        state.SkipWithError(problem.c_str());
        return false;
    }
    if (!MediaScratch::makeFile(file, kind)) {
        state.SkipWithError("cannot write the file to send");
        return false;
    }
    return true;
}

// The disk a file takes, as a counter that a target can compare.
void countBlocks(benchmark::State& state, const fs::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) == 0)
        state.counters["blocks"] = static_cast<double>(info.st_blocks);
}

host::Message send(MediaScratch& scratch, const fs::path& file, bool transfer) {
    auto attachment = WADocumentAttachment::create(NSURL::fileURL(file.string()).get(), transfer);
    return host::sendDocument(scratch.store(), MediaScratch::kChat, *attachment, scratch.home());
}

void BM_SendMovedFromInbox(benchmark::State& state) {
    objc::AutoreleasePool pool;
    MediaScratch scratch;
    const fs::path inbox = scratch.inbox() / "Film.mov";
    if (!prepare(state, scratch, inbox, Kind::Real)) return;
    for (auto _ : state) {
        const host::Message sent = send(scratch, inbox, true);
        state.PauseTiming();
        fs::rename(sent.filePath, inbox);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_SendMovedFromInbox)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SendCopiedFromOutside(benchmark::State& state, Kind kind) {
    objc::AutoreleasePool pool;
    MediaScratch scratch;
    const fs::path original = scratch.outside() / "Film.mov";
    if (!prepare(state, scratch, original, kind)) return;
    for (auto _ : state) {
        const host::Message sent = send(scratch, original, true);
        state.PauseTiming();
        countBlocks(state, sent.filePath);
        fs::remove(sent.filePath);
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(BM_SendCopiedFromOutside, real, Kind::Real)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_SendCopiedFromOutside, sparse, Kind::Sparse)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// cp of the same file into the same folder, the target gone before each run.
void BM_CpBaseline(benchmark::State& state, Kind kind) {
    MediaScratch scratch;
    const fs::path original = scratch.outside() / "Film.mov";
    const fs::path copy = scratch.media() / "Film-copy.mov";
    if (!prepare(state, scratch, original, kind)) return;
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
        countBlocks(state, copy);
        fs::remove(copy);
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(BM_CpBaseline, real, Kind::Real)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_CpBaseline, sparse, Kind::Sparse)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

BENCH_BOUND("send a 1 GiB file from the Inbox (a move)",
            "BM_SendMovedFromInbox/iterations:3/real_time", 5e6);
BENCH_RATIO("send a 1 GiB file from outside (a copy) vs cp",
            "BM_SendCopiedFromOutside/real/iterations:3/real_time",
            "BM_CpBaseline/real/iterations:3/real_time", 1.2);
BENCH_RATIO("send a 2 GiB sparse file from outside vs cp",
            "BM_SendCopiedFromOutside/sparse/iterations:3/real_time",
            "BM_CpBaseline/sparse/iterations:3/real_time", 1.5);
BENCH_RATIO("disk taken by the sparse file's copy vs cp's",
            "BM_SendCopiedFromOutside/sparse/iterations:3/real_time:blocks",
            "BM_CpBaseline/sparse/iterations:3/real_time:blocks", 1.0);
