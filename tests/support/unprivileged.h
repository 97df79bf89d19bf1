// Runs part of a test as the user nobody in a child process, since root (as in CI) reads any
// folder and hides permission faults. The body answers "" when its checks hold, else what went
// wrong (EXPECT_* in the child never reaches the parent).
#pragma once

#include <fcntl.h>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <string>

namespace testsupport {

inline constexpr uid_t kNobodyUser = 65534;
inline constexpr gid_t kNobodyGroup = 65534;

// Runs `body` as nobody when root, else here; answers its answer or why the child failed.
inline std::string runUnprivileged(const std::function<std::string()>& body) {
    if (::geteuid() != 0) return body();
    const auto failed = [](const char* what) {
        return std::string(what) + ": " + std::strerror(errno);
    };
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) return failed("pipe");
    std::fflush(nullptr);  // nothing buffered is written twice
    const pid_t pid = ::fork();
    if (pid < 0) {
        ::close(fds[0]);
        ::close(fds[1]);
        return failed("fork");
    }
    if (pid == 0) {
        ::close(fds[0]);
        std::string answer;
        // Groups first: once the user is nobody, they cannot be changed.
        if (::setgroups(0, nullptr) != 0 || ::setgid(kNobodyGroup) != 0 ||
            ::setuid(kNobodyUser) != 0) {
            answer = failed("cannot become nobody");
        } else {
            try {
                answer = body();
            } catch (const std::exception& e) {
                answer = std::string("exception: ") + e.what();
            } catch (...) {
                answer = "an exception";
            }
        }
        for (std::size_t done = 0; done < answer.size();) {
            const ssize_t n = ::write(fds[1], answer.data() + done, answer.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        // No exit handlers or destructors: they belong to the parent.
        ::_exit(answer.empty() ? 0 : 1);
    }
    ::close(fds[1]);
    std::string answer;
    char buffer[512];
    for (;;) {
        const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        answer.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fds[0]);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        return "the unprivileged part died of signal " + std::to_string(WTERMSIG(status)) +
               (answer.empty() ? "" : ": " + answer);
    }
    if (!WIFEXITED(status) || (WEXITSTATUS(status) != 0 && answer.empty())) {
        return "the unprivileged part failed without saying why";
    }
    return answer;
}

}  // namespace testsupport
