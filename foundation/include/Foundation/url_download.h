// Blocking downloads over http and https with libcurl: what
// -[NSData initWithContentsOfURL:] uses for URLs that are not file URLs.
//
// libcurl's usual proxy environment variables (http_proxy, https_proxy,
// no_proxy, all_proxy) are honoured, read at each transfer. Redirects are
// followed a few times, between http and https only. Any failure answers an
// error that says why: no connection, a time-out, a status outside 2xx, a
// body past the size cap. Safe to call from several threads at once.
#pragma once

#include <Foundation/NSData.h>

#include <objc/result.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace foundation {

struct PV_EXPORT DownloadLimits {
    std::chrono::milliseconds connectTimeout{10'000};
    std::chrono::milliseconds totalTimeout{30'000};
    std::size_t maxBytes = 32 * 1024 * 1024;
    long maxRedirects = 5;
};

// The whole body of an http or https URL; an error for any other scheme.
PV_EXPORT objc::Result<std::vector<std::uint8_t>> downloadURL(const std::string& url,
                                                              const DownloadLimits& limits = {});

// A loader for setURLLoader that downloads with these limits. It is the
// loader installed when the process starts (with the default limits).
PV_EXPORT URLLoader httpURLLoader(DownloadLimits limits = {});

}  // namespace foundation
