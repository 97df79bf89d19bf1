#include <Foundation/url_download.h>

#include <Foundation/NSURL.h>

#include <curl/curl.h>
#include <openssl/crypto.h>

#include <cctype>
#include <memory>
#include <mutex>

namespace {

using Bytes = std::vector<std::uint8_t>;

// libcurl's global set-up is not thread-safe: once per process, before the
// first transfer; it is never torn down (other threads may still transfer
// while the process exits).
void initialiseCurl() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Sink {
    Bytes bytes;
    std::size_t limit = 0;
    bool overflowed = false;
};

// Answering fewer bytes than given aborts the transfer (CURLE_WRITE_ERROR).
std::size_t collect(char* data, std::size_t size, std::size_t count, void* context) {
    auto* sink = static_cast<Sink*>(context);
    const std::size_t length = size * count;
    if (sink->bytes.size() + length > sink->limit) {
        sink->overflowed = true;
        return 0;
    }
    sink->bytes.insert(sink->bytes.end(), data, data + length);
    return length;
}

bool isWebURL(const std::string& url) {
    const auto colon = url.find("://");
    if (colon == std::string::npos) return false;
    std::string scheme = url.substr(0, colon);
    for (char& c : scheme) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return scheme == "http" || scheme == "https";
}

// libcurl's TLS is OpenSSL's, which keeps per-thread state (its error queue)
// that it frees only when the thread ends. Transfers run on the worker
// threads of the global queues, which never end, so each transfer lets that
// state go itself instead of leaving one block per worker behind.
struct ThreadStateRelease {
    ThreadStateRelease() = default;
    ThreadStateRelease(const ThreadStateRelease&) = delete;
    ThreadStateRelease& operator=(const ThreadStateRelease&) = delete;
    ~ThreadStateRelease() { OPENSSL_thread_stop(); }
};

struct EasyDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

}  // namespace

objc::Result<Bytes> foundation::downloadURL(const std::string& url, const DownloadLimits& limits) {
    if (!isWebURL(url)) return objc::Error{0, "not an http or https URL: " + url};
    initialiseCurl();
    // Declared first, so that it runs after the handle's own clean-up.
    const ThreadStateRelease threadState;
    const std::unique_ptr<CURL, EasyDeleter> handle(curl_easy_init());
    if (!handle) return objc::Error{0, "cannot start a transfer"};
    CURL* const curl = handle.get();
    Sink sink;
    sink.limit = limits.maxBytes;
    const auto maxFileSize = static_cast<curl_off_t>(limits.maxBytes);
    // No CURLOPT_PROXY: libcurl then reads the proxy environment variables
    // itself, at each transfer.
    const bool configured =
        curl_easy_setopt(curl, CURLOPT_URL, url.c_str()) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https") == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https") == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_MAXREDIRS, limits.maxRedirects) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS,
                         static_cast<long>(limits.connectTimeout.count())) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS,
                         static_cast<long>(limits.totalTimeout.count())) == CURLE_OK &&
        // Signals cannot time out name lookups on threads other than the main one.
        curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L) == CURLE_OK &&
        // A declared length past the cap stops the transfer before the body.
        curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, maxFileSize) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &collect) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &sink) == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "") == CURLE_OK &&
        curl_easy_setopt(curl, CURLOPT_USERAGENT, "Parcelvane-Foundation/1.0") == CURLE_OK;
    if (!configured) return objc::Error{0, "cannot configure the transfer"};
    const CURLcode done = curl_easy_perform(curl);
    if (sink.overflowed || done == CURLE_FILESIZE_EXCEEDED) {
        return objc::Error{0,
                           "the body is larger than " + std::to_string(limits.maxBytes) + " bytes"};
    }
    if (done != CURLE_OK) return objc::Error{0, curl_easy_strerror(done)};
    long status = 0;
    if (curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status) != CURLE_OK) {
        return objc::Error{0, "no response status"};
    }
    if (status < 200 || status > 299) {
        return objc::Error{0, "the server answered with status " + std::to_string(status)};
    }
    return std::move(sink.bytes);
}

foundation::URLLoader foundation::httpURLLoader(DownloadLimits limits) {
    return [limits](NSURL* url) -> std::optional<Bytes> {
        if (url == nullptr) return std::nullopt;
        std::string text;
        {
            // Global-queue threads may have no pool of their own.
            const objc::AutoreleasePool pool;
            NSString* absolute = url->absoluteString();
            if (absolute == nullptr) return std::nullopt;
            text = absolute->utf8();
        }
        auto body = downloadURL(text, limits);
        if (!body) return std::nullopt;  // nil data, as the platform answers
        return std::move(*body);
    };
}
