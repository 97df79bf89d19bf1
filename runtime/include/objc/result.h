// How plain C++ internals report failure: a value or an error, which the
// caller must look at. Exceptions and NSError** stay on the Objective-C
// surface; "absent" as a normal answer stays std::optional.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace objc {

struct Error {
    int code = 0;         // errno's value where the system said why, else 0
    std::string message;  // for people: what failed and why
};

template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}      // NOLINT: implicit
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}  // NOLINT: implicit

    bool ok() const noexcept { return state_.index() == 0; }
    explicit operator bool() const noexcept { return ok(); }

    T& value() & {
        assert(ok());
        return std::get<0>(state_);
    }
    const T& value() const& {
        assert(ok());
        return std::get<0>(state_);
    }
    T&& value() && {
        assert(ok());
        return std::get<0>(std::move(state_));
    }
    const Error& error() const {
        assert(!ok());
        return std::get<1>(state_);
    }

    // Reads like std::optional at call sites.
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

  private:
    std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : error_(std::move(error)), ok_(false) {}  // NOLINT: implicit

    bool ok() const noexcept { return ok_; }
    explicit operator bool() const noexcept { return ok_; }
    const Error& error() const {
        assert(!ok_);
        return error_;
    }

  private:
    Error error_;
    bool ok_ = true;
};

}  // namespace objc
