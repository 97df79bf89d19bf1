// The library's section in the host's real Settings screen: where it goes,
// the rows for iOS 7 and later and for older systems, their titles in each
// language, what a tap on each row does, and the inline switches that write
// the settings.
#include "parcelvane/defaults_spy.h"
#include "parcelvane/in_host/settings_fixture.h"

#include <Host/DebugViewController.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSNumber.h>
#include <UIKit/CALayer.h>

#include <objc/block.h>
#include <objc/runtime.h>

#include <memory>
#include <optional>
#include <utility>

namespace {

using in_host::SettingsScreenTest;
using in_host::text;
using parcelvane_testing::DefaultsSpy;

// What the library holds in its exported switch globals.
UISwitch* exportedSwitch(const char* name) {
    auto* const global = static_cast<UISwitch**>(in_host::librarySymbol(name));
    return global != nullptr ? *global : nullptr;
}

// ---- iOS 7 and later ----------------------------------------------------------

using ModernSettingsTest = SettingsScreenTest;

TEST_F(ModernSettingsTest, TheSectionFollowsTheHostsFirstSection) {
    open("9.0");
    const auto all = sections();
    ASSERT_EQ(all.size(), 4u);  // the host's three and the library's
    EXPECT_EQ(text(all[0]->headerText()), "(nil)");
    EXPECT_EQ(text(all[0]->rowList().at(0)->title()), "WhatsApp User");
    EXPECT_EQ(text(all[1]->headerText()), "Parcelvane");
    EXPECT_EQ(text(all[1]->footerText()), "");
    EXPECT_EQ(text(all[2]->rowList().at(0)->title()), "Account");
}

TEST_F(ModernSettingsTest, TwoLinkRowsWithTheirOwnIdentifiers) {
    open("9.0");
    ASSERT_EQ(librarySection()->rowList().size(), 2u);
    const std::pair<const char*, const char*> expected[] = {
        {"ParcelvaneDebugCell", "Parcelvane Settings"},
        {"ParcelvaneDebugPageCell", "Debug Settings"}};
    for (std::size_t i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        UITableViewCell* const cell = cellAt(i);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(text(cell->reuseIdentifier()), expected[i].first);
        EXPECT_EQ(titleAt(i), expected[i].second);
        EXPECT_EQ(cell->style(), UITableViewCellStyleDefault);
        EXPECT_EQ(cell->textLabel()->textAlignment(), NSTextAlignmentLeft);
        EXPECT_EQ(cell->accessoryType(), UITableViewCellAccessoryDisclosureIndicator);
        EXPECT_EQ(cell->accessoryView(), nullptr);
        EXPECT_EQ(cell->accessibilityTraits(), UIAccessibilityTraitButton);
        EXPECT_NE(libraryRow(i)->handler(), nullptr);
        // The cell carries the text, not the row.
        EXPECT_EQ(libraryRow(i)->title(), nullptr);
    }
    // Only the settings row shows the (rounded) icon.
    EXPECT_EQ(cellAt(0)->imageView()->layer()->cornerRadius(), 5.0);
    EXPECT_TRUE(cellAt(0)->imageView()->layer()->masksToBounds());
    EXPECT_EQ(cellAt(1)->imageView()->layer()->cornerRadius(), 0.0);
}

TEST_F(ModernSettingsTest, IOS7ItselfGetsTheLinkRows) {
    open("7.0");
    ASSERT_EQ(librarySection()->rowList().size(), 2u);
    EXPECT_EQ(titleAt(0), "Parcelvane Settings");
}

TEST_F(ModernSettingsTest, TheDebugRowPushesTheHostsDebugScreenWithoutDeselecting) {
    open("9.0");
    ASSERT_TRUE(settings->tapRow(1, 1));
    UIViewController* const top = navigation->topViewController();
    ASSERT_NE(top, nullptr);
    EXPECT_TRUE(objc::isKindOf(top, DebugViewController::objcClass()));
    EXPECT_EQ(settings->selectedRow(),
              std::make_optional(std::pair<std::size_t, std::size_t>{1, 1}));

    // Each tap makes a new screen.
    navigation->popViewControllerAnimated(false);
    ASSERT_TRUE(settings->tapRow(1, 1));
    EXPECT_NE(navigation->topViewController(), top);
    EXPECT_EQ(navigation->viewControllers()->count(), 2u);
}

TEST_F(ModernSettingsTest, TheSettingsRowDeselectsAndPushesTheSettingsPage) {
    // The page is another part of the library; without it a bare view
    // controller of that name stands in.
    Class page = objc_getClass("ParcelvaneSetTableViewController");
    if (page == nullptr) {
        page = objc_allocateClassPair(UIViewController::objcClass(),
                                      "ParcelvaneSetTableViewController", 0);
        objc_registerClassPair(page);
    }
    open("9.0");
    ASSERT_TRUE(settings->tapRow(1, 0));
    EXPECT_EQ(settings->selectedRow(), std::nullopt);
    ASSERT_EQ(navigation->viewControllers()->count(), 2u);
    EXPECT_EQ(object_getClass(navigation->topViewController()), page);
}

TEST_F(ModernSettingsTest, EachBuildAddsOneSectionAndTheHostsRebuildDropsTheOld) {
    open("9.0");
    settings->setupTableView();
    // The host's own set-up starts from scratch, so there is one library
    // section again, with fresh cells.
    const auto all = sections();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(text(all[1]->headerText()), "Parcelvane");
    EXPECT_EQ(text(all[2]->headerText()), "(nil)");
}

// ---- Before iOS 7 ----------------------------------------------------------------

class LegacySettingsTest : public SettingsScreenTest {
  protected:
    static NSUserDefaults* defaults() { return NSUserDefaults::standardUserDefaults(); }
    UISwitch* switchAt(std::size_t index) const {
        return objc::cast<UISwitch>(cellAt(index)->accessoryView());
    }
};

TEST_F(LegacySettingsTest, FourRowsThreeWithSwitchesThenDebug) {
    open("6.1");
    ASSERT_EQ(sections().size(), 4u);
    EXPECT_EQ(text(librarySection()->headerText()), "Parcelvane");
    EXPECT_EQ(text(librarySection()->footerText()), "");
    ASSERT_EQ(librarySection()->rowList().size(), 4u);

    const char* const identifiers[] = {"ParcelvaneAdvancedCell", "ParcelvaneAnyDocCell",
                                       "ParcelvaneAnyDocCell", "ParcelvaneDebugPageCell"};
    const char* const titles[] = {"Enable advanced option", "Enable Any Document",
                                  "Enable Send System Files", "Debug Settings"};
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(text(cellAt(i)->reuseIdentifier()), identifiers[i]);
        EXPECT_EQ(titleAt(i), titles[i]);
        EXPECT_EQ(cellAt(i)->textLabel()->textAlignment(), NSTextAlignmentLeft);
    }
    const NSInteger tags[] = {34, 38, 42};
    const char* const globals[] = {"switchview1", "switchview2", "switchview3"};
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(cellAt(i)->selectionStyle(), UITableViewCellSelectionStyleNone);
        UISwitch* const control = switchAt(i);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(control->tag(), tags[i]);
        EXPECT_EQ(control, exportedSwitch(globals[i]));
        EXPECT_EQ(control->allControlEvents(), UIControlEventValueChanged);
    }
    EXPECT_EQ(cellAt(3)->accessoryView(), nullptr);
    EXPECT_EQ(cellAt(3)->accessoryType(), UITableViewCellAccessoryDisclosureIndicator);
    EXPECT_EQ(cellAt(3)->accessibilityTraits(), UIAccessibilityTraitButton);
    EXPECT_EQ(cellAt(0)->imageView()->layer()->cornerRadius(), 0.0);
}

TEST_F(LegacySettingsTest, TitlesAreTranslatedToo) {
    speak({"fr-CA", "en"});  // served by the bundle's fr
    open("6.1");
    EXPECT_EQ(titleAt(0), "Activer l'option avancée");
    EXPECT_EQ(titleAt(1), "Activer n'importe document");
    EXPECT_EQ(titleAt(2), "Activer l'envoi des fichiers système");
    EXPECT_EQ(titleAt(3), "Debug Réglages");
}

TEST_F(LegacySettingsTest, SwitchesShowTheStoredValuesAndMissingKeysAsOff) {
    defaults()->setObjectForKey(NSNumber::numberWithBool(true), NSSTR("doc_options_bool"));
    defaults()->setObjectForKey(NSNumber::numberWithBool(false), NSSTR("send_filesystem_enabled"));
    open("6.1");
    EXPECT_TRUE(switchAt(0)->isOn());
    EXPECT_FALSE(switchAt(1)->isOn());  // never written
    EXPECT_FALSE(switchAt(2)->isOn());

    // A value stored as a number other than a boolean counts by boolValue.
    defaults()->setObjectForKey(NSNumber::numberWithInt(2), NSSTR("send_documents_enabled"));
    settings->setupTableView();
    EXPECT_TRUE(switchAt(1)->isOn());
}

// Counts -[NSUserDefaults synchronize] while it lives, and passes it on.
class SynchronizeCounter {
  public:
    SynchronizeCounter() {
        count() = 0;
        saved() = method_setImplementation(method(), reinterpret_cast<IMP>(&counted));
    }
    ~SynchronizeCounter() { method_setImplementation(method(), saved()); }
    SynchronizeCounter(const SynchronizeCounter&) = delete;
    SynchronizeCounter& operator=(const SynchronizeCounter&) = delete;

    int calls() const { return count(); }

  private:
    static Method method() {
        return class_getInstanceMethod(NSUserDefaults::objcClass(), objc::sel<"synchronize">());
    }
    static int& count() {
        static int n = 0;
        return n;
    }
    static IMP& saved() {
        static IMP imp = nullptr;
        return imp;
    }
    static bool counted(id self, SEL sel) {
        ++count();
        return objc::callImp<bool>(saved(), self, sel);
    }
};

TEST_F(LegacySettingsTest, EachSwitchWritesOnlyItsOwnKeyThenSynchronises) {
    open("6.1");
    const char* const keys[] = {"doc_options_bool", "send_documents_enabled",
                                "send_filesystem_enabled"};
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(keys[i]);
        DefaultsSpy spy;
        const SynchronizeCounter synchronize;
        ASSERT_TRUE(switchAt(i)->userToggle());
        ASSERT_EQ(spy.writes.size(), 1u);
        EXPECT_EQ(spy.writes[0].key, keys[i]);
        EXPECT_EQ(spy.writes[0].value.get(), static_cast<id>(NSNumber::numberWithBool(true)));
        EXPECT_EQ(synchronize.calls(), 1);
        EXPECT_TRUE(defaults()->boolForKey(NSString::stringWithUTF8String(keys[i])));
    }
    // And back off.
    DefaultsSpy spy;
    ASSERT_TRUE(switchAt(1)->userToggle());
    ASSERT_EQ(spy.writes.size(), 1u);
    EXPECT_FALSE(defaults()->boolForKey(NSSTR("send_documents_enabled")));
    EXPECT_TRUE(defaults()->boolForKey(NSSTR("doc_options_bool")));
}

TEST_F(LegacySettingsTest, ASenderWithAnotherTagWritesNothingButStillSynchronises) {
    open("6.1");
    const auto stranger = UISwitch::create();
    stranger->setTag(35);
    stranger->setOn(true);
    DefaultsSpy spy;
    const SynchronizeCounter synchronize;
    objc::msgSend<void>(settings.get(), objc::sel<"_didToggleEnableDisable:">(),
                        static_cast<id>(stranger.get()));
    EXPECT_TRUE(spy.writes.empty());
    EXPECT_EQ(synchronize.calls(), 1);
}

TEST_F(LegacySettingsTest, TappingASwitchRowOnlyClearsTheHighlight) {
    open("6.1");
    DefaultsSpy spy;
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(settings->tapRow(1, i));
        EXPECT_EQ(settings->selectedRow(), std::nullopt);
        EXPECT_FALSE(switchAt(i)->isOn());
    }
    EXPECT_TRUE(spy.writes.empty());
    EXPECT_EQ(navigation->viewControllers()->count(), 1u);

    ASSERT_TRUE(settings->tapRow(1, 3));
    EXPECT_TRUE(objc::isKindOf(navigation->topViewController(), DebugViewController::objcClass()));
}

TEST_F(LegacySettingsTest, ARebuildReplacesTheGlobalsAndReleasesTheOldSwitches) {
    open("6.1");
    UISwitch* const first = exportedSwitch("switchview1");
    ASSERT_NE(first, nullptr);
    // Told when the old switch goes: its associated objects go with it.
    auto gone = std::make_shared<bool>(false);
    struct Flag {
        std::shared_ptr<bool> flag;
        ~Flag() {
            if (flag) *flag = true;
        }
    };
    {
        const objc::AutoreleasePool inner;
        auto sentinel = objc::makeBlock<void()>([flag = std::make_shared<Flag>(Flag{gone})] {});
        static const char key = 0;
        objc_setAssociatedObject(first, &key, sentinel.get(), OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    }
    {
        const objc::AutoreleasePool inner;
        settings->setupTableView();
    }
    EXPECT_NE(exportedSwitch("switchview1"), first);
    EXPECT_EQ(exportedSwitch("switchview1"), switchAt(0));
    EXPECT_TRUE(*gone);
}

// ---- A host that keeps its sections --------------------------------------------

// The library passes its set-up on to this instead of the host's own, which
// starts from scratch.
class KeepingHost {
  public:
    KeepingHost() : slot_(static_cast<IMP*>(in_host::librarySymbol(kSlot))) {
        if (slot_ != nullptr) saved_ = std::exchange(*slot_, reinterpret_cast<IMP>(&keep));
    }
    ~KeepingHost() {
        if (slot_ != nullptr) *slot_ = saved_;
    }
    KeepingHost(const KeepingHost&) = delete;
    KeepingHost& operator=(const KeepingHost&) = delete;

    bool installed() const { return slot_ != nullptr; }

  private:
    // parcelvane::hooks::original::setupTableView
    static constexpr const char* kSlot = "_ZN10parcelvane5hooks8original14setupTableViewE";
    static void keep(id, SEL) {}

    IMP* slot_;
    IMP saved_ = nullptr;
};

TEST_F(ModernSettingsTest, ASecondBuildOnAKeptTableInsertsASecondSectionAboveTheFirst) {
    open("9.0");
    WATableSection* const earlier = librarySection();
    const KeepingHost host;
    ASSERT_TRUE(host.installed());
    settings->setupTableView();
    const auto all = sections();
    ASSERT_EQ(all.size(), 5u);
    EXPECT_NE(all[1], earlier);
    EXPECT_EQ(text(all[1]->headerText()), "Parcelvane");
    EXPECT_EQ(all[2], earlier);
    EXPECT_EQ(all[1]->rowList().size(), 2u);
}

TEST_F(ModernSettingsTest, AddSectionAtTopInsertsAnEmptySectionAtIndexOne) {
    open("9.0");
    const id added = objc::msgSend<id>(settings.get(), objc::sel<"addSectionAtTop">());
    ASSERT_NE(added, nullptr);
    EXPECT_TRUE(objc::isKindOf(added, WATableSection::objcClass()));
    const auto all = sections();
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(static_cast<id>(all[1]), added);
    EXPECT_TRUE(all[1]->rowList().empty());
    EXPECT_EQ(all[1]->headerText(), nullptr);
    // Owned by the list; the caller got an autoreleased reference.
    EXPECT_EQ(objc_retainCount(added), 2u);
}

}  // namespace
