#include "collection_sorting.h"

#include <objc/exception.h>

namespace foundation::detail {

std::function<NSInteger(id, id)> selectorComparison(SEL selector) {
    if (selector == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument, "the comparison selector is NULL");
    }
    return [selector](id a, id b) {
        return static_cast<NSInteger>(objc::msgSend<NSComparisonResult>(a, selector, b));
    };
}

std::function<NSInteger(id, id)> blockComparison(objc::BlockBase* block) {
    if (block == nullptr) {
        objc::raise(objc::exception_name::InvalidArgument, "the comparator block is nil");
    }
    if (auto* plain = dynamic_cast<objc::Block<NSInteger(id, id)>*>(block)) {
        return [plain](id a, id b) { return (*plain)(a, b); };
    }
    if (auto* typed = dynamic_cast<objc::Block<NSComparisonResult(id, id)>*>(block)) {
        return [typed](id a, id b) { return static_cast<NSInteger>((*typed)(a, b)); };
    }
    objc::blockSignatureMismatch();
}

}  // namespace foundation::detail
