// Hook installation happens once per process, when the library loads, so
// each case runs the hook probe in a process of its own: the probe defines
// stand-ins for the host's classes, loads the library and checks the result.
#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <string>

extern char** environ;

namespace {

constexpr std::chrono::seconds kProbeTimeLimit{60};

struct ProbeRun {
    int status = -1;  // the exit status, or -1 when the probe did not exit normally
    std::string output;
};

// Runs the probe for one scenario, with stdout and stderr captured together.
ProbeRun runProbe(const std::string& scenario) {
    ProbeRun run;
    int fds[2];
    if (::pipe(fds) != 0) {
        run.output = "pipe failed";
        return run;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDERR_FILENO);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    posix_spawn_file_actions_addclose(&actions, fds[1]);
    std::string program = HOOK_PROBE;
    std::array<char*, 3> argv{program.data(), const_cast<char*>(scenario.c_str()), nullptr};
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(fds[1]);
    if (spawned != 0) {
        ::close(fds[0]);
        run.output = "cannot start " + program + ": " + std::to_string(spawned);
        return run;
    }
    // A probe that passes a call on to itself may loop for ever instead of
    // overflowing its stack: it gets a deadline.
    const auto deadline = std::chrono::steady_clock::now() + kProbeTimeLimit;
    char buffer[4096];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd readable{fds[0], POLLIN, 0};
        const int ready =
            left.count() > 0 ? ::poll(&readable, 1, static_cast<int>(left.count())) : 0;
        if (ready == 0) {
            ::kill(pid, SIGKILL);
            run.output += "\n(the probe was stopped after its time limit)";
            break;
        }
        if (ready < 0) {
            if (errno == EINTR) continue;
            break;
        }
        const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
        if (n > 0) {
            run.output.append(buffer, static_cast<std::size_t>(n));
        } else if (n == 0 || errno != EINTR) {
            break;
        }
    }
    ::close(fds[0]);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
    return run;
}

class HookInstallation : public testing::TestWithParam<const char*> {};

TEST_P(HookInstallation, InAProcessOfItsOwn) {
    const ProbeRun run = runProbe(GetParam());
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find(std::string("passed: ") + GetParam()), std::string::npos)
        << run.output;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, HookInstallation,
                         testing::Values(
                             // a class that only inherits the hooked methods
                             "inherited",
                             // a class that implements them itself
                             "own",
                             // no WAChatSessionViewController in the host
                             "no_chat_session",
                             // methods to add that the classes already have
                             "added_exists",
                             // a hooked method that the host lacks
                             "missing_method",
                             // the tools library is asked first
                             "prepares_file_browser"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param);
                         });

TEST(HookProbe, RefusesAnUnknownScenario) {
    const ProbeRun run = runProbe("no_such_scenario");
    EXPECT_EQ(run.status, 2) << run.output;
}

}  // namespace
