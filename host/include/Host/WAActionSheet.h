// The host's action sheet: a title, entries with handlers and a cancel
// button, shown at the bottom of the screen with the cancel button last.
#pragma once

#include <objc/block.h>
#include <objc/object.h>
#include <objc/string.h>

#include <functional>
#include <string>
#include <vector>

class NSArray;

class WAActionSheet : public NSObject {
    OBJC_CLASS(WAActionSheet)

    using Handler = objc::Block<void()>;

    static objc::Strong<WAActionSheet> create(NSString* title) {
        return objc::adopt(objc::alloc<WAActionSheet>()->initWithTitle(title));
    }
    WAActionSheet* initWithTitle(NSString* title) {
        return objc::msgSend<WAActionSheet*>(this, objc::sel<"initWithTitle:">(), title);
    }

    NSString* title() { return objc::msgSend<NSString*>(this, objc::sel<"title">()); }
    void setTitle(NSString* title) { objc::msgSend<void>(this, objc::sel<"setTitle:">(), title); }
    // An entry; its handler (copied, may be nil) runs once the sheet is gone.
    void addButtonWithTitle(NSString* title, Handler* handler) {
        objc::msgSend<void>(this, objc::sel<"addButtonWithTitle:handler:">(), title, handler);
    }
    // The cancel button's title (a later call replaces it).
    void addCancelButtonWithTitle(NSString* title) {
        objc::msgSend<void>(this, objc::sel<"addCancelButtonWithTitle:">(), title);
    }
    // The titles as shown: the entries in order, then the cancel button.
    NSArray* buttonTitles() { return objc::msgSend<NSArray*>(this, objc::sel<"buttonTitles">()); }

    // C++ side.
    std::vector<std::string> entryTitles() const;
    std::string cancelTitle() const;
    bool hasCancelButton() const noexcept { return static_cast<bool>(cancelTitle_); }
    bool isVisible() const noexcept { return visible_; }
    // Marks the sheet shown; `onDismiss` runs when it goes away.
    void markShown(std::function<void()> onDismiss);
    // The user chooses entry `index`: the sheet goes away, then the handler
    // runs. False when not shown or there is no such entry.
    bool choose(std::size_t index);
    // The user cancels (or the sheet is taken away): it goes, nothing runs.
    void cancel();

    WAActionSheet() = default;

  private:
    WAActionSheet* imp_initWithTitle(NSString* title);
    void imp_addButtonWithTitle(NSString* title, Handler* handler);
    void imp_addCancelButtonWithTitle(NSString* title);
    NSArray* imp_buttonTitles() const;

    void dismiss();

    struct Entry {
        objc::Strong<NSString> title;
        objc::Strong<Handler> handler;
    };
    objc::Strong<NSString> title_;
    std::vector<Entry> entries_;
    objc::Strong<NSString> cancelTitle_;
    bool visible_ = false;
    std::function<void()> onDismiss_;
};
