#include <TolbrennDevTools/ParcelvaneFileBrowserViewController.h>

#include "folder_listing.h"

#include <Foundation/NSArray.h>

#include <UIKit/UINavigationController.h>
#include <UIKit/UIScreen.h>
#include <UIKit/list_table_view.h>

#include <objc/image.h>
#include <objc/runtime.h>
#include <objc/string.h>

#include <array>
#include <cstdio>

using C = ParcelvaneFileBrowserViewController;

OBJC_DEFINE_CLASS(ParcelvaneFileBrowserViewController, UIViewController,
                  "ParcelvaneFileBrowserViewController")
OBJC_REGISTER_CLASS(ParcelvaneFileBrowserViewController)

void C::objcDefine(objc::ClassBuilder<C>& b) {
    b.method<&C::imp_init>("init")
        .method<&C::imp_initWithPath>("initWithPath:")
        .method<&C::imp_path>("path")
        .property<&C::delegate_>("delegate", objc::Nonatomic | objc::Weak)
        .property<&C::didSelectFile_>("didSelectFile", objc::Copy | objc::Nonatomic)
        .property<&C::didLoadPath_>("didLoadPath", objc::Copy | objc::Nonatomic)
        .property<&C::cancelBlock_>("cancelBlock", objc::Copy | objc::Nonatomic)
        .method<&C::imp_reloadData>("reloadData")
        .method<&C::imp_openEntryAtIndex>("openEntryAtIndex:")
        .method<&C::imp_openPath>("openPath:")
        .method<&C::imp_chooseEntryAtIndex>("chooseEntryAtIndex:")
        .method<&C::imp_goUp>("goUp")
        .method<&C::imp_cancel>("cancel")
        .method<&C::imp_presentedController>("presentedController")
        .method<&C::imp_viewWillAppear>("viewWillAppear:")
        .method<&C::imp_loadView>("loadView");
}

C::~ParcelvaneFileBrowserViewController() {
    // The view may outlive the browser; its rows came from the browser.
    if (auto* list = objc::cast<UIListTableView>(viewIfLoaded())) list->clearItems();
}

void C::imp_loadView() {
    auto items = [this] {
        std::vector<UIListTableView::Item> list;
        for (const Entry& entry : entries()) {
            list.push_back({entry.name, entry.kind == Entry::Kind::Folder});
        }
        return list;
    };
    setView(UIListTableView::create(UIScreen::mainScreen()->bounds(), items).get());
}

namespace {

using tolbrenn::detail::brokenLinkReason;
using tolbrenn::detail::normalizePath;
using tolbrenn::detail::parentPath;
using tolbrenn::detail::realPath;

std::string titleFor(const std::string& path) {
    if (path == "/") return path;
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace

objc::Strong<C> C::create(NSString* path) {
    return objc::adopt(objc::alloc<C>()->initWithPath(path));
}

C* C::imp_init() {
    return initWithPath(nullptr);
}

C* C::imp_initWithPath(NSString* path) {
    auto* self = objc::superSend<C*>(this, objc::sel<"init">());
    if (self == nullptr) return nullptr;
    self->path_ = normalizePath(path != nullptr ? std::string(path->UTF8String()) : "/");
    self->setTitle(NSString::create(titleFor(self->path_)).get());
    return self;
}

NSString* C::imp_path() const {
    return objc::autorelease(NSString::create(path_).leak());
}

const std::vector<C::Entry>& C::entries() {
    if (!loaded_) reloadData();
    return entries_;
}

void C::imp_viewWillAppear(bool animated) {
    objc::superSend<void>(this, objc::sel<"viewWillAppear:">(), animated);
    if (!loaded_) reloadData();
}

bool C::imp_reloadData() {
    const objc::Strong<C> keep = objc::retained(this);
    if (!showPath(path_)) return false;
    notify(didLoadPath_.get(), "fileBrowser:didLoadPath:", path_);
    return true;
}

bool C::showPath(const std::string& path) {
    auto listing = tolbrenn::detail::readFolder(path);
    if (!listing) {
        error_ = "Cannot open folder: " + listing.error().message;
        // A first load that fails still settles: the browser is empty, not stale.
        if (!loaded_) loaded_ = true;
        return false;
    }
    error_.clear();
    path_ = path;
    entries_ = std::move(*listing);
    loaded_ = true;
    setTitle(NSString::create(titleFor(path_)).get());
    return true;
}

objc::Strong<C> C::makeChild(const std::string& path) {
    auto child = create(NSString::create(path).get());
    child->delegate_ = delegate_;
    child->didSelectFile_ = didSelectFile_;
    child->didLoadPath_ = didLoadPath_;
    child->cancelBlock_ = cancelBlock_;
    return child;
}

bool C::navigateTo(const std::string& path) {
    const objc::Strong<C> keep = objc::retained(this);
    UINavigationController* nav = navigationController();
    if (nav == nullptr) {
        if (!showPath(path)) return false;
        notify(didLoadPath_.get(), "fileBrowser:didLoadPath:", path_);
        return true;
    }
    // The same real folder already has a screen: go back to it rather than
    // stacking another, so a link cycle cannot grow the stack.
    if (C* browser = stackedBrowserAt(path)) {
        if (browser != this) nav->popToViewController(browser, true);
        return browser->reloadData();
    }
    auto child = makeChild(path);
    if (!child->showPath(path)) {
        error_ = child->error_;
        return false;
    }
    error_.clear();
    nav->pushViewController(child.get(), true);
    child->notify(child->didLoadPath_.get(), "fileBrowser:didLoadPath:", child->path_);
    return true;
}

C* C::stackedBrowserAt(const std::string& path) {
    UINavigationController* nav = navigationController();
    const auto real = realPath(path);
    if (nav == nullptr || !real) return nullptr;
    for (const auto& controller : nav->childList()) {
        auto* browser = objc::isKindOf(controller.get(), C::objcClass())
                            ? static_cast<C*>(controller.get())
                            : nullptr;
        if (browser == nullptr) continue;
        if (const auto other = realPath(browser->path_); other && *other == *real) return browser;
    }
    return nullptr;
}

bool C::imp_openEntryAtIndex(NSUInteger index) {
    const std::vector<Entry>& list = entries();
    if (index >= list.size()) {
        error_ = "No entry at index " + std::to_string(index);
        return false;
    }
    const Entry entry = list[index];  // navigation replaces the list
    switch (entry.kind) {
        case Entry::Kind::File:
            return chooseEntryAtIndex(index);
        case Entry::Kind::BrokenLink:
            error_ = "Cannot open link: " + brokenLinkReason(entry.path);
            return false;
        case Entry::Kind::Folder:
            break;
    }
    if (!entry.isSymbolicLink) return navigateTo(entry.path);
    const auto real = realPath(entry.path);
    if (!real) {
        error_ = "Cannot open link: " + real.error().message;
        return false;
    }
    return navigateTo(*real);
}

bool C::imp_openPath(NSString* path) {
    if (path == nullptr) {
        error_ = "Cannot open folder: No path";
        return false;
    }
    std::string text = path->UTF8String();
    // Relative to the folder shown, as the user reads it on screen.
    if (!text.empty() && text.front() != '/') text = path_ + "/" + text;
    return navigateTo(normalizePath(text));
}

bool C::imp_chooseEntryAtIndex(NSUInteger index) {
    const std::vector<Entry>& list = entries();
    if (index >= list.size()) {
        error_ = "No entry at index " + std::to_string(index);
        return false;
    }
    const Entry entry = list[index];
    if (entry.kind == Entry::Kind::Folder) {
        error_ = "Not a file: " + entry.name;
        return false;
    }
    if (entry.kind == Entry::Kind::BrokenLink) {
        error_ = "Cannot open link: " + brokenLinkReason(entry.path);
        return false;
    }
    error_.clear();
    notify(didSelectFile_.get(), "fileBrowser:didSelectFile:", entry.path);
    return true;
}

bool C::imp_goUp() {
    if (path_ == "/") return false;
    const objc::Strong<C> keep = objc::retained(this);
    const std::string parent = parentPath(path_);
    // The parent is the folder of the screen below when this one was opened
    // from it; a folder reached by path or through a link may have none.
    if (C* below = stackedBrowserAt(parent); below != nullptr && below != this) {
        navigationController()->popToViewController(below, true);
        return true;
    }
    if (!showPath(parent)) return false;
    notify(didLoadPath_.get(), "fileBrowser:didLoadPath:", path_);
    return true;
}

void C::imp_cancel() {
    const objc::Strong<C> keep = objc::retained(this);
    notify(cancelBlock_.get(), nullptr, path_);
    if (delegate_ != nullptr) {
        const SEL sel = sel_registerName("fileBrowserDidCancel:");
        if (class_respondsToSelector(object_getClass(delegate_), sel)) {
            objc::msgSend<void>(delegate_, sel, static_cast<id>(this));
        }
    }
}

UIViewController* C::imp_presentedController() {
    UIViewController* top = this;
    while (UIViewController* parent = top->parentViewController()) top = parent;
    return top;
}

void C::notify(PathBlock* block, const char* delegateSelector, const std::string& path) {
    const objc::AutoreleasePool pool;
    // The block may dismiss (and so release) the browser; keep everything it
    // is given alive until it returns.
    const objc::Strong<C> keep = objc::retained(this);
    const objc::Strong<UIViewController> controller = objc::retained(presentedController());
    const objc::Strong<NSString> pathString = NSString::create(path);
    if (block != nullptr) {
        const objc::Strong<PathBlock> keepBlock = objc::retained(block);
        (*keepBlock)(controller.get(), pathString.get());
    }
    if (delegate_ != nullptr && delegateSelector != nullptr) {
        const SEL sel = sel_registerName(delegateSelector);
        if (class_respondsToSelector(object_getClass(delegate_), sel)) {
            objc::msgSend<void>(delegate_, sel, static_cast<id>(this), pathString.get());
        }
    }
}

std::string C::formatSize(unsigned long long bytes) {
    if (bytes == 1) return "1 byte";
    if (bytes < 1000) return std::to_string(bytes) + " bytes";
    static constexpr std::array<const char*, 6> units{"KB", "MB", "GB", "TB", "PB", "EB"};
    double value = static_cast<double>(bytes);
    for (std::size_t i = 0; i < units.size(); ++i) {
        value /= 1000.0;
        // Decide the unit on the rounded figure: 999,999 bytes is "1 MB", not "1000 KB".
        bool oneDecimal = value < 9.95;
        const double shown =
            oneDecimal ? static_cast<double>(static_cast<long long>(value * 10 + 0.5)) / 10
                       : static_cast<double>(static_cast<long long>(value + 0.5));
        if (shown < 1000.0 || i + 1 == units.size()) {
            if (oneDecimal && shown == static_cast<double>(static_cast<long long>(shown))) {
                oneDecimal = false;  // "1 KB", not "1.0 KB"
            }
            std::array<char, 32> text{};
            std::snprintf(text.data(), text.size(), oneDecimal ? "%.1f %s" : "%.0f %s", shown,
                          units[i]);
            return text.data();
        }
    }
    return std::to_string(bytes) + " bytes";
}
