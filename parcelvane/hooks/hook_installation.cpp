#include "hooks/hook_installation.h"

#include <cstring>

namespace parcelvane::hooks {
namespace {

void installReplacement(Class cls, const HookRow& row) {
    const SEL sel = sel_registerName(row.selector);
    const Method method = class_getInstanceMethod(cls, sel);
    if (method == nullptr) return;  // nothing to stand in front of: the slot stays empty
    *row.slot = row.fallback;
    // Succeeds when the class only inherited the method: the fallback then
    // reaches whatever the superclass has at the time of each call.
    if (class_addMethod(cls, sel, row.implementation, method_getTypeEncoding(method))) return;
    // The class implements it itself: keep that implementation and exchange it.
    *row.slot = method_getImplementation(method);
    *row.slot = method_setImplementation(method, row.implementation);
}

void addMethod(Class cls, const HookRow& row) {
    // The answer is not looked at: a class with its own method keeps it.
    class_addMethod(cls, sel_registerName(row.selector), row.implementation, row.types);
}

}  // namespace

void installHooks(std::span<const HookRow> rows) {
    const char* currentName = nullptr;
    Class cls = nullptr;
    for (const HookRow& row : rows) {
        if (currentName == nullptr || std::strcmp(currentName, row.className) != 0) {
            currentName = row.className;
            cls = objc_getClass(currentName);
            *row.savedSuperclass = class_getSuperclass(cls);
        }
        if (cls == nullptr) continue;
        switch (row.kind) {
            case HookKind::Replaced:
                installReplacement(cls, row);
                break;
            case HookKind::Added:
                addMethod(cls, row);
                break;
        }
    }
}

}  // namespace parcelvane::hooks
