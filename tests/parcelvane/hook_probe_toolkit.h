// The hook probe's means: recording stand-ins for host methods, classes of them, hook checks.
#pragma once

#include <objc/message.h>
#include <objc/object.h>
#include <objc/runtime.h>

#include <algorithm>
#include <string>
#include <vector>

namespace testsupport {

// Prints the check; a false one ends the probe with status 1.
void check(bool ok, const std::string& what);

struct Call {
    std::string owner;
    id self;
    SEL sel;
    id first;
    id second;
};
extern std::vector<Call> calls;

inline constexpr char kBase[] = "base";  // a superclass of the hooked class
inline constexpr char kOwn[] = "own";    // the hooked class itself

// The section addSectionAtTop answers, for the library's set-up to fill.
id sectionStandIn();

template <const char* Owner>
void noArguments(id self, SEL sel) {
    calls.push_back({Owner, self, sel, nullptr, nullptr});
}
template <const char* Owner>
void oneObject(id self, SEL sel, id first) {
    calls.push_back({Owner, self, sel, first, nullptr});
}
template <const char* Owner>
void twoObjects(id self, SEL sel, id first, id second) {
    calls.push_back({Owner, self, sel, first, second});
}
template <const char* Owner>
id section(id self, SEL sel) {
    calls.push_back({Owner, self, sel, nullptr, nullptr});
    return sectionStandIn();
}

// Every probed host method takes objects only; addSectionAtTop alone answers one.
inline long arity(const std::string& selector) {
    return std::count(selector.begin(), selector.end(), ':');
}
// The host's encoding, with offsets, so that a reused encoding is recognised.
const char* hostTypes(const std::string& selector);

template <const char* Owner>
IMP standIn(const std::string& selector) {
    if (selector == "addSectionAtTop") return reinterpret_cast<IMP>(&section<Owner>);
    switch (arity(selector)) {
        case 0:
            return reinterpret_cast<IMP>(&noArguments<Owner>);
        case 1:
            return reinterpret_cast<IMP>(&oneObject<Owner>);
        default:
            return reinterpret_cast<IMP>(&twoObjects<Owner>);
    }
}

template <const char* Owner>
Class defineClass(const char* name, Class superclass,
                  const std::vector<std::string>& selectors = {}) {
    const Class cls = objc_allocateClassPair(superclass, name, 0);
    check(cls != nullptr, std::string("defined ") + name);
    for (const std::string& selector : selectors) {
        class_addMethod(cls, sel_registerName(selector.c_str()), standIn<Owner>(selector),
                        hostTypes(selector));
    }
    objc_registerClassPair(cls);
    return cls;
}

// WATableSection, WATableRow and a `_sections` list: what the library's Settings section uses.
void defineTableParts(Class table);

Class classNamed(const char* name);
// The method the class itself defines for the selector (not an inherited one).
Method ownMethod(Class cls, const std::string& selector);

// Sends the selector to a fresh instance; only the owner's stand-in ran, with the same arguments.
void expectPassedOn(Class cls, const std::string& selector, const char* owner);
}  // namespace testsupport
