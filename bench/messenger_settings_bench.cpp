// The Settings screen while the maker's icon server accepts the download and
// never answers: the screen must follow the command at once, not when the
// download gives up. The messenger runs as the user runs it, with the
// library injected and commands on a pipe.
#if defined(MESSENGER_PATH) && defined(PARCELVANE_LIBRARY)

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "loopback_http_server.h"
#include "ratios.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr char kIconPath[] = "/apt/depict/ParcelvaneIcon-Small@2x.png";

// The messenger on pipes, in a device folder of its own; gone at the end.
class MessengerOnPipes {
  public:
    explicit MessengerOnPipes(const std::string& proxy) {
        std::string pattern = (fs::temp_directory_path() / "messenger-bench-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) return;
        home_ = pattern;
        int in[2], out[2];
        if (::pipe2(in, O_CLOEXEC) != 0) return;
        if (::pipe2(out, O_CLOEXEC) != 0) {
            ::close(in[0]);
            ::close(in[1]);
            return;
        }
        std::vector<std::string> args{MESSENGER_PATH, "--home", home_.string(), "--inject",
                                      PARCELVANE_LIBRARY};
        std::vector<char*> argv;
        for (auto& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        std::vector<std::string> env;
        for (char** e = environ; *e != nullptr; ++e) {
            const std::string entry = *e;
            const std::string name = entry.substr(0, entry.find('='));
            if (name != "http_proxy" && name != "LANG" && name != "MESSENGER_INSERT_LIBRARIES") {
                env.push_back(entry);
            }
        }
        env.push_back("http_proxy=" + proxy);
        env.push_back("LANG=en_US.UTF-8");
        std::vector<char*> envp;
        for (auto& e : env) envp.push_back(e.data());
        envp.push_back(nullptr);

        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        const int spawned =
            posix_spawn(&pid_, MESSENGER_PATH, &actions, nullptr, argv.data(), envp.data());
        posix_spawn_file_actions_destroy(&actions);
        ::close(in[0]);
        ::close(out[1]);
        input_ = in[1];
        output_ = out[0];
        if (spawned != 0) pid_ = -1;
    }

    ~MessengerOnPipes() {
        if (input_ >= 0) ::close(input_);
        if (pid_ > 0 && !exited_) {
            ::kill(pid_, SIGKILL);
            while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
        if (output_ >= 0) ::close(output_);
        std::error_code ignored;
        if (!home_.empty()) fs::remove_all(home_, ignored);
    }
    MessengerOnPipes(const MessengerOnPipes&) = delete;
    MessengerOnPipes& operator=(const MessengerOnPipes&) = delete;

    bool started() const { return pid_ > 0; }

    bool send(const std::string& line) {
        const std::string text = line + "\n";
        return ::write(input_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

    // Reads until `text` comes after what earlier waits consumed; false when
    // it does not within the time or the output ends.
    bool waitFor(const std::string& text, std::chrono::milliseconds patience) {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        for (;;) {
            if (const auto at = seen_.find(text, consumed_); at != std::string::npos) {
                consumed_ = at + text.size();
                return true;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd ready{output_, POLLIN, 0};
            if (::poll(&ready, 1, static_cast<int>(left.count())) <= 0) continue;
            char buffer[4096];
            const ssize_t n = ::read(output_, buffer, sizeof buffer);
            if (n <= 0) return false;
            seen_.append(buffer, static_cast<std::size_t>(n));
        }
    }

    // Ends the input and waits for the exit; false when it does not come in time.
    bool quit(std::chrono::milliseconds patience) {
        send("quit");
        ::close(input_);
        input_ = -1;
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (std::chrono::steady_clock::now() < deadline) {
            if (::waitpid(pid_, nullptr, WNOHANG) == pid_) return exited_ = true;
            std::this_thread::sleep_for(10ms);
        }
        return false;
    }

  private:
    fs::path home_;
    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    bool exited_ = false;
    std::string seen_;
    std::size_t consumed_ = 0;
};

void BM_SettingsScreenWithSilentIconServer(benchmark::State& state) {
    testsupport::LoopbackHttpServer server;
    // Taken, then held for longer than the run: the server never answers.
    server.respond(kIconPath, testsupport::CannedResponse::ok("").delayed(1h));
    MessengerOnPipes messenger(server.baseURL());
    if (!messenger.started() || !messenger.waitFor("== Chats ==", 10s)) {
        state.SkipWithError("the messenger did not start");
        return;
    }
    for (auto _ : state) {
        messenger.send("settings");
        if (!messenger.waitFor("Parcelvane Settings", 35s)) {
            state.SkipWithError("no Settings screen");
            return;
        }
        state.PauseTiming();
        messenger.send("chats");
        const bool back = messenger.waitFor("> chats\n== Chats ==", 10s);
        state.ResumeTiming();
        if (!back) {
            state.SkipWithError("no chats list");
            return;
        }
    }
    // Leaving does not wait out the download either.
    if (!messenger.quit(10s)) state.SkipWithError("the messenger did not quit");
}
BENCHMARK(BM_SettingsScreenWithSilentIconServer)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

BENCH_BOUND("Settings screen after the command, icon server silent",
            "BM_SettingsScreenWithSilentIconServer/iterations:20/real_time", 50e6);

#endif
