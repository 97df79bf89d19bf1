#include "hooks/hook_installation.h"

#include <objc/type_info.h>

#include <string_view>

namespace parcelvane::hooks {
namespace {

// Whether a method's encoding describes the same result and arguments as a
// signature's. Frame offsets and qualifiers say nothing about the types.
bool sameTypes(std::string_view methodTypes, std::string_view signatureTypes) {
    try {
        const auto method = objc::parseMethodEncoding(methodTypes);
        const auto signature = objc::parseMethodEncoding(signatureTypes);
        if (method.size() != signature.size()) return false;
        for (std::size_t i = 0; i < method.size(); ++i) {
            if (method[i].encoding != signature[i].encoding) return false;
        }
        return true;
    } catch (const objc::EncodingError&) {
        return false;  // a method whose encoding cannot be read is not called through a guess
    }
}

HookResult installReplacement(Class cls, const HookRow& row) {
    const SEL sel = sel_registerName(row.selector);
    const Method method = class_getInstanceMethod(cls, sel);
    if (method == nullptr) return HookResult::MethodMissing;
    const char* const types = method_getTypeEncoding(method);
    if (!sameTypes(types, row.types)) return HookResult::EncodingMismatch;
    // Every slot is written before the replacement can be reached: from the
    // moment it is in the class, any send may run it, and it passes on
    // through them.
    *row.savedSuperclass = class_getSuperclass(cls);
    *row.original = row.fromSuperclass;
    // Succeeds when the class only inherited the method: the fallback then
    // reaches whatever the superclass has at the time of each call.
    if (class_addMethod(cls, sel, row.implementation, types)) return HookResult::Installed;
    // The class implements it itself. Its implementation goes into the slot
    // before the exchange for the same reason; the exchange's answer then
    // replaces it, as that is what the replacement really stands in front of.
    *row.original = method_getImplementation(method);
    *row.original = method_setImplementation(method, row.implementation);
    return HookResult::Installed;
}

HookResult addMethod(Class cls, const HookRow& row) {
    return class_addMethod(cls, sel_registerName(row.selector), row.implementation, row.types)
               ? HookResult::Installed
               : HookResult::AlreadyImplemented;
}

HookResult install(const HookRow& row) {
    const Class cls = objc_getClass(row.className);
    if (cls == nullptr) return HookResult::ClassMissing;
    return row.original != nullptr ? installReplacement(cls, row) : addMethod(cls, row);
}

}  // namespace

std::vector<HookResult> installHooks(std::span<const HookRow> rows) {
    std::vector<HookResult> results;
    results.reserve(rows.size());
    for (const HookRow& row : rows) results.push_back(install(row));
    return results;
}

}  // namespace parcelvane::hooks
