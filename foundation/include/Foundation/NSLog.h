// NSLog: "<date> <process>[pid:tid] message" on standard error.
#pragma once

#include <Foundation/string_format.h>

namespace objc::detail {
// Writes one line, stamped, in a single write so that threads do not interleave.
PV_EXPORT void logMessage(std::string_view message);
}  // namespace objc::detail

// NSLog(NSSTR("%@ items"), count). A C++ template: see string_format.h for why.
template <class... A>
void NSLog(NSString* format, const A&... args) {
    if (format == nullptr) return;
    const std::array<objc::detail::FormatArg, sizeof...(A)> list{objc::detail::formatArg(args)...};
    objc::detail::logMessage(objc::detail::formatToUtf8(format->utf8(), list));
}
