#include <UIKit/UITableView.h>

#include <Foundation/NSArray.h>

#include <objc/exception.h>
#include <objc/image.h>

#include <string>

OBJC_DEFINE_CLASS(UITableView, UIView, "UITableView")
OBJC_REGISTER_CLASS(UITableView)

void UITableView::objcDefine(objc::ClassBuilder<UITableView>& b) {
    using C = UITableView;
    b.method<&C::imp_initWithFrame>("initWithFrame:")
        .method<&C::imp_initWithFrameStyle>("initWithFrame:style:")
        .property<&C::style_>("style", objc::Readonly | objc::Nonatomic)
        .method<&C::imp_dataSource>("dataSource")
        .method<&C::imp_setDataSource>("setDataSource:")
        .property<&C::delegate_>("delegate", objc::Weak | objc::Nonatomic)
        .method<&C::imp_reloadData>("reloadData")
        .method<&C::imp_reloadRowsAtIndexPathsWithRowAnimation>(
            "reloadRowsAtIndexPaths:withRowAnimation:")
        .method<&C::imp_numberOfSections>("numberOfSections")
        .method<&C::imp_numberOfRowsInSection>("numberOfRowsInSection:")
        .method<&C::imp_cellForRowAtIndexPath>("cellForRowAtIndexPath:")
        .method<&C::imp_indexPathForCell>("indexPathForCell:")
        .method<&C::imp_visibleCells>("visibleCells")
        .method<&C::imp_selectRowAtIndexPath>("selectRowAtIndexPath:animated:scrollPosition:")
        .method<&C::imp_deselectRowAtIndexPath>("deselectRowAtIndexPath:animated:")
        .method<&C::imp_indexPathForSelectedRow>("indexPathForSelectedRow")
        .method<&C::imp_userSelectRowAtIndexPath>("_userSelectRowAtIndexPath:");
    defineDrawing(b);
}

namespace {

using objc::msgSend;
using objc::sel;

bool responds(id object, SEL selector) {
    return objc::sendIfAny<bool>(object, sel<"respondsToSelector:">(), selector);
}

NSIndexPath* pathFor(NSInteger section, NSInteger row) {
    return NSIndexPath::indexPathForRowInSection(row, section);
}

}  // namespace

UITableView* UITableView::imp_initWithFrame(CGRect frame) {
    return initWithFrameStyle(frame, UITableViewStylePlain);
}

UITableView* UITableView::imp_initWithFrameStyle(CGRect frame, UITableViewStyle style) {
    objc::superSend<UIView*>(this, sel<"initWithFrame:">(), frame);
    style_ = style == UITableViewStyleGrouped ? UITableViewStyleGrouped : UITableViewStylePlain;
    return this;
}

void UITableView::imp_setDataSource(id dataSource) {
    dataSource_ = dataSource;
    // The old source's answers are no longer the table's.
    imp_reloadData();
}

void UITableView::imp_reloadData() {
    loaded_ = false;
    cells_.clear();
    markSelected(std::nullopt);
}

void UITableView::loadCounts() {
    if (loaded_) return;
    loaded_ = true;
    cells_.clear();
    if (dataSource_ == nullptr) return;
    NSInteger sections = 1;
    if (responds(dataSource_, sel<"numberOfSectionsInTableView:">())) {
        sections = msgSend<NSInteger>(dataSource_, sel<"numberOfSectionsInTableView:">(),
                                      static_cast<id>(this));
    }
    const bool hasRows = responds(dataSource_, sel<"tableView:numberOfRowsInSection:">());
    cells_.resize(static_cast<std::size_t>(std::max<NSInteger>(sections, 0)));
    for (std::size_t section = 0; section < cells_.size(); ++section) {
        const NSInteger rows =
            hasRows ? msgSend<NSInteger>(dataSource_, sel<"tableView:numberOfRowsInSection:">(),
                                         static_cast<id>(this), static_cast<NSInteger>(section))
                    : 0;
        cells_[section].resize(static_cast<std::size_t>(std::max<NSInteger>(rows, 0)));
    }
}

std::optional<UITableView::Row> UITableView::rowOf(NSIndexPath* indexPath) {
    if (indexPath == nullptr || indexPath->length() < 2) return std::nullopt;
    loadCounts();
    const NSInteger section = indexPath->section();
    const NSInteger row = indexPath->row();
    if (section < 0 || static_cast<std::size_t>(section) >= cells_.size()) return std::nullopt;
    if (row < 0 || static_cast<std::size_t>(row) >= cells_[section].size()) return std::nullopt;
    return Row{section, row};
}

UITableViewCell* UITableView::loadCell(Row row) {
    auto& slot = cells_[row.section][row.row];
    if (slot) return slot.get();
    const objc::Strong<UITableView> keep = objc::retained(this);
    id cell = msgSend<id>(dataSource_, sel<"tableView:cellForRowAtIndexPath:">(),
                          static_cast<id>(this), pathFor(row.section, row.row));
    if (cell == nullptr || !objc::isKindOf(cell, UITableViewCell::objcClass())) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "UITableView (" + std::to_string(row.section) + ", " + std::to_string(row.row) +
                        "): dataSource must return a cell from tableView:cellForRowAtIndexPath:");
    }
    // The data source may have reloaded the table meanwhile.
    if (!loaded_ || static_cast<std::size_t>(row.section) >= cells_.size() ||
        static_cast<std::size_t>(row.row) >= cells_[row.section].size()) {
        return static_cast<UITableViewCell*>(objc::autorelease(objc_retain(cell)));
    }
    auto* typed = static_cast<UITableViewCell*>(cell);
    cells_[row.section][row.row] = objc::retained(typed);
    typed->setSelected(selected_ && selected_->section == row.section && selected_->row == row.row);
    return typed;
}

void UITableView::imp_reloadRowsAtIndexPathsWithRowAnimation(NSArray* indexPaths,
                                                             UITableViewRowAnimation) {
    if (indexPaths == nullptr) return;
    const NSUInteger count = indexPaths->count();
    for (NSUInteger i = 0; i < count; ++i) {
        auto* path = objc::cast<NSIndexPath>(indexPaths->objectAtIndex(i));
        if (const auto row = rowOf(path)) cells_[row->section][row->row] = nullptr;
    }
}

NSInteger UITableView::imp_numberOfSections() {
    loadCounts();
    return static_cast<NSInteger>(cells_.size());
}

NSInteger UITableView::imp_numberOfRowsInSection(NSInteger section) {
    loadCounts();
    if (section < 0 || static_cast<std::size_t>(section) >= cells_.size()) return 0;
    return static_cast<NSInteger>(cells_[section].size());
}

UITableViewCell* UITableView::imp_cellForRowAtIndexPath(NSIndexPath* indexPath) {
    const auto row = rowOf(indexPath);
    return row ? loadCell(*row) : nullptr;
}

NSIndexPath* UITableView::imp_indexPathForCell(UITableViewCell* cell) {
    if (cell == nullptr) return nullptr;
    for (std::size_t section = 0; section < cells_.size(); ++section) {
        for (std::size_t row = 0; row < cells_[section].size(); ++row) {
            if (cells_[section][row].get() == cell) {
                return pathFor(static_cast<NSInteger>(section), static_cast<NSInteger>(row));
            }
        }
    }
    return nullptr;
}

NSArray* UITableView::imp_visibleCells() {
    loadCounts();
    std::vector<id> cells;
    for (std::size_t section = 0; section < cells_.size(); ++section) {
        for (std::size_t row = 0; row < cells_[section].size(); ++row) {
            if (!loaded_ || section >= cells_.size() || row >= cells_[section].size()) break;
            cells.push_back(
                loadCell(Row{static_cast<NSInteger>(section), static_cast<NSInteger>(row)}));
        }
    }
    return objc::autorelease(NSArray::create(std::move(cells)).leak());
}

void UITableView::markSelected(std::optional<Row> row) {
    const auto cellAt = [this](Row r) -> UITableViewCell* {
        if (static_cast<std::size_t>(r.section) >= cells_.size()) return nullptr;
        const auto& list = cells_[r.section];
        return static_cast<std::size_t>(r.row) < list.size() ? list[r.row].get() : nullptr;
    };
    if (selected_) {
        if (UITableViewCell* old = cellAt(*selected_)) old->setSelectedAnimated(false, false);
    }
    selected_ = row;
    if (selected_) {
        if (UITableViewCell* now = cellAt(*selected_)) now->setSelectedAnimated(true, false);
    }
}

void UITableView::imp_selectRowAtIndexPath(NSIndexPath* indexPath, bool,
                                           UITableViewScrollPosition) {
    if (indexPath == nullptr) {
        markSelected(std::nullopt);
        return;
    }
    if (const auto row = rowOf(indexPath)) markSelected(row);
}

void UITableView::imp_deselectRowAtIndexPath(NSIndexPath* indexPath, bool) {
    const auto row = rowOf(indexPath);
    if (row && selected_ && selected_->section == row->section && selected_->row == row->row) {
        markSelected(std::nullopt);
    }
}

NSIndexPath* UITableView::imp_indexPathForSelectedRow() const {
    return selected_ ? pathFor(selected_->section, selected_->row) : nullptr;
}

bool UITableView::imp_userSelectRowAtIndexPath(NSIndexPath* indexPath) {
    if (!rowOf(indexPath)) return false;
    const objc::Strong<UITableView> keep = objc::retained(this);
    const objc::Strong<NSIndexPath> tapped = objc::retained(indexPath);
    NSIndexPath* target = indexPath;
    if (responds(delegate_, sel<"tableView:willSelectRowAtIndexPath:">())) {
        target = msgSend<NSIndexPath*>(delegate_, sel<"tableView:willSelectRowAtIndexPath:">(),
                                       static_cast<id>(this), indexPath);
    }
    const auto row = rowOf(target);
    if (!row) return false;
    const objc::Strong<NSIndexPath> chosen = objc::retained(target);
    if (selected_ && (selected_->section != row->section || selected_->row != row->row)) {
        const objc::Strong<NSIndexPath> previous =
            objc::retained(pathFor(selected_->section, selected_->row));
        markSelected(std::nullopt);
        if (responds(delegate_, sel<"tableView:didDeselectRowAtIndexPath:">())) {
            msgSend<void>(delegate_, sel<"tableView:didDeselectRowAtIndexPath:">(),
                          static_cast<id>(this), previous.get());
        }
    }
    loadCell(*row);
    markSelected(row);
    if (responds(delegate_, sel<"tableView:didSelectRowAtIndexPath:">())) {
        msgSend<void>(delegate_, sel<"tableView:didSelectRowAtIndexPath:">(), static_cast<id>(this),
                      chosen.get());
    }
    return true;
}

NSString* UITableView::headerTitleForSection(NSInteger section) {
    if (section < 0 || section >= numberOfSections() ||
        !responds(dataSource_, sel<"tableView:titleForHeaderInSection:">())) {
        return nullptr;
    }
    return msgSend<NSString*>(dataSource_, sel<"tableView:titleForHeaderInSection:">(),
                              static_cast<id>(this), section);
}

NSString* UITableView::footerTitleForSection(NSInteger section) {
    if (section < 0 || section >= numberOfSections() ||
        !responds(dataSource_, sel<"tableView:titleForFooterInSection:">())) {
        return nullptr;
    }
    return msgSend<NSString*>(dataSource_, sel<"tableView:titleForFooterInSection:">(),
                              static_cast<id>(this), section);
}
