#include "uikit_fixture.h"

#include <Foundation/NSArray.h>

namespace {

using DocumentMenuTest = UIKitTest;

TEST_F(DocumentMenuTest, OptionsRunTheirHandlerAfterTheMenuIsDismissed) {
    std::vector<std::string> log;
    auto presenter = UIViewController::create();
    auto menu = UIDocumentMenuViewController::create(NSArray::create({NSSTR("public.data")}).get(),
                                                     UIDocumentPickerModeImport);
    menu->addOptionWithTitle(NSSTR("Last"), nullptr, UIDocumentMenuOrderLast,
                             objc::makeBlock<void()>([&] { log.push_back("last"); }).get());
    menu->addOptionWithTitle(NSSTR("First"), nullptr, UIDocumentMenuOrderFirst,
                             objc::makeBlock<void()>([&] { log.push_back("first"); }).get());
    const auto options = menu->orderedOptions();
    ASSERT_EQ(options.size(), 2u);
    EXPECT_EQ(options[0]->title, "First");
    EXPECT_EQ(options[1]->title, "Last");

    presenter->presentViewController(menu.get(), true, nullptr);
    drain();
    EXPECT_TRUE(menu->chooseOption(1));
    EXPECT_EQ(presenter->presentedViewController(), nullptr);
    EXPECT_TRUE(log.empty());
    drain();
    EXPECT_EQ(log, std::vector<std::string>{"last"});
    EXPECT_FALSE(menu->chooseOption(2));
}

}  // namespace
