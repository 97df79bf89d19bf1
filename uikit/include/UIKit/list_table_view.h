// A plain table of one section whose rows are read from a function each time
// it is drawn: for screens that list what lies elsewhere (a folder's
// entries), so that the picture always shows the list as it is now.
#pragma once

#include <UIKit/UITableView.h>

#include <functional>
#include <string>
#include <vector>

class PV_EXPORT UIListTableView : public UITableView {
    OBJC_CLASS(UIListTableView)

    struct Item {
        std::string title;
        bool disclosure = false;  // a chevron: the row leads further (a folder)
    };
    using Items = std::function<std::vector<Item>()>;

    static objc::Strong<UIListTableView> create(CGRect frame, Items items);
    // Forgets the function (its owner is going away): the list shows empty.
    void clearItems() { items_ = nullptr; }

    UIListTableView() = default;

  private:
    NSInteger imp_numberOfRows(id table, NSInteger section);
    UITableViewCell* imp_cell(id table, NSIndexPath* path);
    void imp_drawRect(CGRect rect);

    Items items_;
    std::vector<Item> shown_;
};
