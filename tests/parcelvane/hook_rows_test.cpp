// The installation of hook rows, on classes of this test's own: the same
// function that installs the library's table at load, with rows whose
// replacements pass on an initialiser's result (the shape of the document
// menu's initialiser, whose class here is the platform's own).
#include <gtest/gtest.h>

#include "hooks/hook_installation.h"

#include <objc/object.h>
#include <objc/string.h>

#include <string>

class NSArray;

namespace {

using parcelvane::hooks::HookRow;

// What the test's rows keep; the library's own slots are not touched.
Class savedSuperclass = nullptr;
IMP passedOn = nullptr;
Class missingSaved = reinterpret_cast<Class>(0x1);  // overwritten when its row is reached
IMP missingSlot = nullptr;

id replacement(id self, SEL sel, NSArray* types, NSUInteger mode) {
    return objc::callImp<id>(passedOn, self, sel, types, mode);
}

struct Seen {
    id self = nullptr;
    id types = nullptr;
    NSUInteger mode = 0;
    std::string by;
};
Seen seen;

template <char Tag>
id initialiser(id self, SEL, NSArray* types, NSUInteger mode) {
    seen = {self, reinterpret_cast<id>(types), mode, std::string(1, Tag)};
    return self;
}

constexpr const char* kSelector = "initWithTypesForRowsTest:mode:";

TEST(HookRows, AnInheritedInitialiserPassesOnToTheSuperclassAsItIsAtEachCall) {
    const objc::AutoreleasePool pool;
    const Class base = objc_allocateClassPair(NSObject::objcClass(), "HookRowsBase", 0);
    ASSERT_NE(base, nullptr);
    class_addMethod(base, sel_registerName(kSelector), reinterpret_cast<IMP>(&initialiser<'a'>),
                    "@32@0:8@16Q24");
    objc_registerClassPair(base);
    const Class hooked = objc_allocateClassPair(base, "HookRowsHooked", 0);
    objc_registerClassPair(hooked);

    const HookRow rows[] = {
        parcelvane::hooks::replacedMethod<&replacement, &savedSuperclass, &passedOn>(
            "HookRowsHooked", kSelector),
        parcelvane::hooks::replacedMethod<&replacement, &missingSaved, &missingSlot>(
            "HookRowsNoSuchClass", kSelector),
    };
    parcelvane::hooks::installHooks(rows);

    EXPECT_EQ(savedSuperclass, base);
    EXPECT_EQ(missingSaved, nullptr) << "a missing class leaves its superclass slot empty";
    EXPECT_EQ(missingSlot, nullptr);
    const Method added = class_getInstanceMethod(hooked, sel_registerName(kSelector));
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(method_getImplementation(added), reinterpret_cast<IMP>(&replacement));
    EXPECT_STREQ(method_getTypeEncoding(added), "@32@0:8@16Q24");

    const auto types = NSString::create("types");
    const auto object = objc::adopt(class_createInstance(hooked, 0));
    const SEL sel = sel_registerName(kSelector);
    EXPECT_EQ(objc::msgSend<id>(object.get(), sel, types.get(), NSUInteger{7}), object.get());
    EXPECT_EQ(seen.by, "a");
    EXPECT_EQ(seen.self, object.get());
    EXPECT_EQ(seen.types, types.get());
    EXPECT_EQ(seen.mode, 7u);

    method_setImplementation(class_getInstanceMethod(base, sel),
                             reinterpret_cast<IMP>(&initialiser<'b'>));
    EXPECT_EQ(objc::msgSend<id>(object.get(), sel, types.get(), NSUInteger{8}), object.get());
    EXPECT_EQ(seen.by, "b");
    EXPECT_EQ(seen.mode, 8u);
}

}  // namespace
