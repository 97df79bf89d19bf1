// Hook rows installed in order on this test's own classes, and the library's table here.
#include <gtest/gtest.h>

#include "chat_screen_fakes.h"
#include "hooks/hook_installation.h"
#include "hooks/hook_table.h"

#include <objc/object.h>
#include <objc/string.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace parcelvane::hooks;
using enum HookResult;

std::string seen;

template <char Tag>
id original(id, SEL, id argument) {
    seen += Tag;
    return argument;
}
template <char Tag>
id replacement(id self, SEL sel, id argument) {
    seen += 'r';
    return callOriginal<&replacement<Tag>>(self, sel, argument);
}
id added(id self, SEL, id) {
    return self;
}
long otherTypes(id, SEL, long n) {
    return n;
}

// As the host's methods are encoded: with frame offsets.
constexpr const char* kTypes = "@24@0:8@16";

Class defineClass(Class superclass, const char* name, IMP probe, const char* other = nullptr) {
    const Class cls = objc_allocateClassPair(superclass, name, 0);
    if (probe != nullptr) class_addMethod(cls, sel_registerName("probe:"), probe, kTypes);
    if (other != nullptr) class_addMethod(cls, sel_registerName(other), probe, kTypes);
    objc_registerClassPair(cls);
    return cls;
}

TEST(HookRows, AnswerOneResultEachAndPassCallsOnToWhatTheyReplaced) {
    const objc::AutoreleasePool pool;
    const Class base =
        defineClass(NSObject::objcClass(), "HookRowsBase", reinterpret_cast<IMP>(&original<'a'>));
    const Class hooked = defineClass(base, "HookRowsHooked", nullptr);
    const Class subclass = defineClass(hooked, "HookRowsSubclass", nullptr);
    const Class owner = defineClass(NSObject::objcClass(), "HookRowsOwner",
                                    reinterpret_cast<IMP>(&original<'o'>), "other:");
    const HookRow rows[] = {
        replace<&replacement<'h'>>("HookRowsHooked", "probe:"),
        add<&added>("HookRowsHooked", "added:"),
        replace<&replacement<'m'>>("HookRowsNoSuchClass", "probe:"),
        replace<&replacement<'x'>>("HookRowsOwner", "absent:"),
        replace<&otherTypes>("HookRowsOwner", "other:"),
        add<&added>("HookRowsOwner", "probe:"),
        replace<&replacement<'o'>>("HookRowsOwner", "probe:"),
    };
    EXPECT_EQ(installHooks(rows), (std::vector{Installed, Installed, ClassMissing, MethodMissing,
                                               EncodingMismatch, AlreadyImplemented, Installed}));
    // The rows that were not installed left the owner as it was.
    unsigned int count = 0;
    std::free(class_copyMethodList(owner, &count));
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(method_getImplementation(class_getInstanceMethod(owner, sel_registerName("other:"))),
              reinterpret_cast<IMP>(&original<'o'>));
    EXPECT_EQ(Original<&replacement<'m'>>::imp, nullptr);
    EXPECT_EQ(Original<&replacement<'x'>>::imp, nullptr);
    EXPECT_EQ(Original<&otherTypes>::imp, nullptr);

    const SEL probe = sel_registerName("probe:");
    EXPECT_STREQ(method_getTypeEncoding(class_getInstanceMethod(hooked, probe)), kTypes);
    EXPECT_STREQ(
        method_getTypeEncoding(class_getInstanceMethod(hooked, sel_registerName("added:"))),
        "@@:@");

    const auto argument = NSString::create("argument");
    const auto send = [&](Class cls) {
        seen.clear();
        const auto object = objc::adopt(class_createInstance(cls, 0));
        EXPECT_EQ(objc::msgSend<id>(object.get(), probe, argument.get()), argument.get());
        return seen;
    };
    // Without its own method the class falls back to its superclass's, also for a subclass.
    EXPECT_EQ(send(hooked), "ra");
    EXPECT_EQ(send(subclass), "ra");
    // The superclass's implementation as it is at each call.
    method_setImplementation(class_getInstanceMethod(base, probe),
                             reinterpret_cast<IMP>(&original<'b'>));
    EXPECT_EQ(send(hooked), "rb");
    // A class with its own method keeps it reachable behind the replacement.
    EXPECT_EQ(send(owner), "ro");
}

TEST(HookRows, AHostClassWithoutTheMethodLeavesOnlyThatRowOut) {
    // This program has the document menu, no chat screen, settings without setupTableView.
    std::vector<HookResult> expected(hookTable().size(), ClassMissing);
    expected[0] = Installed;
    expected[8] = Installed;
    expected[9] = MethodMissing;
    expected[10] = Installed;
    EXPECT_EQ(testsupport::libraryInstalled(), expected);
    const Class settings = objc_getClass("WASettingsViewController");
    unsigned int count = 0;
    Method* const methods = class_copyMethodList(settings, &count);
    ASSERT_EQ(count, 1u);
    EXPECT_STREQ(sel_getName(method_getName(methods[0])), "_didToggleEnableDisable:");
    std::free(methods);
    EXPECT_FALSE(class_respondsToSelector(settings, sel_registerName("setupTableView")));
}

}  // namespace
