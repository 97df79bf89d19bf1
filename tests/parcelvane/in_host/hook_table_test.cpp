// The library's hook table installed on the host's own classes.
#include "parcelvane/in_host/library_loader.h"

#include "hooks/hook_table.h"

#include <objc/runtime.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace parcelvane::hooks;

TEST(HookTableInHost, EveryRowIsInstalledUnderTheTypesOfItsFunction) {
    EXPECT_EQ(testsupport::installResults(),
              std::vector<HookResult>(hookTable().size(), HookResult::Installed));
    for (const HookRow& row : hookTable()) {
        SCOPED_TRACE(std::string(row.className) + " " + row.selector);
        const Method method =
            class_getInstanceMethod(objc_getClass(row.className), sel_registerName(row.selector));
        ASSERT_NE(method, nullptr);
        EXPECT_EQ(method_getImplementation(method), row.implementation);
        // A replacement has something to pass its calls on to.
        if (row.original != nullptr) {
            EXPECT_NE(*row.original, nullptr);
        }
    }
    // The encodings the added methods have always had.
    const char* const added[][3] = {
        {"WAChatSessionViewController", "_presentForCurrentInterface:", "v@:@"},
        {"WAChatSessionViewController", "sendParcelvaneFile", "v@:"},
        {"WAStaticTableViewController", "addSectionAtTop", "@@:"},
        {"WASettingsViewController", "_didToggleEnableDisable:", "v@:@"},
    };
    for (const auto& [cls, sel, types] : added) {
        EXPECT_STREQ(method_getTypeEncoding(
                         class_getInstanceMethod(objc_getClass(cls), sel_registerName(sel))),
                     types)
            << sel;
    }
}

}  // namespace
