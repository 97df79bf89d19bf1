#include "host_fixture.h"

#include <Host/DebugViewController.h>
#include <Host/WASettingsViewController.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

namespace {

using hosttest::HostTest;

class SettingsTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        settings = WASettingsViewController::create();
        nav = UINavigationController::create(settings.get());
    }
    std::string rowTitle(std::size_t section, std::size_t row) {
        return settings->sectionList().at(section)->rowList().at(row)->title()->utf8();
    }
    objc::Strong<WASettingsViewController> settings;
    objc::Strong<UINavigationController> nav;
};

TEST_F(SettingsTest, SectionsAreAnInstanceVariableReadByKey) {
    id sections = settings->valueForKey(NSSTR("_sections"));
    ASSERT_NE(sections, nullptr);
    EXPECT_TRUE(objc::isKindOf(sections, NSMutableArray::objcClass()));
    EXPECT_EQ(sections, settings->sectionsArray());
    EXPECT_FALSE(settings->respondsToSelector(objc::sel<"sections">()));
    EXPECT_NE(class_getInstanceVariable(WASettingsViewController::objcClass(), "_sections"),
              nullptr);
}

TEST_F(SettingsTest, LoadingTheViewBuildsTheProfileFirst) {
    NSUserDefaults::standardUserDefaults()->setObjectForKey(NSSTR("Zoë"), NSSTR("ProfileName"));
    EXPECT_TRUE(settings->sectionList().empty());
    settings->view();
    const auto sections = settings->sectionList();
    ASSERT_EQ(sections.size(), 3u);
    EXPECT_EQ(rowTitle(0, 0), "Zoë");
    EXPECT_EQ(sections[0]->rowList()[0]->detailText()->utf8(), "Hey there! I am using WhatsApp.");
    EXPECT_EQ(rowTitle(1, 0), "Account");
    EXPECT_EQ(rowTitle(1, 1), "Chats");
    EXPECT_EQ(rowTitle(1, 2), "Notifications");
    EXPECT_EQ(rowTitle(1, 3), "Data Usage");
    EXPECT_EQ(settings->title()->utf8(), "Settings");
    for (WATableSection* s : sections) {
        for (const auto& row : s->rowList()) EXPECT_NE(row->handler(), nullptr);
    }
    NSUserDefaults::standardUserDefaults()->removeObjectForKey(NSSTR("ProfileName"));
}

TEST_F(SettingsTest, SetupRebuildsRatherThanDuplicates) {
    settings->view();
    settings->setupTableView();
    EXPECT_EQ(settings->sectionList().size(), 3u);
}

TEST_F(SettingsTest, ASectionInsertedByKeyValueCodingIsShown) {
    settings->view();
    auto mine = WATableSection::create();
    mine->setHeaderText(NSSTR("Mine"));
    auto* sections = static_cast<NSMutableArray*>(settings->valueForKey(NSSTR("_sections")));
    sections->insertObjectAtIndex(mine.get(), 1);
    ASSERT_EQ(settings->sectionList().size(), 4u);
    EXPECT_EQ(settings->sectionList()[1], mine.get());
    EXPECT_EQ(rowTitle(2, 0), "Account");
}

TEST_F(SettingsTest, TappingARowOpensItsPage) {
    settings->view();
    ASSERT_TRUE(settings->tapRow(1, 0));
    EXPECT_FALSE(settings->selectedRow().has_value()) << "the page row deselects itself";
    auto* page = objc::cast<WAStaticTableViewController>(nav->topViewController());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->title()->utf8(), "Account");
    ASSERT_EQ(page->sectionList().size(), 1u);
    EXPECT_EQ(page->sectionList()[0]->rowList()[0]->title()->utf8(), "Privacy");
    EXPECT_TRUE(page->tapRow(0, 0));
    EXPECT_FALSE(page->tapRow(0, 99));
    EXPECT_FALSE(settings->tapRow(7, 0));
}

TEST_F(SettingsTest, SelectionStaysUntilDeselected) {
    settings->view();
    auto row = WATableRow::create();
    row->setTitle(NSSTR("Keeps selection"));
    int taps = 0;
    row->setHandler(objc::makeBlock<void()>([&] { ++taps; }).get());
    settings->sectionList()[0]->addRow(row.get());
    ASSERT_TRUE(settings->tapRow(0, 1));
    EXPECT_EQ(taps, 1);
    EXPECT_EQ(settings->selectedRow(), std::make_optional(std::make_pair(0ul, 1ul)));
    settings->deselectActiveCell();
    EXPECT_FALSE(settings->selectedRow().has_value());
}

TEST_F(SettingsTest, LeavingTheStackReleasesTheRowsAndReturningRebuildsThem) {
    auto root = UIViewController::create();
    auto stack = UINavigationController::create(root.get());
    auto pushed = WASettingsViewController::create();
    stack->pushViewController(pushed.get(), false);
    pushed->view();
    ASSERT_EQ(pushed->sectionList().size(), 3u);
    stack->popViewControllerAnimated(false);
    EXPECT_TRUE(pushed->sectionList().empty());
    EXPECT_FALSE(pushed->isViewLoaded());
    stack->pushViewController(pushed.get(), false);
    pushed->view();
    EXPECT_EQ(pushed->sectionList().size(), 3u);
}

TEST_F(SettingsTest, RowsKeepACopyOfTheirHandlerAndTheirCell) {
    auto row = WATableRow::create();
    auto cell = objc::make<NSObject>();
    row->setCell(cell.get());
    EXPECT_EQ(row->cell(), cell.get());
    int runs = 0;
    {
        auto block = objc::makeBlock<void()>([&] { ++runs; });
        row->setHandler(block.get());
    }
    ASSERT_NE(row->handler(), nullptr);
    (*row->handler())();
    EXPECT_EQ(runs, 1);
    row->setHandler(nullptr);
    EXPECT_EQ(row->handler(), nullptr);

    auto section = WATableSection::create();
    section->setFooterText(NSSTR(""));
    section->addRow(row.get());
    section->addRow(nullptr);
    EXPECT_EQ(section->rows()->count(), 1u);
    EXPECT_EQ(section->footerText()->utf8(), "");
    EXPECT_EQ(section->headerText(), nullptr);
}

TEST_F(SettingsTest, TheDebugScreenShowsTheVersionAndTheDefaults) {
    NSUserDefaults::standardUserDefaults()->setObjectForKey(NSNumber::numberWithBool(true),
                                                            NSSTR("send_documents_enabled"));
    auto debug = objc::cast<DebugViewController>(objc::msgSend<id>(
        objc::msgSend<id>(objc_getClass("DebugViewController"), objc::sel<"alloc">()),
        objc::sel<"init">()));
    ASSERT_NE(debug, nullptr);
    const objc::Strong<DebugViewController> owned = objc::adopt(debug);
    const auto lines = owned->lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines[0], "Version: 2.16.4");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "send_documents_enabled = 1"), lines.end());
    EXPECT_TRUE(std::is_sorted(lines.begin() + 1, lines.end()));
    NSUserDefaults::standardUserDefaults()->removeObjectForKey(NSSTR("send_documents_enabled"));
    owned->view();
    EXPECT_EQ(owned->title()->utf8(), "Debug");
}

}  // namespace
