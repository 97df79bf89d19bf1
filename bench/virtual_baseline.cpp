#include "virtual_baseline.h"

namespace bench {
namespace {

struct Adding : VirtualBase {
    long add(long n) override { return value += n; }
    long value = 0;
};

struct Subtracting : VirtualBase {
    long add(long n) override { return value -= n; }
    long value = 0;
};

}  // namespace

std::unique_ptr<VirtualBase> makeVirtualCounter(long kind) {
    if (kind == 0) return std::make_unique<Subtracting>();
    return std::make_unique<Adding>();
}

}  // namespace bench
