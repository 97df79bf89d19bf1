// Table cells and table views as a static settings table uses them.
#include "uikit_fixture.h"
#include "view_pixels.h"

#include <UIKit/UISwitch.h>
#include <UIKit/UITableView.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSMutableString.h>

#include <objc/image.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

// A table's style is not a row animation, nor is a plain integer either.
static_assert(!std::is_convertible_v<UITableViewStyle, UITableViewRowAnimation> &&
              !std::is_convertible_v<NSInteger, UITableViewRowAnimation>);

// Serves fixed cells; counts what it is asked.
class CellSource : public NSObject {
    OBJC_CLASS(CellSource)

    std::vector<std::vector<objc::Strong<UITableViewCell>>> sections;
    int cellRequests = 0;
    int countRequests = 0;
    bool answerNil = false;

  private:
    NSInteger imp_sections(id) {
        ++countRequests;
        return static_cast<NSInteger>(sections.size());
    }
    NSInteger imp_rows(id, NSInteger section) {
        return static_cast<NSInteger>(sections.at(static_cast<std::size_t>(section)).size());
    }
    UITableViewCell* imp_cell(id, NSIndexPath* path) {
        ++cellRequests;
        if (answerNil) return nullptr;
        return sections.at(static_cast<std::size_t>(path->section()))
            .at(static_cast<std::size_t>(path->row()))
            .get();
    }
    NSString* imp_header(id, NSInteger section) { return section == 0 ? NSSTR("First") : nullptr; }
};

OBJC_DEFINE_CLASS(CellSource, NSObject, "TableTestCellSource")
OBJC_REGISTER_CLASS(CellSource)

void CellSource::objcDefine(objc::ClassBuilder<CellSource>& b) {
    b.method<&CellSource::imp_sections>("numberOfSectionsInTableView:")
        .method<&CellSource::imp_rows>("tableView:numberOfRowsInSection:")
        .method<&CellSource::imp_cell>("tableView:cellForRowAtIndexPath:")
        .method<&CellSource::imp_header>("tableView:titleForHeaderInSection:");
}

// Logs "will:s.r", "did:s.r", "deselect:s.r"; may redirect or refuse a selection.
class SelectionDelegate : public NSObject {
    OBJC_CLASS(SelectionDelegate)

    std::vector<std::string> log;
    bool refuse = false;
    objc::Strong<NSIndexPath> redirect;

  private:
    static std::string text(NSIndexPath* path) {
        return std::to_string(path->section()) + "." + std::to_string(path->row());
    }
    NSIndexPath* imp_will(id, NSIndexPath* path) {
        log.push_back("will:" + text(path));
        if (refuse) return nullptr;
        return redirect ? redirect.get() : path;
    }
    void imp_did(UITableView* table, NSIndexPath* path) {
        // The row is already selected when the delegate hears of it.
        const bool selected = table->cellForRowAtIndexPath(path)->isSelected();
        log.push_back("did:" + text(path) + (selected ? "" : "(unselected)"));
    }
    void imp_deselected(id, NSIndexPath* path) { log.push_back("deselect:" + text(path)); }
};

OBJC_DEFINE_CLASS(SelectionDelegate, NSObject, "TableTestSelectionDelegate")
OBJC_REGISTER_CLASS(SelectionDelegate)

void SelectionDelegate::objcDefine(objc::ClassBuilder<SelectionDelegate>& b) {
    b.method<&SelectionDelegate::imp_will>("tableView:willSelectRowAtIndexPath:")
        .method<&SelectionDelegate::imp_did>("tableView:didSelectRowAtIndexPath:")
        .method<&SelectionDelegate::imp_deselected>("tableView:didDeselectRowAtIndexPath:");
}

NSIndexPath* at(NSInteger section, NSInteger row) {
    return NSIndexPath::indexPathForRowInSection(row, section);
}

class TableCells : public UIKitTest {};

TEST_F(TableCells, StylesDecideTheLabelsWhichKeepACopyOfTheirText) {
    auto plain = UITableViewCell::create(UITableViewCellStyleDefault, NSSTR("Plain"));
    EXPECT_EQ(plain->detailTextLabel(), nullptr);
    EXPECT_TRUE(plain->textLabel()->isDescendantOfView(plain->contentView()));
    for (UITableViewCellStyle style :
         {UITableViewCellStyleValue1, UITableViewCellStyleValue2, UITableViewCellStyleSubtitle}) {
        auto cell = UITableViewCell::create(style);
        ASSERT_NE(cell->detailTextLabel(), nullptr) << style;
        EXPECT_NE(cell->detailTextLabel(), cell->textLabel());
    }
    // A cell made without a style is a default one, with its labels.
    auto bare = objc::adopt(
        objc::msgSend<UITableViewCell*>(UITableViewCell::objcClass(), objc::sel<"new">()));
    EXPECT_NE(bare->textLabel(), nullptr);

    auto text = NSMutableString::create();
    text->appendString(NSSTR("Parcelvane"));
    plain->textLabel()->setText(text.get());
    text->appendString(NSSTR(" Settings"));
    EXPECT_EQ(plain->textLabel()->text()->utf8(), "Parcelvane");
}

class TableViews : public UIKitTest {
  protected:
    void SetUp() override {
        UIKitTest::SetUp();
        source = objc::make<CellSource>();
        for (std::size_t section = 0; section < 2; ++section) {
            source->sections.emplace_back();
            for (std::size_t row = 0; row < 3 - section; ++row) {
                source->sections.back().push_back(
                    UITableViewCell::create(UITableViewCellStyleDefault));
            }
        }
        delegate = objc::make<SelectionDelegate>();
        table = UITableView::create(CGRectMake(0, 0, 320, 480), UITableViewStyleGrouped);
        table->setDataSource(source.get());
        table->setDelegate(delegate.get());
    }
    UITableViewCell* served(std::size_t section, std::size_t row) {
        return source->sections[section][row].get();
    }

    objc::Strong<CellSource> source;
    objc::Strong<SelectionDelegate> delegate;
    objc::Strong<UITableView> table;
};

TEST_F(TableViews, AskTheDataSourceOnceUntilReloaded) {
    EXPECT_EQ(table->numberOfSections(), 2);
    EXPECT_EQ(table->numberOfRowsInSection(1), 2);
    EXPECT_EQ(table->numberOfRowsInSection(2), 0);
    EXPECT_EQ(source->countRequests, 1);
    EXPECT_EQ(table->cellForRowAtIndexPath(at(1, 1)), served(1, 1));
    EXPECT_EQ(table->cellForRowAtIndexPath(at(1, 1)), served(1, 1));
    EXPECT_EQ(source->cellRequests, 1);
    EXPECT_EQ(table->cellForRowAtIndexPath(at(1, 2)), nullptr);
    EXPECT_EQ(table->cellForRowAtIndexPath(nullptr), nullptr);
    EXPECT_EQ(table->headerTitleForSection(0)->utf8(), "First");

    // A row added to the source shows after a reload, not before.
    source->sections[1].push_back(UITableViewCell::create(UITableViewCellStyleValue1));
    EXPECT_EQ(table->numberOfRowsInSection(1), 2);
    table->reloadData();
    EXPECT_EQ(table->numberOfRowsInSection(1), 3);
    EXPECT_EQ(table->visibleCells()->count(), 6u);

    // Reloading one row asks for that row's cell again.
    const int asked = source->cellRequests;
    auto paths = NSArray::create({at(0, 0)});
    table->reloadRowsAtIndexPathsWithRowAnimation(paths.get(), UITableViewRowAnimationNone);
    table->cellForRowAtIndexPath(at(0, 0));
    EXPECT_EQ(source->cellRequests, asked + 1);
}

TEST_F(TableViews, OnlyUserTapsTellTheDelegateOfASelection) {
    table->selectRowAtIndexPath(at(0, 2), false, UITableViewScrollPositionNone);
    EXPECT_TRUE(table->cellForRowAtIndexPath(at(0, 2))->isSelected());
    // Single selection: choosing another row lets go of the first.
    table->selectRowAtIndexPath(at(1, 0), false, UITableViewScrollPositionNone);
    EXPECT_FALSE(served(0, 2)->isSelected());
    // Deselecting another row changes nothing; the selected one clears.
    table->deselectRowAtIndexPath(at(0, 0), false);
    EXPECT_EQ(table->indexPathForSelectedRow()->section(), 1);
    table->deselectRowAtIndexPath(at(1, 0), true);
    EXPECT_FALSE(served(1, 0)->isSelected());
    // Out of the table: ignored.
    table->selectRowAtIndexPath(at(5, 0), false, UITableViewScrollPositionNone);
    EXPECT_EQ(table->indexPathForSelectedRow(), nullptr);
    EXPECT_TRUE(delegate->log.empty());
    // A reload forgets the selection.
    table->selectRowAtIndexPath(at(0, 1), false, UITableViewScrollPositionNone);
    table->reloadData();
    EXPECT_EQ(table->indexPathForSelectedRow(), nullptr);
    // User taps select, then tell the delegate.
    EXPECT_TRUE(table->userSelectRowAtIndexPath(at(0, 1)));
    EXPECT_TRUE(table->userSelectRowAtIndexPath(at(1, 0)));
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"will:0.1", "did:0.1", "will:1.0",
                                                       "deselect:0.1", "did:1.0"}));
    EXPECT_FALSE(served(0, 1)->isSelected());

    delegate->log.clear();
    delegate->redirect = objc::retained(at(0, 0));
    EXPECT_TRUE(table->userSelectRowAtIndexPath(at(0, 2)));
    EXPECT_EQ(table->indexPathForSelectedRow()->row(), 0);
    EXPECT_EQ(delegate->log, (std::vector<std::string>{"will:0.2", "deselect:1.0", "did:0.0"}));

    delegate->log.clear();
    delegate->refuse = true;
    EXPECT_FALSE(table->userSelectRowAtIndexPath(at(1, 1)));
    EXPECT_EQ(delegate->log, std::vector<std::string>{"will:1.1"});
    EXPECT_EQ(table->indexPathForSelectedRow()->row(), 0);
    EXPECT_FALSE(table->userSelectRowAtIndexPath(at(9, 9)));
}

TEST_F(TableViews, DrawSectionsApartWithWhiteRowsMarksAndSeparators) {
    served(0, 2)->setAccessoryType(UITableViewCellAccessoryDisclosureIndicator);
    served(1, 0)->setAccessoryType(UITableViewCellAccessoryCheckmark);
    const CGRect last = table->rectForRowAtIndexPath(at(0, 2));
    const CGRect next = table->rectForRowAtIndexPath(at(1, 0));
    EXPECT_GT(next.origin.y, last.origin.y + last.size.height);
    EXPECT_EQ(table->rectForRowAtIndexPath(at(4, 0)), CGRectZero);

    const auto image = testsupport::drawnView(table.get(), true, 2);
    ASSERT_TRUE(image);
    const testsupport::Pixel white{255, 255, 255, 255}, grey{239, 239, 244, 255};
    const auto pixel = [&](CGFloat x, CGFloat y) {
        return testsupport::pixelAt(image.get(), x, y);
    };
    const CGFloat gap = (last.origin.y + last.size.height + next.origin.y) / 2;
    EXPECT_TRUE(testsupport::near(pixel(160, last.origin.y + 22), white));
    EXPECT_TRUE(testsupport::near(pixel(160, gap), grey));
    EXPECT_TRUE(testsupport::near(pixel(160, next.origin.y + 22), white));
    // Separators: inset between rows, full width where a section ends.
    const CGFloat between = last.origin.y - 0.25;
    EXPECT_TRUE(testsupport::near(pixel(5, between), white));
    EXPECT_LT(pixel(40, between)[0], 230);
    EXPECT_LT(pixel(5, last.origin.y + last.size.height - 0.25)[0], 230);
    // The chevron in grey at the right; the checkmark in the tint colour.
    const auto chevron = pixel(320 - 15 - 1.5, last.origin.y + 22);
    EXPECT_TRUE(chevron[0] < 250 && chevron[0] == chevron[1]);
    bool tinted = false;
    for (CGFloat x = 320 - 30; x < 320 - 14; x += 0.5) {
        const auto p = pixel(x, next.origin.y + 22);
        tinted = tinted || (p[2] > 200 && p[0] < 100);
    }
    EXPECT_TRUE(tinted);
}

TEST_F(TableViews, InARightToLeftInterfaceRowsStartAtTheRight) {
    auto profile = uikit::DeviceProfile::defaultProfile();
    profile.languages = {"ar"};
    uikit::configureDevice(profile);
    UITableViewCell* cell = served(0, 2);
    cell->setAccessoryType(UITableViewCellAccessoryDisclosureIndicator);
    cell->textLabel()->setText(NSSTR("الحساب"));
    const CGRect last = table->rectForRowAtIndexPath(at(0, 2));

    const auto image = testsupport::drawnView(table.get(), true, 2);
    ASSERT_TRUE(image);
    const auto pixel = [&](CGFloat x, CGFloat y) {
        return testsupport::pixelAt(image.get(), x, y);
    };
    // The chevron at the left, where the title would have been; the title
    // ends at the right margin.
    const auto chevron = pixel(15 + 1.5, last.origin.y + 22);
    EXPECT_TRUE(chevron[0] < 250 && chevron[0] == chevron[1]);
    const CGRect title = cell->textLabel()->frame();
    EXPECT_NEAR(cell->contentView()->frame().origin.x + title.origin.x + title.size.width, 320 - 15,
                1);
    // Separators are inset from the right.
    const CGFloat between = last.origin.y - 0.25;
    EXPECT_EQ(pixel(320 - 5, between)[0], 255);
    EXPECT_LT(pixel(320 - 40, between)[0], 230);
}

}  // namespace
