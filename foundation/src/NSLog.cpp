#include <Foundation/NSLog.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace objc::detail {

void logMessage(std::string_view message) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local);
    char prefix[160];
    std::snprintf(prefix, sizeof prefix, "%s.%03lld %s[%d:%ld] ", date,
                  static_cast<long long>(millis), program_invocation_short_name,
                  static_cast<int>(getpid()), static_cast<long>(syscall(SYS_gettid)));
    std::string line(prefix);
    line.append(message);
    if (!line.ends_with('\n')) line.push_back('\n');
    // One write per line, retried until complete, so that lines from threads never mix.
    const char* p = line.data();
    std::size_t left = line.size();
    while (left > 0) {
        const ssize_t n = ::write(STDERR_FILENO, p, left);
        if (n < 0) {
            if (errno == EINTR) continue;
            return;
        }
        p += n;
        left -= static_cast<std::size_t>(n);
    }
}

}  // namespace objc::detail
