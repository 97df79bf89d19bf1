// A C++ virtual call as the baseline of message sending.
#pragma once

#include <memory>

namespace bench {

struct VirtualBase {
    virtual ~VirtualBase() = default;
    virtual long add(long n) = 0;
};

// Two implementations chosen at run time, so the call stays indirect.
std::unique_ptr<VirtualBase> makeVirtualCounter(long kind);

}  // namespace bench
