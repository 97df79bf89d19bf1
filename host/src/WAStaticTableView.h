// The table a static table screen shows: grouped, its own data source over
// the screen's sections, asked afresh each time it is drawn so that rows a
// library added or changed since show as they are now.
#pragma once

#include <UIKit/UITableView.h>

#include <Host/WATableSection.h>

#include <Foundation/NSArray.h>

class WAStaticTableView : public UITableView {
    OBJC_CLASS(WAStaticTableView)

    // A table over `sections` (kept: the screen may drop its view later).
    static objc::Strong<WAStaticTableView> create(CGRect frame, NSMutableArray* sections);

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
};
