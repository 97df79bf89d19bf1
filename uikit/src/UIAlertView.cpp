#include <UIKit/UIAlertView.h>

#include <objc/image.h>

#include <algorithm>

OBJC_DEFINE_CLASS(UIAlertView, NSObject, "UIAlertView")
OBJC_REGISTER_CLASS(UIAlertView)

void UIAlertView::objcDefine(objc::ClassBuilder<UIAlertView>& b) {
    using C = UIAlertView;
    b.method<&C::imp_initWithTitle>(
         "initWithTitle:message:delegate:cancelButtonTitle:otherButtonTitles:")
        .method<&C::imp_addButtonWithTitle>("addButtonWithTitle:")
        .method<&C::imp_show>("show")
        .method<&C::imp_dismissWithClickedButtonIndex>("dismissWithClickedButtonIndex:animated:")
        .method<&C::imp_numberOfButtons>("numberOfButtons")
        .method<&C::imp_buttonTitleAtIndex>("buttonTitleAtIndex:")
        .property<&C::cancelIndex_>("cancelButtonIndex", objc::Nonatomic)
        .method<&C::imp_firstOtherButtonIndex>("firstOtherButtonIndex")
        .property<&C::visible_>("visible",
                                objc::Readonly | objc::Nonatomic | objc::getter("isVisible"))
        .property<&C::title_>("title", objc::Copy | objc::Nonatomic)
        .property<&C::message_>("message", objc::Copy | objc::Nonatomic)
        .property<&C::delegate_>("delegate", objc::Weak | objc::Nonatomic)
        .property<&C::style_>("alertViewStyle", objc::Nonatomic);
}

namespace {

// The shown alerts, each holding itself alive while visible. UIKit is used
// from the main thread only.
std::vector<objc::Strong<UIAlertView>>& visibleList() {
    static std::vector<objc::Strong<UIAlertView>> list;
    return list;
}

objc::Strong<NSString> copied(NSString* text) {
    return text != nullptr ? objc::adopt(static_cast<NSString*>(text->copy())) : nullptr;
}

bool responds(id object, SEL sel) {
    return objc::sendIfAny<bool>(object, objc::sel<"respondsToSelector:">(), sel);
}

}  // namespace

UIAlertView* UIAlertView::imp_initWithTitle(NSString* title, NSString* message, id delegate,
                                            NSString* cancelButtonTitle,
                                            NSString* otherButtonTitle) {
    title_ = copied(title);
    message_ = copied(message);
    delegate_ = delegate;
    if (cancelButtonTitle != nullptr) {
        buttons_.push_back(copied(cancelButtonTitle));
        cancelIndex_ = 0;
    }
    if (otherButtonTitle != nullptr) buttons_.push_back(copied(otherButtonTitle));
    return this;
}

NSInteger UIAlertView::imp_addButtonWithTitle(NSString* title) {
    buttons_.push_back(copied(title != nullptr ? title : NSSTR("")));
    return static_cast<NSInteger>(buttons_.size()) - 1;
}

NSString* UIAlertView::imp_buttonTitleAtIndex(NSInteger index) const {
    if (index < 0 || index >= static_cast<NSInteger>(buttons_.size())) return nullptr;
    return buttons_[static_cast<std::size_t>(index)].get();
}

NSInteger UIAlertView::imp_firstOtherButtonIndex() const {
    for (NSInteger i = 0; i < static_cast<NSInteger>(buttons_.size()); ++i) {
        if (i != cancelIndex_) return i;
    }
    return -1;
}

void UIAlertView::tellDelegate(SEL sel) {
    if (responds(delegate_, sel)) objc::msgSend<void>(delegate_, sel, this);
}

void UIAlertView::tellDelegate(SEL sel, NSInteger index) {
    if (responds(delegate_, sel)) objc::msgSend<void>(delegate_, sel, this, index);
}

void UIAlertView::imp_show() {
    if (visible_) return;
    visible_ = true;
    visibleList().push_back(objc::retained(this));
    tellDelegate(objc::sel<"willPresentAlertView:">());
    tellDelegate(objc::sel<"didPresentAlertView:">());
}

void UIAlertView::imp_dismissWithClickedButtonIndex(NSInteger index, bool) {
    if (!visible_) return;
    // The list's reference may be the last one.
    const objc::Strong<UIAlertView> keep = objc::retained(this);
    tellDelegate(objc::sel<"alertView:willDismissWithButtonIndex:">(), index);
    visible_ = false;
    auto& list = visibleList();
    list.erase(
        std::remove_if(list.begin(), list.end(), [this](const auto& a) { return a.get() == this; }),
        list.end());
    tellDelegate(objc::sel<"alertView:didDismissWithButtonIndex:">(), index);
}

bool UIAlertView::tapButton(NSInteger index) {
    if (!visible_ || index < 0 || index >= static_cast<NSInteger>(buttons_.size())) return false;
    const objc::Strong<UIAlertView> keep = objc::retained(this);
    tellDelegate(objc::sel<"alertView:clickedButtonAtIndex:">(), index);
    dismissWithClickedButtonIndex(index, true);
    return true;
}

std::vector<std::string> UIAlertView::buttonTitles() const {
    std::vector<std::string> titles;
    for (const auto& b : buttons_) titles.push_back(b->utf8());
    return titles;
}

std::vector<UIAlertView*> UIAlertView::visibleAlerts() {
    std::vector<UIAlertView*> list;
    for (const auto& a : visibleList()) list.push_back(a.get());
    return list;
}

UIAlertView* UIAlertView::topVisibleAlert() {
    const auto& list = visibleList();
    return list.empty() ? nullptr : list.back().get();
}
