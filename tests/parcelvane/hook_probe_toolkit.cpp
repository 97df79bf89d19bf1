#include "hook_probe_toolkit.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>

namespace probe {

[[noreturn]] void fail(const std::string& what) {
    std::printf("FAIL: %s\n", what.c_str());
    std::fflush(stdout);
    std::exit(1);
}

void check(bool ok, const std::string& what) {
    if (!ok) fail(what);
    std::printf("ok: %s\n", what.c_str());
}

std::vector<Call> calls;

id resultOf(const char* owner) {
    static std::map<std::string, objc::Strong<NSString>> results;
    auto& result = results[owner];
    if (!result) result = NSString::create(std::string("result of ") + owner);
    return result.get();
}

namespace {

const std::map<std::string, HostMethod>& hostMethods() {
    static const std::map<std::string, HostMethod> methods = {
        {"initWithDocumentTypes:inMode:", {Shape::TypesAndMode, "@32@0:8@16Q24"}},
        {"presentShareDocumentController", {Shape::NoArguments, "v16@0:8"}},
        {"documentPicker:didPickDocumentAtURL:", {Shape::TwoObjects, "v32@0:8@16@24"}},
        {"showActionSheet:", {Shape::OneObject, "v24@0:8@16"}},
        {"_presentForCurrentInterface:", {Shape::OneObject, "v24@0:8@16"}},
        {"documentMenu:didPickDocumentPicker:", {Shape::TwoObjects, "v32@0:8@16@24"}},
        {"chatBarManagerWantsToAttachMedia:", {Shape::OneObject, "v24@0:8@16"}},
        {"sendParcelvaneFile", {Shape::NoArguments, "v16@0:8"}},
        {"addSectionAtTop", {Shape::ObjectResult, "@16@0:8"}},
        {"setupTableView", {Shape::NoArguments, "v16@0:8"}},
        {"_didToggleEnableDisable:", {Shape::OneObject, "v24@0:8@16"}},
    };
    return methods;
}

}  // namespace

const HostMethod& hostMethod(const std::string& selector) {
    const auto it = hostMethods().find(selector);
    if (it == hostMethods().end()) fail("no stand-in for " + selector);
    return it->second;
}

namespace {
void ignoreStyle(id, SEL, NSInteger) {}
}  // namespace

id documentPickerStandIn() {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), "ProbeDocumentPicker", 0);
    if (cls == nullptr) fail("could not define ProbeDocumentPicker");
    class_addMethod(cls, sel_registerName("setModalPresentationStyle:"),
                    reinterpret_cast<IMP>(&ignoreStyle), "v24@0:8q16");
    objc_registerClassPair(cls);
    return objc::msgSend<id>(objc::msgSend<id>(cls, objc::sel<"alloc">()), objc::sel<"init">());
}

namespace {
void ignoreObject(id, SEL, id) {}

NSMutableArray* sectionList(id, SEL) {
    // One placeholder: the library inserts below the host's first section.
    static const objc::Strong<NSMutableArray> list = [] {
        auto made = NSMutableArray::create();
        made->addObject(NSSTR("the host's first section"));
        return made;
    }();
    return list.get();
}

Class definePart(const char* name, std::initializer_list<const char*> setters) {
    const Class cls = objc_allocateClassPair(NSObject::objcClass(), name, 0);
    if (cls == nullptr) fail(std::string("could not define ") + name);
    for (const char* setter : setters) {
        class_addMethod(cls, sel_registerName(setter), reinterpret_cast<IMP>(&ignoreObject),
                        "v24@0:8@16");
    }
    objc_registerClassPair(cls);
    return cls;
}
}  // namespace

void defineTableParts() {
    definePart("WATableSection", {"setHeaderText:", "setFooterText:", "addRow:"});
    definePart("WATableRow", {"setHandler:", "setCell:"});
}

void giveSections(Class table) {
    class_addMethod(table, sel_registerName("_sections"), reinterpret_cast<IMP>(&sectionList),
                    "@16@0:8");
}

id sectionStandIn() {
    static const objc::Strong<objc_object> section = [] {
        const id fresh = objc::msgSend<id>(classNamed("WATableSection"), objc::sel<"alloc">());
        return objc::adopt(objc::msgSend<id>(fresh, objc::sel<"init">()));
    }();
    return section.get();
}

const Arguments& arguments() {
    static const Arguments args;
    return args;
}

id send(id receiver, const std::string& selector) {
    const SEL sel = sel_registerName(selector.c_str());
    const Arguments& a = arguments();
    switch (hostMethod(selector).shape) {
        case Shape::NoArguments:
            objc::msgSend<void>(receiver, sel);
            return nullptr;
        case Shape::OneObject:
            objc::msgSend<void>(receiver, sel, a.first);
            return nullptr;
        case Shape::TwoObjects:
            objc::msgSend<void>(receiver, sel, a.first, a.second);
            return nullptr;
        case Shape::TypesAndMode:
            return objc::msgSend<id>(receiver, sel, a.first, a.mode);
        case Shape::ObjectResult:
            return objc::msgSend<id>(receiver, sel);
    }
    return nullptr;
}

std::string describe(const char* className, const std::string& selector) {
    return std::string("-[") + className + " " + selector + "]";
}

Method ownMethod(Class cls, const std::string& selector) {
    unsigned int count = 0;
    Method* methods = class_copyMethodList(cls, &count);
    Method found = nullptr;
    for (unsigned int i = 0; i < count; ++i) {
        if (std::strcmp(sel_getName(method_getName(methods[i])), selector.c_str()) == 0) {
            found = methods[i];
        }
    }
    std::free(methods);
    return found;
}

unsigned int ownMethodCount(Class cls) {
    unsigned int count = 0;
    std::free(class_copyMethodList(cls, &count));
    return count;
}

Class classNamed(const char* name) {
    const Class cls = objc_getClass(name);
    if (cls == nullptr) fail(std::string("no class ") + name);
    return cls;
}

objc::Strong<objc_object> instanceOf(Class cls) {
    return objc::adopt(class_createInstance(cls, 0));
}

void expectPassedOn(Class receiverClass, const std::string& selector, const char* owner,
                    const std::string& what) {
    const auto instance = instanceOf(receiverClass);
    const id receiver = instance.get();
    calls.clear();
    const id result = send(receiver, selector);
    const SEL sent = sel_registerName(selector.c_str());
    std::erase_if(calls, [sent](const Call& c) { return c.sel != sent; });
    check(calls.size() == 1,
          what + ": one implementation ran (" + std::to_string(calls.size()) + ")");
    const Call& c = calls.front();
    check(c.owner == owner, what + ": reached the " + owner + " implementation, not " + c.owner);
    check(c.self == receiver && c.sel == sel_registerName(selector.c_str()),
          what + ": with the same receiver and selector");
    const Arguments& a = arguments();
    switch (hostMethod(selector).shape) {
        case Shape::OneObject:
            check(c.first == a.first, what + ": with the same argument");
            break;
        case Shape::TwoObjects:
            check(c.first == a.first && c.second == a.second, what + ": with the same arguments");
            break;
        case Shape::TypesAndMode:
            check(c.first == a.first && c.mode == a.mode, what + ": with the same arguments");
            check(result == resultOf(owner), what + ": answering the initialiser's result");
            break;
        case Shape::NoArguments:
        case Shape::ObjectResult:
            break;
    }
}

void expectReplacedInherited(const char* className, Class implementer,
                             const std::string& selector) {
    const std::string what = describe(className, selector);
    const Class cls = classNamed(className);
    const Method inherited = ownMethod(implementer, selector);
    const Method own = ownMethod(cls, selector);
    check(own != nullptr, what + " was added to the class itself");
    check(std::strcmp(method_getTypeEncoding(own), method_getTypeEncoding(inherited)) == 0,
          what + " reuses the inherited method's type encoding");
    check(method_getImplementation(inherited) == standIn<kBase>(selector),
          what + ": the superclass's implementation is left alone");
    expectPassedOn(cls, selector, kBase, what);
}

void expectReachesLater(const char* className, Class implementer, const std::string& selector) {
    method_setImplementation(ownMethod(implementer, selector), standIn<kLater>(selector));
    expectPassedOn(classNamed(className), selector, kLater,
                   describe(className, selector) + " after the superclass changed");
}

void expectReplacedOwn(const char* className, const std::string& selector) {
    const std::string what = describe(className, selector);
    const Class cls = classNamed(className);
    const Method own = ownMethod(cls, selector);
    check(own != nullptr, what + " is still the class's own method");
    check(method_getImplementation(own) != standIn<kOwn>(selector),
          what + " runs another implementation now");
    check(std::strcmp(method_getTypeEncoding(own), hostMethod(selector).types) == 0,
          what + " keeps its type encoding");
    expectPassedOn(cls, selector, kOwn, what);
}

void expectAdded(const char* className, const std::string& selector, const char* types) {
    const std::string what = describe(className, selector);
    const Class cls = classNamed(className);
    const Method own = ownMethod(cls, selector);
    check(own != nullptr, what + " was added");
    check(std::strcmp(method_getTypeEncoding(own), types) == 0,
          what + " has the encoding " + types);
    const IMP imp = method_getImplementation(own);
    check(imp != standIn<kBase>(selector) && imp != standIn<kOwn>(selector) &&
              imp != standIn<kLater>(selector),
          what + " is the library's, not inherited");
}

void expectKeptOwn(const char* className, const std::string& selector) {
    const std::string what = describe(className, selector);
    const Method own = ownMethod(classNamed(className), selector);
    check(own != nullptr && method_getImplementation(own) == standIn<kOwn>(selector),
          what + " stays the class's own implementation");
    check(std::strcmp(method_getTypeEncoding(own), hostMethod(selector).types) == 0,
          what + " keeps its own type encoding");
    expectPassedOn(classNamed(className), selector, kOwn, what);
}

}  // namespace probe
