// The platform's exceptions, as C++ exceptions: a name and a reason.
#pragma once

#include <objc/export.h>

#include <stdexcept>
#include <string>

namespace objc {

class PV_EXPORT Exception : public std::runtime_error {
  public:
    Exception(std::string name, const std::string& reason)
        : std::runtime_error(reason), name_(std::move(name)) {}
    const std::string& name() const noexcept { return name_; }
    std::string reason() const { return what(); }

  private:
    std::string name_;
};

inline constexpr const char* kInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr const char* kInternalInconsistencyException = "NSInternalInconsistencyException";
inline constexpr const char* kRangeException = "NSRangeException";
inline constexpr const char* kUnknownKeyException = "NSUnknownKeyException";

[[noreturn]] PV_EXPORT void raise(const char* name, const std::string& reason);

}  // namespace objc
