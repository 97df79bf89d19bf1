#include <UIKit/list_table_view.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UIListTableView, UITableView, "UIListTableView")
OBJC_REGISTER_CLASS(UIListTableView)

void UIListTableView::objcDefine(objc::ClassBuilder<UIListTableView>& b) {
    b.method<&UIListTableView::imp_numberOfRows>("tableView:numberOfRowsInSection:")
        .method<&UIListTableView::imp_cell>("tableView:cellForRowAtIndexPath:")
        .method<&UIListTableView::imp_drawRect>("drawRect:");
}

objc::Strong<UIListTableView> UIListTableView::create(CGRect frame, Items items) {
    auto table = objc::adopt(static_cast<UIListTableView*>(
        objc::alloc<UIListTableView>()->initWithFrameStyle(frame, UITableViewStylePlain)));
    table->items_ = std::move(items);
    table->setDataSource(table.get());
    return table;
}

NSInteger UIListTableView::imp_numberOfRows(id, NSInteger) {
    return static_cast<NSInteger>(shown_.size());
}

UITableViewCell* UIListTableView::imp_cell(id, NSIndexPath* path) {
    const Item& item = shown_.at(static_cast<std::size_t>(path->row()));
    auto cell = UITableViewCell::create(UITableViewCellStyleDefault);
    cell->textLabel()->setText(NSString::create(item.title).get());
    if (item.disclosure) cell->setAccessoryType(UITableViewCellAccessoryDisclosureIndicator);
    return objc::autorelease(cell.leak());
}

void UIListTableView::imp_drawRect(CGRect rect) {
    shown_ = items_ ? items_() : std::vector<Item>{};
    reloadData();
    objc::superSend<void>(this, objc::sel<"drawRect:">(), rect);
}
