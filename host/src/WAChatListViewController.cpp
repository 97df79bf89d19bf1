#include <Host/WAChatListViewController.h>

#include <Host/host_strings.h>

#include <UIKit/UINavigationController.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WAChatListViewController, UIViewController, "WAChatListViewController")
OBJC_REGISTER_CLASS(WAChatListViewController)

void WAChatListViewController::objcDefine(objc::ClassBuilder<WAChatListViewController>& b) {
    b.method<&WAChatListViewController::imp_viewDidLoad>("viewDidLoad");
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
