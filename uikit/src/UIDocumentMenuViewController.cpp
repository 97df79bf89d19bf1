#include <UIKit/UIDocumentMenuViewController.h>

#include <UIKit/UIAlertPanelView.h>
#include <UIKit/UIScreen.h>

#include <UIKit/UIDocumentPickerViewController.h>
#include <UIKit/UIPopoverController.h>

#include <Foundation/NSArray.h>
#include <Foundation/dispatch.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(UIDocumentMenuViewController, UIViewController, "UIDocumentMenuViewController")
OBJC_REGISTER_CLASS(UIDocumentMenuViewController)

void UIDocumentMenuViewController::objcDefine(objc::ClassBuilder<UIDocumentMenuViewController>& b) {
    using C = UIDocumentMenuViewController;
    b.method<&C::imp_initWithDocumentTypesInMode>("initWithDocumentTypes:inMode:")
        .property<&C::delegate_>("delegate", objc::Weak | objc::Nonatomic)
        .method<&C::imp_addOptionWithTitle>("addOptionWithTitle:image:order:handler:")
        .property<&C::types_>("documentTypes", objc::Readonly | objc::Nonatomic)
        .property<&C::mode_>("documentPickerMode", objc::Readonly | objc::Nonatomic)
        .method<&C::imp_loadView>("loadView");
}

void UIDocumentMenuViewController::imp_loadView() {
    UIAlertPanelContent content;
    content.style = UIAlertPanelStyle::ActionSheet;
    const auto add = [&](const std::string& title) {
        content.buttons.push_back(NSString::create(title));
    };
    const auto options = orderedOptions();
    for (const Option* option : options) {
        if (option->order == UIDocumentMenuOrderFirst) add(option->title);
    }
    for (const uikit::DocumentProvider& provider : providers()) add(provider.name);
    for (const Option* option : options) {
        if (option->order != UIDocumentMenuOrderFirst) add(option->title);
    }
    content.cancelIndex = static_cast<NSInteger>(content.buttons.size());
    add("Cancel");
    setView(UIAlertPanelView::create(UIScreen::mainScreen()->bounds(), std::move(content)).get());
}

UIDocumentMenuViewController* UIDocumentMenuViewController::imp_initWithDocumentTypesInMode(
    NSArray* types, UIDocumentPickerMode mode) {
    auto* self =
        static_cast<UIDocumentMenuViewController*>(objc::superSend<id>(this, objc::sel<"init">()));
    if (self == nullptr) return nullptr;
    self->types_ = types != nullptr ? objc::adopt(static_cast<NSArray*>(types->copy()))
                                    : objc::retained(NSArray::array());
    self->mode_ = mode;
    return self;
}

void UIDocumentMenuViewController::imp_addOptionWithTitle(NSString* title, id image,
                                                          UIDocumentMenuOrder order,
                                                          Handler* handler) {
    Option option;
    option.title = title != nullptr ? title->utf8() : std::string();
    option.image = objc::retained(image);
    option.order = order;
    option.handler = objc::retained(handler);
    options_.push_back(std::move(option));
}

std::vector<std::string> UIDocumentMenuViewController::typeList() const {
    std::vector<std::string> list;
    if (!types_) return list;
    for (id type : *types_) {
        if (auto* text = objc::cast<NSString>(type)) list.push_back(text->utf8());
    }
    return list;
}

std::vector<const UIDocumentMenuViewController::Option*>
UIDocumentMenuViewController::orderedOptions() const {
    std::vector<const Option*> list;
    for (const Option& o : options_) {
        if (o.order != UIDocumentMenuOrderLast) list.push_back(&o);
    }
    for (const Option& o : options_) {
        if (o.order == UIDocumentMenuOrderLast) list.push_back(&o);
    }
    return list;
}

void UIDocumentMenuViewController::dismissMenu(objc::Block<void()>* completion) {
    if (presentingViewController() != nullptr) {
        dismissViewControllerAnimated(true, completion);
        return;
    }
    for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
        if (popover->contentViewController() == this) popover->dismissPopoverAnimated(true);
    }
    const objc::Strong<objc::Block<void()>> done = objc::retained(completion);
    dispatch_async(dispatch_get_main_queue(), [done] {
        if (done) (*done)();
    });
}

bool UIDocumentMenuViewController::chooseOption(std::size_t index) {
    const std::vector<const Option*> list = orderedOptions();
    if (index >= list.size()) return false;
    const objc::Strong<Handler> handler = list[index]->handler;
    auto after = objc::makeBlock<void()>([handler] {
        if (handler) (*handler)();
    });
    dismissMenu(after.get());
    return true;
}

std::vector<uikit::DocumentProvider> UIDocumentMenuViewController::providers() const {
    return uikit::currentDocumentProviders();
}

bool UIDocumentMenuViewController::chooseProvider(std::size_t index) {
    const std::vector<uikit::DocumentProvider> list = providers();
    if (index >= list.size()) return false;
    const objc::Strong<UIDocumentPickerViewController> picker =
        UIDocumentPickerViewController::create(types_.get(), mode_);
    picker->setProvider(list[index]);
    const objc::Strong<UIDocumentMenuViewController> self = objc::retained(this);
    auto after = objc::makeBlock<void()>([self, picker] {
        const id delegate = self->delegate();
        const SEL didPick = objc::sel<"documentMenu:didPickDocumentPicker:">();
        if (objc::sendIfAny<bool>(delegate, objc::sel<"respondsToSelector:">(), didPick)) {
            objc::msgSend<void>(delegate, didPick, self.get(), picker.get());
        }
    });
    dismissMenu(after.get());
    return true;
}

void UIDocumentMenuViewController::cancel() {
    const objc::Strong<UIDocumentMenuViewController> self = objc::retained(this);
    auto after = objc::makeBlock<void()>([self] {
        const id delegate = self->delegate();
        const SEL cancelled = objc::sel<"documentMenuWasCancelled:">();
        if (objc::sendIfAny<bool>(delegate, objc::sel<"respondsToSelector:">(), cancelled)) {
            objc::msgSend<void>(delegate, cancelled, self.get());
        }
    });
    dismissMenu(after.get());
}
