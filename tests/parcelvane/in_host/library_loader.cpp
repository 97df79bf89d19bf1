#include "parcelvane/in_host/library_loader.h"

#include "hooks/hook_table.h"

#include <objc/strong.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace testsupport {

namespace {

std::vector<parcelvane::hooks::HookResult> results;

// A bound socket that never listens: connecting to its port is refused.
class RefusingPort {
  public:
    RefusingPort() : fd_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (fd_ < 0 || ::bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            throw std::runtime_error("cannot reserve a loopback port");
        }
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }
    ~RefusingPort() { ::close(fd_); }
    RefusingPort(const RefusingPort&) = delete;
    RefusingPort& operator=(const RefusingPort&) = delete;

    const std::string& url() const noexcept { return url_; }

  private:
    int fd_;
    std::string url_;
};

class LibraryEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        ::unsetenv("no_proxy");
        ::unsetenv("NO_PROXY");
        ::setenv("http_proxy", refusingProxy().c_str(), 1);
        const objc::AutoreleasePool pool;
        results = parcelvane::hooks::installParcelvane();
    }
};

// GoogleTest takes ownership of the environment.
[[maybe_unused]] ::testing::Environment* const environment =
    ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);

}  // namespace

const std::vector<parcelvane::hooks::HookResult>& installResults() {
    return results;
}

const std::string& refusingProxy() {
    static const RefusingPort port;
    return port.url();
}

}  // namespace testsupport
