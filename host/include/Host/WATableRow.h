// One row of the host's static tables: the cell it shows and the handler
// that runs when it is tapped.
#pragma once

#include <objc/block.h>
#include <objc/object.h>
#include <objc/string.h>

class WATableRow : public NSObject {
    OBJC_CLASS(WATableRow)

    using Handler = objc::Block<void()>;

    static objc::Strong<WATableRow> create() {
        return objc::adopt(objc::msgSend<WATableRow*>(objcClass(), objc::sel<"new">()));
    }

    Handler* handler() { return objc::msgSend<Handler*>(this, objc::sel<"handler">()); }
    // Keeps a copy of the block (nil clears it).
    void setHandler(Handler* handler) {
        objc::msgSend<void>(this, objc::sel<"setHandler:">(), handler);
    }
    // The cell object shown for the row (any object).
    id cell() { return objc::msgSend<id>(this, objc::sel<"cell">()); }
    void setCell(id cell) { objc::msgSend<void>(this, objc::sel<"setCell:">(), cell); }
    // The host's own rows carry their text here; rows whose cell shows the
    // text leave it nil.
    NSString* title() { return objc::msgSend<NSString*>(this, objc::sel<"title">()); }
    void setTitle(NSString* title) { objc::msgSend<void>(this, objc::sel<"setTitle:">(), title); }
    NSString* detailText() { return objc::msgSend<NSString*>(this, objc::sel<"detailText">()); }
    void setDetailText(NSString* text) {
        objc::msgSend<void>(this, objc::sel<"setDetailText:">(), text);
    }

    WATableRow() = default;

  private:
    objc::Strong<Handler> handler_;
    objc::Strong<objc_object> cell_;
    objc::Strong<NSString> title_;
    objc::Strong<NSString> detail_;
};
