// The library's section in the host's real Settings screen, beyond what scripts can see.
#include "hooks/settings_switches.h"
#include "parcelvane/in_host/settings_fixture.h"
#include "support/defaults_spy.h"
#include "support/loopback_http_server.h"
#include "support/tiny_png.h"

#include <Foundation/NSNumber.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UISwitch.h>

#include <objc/block.h>
#include <objc/runtime.h>

#include <memory>
#include <optional>
#include <utility>

namespace {

using testsupport::DefaultsSpy;
using testsupport::SettingsScreenTest;

// Counts -[NSUserDefaults synchronize] while it lives, and passes it on.
class SynchronizeCounter {
  public:
    SynchronizeCounter() {
        calls = 0;
        saved = method_setImplementation(method(), reinterpret_cast<IMP>(&counted));
    }
    ~SynchronizeCounter() { method_setImplementation(method(), saved); }
    SynchronizeCounter(const SynchronizeCounter&) = delete;
    SynchronizeCounter& operator=(const SynchronizeCounter&) = delete;

    static inline int calls = 0;

  private:
    static Method method() {
        return class_getInstanceMethod(NSUserDefaults::objcClass(), objc::sel<"synchronize">());
    }
    static inline IMP saved = nullptr;
    static bool counted(id self, SEL sel) {
        ++calls;
        return objc::callImp<bool>(saved, self, sel);
    }
};

class LegacySettingsTest : public SettingsScreenTest {
  protected:
    UISwitch* switchAt(std::size_t index) const {
        return objc::cast<UISwitch>(cellAt(index)->accessoryView());
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
        EXPECT_EQ(SynchronizeCounter::calls, 1);
    }
    const auto stranger = UISwitch::create();
    stranger->setTag(35);
    stranger->setOn(true);
    DefaultsSpy spy;
    const SynchronizeCounter synchronize;
    objc::msgSend<void>(settings.get(), objc::sel<"_didToggleEnableDisable:">(),
                        static_cast<id>(stranger.get()));
    EXPECT_TRUE(spy.writes.empty()) << "a sender with another tag";
    EXPECT_EQ(SynchronizeCounter::calls, 1);
}

TEST_F(LegacySettingsTest, ARebuildReplacesTheGlobalsAndReleasesTheOldSwitches) {
    open("6.1");
    UISwitch* const* const globals[] = {&switchview1, &switchview2, &switchview3};
    UISwitch* old[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        old[i] = *globals[i];
        EXPECT_EQ(old[i], switchAt(i));
    }
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
        objc_setAssociatedObject(old[0], &key, sentinel.get(), OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    }
    {
        const objc::AutoreleasePool inner;
        settings->setupTableView();
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NE(*globals[i], old[i]);
        EXPECT_EQ(*globals[i], switchAt(i));
    }
    EXPECT_TRUE(*gone);
}

// While it lives, the host's set-up keeps its earlier sections: that one list ignores emptying.
class KeepingHost {
  public:
    explicit KeepingHost(NSMutableArray* sections) {
        kept = sections;
        saved = method_setImplementation(method(), reinterpret_cast<IMP>(&removeAll));
    }
    ~KeepingHost() {
        method_setImplementation(method(), saved);
        kept = nullptr;
    }
    KeepingHost(const KeepingHost&) = delete;
    KeepingHost& operator=(const KeepingHost&) = delete;

  private:
    static Method method() {
        return class_getInstanceMethod(NSMutableArray::objcClass(),
                                       objc::sel<"removeAllObjects">());
    }
    static inline NSMutableArray* kept = nullptr;
    static inline IMP saved = nullptr;
    static void removeAll(id self, SEL sel) {
        if (self != kept) objc::callImp<void>(saved, self, sel);
    }
};

TEST_F(SettingsScreenTest, ASecondBuildOnAKeptTableInsertsASecondSectionAtIndexOne) {
    open("9.0");
    WATableSection* const earlier = librarySection();
    const KeepingHost host(settings->sectionsArray());
    settings->setupTableView();
    const auto all = settings->sectionList();
    ASSERT_EQ(all.size(), 8u);  // the four before, the host's three again, one more
    EXPECT_NE(all[1], earlier);
    EXPECT_EQ(all[1]->headerText()->utf8(), "Parcelvane");
    EXPECT_EQ(all[1]->rowList().size(), 2u);
    EXPECT_EQ(all[2], earlier);
}

TEST_F(SettingsScreenTest, TheSettingsRowDeselectsAndPushesTheSettingsPage) {
    // The page is another part of the library; without it a bare controller of that name stands in.
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

// ---- The icon -----------------------------------------------------------------

class SettingsIconTest : public SettingsScreenTest {
  protected:
    // Downloads go through the server until the fixture puts the refusing proxy back.
    SettingsIconTest() { ::setenv("http_proxy", server.baseURL().c_str(), 1); }
    UIImage* icon() const { return cellAt(0)->imageView()->image(); }
    static void settle() { foundation::runMainLoopUntilIdle(true); }

    static constexpr char kIconPath[] = "/apt/depict/ParcelvaneIcon-Small@2x.png";
    testsupport::LoopbackHttpServer server;
};

TEST_F(SettingsIconTest, TheMakersIconIsSetOnlyOnceTheMainQueueRuns) {
    server.respond(kIconPath, testsupport::CannedResponse::ok(testsupport::tinyPng()));
    open("7.0");  // the first system with the icon row
    EXPECT_EQ(icon(), nullptr);
    settle();
    ASSERT_EQ(server.requestLines().size(), 1u);
    EXPECT_EQ(server.requestLines()[0],
              "GET http://apt.tolbrenn.net/apt/depict/ParcelvaneIcon-Small@2x.png HTTP/1.1");
    EXPECT_EQ(server.hostHeaders()[0], "apt.tolbrenn.net");
    UIImage* const image = icon();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelWidth(), 2u);
    EXPECT_EQ(cellAt(1)->imageView()->image(), nullptr) << "the debug row has no icon";
}

TEST_F(SettingsIconTest, AnErrorAnswerOrBytesThatAreNoImageLeaveTheRowWithout) {
    open("9.0");  // nothing served yet: a 404
    settle();
    EXPECT_EQ(icon(), nullptr);

    server.respond(kIconPath, testsupport::CannedResponse::ok("<html>moved</html>"));
    settings->setupTableView();
    settle();
    EXPECT_EQ(icon(), nullptr);
    EXPECT_EQ(server.requestLines().size(), 2u);
}

}  // namespace
