#include <Host/WAActionSheet.h>

#include <Foundation/NSArray.h>

#include <objc/image.h>

#include <utility>

OBJC_DEFINE_CLASS(WAActionSheet, NSObject, "WAActionSheet")
OBJC_REGISTER_CLASS(WAActionSheet)

void WAActionSheet::objcDefine(objc::ClassBuilder<WAActionSheet>& b) {
    using C = WAActionSheet;
    b.method<&C::imp_initWithTitle>("initWithTitle:")
        .property<&C::title_>("title", objc::Copy | objc::Nonatomic)
        .method<&C::imp_addButtonWithTitle>("addButtonWithTitle:handler:")
        .method<&C::imp_addCancelButtonWithTitle>("addCancelButtonWithTitle:")
        .method<&C::imp_buttonTitles>("buttonTitles");
}

namespace {
objc::Strong<NSString> copied(NSString* text) {
    return text != nullptr ? objc::adopt(static_cast<NSString*>(text->copy())) : nullptr;
}
}  // namespace

WAActionSheet* WAActionSheet::imp_initWithTitle(NSString* title) {
    title_ = copied(title);
    return this;
}

void WAActionSheet::imp_addButtonWithTitle(NSString* title, Handler* handler) {
    Entry entry;
    entry.title = copied(title != nullptr ? title : NSSTR(""));
    if (handler != nullptr) {
        entry.handler = objc::adopt(static_cast<Handler*>(handler->copy()));
    }
    entries_.push_back(std::move(entry));
}

void WAActionSheet::imp_addCancelButtonWithTitle(NSString* title) {
    cancelTitle_ = copied(title != nullptr ? title : NSSTR(""));
}

NSArray* WAActionSheet::imp_buttonTitles() const {
    std::vector<id> titles;
    for (const Entry& e : entries_) titles.push_back(e.title.get());
    if (cancelTitle_) titles.push_back(cancelTitle_.get());
    return objc::autorelease(NSArray::create(std::move(titles)).leak());
}

std::vector<std::string> WAActionSheet::entryTitles() const {
    std::vector<std::string> titles;
    for (const Entry& e : entries_) titles.push_back(e.title->utf8());
    return titles;
}

std::string WAActionSheet::cancelTitle() const {
    return cancelTitle_ ? cancelTitle_->utf8() : std::string();
}

void WAActionSheet::markShown(std::function<void()> onDismiss) {
    visible_ = true;
    onDismiss_ = std::move(onDismiss);
}

void WAActionSheet::dismiss() {
    visible_ = false;
    // The owner's reference may be the last one: the callers keep the sheet
    // alive until they return.
    if (auto done = std::exchange(onDismiss_, nullptr)) done();
}

bool WAActionSheet::choose(std::size_t index) {
    if (!visible_ || index >= entries_.size()) return false;
    const objc::Strong<WAActionSheet> keep = objc::retained(this);
    const objc::Strong<Handler> handler = entries_[index].handler;
    dismiss();
    if (handler) (*handler)();
    return true;
}

void WAActionSheet::cancel() {
    if (!visible_) return;
    const objc::Strong<WAActionSheet> keep = objc::retained(this);
    dismiss();
}
