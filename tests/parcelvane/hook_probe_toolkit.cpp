#include "hook_probe_toolkit.h"

#include <Foundation/NSArray.h>

#include <objc/string.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace testsupport {

void check(bool ok, const std::string& what) {
    std::printf("%s: %s\n", ok ? "ok" : "FAIL", what.c_str());
    if (!ok) {
        std::fflush(stdout);
        std::exit(1);
    }
}

std::vector<Call> calls;

const char* hostTypes(const std::string& selector) {
    if (selector == "addSectionAtTop") return "@16@0:8";
    static const char* const byArity[] = {"v16@0:8", "v24@0:8@16", "v32@0:8@16@24"};
    return byArity[std::min(arity(selector), 2L)];
}

namespace {

void ignore(id, SEL, id) {}
void ignoreInteger(id, SEL, long) {}

Class definePart(const char* name, std::initializer_list<const char*> setters) {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), name, 0);
    check(cls != nullptr, std::string("defined ") + name);
    for (const char* setter : setters) {
        const bool integer = std::string_view(setter) == "setModalPresentationStyle:";
        class_addMethod(
            cls, sel_registerName(setter),
            integer ? reinterpret_cast<IMP>(&ignoreInteger) : reinterpret_cast<IMP>(&ignore),
            integer ? "v24@0:8q16" : "v24@0:8@16");
    }
    objc_registerClassPair(cls);
    return cls;
}

objc::Strong<objc_object> instanceOf(Class cls) {
    return objc::adopt(class_createInstance(cls, 0));
}

NSMutableArray* sectionList(id, SEL) {
    // One placeholder: the library inserts below the host's first section.
    static const objc::Strong<NSMutableArray> list = [] {
        auto made = NSMutableArray::create();
        made->addObject(NSSTR("the host's first section"));
        return made;
    }();
    return list.get();
}

// The arguments every send passes; the second is the picker documentMenu:didPick... styles.
id argument(int which) {
    static const Class cls = definePart("ProbeArgument", {"setModalPresentationStyle:"});
    static const objc::Strong<objc_object> made[] = {instanceOf(cls), instanceOf(cls)};
    return made[which].get();
}

}  // namespace

void defineTableParts(Class table) {
    definePart("WATableSection", {"setHeaderText:", "setFooterText:", "addRow:"});
    definePart("WATableRow", {"setHandler:", "setCell:"});
    class_addMethod(table, sel_registerName("_sections"), reinterpret_cast<IMP>(&sectionList),
                    "@16@0:8");
}

id sectionStandIn() {
    static const objc::Strong<objc_object> made = instanceOf(classNamed("WATableSection"));
    return made.get();
}

Class classNamed(const char* name) {
    const Class cls = objc_getClass(name);
    check(cls != nullptr, std::string("a class ") + name);
    return cls;
}

Method ownMethod(Class cls, const std::string& selector) {
    unsigned int count = 0;
    Method* methods = class_copyMethodList(cls, &count);
    Method found = nullptr;
    for (unsigned int i = 0; i < count; ++i) {
        if (selector == sel_getName(method_getName(methods[i]))) found = methods[i];
    }
    std::free(methods);
    return found;
}

void expectPassedOn(Class cls, const std::string& selector, const char* owner) {
    const std::string what = std::string(class_getName(cls)) + " " + selector;
    const auto instance = instanceOf(cls);
    const SEL sel = sel_registerName(selector.c_str());
    calls.clear();
    switch (arity(selector)) {
        case 0:
            if (selector == "addSectionAtTop") {
                objc::msgSend<id>(instance.get(), sel);
            } else {
                objc::msgSend<void>(instance.get(), sel);
            }
            break;
        case 1:
            objc::msgSend<void>(instance.get(), sel, argument(0));
            break;
        default:
            objc::msgSend<void>(instance.get(), sel, argument(0), argument(1));
    }
    // A replacement may send other messages on its way.
    std::erase_if(calls, [sel](const Call& c) { return c.sel != sel; });
    check(calls.size() == 1 && calls[0].owner == owner,
          what + ": passed on once to the " + owner + " implementation");
    const id first = arity(selector) > 0 ? argument(0) : nullptr;
    const id second = arity(selector) > 1 ? argument(1) : nullptr;
    check(calls[0].self == instance.get() && calls[0].first == first && calls[0].second == second,
          what + ": with the same receiver and arguments");
}

}  // namespace testsupport
