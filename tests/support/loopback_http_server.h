// A tiny HTTP/1.1 server on 127.0.0.1 for tests: canned responses by path (404 otherwise),
// served one connection at a time from a thread, request lines kept. It also answers as a
// proxy: an absolute-URL target is matched by its path and its line recorded as sent.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace testsupport {

// What the server answers for a path; chained, as -Wextra rejects partial designated initialisers.
struct CannedResponse {
    int status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    std::chrono::milliseconds delay{0};
    // Without a Content-Length the body ends when the connection closes.
    bool sendContentLength = true;

    static CannedResponse ok(std::string body) { return withStatus(200, std::move(body)); }
    static CannedResponse withStatus(int status, std::string body = {}) {
        CannedResponse response;
        response.status = status;
        response.body = std::move(body);
        return response;
    }
    CannedResponse header(std::string name, std::string value) && {
        headers.emplace_back(std::move(name), std::move(value));
        return std::move(*this);
    }
    CannedResponse delayed(std::chrono::milliseconds wait) && {
        delay = wait;
        return std::move(*this);
    }
    CannedResponse withoutContentLength() && {
        sendContentLength = false;
        return std::move(*this);
    }
};

class LoopbackHttpServer {
  public:
    LoopbackHttpServer() {
        listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (listener_ < 0) throw std::runtime_error("loopback server: socket");
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;  // ephemeral
        socklen_t length = sizeof address;
        if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(listener_, 16) != 0 ||
            ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            ::close(listener_);
            throw std::runtime_error("loopback server: bind");
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }

    ~LoopbackHttpServer() {
        {
            const std::lock_guard guard(lock_);
            stopping_ = true;
        }
        wake_.notify_all();
        thread_.join();
        ::close(listener_);
    }

    LoopbackHttpServer(const LoopbackHttpServer&) = delete;
    LoopbackHttpServer& operator=(const LoopbackHttpServer&) = delete;

    std::uint16_t port() const noexcept { return port_; }
    // "http://127.0.0.1:PORT", usable as a proxy setting as it is.
    std::string baseURL() const { return "http://127.0.0.1:" + std::to_string(port_); }
    // The server's own URL for a path ("/x").
    std::string url(const std::string& path) const { return baseURL() + path; }

    // Sets (or replaces) the response for a path, query included if any.
    void respond(const std::string& path, CannedResponse response) {
        const std::lock_guard guard(lock_);
        routes_[path] = std::move(response);
    }

    // The request lines received so far, in order, without the line end.
    std::vector<std::string> requestLines() const {
        const std::lock_guard guard(lock_);
        return lines_;
    }
    // The Host header of each request, in the same order ("" when absent).
    std::vector<std::string> hostHeaders() const {
        const std::lock_guard guard(lock_);
        return hosts_;
    }

  private:
    void serve() {
        while (!stopped()) {
            pollfd ready{listener_, POLLIN, 0};
            if (::poll(&ready, 1, 20) <= 0) continue;
            const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            if (client < 0) continue;
            handle(client);
            ::close(client);
        }
    }

    bool stopped() const {
        const std::lock_guard guard(lock_);
        return stopping_;
    }

    // Reads the request head (the body, if any, is ignored).
    std::string readHead(int client) {
        std::string head;
        char buffer[4096];
        while (head.find("\r\n\r\n") == std::string::npos && head.size() < 65536) {
            pollfd ready{client, POLLIN, 0};
            const int polled = ::poll(&ready, 1, 20);
            if (polled < 0) return {};
            if (polled == 0) {
                if (stopped()) return {};
                continue;
            }
            const ssize_t n = ::recv(client, buffer, sizeof buffer, 0);
            if (n <= 0) return {};
            head.append(buffer, static_cast<std::size_t>(n));
        }
        return head;
    }

    static std::string pathOf(const std::string& target) {
        // An absolute URL (proxy form) is matched by its path.
        const auto scheme = target.find("://");
        if (scheme == std::string::npos || target.starts_with("/")) return target;
        const auto slash = target.find('/', scheme + 3);
        return slash == std::string::npos ? "/" : target.substr(slash);
    }

    static std::string headerValue(const std::string& head, const std::string& name) {
        std::size_t at = head.find("\r\n");
        while (at != std::string::npos) {
            const std::size_t start = at + 2;
            const std::size_t end = head.find("\r\n", start);
            if (end == std::string::npos || end == start) break;
            const std::string line = head.substr(start, end - start);
            const auto colon = line.find(':');
            if (colon == name.size() && ::strncasecmp(line.c_str(), name.c_str(), colon) == 0) {
                const auto value = line.find_first_not_of(' ', colon + 1);
                return value == std::string::npos ? "" : line.substr(value);
            }
            at = end;
        }
        return {};
    }

    static const char* reason(int status) {
        const std::map<int, const char*> reasons{{200, "OK"},
                                                 {301, "Moved Permanently"},
                                                 {302, "Found"},
                                                 {404, "Not Found"},
                                                 {500, "Internal Server Error"}};
        const auto found = reasons.find(status);
        return found == reasons.end() ? "Status" : found->second;
    }

    void handle(int client) {
        const std::string head = readHead(client);
        const auto lineEnd = head.find("\r\n");
        if (lineEnd == std::string::npos) return;
        const std::string line = head.substr(0, lineEnd);
        const auto firstSpace = line.find(' ');
        const auto lastSpace = line.rfind(' ');
        const std::string target = firstSpace != std::string::npos && lastSpace > firstSpace
                                       ? line.substr(firstSpace + 1, lastSpace - firstSpace - 1)
                                       : std::string();
        CannedResponse response = CannedResponse::withStatus(404, "not found");
        {
            const std::lock_guard guard(lock_);
            lines_.push_back(line);
            hosts_.push_back(headerValue(head, "Host"));
            const auto route = routes_.find(pathOf(target));
            if (route != routes_.end()) response = route->second;
        }
        if (response.delay.count() > 0) {
            std::unique_lock wait(lock_);
            if (wake_.wait_for(wait, response.delay, [this] { return stopping_; })) return;
        }
        std::string reply = "HTTP/1.1 " + std::to_string(response.status) + " " +
                            reason(response.status) + "\r\nConnection: close\r\n";
        if (response.sendContentLength) {
            reply += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
        }
        for (const auto& [name, value] : response.headers) reply += name + ": " + value + "\r\n";
        reply += "\r\n";
        reply += response.body;
        std::size_t sent = 0;
        while (sent < reply.size()) {
            // MSG_NOSIGNAL: a client that gave up must not kill the test with SIGPIPE.
            const ssize_t n =
                ::send(client, reply.data() + sent, reply.size() - sent, MSG_NOSIGNAL);
            if (n <= 0) return;
            sent += static_cast<std::size_t>(n);
        }
    }

    int listener_ = -1;
    std::uint16_t port_ = 0;
    mutable std::mutex lock_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::map<std::string, CannedResponse> routes_;
    std::vector<std::string> lines_;
    std::vector<std::string> hosts_;
    std::thread thread_;
};

}  // namespace testsupport
