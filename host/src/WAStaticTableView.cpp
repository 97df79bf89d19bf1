#include "WAStaticTableView.h"

#include <objc/image.h>

OBJC_DEFINE_CLASS(WAStaticTableView, UITableView, "WAStaticTableView")
OBJC_REGISTER_CLASS(WAStaticTableView)

void WAStaticTableView::objcDefine(objc::ClassBuilder<WAStaticTableView>& b) {
    using C = WAStaticTableView;
    b.method<&C::imp_numberOfSections>("numberOfSectionsInTableView:")
        .method<&C::imp_numberOfRows>("tableView:numberOfRowsInSection:")
        .method<&C::imp_cell>("tableView:cellForRowAtIndexPath:")
        .method<&C::imp_header>("tableView:titleForHeaderInSection:")
        .method<&C::imp_footer>("tableView:titleForFooterInSection:")
        .method<&C::imp_drawRect>("drawRect:");
}

objc::Strong<WAStaticTableView> WAStaticTableView::create(
    CGRect frame, NSMutableArray* sections, UITableViewStyle style,
    std::function<void(NSMutableArray*)> refill) {
    auto table = objc::adopt(static_cast<WAStaticTableView*>(
        objc::alloc<WAStaticTableView>()->initWithFrameStyle(frame, style)));
    table->sections_ = objc::retained(sections);
    table->refill_ = std::move(refill);
    table->setDataSource(table.get());
    return table;
}

std::vector<WATableSection*> WAStaticTableView::sectionList() const {
    std::vector<WATableSection*> list;
    if (!sections_) return list;
    for (id item : *sections_) {
        if (auto* section = objc::cast<WATableSection>(item)) list.push_back(section);
    }
    return list;
}

NSInteger WAStaticTableView::imp_numberOfSections(id) {
    return static_cast<NSInteger>(sectionList().size());
}

NSInteger WAStaticTableView::imp_numberOfRows(id, NSInteger section) {
    const auto list = sectionList();
    if (section < 0 || static_cast<std::size_t>(section) >= list.size()) return 0;
    return static_cast<NSInteger>(list[section]->rowList().size());
}

UITableViewCell* WAStaticTableView::imp_cell(id, NSIndexPath* path) {
    WATableRow* row = sectionList().at(path->section())->rowList().at(path->row()).get();
    if (auto* cell = objc::cast<UITableViewCell>(row->cell())) return cell;
    // The host's own rows carry their texts; a cell shows them.
    auto cell = UITableViewCell::create(UITableViewCellStyleValue1);
    cell->textLabel()->setText(row->title());
    cell->detailTextLabel()->setText(row->detailText());
    if (row->handler() != nullptr) {
        cell->setAccessoryType(UITableViewCellAccessoryDisclosureIndicator);
    }
    return objc::autorelease(cell.leak());
}

NSString* WAStaticTableView::imp_header(id, NSInteger section) {
    const auto list = sectionList();
    return static_cast<std::size_t>(section) < list.size() ? list[section]->headerText() : nullptr;
}

NSString* WAStaticTableView::imp_footer(id, NSInteger section) {
    const auto list = sectionList();
    return static_cast<std::size_t>(section) < list.size() ? list[section]->footerText() : nullptr;
}

void WAStaticTableView::imp_drawRect(CGRect rect) {
    if (refill_) refill_(sections_.get());
    reloadData();
    objc::superSend<void>(this, objc::sel<"drawRect:">(), rect);
}
