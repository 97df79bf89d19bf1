#include "host_fixture.h"

#include <Host/DebugViewController.h>
#include <Host/WASettingsViewController.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <objc/property.h>

namespace {

using testsupport::HostTest;

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

TEST_F(SettingsTest, LoadingTheViewBuildsTheProfileFirstOnceOnlyAndRowsOpenTheirPages) {
    NSUserDefaults::standardUserDefaults()->setObjectForKey(NSSTR("Zoë"), NSSTR("ProfileName"));
    EXPECT_TRUE(settings->sectionList().empty());
    settings->view();
    settings->setupTableView();  // rebuilds rather than duplicates
    const auto sections = settings->sectionList();
    ASSERT_EQ(sections.size(), 3u);
    EXPECT_EQ(rowTitle(0, 0), "Zoë");
    EXPECT_EQ(rowTitle(1, 0), "Account");
    for (WATableSection* s : sections) {
        for (const auto& row : s->rowList()) EXPECT_NE(row->handler(), nullptr);
    }
    NSUserDefaults::standardUserDefaults()->removeObjectForKey(NSSTR("ProfileName"));

    ASSERT_TRUE(settings->tapRow(1, 0));
    EXPECT_FALSE(settings->selectedRow().has_value()) << "the page row deselects itself";
    auto* page = objc::cast<WAStaticTableViewController>(nav->topViewController());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->title()->utf8(), "Account");
    EXPECT_FALSE(page->tapRow(0, 99));
    EXPECT_FALSE(settings->tapRow(7, 0));
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

TEST_F(SettingsTest, RowsKeepACopyOfTheirHandler) {
    auto row = WATableRow::create();
    int runs = 0;
    row->setHandler(objc::makeBlock<void()>([&] { ++runs; }).get());  // the block goes here
    ASSERT_NE(row->handler(), nullptr);
    (*row->handler())();
    EXPECT_EQ(runs, 1);
    EXPECT_STREQ(property_getAttributes(class_getProperty(WATableRow::objcClass(), "handler")),
                 "T@?,C,N,V_handler");
    EXPECT_STREQ(property_getAttributes(class_getProperty(WATableRow::objcClass(), "title")),
                 "T@\"NSString\",C,N,V_title");
    auto section = WATableSection::create();
    section->addRow(row.get());
    section->addRow(nullptr);
    EXPECT_EQ(section->rows()->count(), 1u);
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
}

}  // namespace
