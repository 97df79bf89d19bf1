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

// Every exception name the system raises, under the platform's names less
// their "NS" prefix and "Exception" suffix.
namespace exception_name {
inline constexpr const char* InvalidArgument = "NSInvalidArgumentException";
inline constexpr const char* InternalInconsistency = "NSInternalInconsistencyException";
inline constexpr const char* Range = "NSRangeException";
inline constexpr const char* UnknownKey = "NSUnknownKeyException";
// A collection changed while it was being enumerated.
inline constexpr const char* Generic = "NSGenericException";
}  // namespace exception_name

[[noreturn]] PV_EXPORT void raise(const char* name, const std::string& reason);

}  // namespace objc
