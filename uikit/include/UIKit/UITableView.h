// A table of sections of rows, filled by a data source and reporting taps to
// a delegate (neither retained, as on the platform).
//
// Headless, every row counts as visible: the table asks the data source for
// the counts and a row's cell the first time it needs them after a reload,
// and keeps the cells until the next reload. Selection is single: selecting
// a row deselects the previous one.
//
// Data source messages: numberOfSectionsInTableView: (optional, 1 without
// it), tableView:numberOfRowsInSection:, tableView:cellForRowAtIndexPath:
// (a nil cell raises NSInternalInconsistencyException), and optionally
// tableView:titleForHeaderInSection: / tableView:titleForFooterInSection:.
// Delegate messages (all optional): tableView:willSelectRowAtIndexPath:,
// tableView:didSelectRowAtIndexPath:, tableView:didDeselectRowAtIndexPath:.
#pragma once

#include <UIKit/UITableViewCell.h>
#include <UIKit/UIView.h>

#include <Foundation/NSIndexPath.h>

#include <objc/string.h>

#include <optional>
#include <vector>

class NSArray;

enum UITableViewStyle : NSInteger {
    UITableViewStylePlain = 0,
    UITableViewStyleGrouped = 1,
};

enum UITableViewScrollPosition : NSInteger {
    UITableViewScrollPositionNone = 0,
    UITableViewScrollPositionTop = 1,
    UITableViewScrollPositionMiddle = 2,
    UITableViewScrollPositionBottom = 3,
};

enum UITableViewRowAnimation : NSInteger {
    UITableViewRowAnimationFade = 0,
    UITableViewRowAnimationNone = 5,
    UITableViewRowAnimationAutomatic = 100,
};

class PV_EXPORT UITableView : public UIView {
    OBJC_CLASS(UITableView)

    static objc::Strong<UITableView> create(CGRect frame = CGRectZero,
                                            UITableViewStyle style = UITableViewStylePlain) {
        return objc::adopt(objc::alloc<UITableView>()->initWithFrameStyle(frame, style));
    }

    UITableView* initWithFrameStyle(CGRect frame, UITableViewStyle style) {
        return objc::msgSend<UITableView*>(this, objc::sel<"initWithFrame:style:">(), frame, style);
    }
    UITableViewStyle style() { return objc::msgSend<UITableViewStyle>(this, objc::sel<"style">()); }

    id dataSource() { return objc::msgSend<id>(this, objc::sel<"dataSource">()); }
    void setDataSource(id dataSource) {
        objc::msgSend<void>(this, objc::sel<"setDataSource:">(), dataSource);
    }
    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }

    // Forgets the counts, the cells and the selection; they are asked for
    // again when next needed.
    void reloadData() { objc::msgSend<void>(this, objc::sel<"reloadData">()); }
    // Asks the data source again for the cells of those rows (an array of
    // NSIndexPath); paths outside the table are ignored.
    void reloadRowsAtIndexPathsWithRowAnimation(NSArray* indexPaths,
                                                UITableViewRowAnimation animation) {
        objc::msgSend<void>(this, objc::sel<"reloadRowsAtIndexPaths:withRowAnimation:">(),
                            indexPaths, animation);
    }
    NSInteger numberOfSections() {
        return objc::msgSend<NSInteger>(this, objc::sel<"numberOfSections">());
    }
    // 0 for a section outside the table.
    NSInteger numberOfRowsInSection(NSInteger section) {
        return objc::msgSend<NSInteger>(this, objc::sel<"numberOfRowsInSection:">(), section);
    }
    // The row's cell, asking the data source the first time; nil for a path
    // outside the table.
    UITableViewCell* cellForRowAtIndexPath(NSIndexPath* indexPath) {
        return objc::msgSend<UITableViewCell*>(this, objc::sel<"cellForRowAtIndexPath:">(),
                                               indexPath);
    }
    // Autoreleased; nil for a cell the table does not show.
    NSIndexPath* indexPathForCell(UITableViewCell* cell) {
        return objc::msgSend<NSIndexPath*>(this, objc::sel<"indexPathForCell:">(), cell);
    }
    // Every row's cell, section by section (autoreleased).
    NSArray* visibleCells() { return objc::msgSend<NSArray*>(this, objc::sel<"visibleCells">()); }

    // Selects the row without telling the delegate (nil clears the
    // selection); a path outside the table is ignored.
    void selectRowAtIndexPath(NSIndexPath* indexPath, bool animated,
                              UITableViewScrollPosition position) {
        objc::msgSend<void>(this, objc::sel<"selectRowAtIndexPath:animated:scrollPosition:">(),
                            indexPath, animated, position);
    }
    void deselectRowAtIndexPath(NSIndexPath* indexPath, bool animated) {
        objc::msgSend<void>(this, objc::sel<"deselectRowAtIndexPath:animated:">(), indexPath,
                            animated);
    }
    // Autoreleased; nil when no row is selected.
    NSIndexPath* indexPathForSelectedRow() {
        return objc::msgSend<NSIndexPath*>(this, objc::sel<"indexPathForSelectedRow">());
    }

    // The user taps the row: the delegate may redirect or refuse it
    // (willSelect), the previous row is deselected (didDeselect), the row
    // is selected, then the delegate hears didSelect. Answers false when
    // nothing was selected (a path outside the table, or refused).
    bool userSelectRowAtIndexPath(NSIndexPath* indexPath) {
        return objc::msgSend<bool>(this, objc::sel<"_userSelectRowAtIndexPath:">(), indexPath);
    }

    // Where the row lies in the table's bounds, as it is drawn; CGRectZero
    // for a path outside the table.
    CGRect rectForRowAtIndexPath(NSIndexPath* indexPath) {
        return objc::msgSend<CGRect>(this, objc::sel<"rectForRowAtIndexPath:">(), indexPath);
    }
    // The data source's section titles, nil without them (C++ side, for
    // whoever prints the table).
    NSString* headerTitleForSection(NSInteger section);
    NSString* footerTitleForSection(NSInteger section);

    UITableView() = default;

  private:
    UITableView* imp_initWithFrame(CGRect frame);
    UITableView* imp_initWithFrameStyle(CGRect frame, UITableViewStyle style);
    id imp_dataSource() const { return dataSource_; }
    void imp_setDataSource(id dataSource);
    void imp_reloadData();
    void imp_reloadRowsAtIndexPathsWithRowAnimation(NSArray* indexPaths,
                                                    UITableViewRowAnimation animation);
    NSInteger imp_numberOfSections();
    NSInteger imp_numberOfRowsInSection(NSInteger section);
    UITableViewCell* imp_cellForRowAtIndexPath(NSIndexPath* indexPath);
    NSIndexPath* imp_indexPathForCell(UITableViewCell* cell);
    NSArray* imp_visibleCells();
    void imp_selectRowAtIndexPath(NSIndexPath* indexPath, bool animated,
                                  UITableViewScrollPosition position);
    void imp_deselectRowAtIndexPath(NSIndexPath* indexPath, bool animated);
    NSIndexPath* imp_indexPathForSelectedRow() const;
    bool imp_userSelectRowAtIndexPath(NSIndexPath* indexPath);

    CGRect imp_rectForRowAtIndexPath(NSIndexPath* indexPath);
    void imp_drawRect(CGRect rect);
    static void defineDrawing(objc::ClassBuilder<UITableView>& b);
    // Vertical places of one section's parts, top to bottom.
    struct SectionPlaces {
        CGFloat headerTop, rowsTop, footerTop, bottom;
    };
    std::vector<SectionPlaces> sectionPlaces();

    struct Row {
        NSInteger section;
        NSInteger row;
    };
    // The counts from the data source, asked once per reload.
    void loadCounts();
    // The path as (section, row) when it lies inside the table.
    std::optional<Row> rowOf(NSIndexPath* indexPath);
    UITableViewCell* loadCell(Row row);
    void markSelected(std::optional<Row> row);

    UITableViewStyle style_ = UITableViewStylePlain;
    id dataSource_ = nullptr;  // not retained
    id delegate_ = nullptr;    // not retained
    bool loaded_ = false;
    // One list per section; a null entry is a row whose cell is not asked yet.
    std::vector<std::vector<objc::Strong<UITableViewCell>>> cells_;
    std::optional<Row> selected_;
};
