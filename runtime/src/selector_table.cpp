// Selectors: interned names, compared by pointer.
#include "internal.h"

#include <objc/string.h>

#include <deque>
#include <shared_mutex>

namespace {

struct SelectorTable {
    std::shared_mutex lock;
    std::unordered_map<std::string_view, const objc_selector*> byName;
    std::deque<std::string> names;
    std::deque<objc_selector> selectors;
};

SelectorTable& selectorTable() {
    static SelectorTable* t = new SelectorTable;
    return *t;
}

}  // namespace

SEL sel_registerName(const char* name) {
    if (name == nullptr) return nullptr;
    SelectorTable& t = selectorTable();
    {
        std::shared_lock lock(t.lock);
        const auto it = t.byName.find(name);
        if (it != t.byName.end()) return it->second;
    }
    std::unique_lock lock(t.lock);
    const auto it = t.byName.find(name);
    if (it != t.byName.end()) return it->second;
    const std::string& stored = t.names.emplace_back(name);
    objc_selector& sel = t.selectors.emplace_back(objc_selector{stored.c_str()});
    t.byName.emplace(stored, &sel);
    return &sel;
}

const char* sel_getName(SEL sel) {
    return sel != nullptr ? sel->name : "<null selector>";
}

NSString* NSStringFromSelector(SEL sel) {
    if (sel == nullptr) return nullptr;
    return objc::autorelease(NSString::create(sel_getName(sel)).leak());
}

SEL NSSelectorFromString(NSString* name) {
    return name != nullptr ? sel_registerName(name->utf8().c_str()) : nullptr;
}
