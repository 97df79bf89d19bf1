// Sorting for the collections: a stable merge sort that stays within bounds
// whatever the comparator answers, and the comparisons it is given.
#pragma once

#include <Foundation/NSObjCRuntime.h>

#include <objc/block.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace foundation::detail {

// Sorts by `less` (a strict "comes before"), keeping equal items in order.
// std::sort may run past the ends when a comparator is inconsistent; a user's
// comparator is not trusted that far. Items are moved, never copied, so a
// comparison that throws leaves every item owned by the vector or the buffer.
template <class T, class Less>
void stableSort(std::vector<T>& items, Less&& less) {
    const std::size_t n = items.size();
    if (n < 2) return;
    std::vector<T> buffer(n);
    for (std::size_t width = 1; width < n; width *= 2) {
        for (std::size_t lo = 0; lo < n; lo += 2 * width) {
            const std::size_t mid = std::min(lo + width, n);
            const std::size_t hi = std::min(lo + 2 * width, n);
            std::size_t i = lo;
            std::size_t j = mid;
            std::size_t k = lo;
            while (i < mid && j < hi) {
                if (less(items[j], items[i])) {
                    buffer[k++] = std::move(items[j++]);
                } else {
                    buffer[k++] = std::move(items[i++]);
                }
            }
            while (i < mid) buffer[k++] = std::move(items[i++]);
            while (j < hi) buffer[k++] = std::move(items[j++]);
        }
        items.swap(buffer);
    }
}

// A comparison that sends `selector` (compare: and friends) to the left item.
std::function<NSInteger(id, id)> selectorComparison(SEL selector);

// The comparison a comparator block makes; raises NSInvalidArgumentException
// for nil or for a block of another signature.
std::function<NSInteger(id, id)> blockComparison(objc::BlockBase* block);

}  // namespace foundation::detail
