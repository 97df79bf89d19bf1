// The hook probe's means: stand-in implementations that record how they are
// called, classes made of them, sends with fixed arguments, and the checks
// that a hook sits where the library's installation puts it.
#pragma once

#include <Foundation/NSArray.h>

#include <objc/message.h>
#include <objc/object.h>
#include <objc/runtime.h>
#include <objc/string.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace probe {

// Prints the failure and ends the probe with status 1.
[[noreturn]] void fail(const std::string& what);
// Prints the check; a false one fails.
void check(bool ok, const std::string& what);

// Who ran, on what, with which arguments.
struct Call {
    std::string owner;
    id self;
    SEL sel;
    id first;
    id second;
    NSUInteger mode;
};
extern std::vector<Call> calls;

// The object each stand-in initialiser answers, one per owner.
id resultOf(const char* owner);

inline constexpr char kBase[] = "base";    // a superclass of the hooked class
inline constexpr char kOwn[] = "own";      // the hooked class itself
inline constexpr char kLater[] = "later";  // put into the superclass after loading

template <const char* Owner>
void noArguments(id self, SEL sel) {
    calls.push_back({Owner, self, sel, nullptr, nullptr, 0});
}
template <const char* Owner>
void oneObject(id self, SEL sel, id first) {
    calls.push_back({Owner, self, sel, first, nullptr, 0});
}
template <const char* Owner>
void twoObjects(id self, SEL sel, id first, id second) {
    calls.push_back({Owner, self, sel, first, second, 0});
}
template <const char* Owner>
id initWithTypesInMode(id self, SEL sel, id types, NSUInteger mode) {
    calls.push_back({Owner, self, sel, types, nullptr, mode});
    return resultOf(Owner);
}
// The host's static-table parts that the library's Settings section sends
// to once its set-up has passed the call on: classes named "WATableSection"
// and "WATableRow" that take the messages a section and a row get, and a
// `_sections` list (read by key) for a table class. Defined before loading.
void defineTableParts();
void giveSections(Class table);
// A section, as addSectionAtTop answers one.
id sectionStandIn();

template <const char* Owner>
id objectResult(id self, SEL sel) {
    calls.push_back({Owner, self, sel, nullptr, nullptr, 0});
    return sectionStandIn();
}

enum class Shape { NoArguments, OneObject, TwoObjects, TypesAndMode, ObjectResult };

struct HostMethod {
    Shape shape;
    const char* types;  // with offsets, so that a reused encoding is recognised
};
const HostMethod& hostMethod(const std::string& selector);

template <const char* Owner>
IMP standIn(const std::string& selector) {
    switch (hostMethod(selector).shape) {
        case Shape::NoArguments:
            return reinterpret_cast<IMP>(&noArguments<Owner>);
        case Shape::OneObject:
            return reinterpret_cast<IMP>(&oneObject<Owner>);
        case Shape::TwoObjects:
            return reinterpret_cast<IMP>(&twoObjects<Owner>);
        case Shape::TypesAndMode:
            return reinterpret_cast<IMP>(&initWithTypesInMode<Owner>);
        case Shape::ObjectResult:
            return reinterpret_cast<IMP>(&objectResult<Owner>);
    }
    return nullptr;
}

template <const char* Owner>
Class defineClass(const char* name, Class superclass,
                  std::initializer_list<const char*> selectors = {}) {
    const Class cls = objc_allocateClassPair(superclass, name, 0);
    if (cls == nullptr) fail(std::string("could not define ") + name);
    for (const char* selector : selectors) {
        class_addMethod(cls, sel_registerName(selector), standIn<Owner>(selector),
                        hostMethod(selector).types);
    }
    objc_registerClassPair(cls);
    return cls;
}

// A document picker as far as the hooks go: it takes a presentation style.
id documentPickerStandIn();

// The arguments every send passes, so that a stand-in can tell they came through.
struct Arguments {
    // A list of document types, which every stand-in and the platform's
    // document menu initialiser accept.
    id first = NSArray::create({NSSTR("public.data")}).leak();
    // The picker of documentMenu:didPickDocumentPicker:, which the library styles.
    id second = documentPickerStandIn();
    NSUInteger mode = 3;
};
const Arguments& arguments();

// Sends the host method with the standard arguments; answers its result.
id send(id receiver, const std::string& selector);

std::string describe(const char* className, const std::string& selector);

// The method the class itself defines for the selector (not an inherited one).
Method ownMethod(Class cls, const std::string& selector);

unsigned int ownMethodCount(Class cls);

Class classNamed(const char* name);

// An instance owned by the caller.
objc::Strong<objc_object> instanceOf(Class cls);

// Sends the message to a fresh instance of `receiverClass` and checks that
// exactly one stand-in of that selector ran (a replacement may send others), the expected one, with
// the same receiver, selector and arguments, and that an initialiser's result came back.
void expectPassedOn(Class receiverClass, const std::string& selector, const char* owner,
                    const std::string& what);

// A replaced method of a class that only inherited it: the replacement now
// belongs to the class itself, under the inherited method's encoding, and
// passing on reaches the superclass's implementation as it is at each call.
void expectReplacedInherited(const char* className, Class implementer, const std::string& selector);

// After the superclass's implementation was exchanged for the "later" one.
void expectReachesLater(const char* className, Class implementer, const std::string& selector);

// A replaced method that the class implements itself: the same method now
// runs the replacement, which passes on to the class's previous implementation.
void expectReplacedOwn(const char* className, const std::string& selector);

// An added method: the class's own, with the fixed encoding, and not one of
// the stand-ins (the library's methods need a real host to run).
void expectAdded(const char* className, const std::string& selector, const char* types);

// An added method that the class implemented itself stays the class's.
void expectKeptOwn(const char* className, const std::string& selector);

}  // namespace probe
