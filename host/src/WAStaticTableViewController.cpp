#include <Host/WAStaticTableViewController.h>

#include "WAStaticTableView.h"

#include <UIKit/UIScreen.h>

#include <Foundation/NSArray.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WAStaticTableViewController, UIViewController, "WAStaticTableViewController")
OBJC_REGISTER_CLASS(WAStaticTableViewController)

void WAStaticTableViewController::objcDefine(objc::ClassBuilder<WAStaticTableViewController>& b) {
    using C = WAStaticTableViewController;
    b.ivar<&C::sections_>("_sections")
        .method<&C::imp_initWithNibNameBundle>("initWithNibName:bundle:")
        .method<&C::imp_deselectActiveCell>("deselectActiveCell")
        .method<&C::imp_didMoveToParentViewController>("didMoveToParentViewController:")
        .method<&C::imp_loadView>("loadView");
}

WAStaticTableViewController* WAStaticTableViewController::imp_initWithNibNameBundle(
    NSString* nibName, id bundle) {
    auto* self = objc::superSend<WAStaticTableViewController*>(
        this, objc::sel<"initWithNibName:bundle:">(), nibName, bundle);
    if (self != nullptr) self->sections_ = NSMutableArray::create();
    return self;
}

void WAStaticTableViewController::imp_loadView() {
    if (!sections_) sections_ = NSMutableArray::create();
    setView(WAStaticTableView::create(UIScreen::mainScreen()->bounds(), sections_.get()).get());
}

void WAStaticTableViewController::imp_didMoveToParentViewController(UIViewController* parent) {
    objc::superSend<void>(this, objc::sel<"didMoveToParentViewController:">(), parent);
    if (parent != nullptr) return;
    selected_.reset();
    if (sections_) sections_->removeAllObjects();
    setView(nullptr);
}

std::vector<WATableSection*> WAStaticTableViewController::sectionList() const {
    std::vector<WATableSection*> list;
    if (!sections_) return list;
    for (id item : *sections_) {
        if (auto* section = objc::cast<WATableSection>(item)) list.push_back(section);
    }
    return list;
}

bool WAStaticTableViewController::tapRow(std::size_t section, std::size_t row) {
    const std::vector<WATableSection*> sections = sectionList();
    if (section >= sections.size() || row >= sections[section]->rowList().size()) return false;
    const objc::Strong<WAStaticTableViewController> keep = objc::retained(this);
    const objc::Strong<WATableRow> tapped = sections[section]->rowList()[row];
    selected_ = std::make_pair(section, row);
    if (const objc::Strong<WATableRow::Handler> handler = objc::retained(tapped->handler())) {
        (*handler)();
    }
    return true;
}
