// The installation of hook rows, in order, on classes of this test's own:
// the function that installs the library's table at load.
#include <gtest/gtest.h>

#include "hooks/hook_installation.h"

#include <objc/object.h>
#include <objc/string.h>

#include <string>

namespace {

using namespace parcelvane::hooks;

Class savedHooked = nullptr;
Class savedMissing = reinterpret_cast<Class>(0x1);  // overwritten when its row is reached
Class savedOwner = nullptr;
IMP passedHooked = nullptr;
IMP passedMissing = nullptr;
IMP passedOwner = nullptr;
IMP passedAbsent = nullptr;
std::string seen;

template <char Tag>
id original(id, SEL, id argument) {
    seen += Tag;
    return argument;
}
template <IMP* Slot>
id replacement(id self, SEL sel, id argument) {
    seen += 'r';
    return objc::callImp<id>(*Slot, self, sel, argument);
}
id added(id self, SEL, id) {
    return self;
}

constexpr const char* kTypes = "@24@0:8@16";

Class defineClass(Class superclass, const char* name, IMP probe) {
    const Class cls = objc_allocateClassPair(superclass, name, 0);
    if (probe != nullptr) class_addMethod(cls, sel_registerName("probe:"), probe, kTypes);
    objc_registerClassPair(cls);
    return cls;
}

TEST(HookRows, AreInstalledInOrderAndPassCallsOnToWhatTheyReplaced) {
    const objc::AutoreleasePool pool;
    const Class base =
        defineClass(NSObject::objcClass(), "HookRowsBase", reinterpret_cast<IMP>(&original<'a'>));
    const Class hooked = defineClass(base, "HookRowsHooked", nullptr);
    const Class subclass = defineClass(hooked, "HookRowsSubclass", nullptr);
    const Class owner =
        defineClass(NSObject::objcClass(), "HookRowsOwner", reinterpret_cast<IMP>(&original<'o'>));
    const HookRow rows[] = {
        replacedMethod<&replacement<&passedHooked>, &savedHooked, &passedHooked>("HookRowsHooked",
                                                                                 "probe:"),
        addedMethod<&added, &savedHooked>("HookRowsHooked", "added:", "@@:@"),
        replacedMethod<&replacement<&passedMissing>, &savedMissing, &passedMissing>(
            "HookRowsNoSuchClass", "probe:"),
        replacedMethod<&replacement<&passedOwner>, &savedOwner, &passedOwner>("HookRowsOwner",
                                                                              "probe:"),
        replacedMethod<&replacement<&passedAbsent>, &savedOwner, &passedAbsent>("HookRowsOwner",
                                                                                "absent:"),
    };
    installHooks(rows);

    EXPECT_EQ(savedHooked, base);
    EXPECT_EQ(savedOwner, NSObject::objcClass());
    EXPECT_EQ(savedMissing, nullptr) << "a missing class leaves its superclass slot empty";
    EXPECT_EQ(passedMissing, nullptr);
    EXPECT_EQ(passedAbsent, nullptr) << "a method the class lacks is not replaced";
    EXPECT_FALSE(class_respondsToSelector(owner, sel_registerName("absent:")));

    const SEL probe = sel_registerName("probe:");
    const Method replaced = class_getInstanceMethod(hooked, probe);
    EXPECT_EQ(method_getImplementation(replaced),
              reinterpret_cast<IMP>(&replacement<&passedHooked>));
    EXPECT_STREQ(method_getTypeEncoding(replaced), kTypes);
    EXPECT_EQ(method_getImplementation(class_getInstanceMethod(base, probe)),
              reinterpret_cast<IMP>(&original<'a'>));
    const Method addedMethod = class_getInstanceMethod(hooked, sel_registerName("added:"));
    ASSERT_NE(addedMethod, nullptr);
    EXPECT_STREQ(method_getTypeEncoding(addedMethod), "@@:@");

    const auto argument = NSString::create("argument");
    const auto send = [&](Class cls) {
        seen.clear();
        const auto object = objc::adopt(class_createInstance(cls, 0));
        EXPECT_EQ(objc::msgSend<id>(object.get(), probe, argument.get()), argument.get());
        return seen;
    };
    // Without a method of its own the class falls back to its superclass's;
    // a subclass instance reaches it too, rather than the replacement again.
    EXPECT_EQ(send(hooked), "ra");
    EXPECT_EQ(send(subclass), "ra");
    // The superclass's implementation as it is at each call.
    method_setImplementation(class_getInstanceMethod(base, probe),
                             reinterpret_cast<IMP>(&original<'b'>));
    EXPECT_EQ(send(hooked), "rb");
    // A class with its own method keeps it reachable behind the replacement.
    EXPECT_EQ(send(owner), "ro");
}

}  // namespace
