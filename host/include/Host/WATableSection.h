// One section of the host's static tables: a header, rows and a footer.
#pragma once

#include <Host/WATableRow.h>

#include <objc/object.h>
#include <objc/string.h>

#include <vector>

class NSArray;

class WATableSection : public NSObject {
    OBJC_CLASS(WATableSection)

    static objc::Strong<WATableSection> create() { return objc::make<WATableSection>(); }

    NSString* headerText() { return objc::msgSend<NSString*>(this, objc::sel<"headerText">()); }
    void setHeaderText(NSString* text) {
        objc::msgSend<void>(this, objc::sel<"setHeaderText:">(), text);
    }
    NSString* footerText() { return objc::msgSend<NSString*>(this, objc::sel<"footerText">()); }
    void setFooterText(NSString* text) {
        objc::msgSend<void>(this, objc::sel<"setFooterText:">(), text);
    }
    // The rows in order (autoreleased snapshot).
    NSArray* rows() { return objc::msgSend<NSArray*>(this, objc::sel<"rows">()); }
    void addRow(WATableRow* row) { objc::msgSend<void>(this, objc::sel<"addRow:">(), row); }

    const std::vector<objc::Strong<WATableRow>>& rowList() const noexcept { return rows_; }

    WATableSection() = default;

  private:
    NSArray* imp_rows() const;
    void imp_addRow(WATableRow* row);

    objc::Strong<NSString> header_;
    objc::Strong<NSString> footer_;
    std::vector<objc::Strong<WATableRow>> rows_;
};
