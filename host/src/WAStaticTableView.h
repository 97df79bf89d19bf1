// The table a screen of rows shows (grouped for static tables, plain for
// the chats list): its own data source over the screen's sections, asked
// afresh each time it is drawn so that rows added or changed since show as
// they are now.
#pragma once

#include <UIKit/UITableView.h>

#include <Host/WATableSection.h>

#include <Foundation/NSArray.h>

#include <functional>

class WAStaticTableView : public UITableView {
    OBJC_CLASS(WAStaticTableView)

    // A table over `sections` (kept: the screen may drop its view later).
    // `refill`, when set, rebuilds the sections before each drawing.
    static objc::Strong<WAStaticTableView> create(CGRect frame, NSMutableArray* sections,
                                                  UITableViewStyle style = UITableViewStyleGrouped,
                                                  std::function<void(NSMutableArray*)> refill = {});

    WAStaticTableView() = default;

  private:
    std::vector<WATableSection*> sectionList() const;
    NSInteger imp_numberOfSections(id table);
    NSInteger imp_numberOfRows(id table, NSInteger section);
    UITableViewCell* imp_cell(id table, NSIndexPath* path);
    NSString* imp_header(id table, NSInteger section);
    NSString* imp_footer(id table, NSInteger section);
    void imp_drawRect(CGRect rect);

    objc::Strong<NSMutableArray> sections_;
    std::function<void(NSMutableArray*)> refill_;
};
