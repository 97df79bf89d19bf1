// Downloads over http through libcurl, against a loopback server.
#include "loopback_http_server.h"

#include <Foundation/NSData.h>
#include <Foundation/NSURL.h>
#include <Foundation/url_download.h>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using testsupport::CannedResponse;
using testsupport::LoopbackHttpServer;
using namespace std::chrono_literals;

constexpr std::array kProxyVariables = {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY",
                                        "all_proxy",  "ALL_PROXY",  "no_proxy",    "NO_PROXY"};

// Each case starts with no proxy settings and the standard loader, and puts back what it found.
class URLDownload : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* name : kProxyVariables) {
            const char* value = std::getenv(name);
            saved_.emplace_back(
                name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
            ::unsetenv(name);
        }
        foundation::setURLLoader(foundation::httpURLLoader());
    }
    void TearDown() override {
        foundation::setURLLoader(foundation::httpURLLoader());
        for (const auto& [name, value] : saved_) {
            if (value) {
                ::setenv(name.c_str(), value->c_str(), 1);
            } else {
                ::unsetenv(name.c_str());
            }
        }
    }

    // The body NSData gives for the URL, or nullopt for nil.
    static std::optional<std::string> fetch(const std::string& url) {
        objc::AutoreleasePool pool;
        NSURL* address = NSURL::URLWithString(NSString::create(url).get());
        if (address == nullptr) return std::nullopt;
        NSData* data = NSData::dataWithContentsOfURL(address);
        if (data == nullptr) return std::nullopt;
        return std::string(data->view());
    }

    // A loopback port with nobody listening.
    static std::uint16_t closedPort() {
        const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        ::bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
        ::close(probe);
        return ntohs(address.sin_port);
    }

    LoopbackHttpServer server;

  private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST_F(URLDownload, AnswersTheBodyOnlyForSuccess) {
    server.respond("/icon.png", CannedResponse::ok(std::string("\x89PNG\0\x01", 6)));
    server.respond("/empty", CannedResponse::withStatus(204));
    server.respond("/broken", CannedResponse::withStatus(500, "oops"));
    EXPECT_EQ(fetch(server.url("/icon.png")), std::string("\x89PNG\0\x01", 6));
    EXPECT_EQ(fetch(server.url("/empty")), "");
    EXPECT_EQ(fetch(server.url("/missing")), std::nullopt);  // the server's 404
    EXPECT_EQ(fetch(server.url("/broken")), std::nullopt);
    EXPECT_EQ(server.requestLines().front(), "GET /icon.png HTTP/1.1");

    // The instance initializer answers nil the same way (and frees itself).
    objc::AutoreleasePool pool;
    NSURL* missing = NSURL::URLWithString(NSString::create(server.url("/missing")).get());
    EXPECT_EQ(objc::alloc<NSData>()->initWithContentsOfURL(missing), nullptr);
}

TEST_F(URLDownload, FollowsAFewRedirects) {
    server.respond("/old", CannedResponse::withStatus(301).header("Location", "/hop"));
    server.respond("/hop", CannedResponse::withStatus(302).header("Location", server.url("/new")));
    server.respond("/new", CannedResponse::ok("moved here"));
    server.respond("/loop", CannedResponse::withStatus(302).header("Location", "/loop"));
    server.respond("/to-file",
                   CannedResponse::withStatus(302).header("Location", "file:///etc/passwd"));
    EXPECT_EQ(fetch(server.url("/old")), "moved here");
    EXPECT_EQ(fetch(server.url("/loop")), std::nullopt);
    // A redirect may not leave http(s).
    EXPECT_EQ(fetch(server.url("/to-file")), std::nullopt);
    // 3 for the chain, 1 + 5 redirects for the loop, 1 for the file redirect.
    EXPECT_EQ(server.requestLines().size(), 3u + 6u + 1u);
}

TEST_F(URLDownload, GivesUpPastTheSizeCap) {
    foundation::DownloadLimits small;
    small.maxBytes = 1024;
    foundation::setURLLoader(foundation::httpURLLoader(small));
    server.respond("/fits", CannedResponse::ok(std::string(1024, 'a')));
    server.respond("/declared", CannedResponse::ok(std::string(4096, 'b')));
    server.respond("/undeclared",
                   CannedResponse::ok(std::string(4096, 'c')).withoutContentLength());
    EXPECT_EQ(fetch(server.url("/fits"))->size(), 1024u);
    EXPECT_EQ(fetch(server.url("/declared")), std::nullopt);
    EXPECT_EQ(fetch(server.url("/undeclared")), std::nullopt);
    // Without a declared length the body ends with the connection.
    foundation::setURLLoader(foundation::httpURLLoader());
    EXPECT_EQ(fetch(server.url("/undeclared"))->size(), 4096u);
}

TEST_F(URLDownload, FailsCleanlyWithoutAServerOrAfterTheTimeOut) {
    EXPECT_EQ(fetch("http://127.0.0.1:" + std::to_string(closedPort()) + "/x"), std::nullopt);
    // Other schemes are not downloaded, even from a live server.
    EXPECT_FALSE(
        foundation::downloadURL("ftp://127.0.0.1:" + std::to_string(server.port()) + "/").ok());
    EXPECT_FALSE(foundation::downloadURL("not a url").ok());
    EXPECT_TRUE(server.requestLines().empty());
    // A server that stalls is given up on after the time-out.
    server.respond("/slow", CannedResponse::ok("late").delayed(5s));
    const auto start = std::chrono::steady_clock::now();
    foundation::DownloadLimits impatient;
    impatient.totalTimeout = 150ms;
    EXPECT_FALSE(foundation::downloadURL(server.url("/slow"), impatient).ok());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
}

TEST_F(URLDownload, GoesThroughTheProxyFromTheEnvironment) {
    server.respond("/apt/depict/ParcelvaneIcon-Small@2x.png", CannedResponse::ok("icon bytes"));
    ::setenv("http_proxy", server.baseURL().c_str(), 1);
    // The host name does not exist: only the proxy can answer.
    EXPECT_EQ(fetch("http://packages.parcelvane.invalid/apt/depict/ParcelvaneIcon-Small@2x.png"),
              "icon bytes");
    ASSERT_EQ(server.requestLines().size(), 1u);
    EXPECT_EQ(server.requestLines()[0],
              "GET http://packages.parcelvane.invalid/apt/depict/ParcelvaneIcon-Small@2x.png "
              "HTTP/1.1");
    EXPECT_EQ(server.hostHeaders()[0], "packages.parcelvane.invalid");

    // no_proxy sends matching hosts direct, past a proxy that is down.
    ::setenv("http_proxy", ("http://127.0.0.1:" + std::to_string(closedPort())).c_str(), 1);
    EXPECT_EQ(fetch(server.url("/apt/depict/ParcelvaneIcon-Small@2x.png")), std::nullopt);
    ::setenv("no_proxy", "127.0.0.1", 1);
    EXPECT_EQ(fetch(server.url("/apt/depict/ParcelvaneIcon-Small@2x.png")), "icon bytes");
    EXPECT_EQ(server.requestLines().back(), "GET /apt/depict/ParcelvaneIcon-Small@2x.png HTTP/1.1");
}

TEST_F(URLDownload, DownloadsFromSeveralThreadsAtOnce) {
    for (int i = 0; i < 4; ++i) {
        server.respond("/part" + std::to_string(i), CannedResponse::ok(std::string(1000 + i, 'x')));
    }
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 3; ++round) {
                const auto body = fetch(server.url("/part" + std::to_string(i)));
                if (body && body->size() == static_cast<std::size_t>(1000 + i)) ++good;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(good.load(), 12);
}

}  // namespace
