#include <Host/WAChatListViewController.h>

#include "WAStaticTableView.h"

#include <Host/host_strings.h>

#include <UIKit/UINavigationController.h>
#include <UIKit/UIScreen.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WAChatListViewController, UIViewController, "WAChatListViewController")
OBJC_REGISTER_CLASS(WAChatListViewController)

void WAChatListViewController::objcDefine(objc::ClassBuilder<WAChatListViewController>& b) {
    b.method<&WAChatListViewController::imp_viewDidLoad>("viewDidLoad")
        .method<&WAChatListViewController::imp_loadView>("loadView");
}

objc::Strong<WAChatListViewController> WAChatListViewController::create(
    std::shared_ptr<host::ChatStore> store) {
    auto list = objc::make<WAChatListViewController>();
    list->store_ = store ? std::move(store) : host::defaultChatStore();
    return list;
}

void WAChatListViewController::imp_viewDidLoad() {
    objc::superSend<void>(this, objc::sel<"viewDidLoad">());
    setTitle(host::localized(NSSTR("Chats")));
}

void WAChatListViewController::imp_loadView() {
    const std::shared_ptr<host::ChatStore> store = store_ ? store_ : host::defaultChatStore();
    const auto refill = [store](NSMutableArray* sections) {
        sections->removeAllObjects();
        auto section = WATableSection::create();
        for (const std::string& name : store->chatNames()) {
            auto row = WATableRow::create();
            row->setTitle(NSString::create(name).get());
            section->addRow(row.get());
        }
        sections->addObject(section.get());
    };
    setView(WAStaticTableView::create(UIScreen::mainScreen()->bounds(),
                                      NSMutableArray::create().get(), UITableViewStylePlain, refill)
                .get());
}

std::vector<std::string> WAChatListViewController::chatNames() const {
    return (store_ ? store_ : host::defaultChatStore())->chatNames();
}

WAChatSessionViewController* WAChatListViewController::openChat(const std::string& name) {
    UINavigationController* nav = navigationController();
    if (nav == nullptr) return nullptr;
    auto chat = WAChatSessionViewController::create(name, store_);
    nav->pushViewController(chat.get(), true);
    return chat.get();
}
