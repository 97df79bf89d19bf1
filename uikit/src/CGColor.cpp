#include <UIKit/CGColor.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>

struct CGColor {
    std::atomic<std::size_t> references{1};
    std::size_t count = 4;
    std::array<CGFloat, 4> components{};
};

namespace {

CGFloat clamp01(CGFloat value) {
    return std::clamp<CGFloat>(value, 0, 1);
}

}  // namespace

CGColorRef CGColorCreateRGBA(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    auto color = std::make_unique<CGColor>();
    color->components = {clamp01(red), clamp01(green), clamp01(blue), clamp01(alpha)};
    return color.release();
}

CGColorRef CGColorCreateGray(CGFloat white, CGFloat alpha) {
    auto color = std::make_unique<CGColor>();
    color->count = 2;
    color->components = {clamp01(white), clamp01(alpha), 0, 0};
    return color.release();
}

CGColorRef CGColorRetain(CGColorRef color) {
    if (color != nullptr) color->references.fetch_add(1, std::memory_order_relaxed);
    return color;
}

void CGColorRelease(CGColorRef color) {
    if (color == nullptr) return;
    if (color->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        std::unique_ptr<CGColor> last(color);
    }
}

std::size_t CGColorGetNumberOfComponents(CGColorRef color) {
    return color != nullptr ? color->count : 0;
}

const CGFloat* CGColorGetComponents(CGColorRef color) {
    return color != nullptr ? color->components.data() : nullptr;
}

CGFloat CGColorGetAlpha(CGColorRef color) {
    return color != nullptr ? color->components[color->count - 1] : 0;
}

bool CGColorEqualToColor(CGColorRef a, CGColorRef b) {
    if (a == b) return true;
    if (a == nullptr || b == nullptr || a->count != b->count) return false;
    return a->components == b->components;
}

namespace uikit {

RGBA rgbaOf(CGColorRef color) {
    if (color == nullptr) return {};
    const auto& c = color->components;
    if (color->count == 2) return {c[0], c[0], c[0], c[1]};
    return {c[0], c[1], c[2], c[3]};
}

}  // namespace uikit
