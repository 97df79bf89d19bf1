// The system menu that offers document providers for a set of document types.
//
// It keeps the uniform type identifiers and the picker mode it was made
// with, its delegate (not retained) and the extra options the app added.
// Beside the app's options it lists the device's document providers; a
// provider choice makes a document picker for the menu's types and mode,
// dismisses the menu and then sends documentMenu:didPickDocumentPicker: to
// the delegate, which presents the picker.
#pragma once

#include <UIKit/UIViewController.h>
#include <UIKit/document_provider.h>

#include <objc/block.h>

#include <string>
#include <vector>

class NSArray;
class NSString;

enum UIDocumentPickerMode : NSUInteger {
    UIDocumentPickerModeImport = 0,
    UIDocumentPickerModeOpen = 1,
    UIDocumentPickerModeExportToService = 2,
    UIDocumentPickerModeMoveToService = 3,
};

enum UIDocumentMenuOrder : NSUInteger {
    UIDocumentMenuOrderFirst = 0,
    UIDocumentMenuOrderLast = 1,
};

class PV_EXPORT UIDocumentMenuViewController : public UIViewController {
    OBJC_CLASS(UIDocumentMenuViewController)

    using Handler = objc::Block<void()>;

    // The types (an array of strings, copied) and the mode. A nil list is
    // taken as empty.
    UIDocumentMenuViewController* initWithDocumentTypesInMode(NSArray* types,
                                                              UIDocumentPickerMode mode) {
        return objc::msgSend<UIDocumentMenuViewController*>(
            this, objc::sel<"initWithDocumentTypes:inMode:">(), types, mode);
    }
    static objc::Strong<UIDocumentMenuViewController> create(NSArray* types,
                                                             UIDocumentPickerMode mode) {
        return objc::adopt(
            objc::alloc<UIDocumentMenuViewController>()->initWithDocumentTypesInMode(types, mode));
    }

    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }
    // An entry of the app's own at the top or bottom of the menu; its
    // handler runs when the user picks it, after the menu is dismissed.
    void addOptionWithTitle(NSString* title, id image, UIDocumentMenuOrder order,
                            Handler* handler) {
        objc::msgSend<void>(this, objc::sel<"addOptionWithTitle:image:order:handler:">(), title,
                            image, order, handler);
    }

    // The menu's own accessors (not platform API): what it was made with.
    NSArray* documentTypes() { return objc::msgSend<NSArray*>(this, objc::sel<"documentTypes">()); }
    UIDocumentPickerMode documentPickerMode() {
        return objc::msgSend<UIDocumentPickerMode>(this, objc::sel<"documentPickerMode">());
    }

    // C++ side, without messages.
    struct Option {
        std::string title;
        objc::Strong<objc_object> image;
        UIDocumentMenuOrder order = UIDocumentMenuOrderFirst;
        objc::Strong<Handler> handler;
    };
    std::vector<std::string> typeList() const;
    UIDocumentPickerMode mode() const noexcept { return mode_; }
    // The app's options in menu order: the "first" ones, then the "last" ones.
    std::vector<const Option*> orderedOptions() const;
    // The user picks the option at `index` of orderedOptions(): the menu is
    // dismissed and the handler runs. False when there is no such option.
    bool chooseOption(std::size_t index);
    // The device's providers, in menu order.
    std::vector<uikit::DocumentProvider> providers() const;
    // The user picks the provider at `index` of providers(): a picker for
    // that provider is made, the menu is dismissed, then the delegate hears
    // documentMenu:didPickDocumentPicker:. False when there is no such
    // provider.
    bool chooseProvider(std::size_t index);
    // The user cancels: the menu is dismissed, then the delegate hears
    // documentMenuWasCancelled: (where it responds).
    void cancel();

    UIDocumentMenuViewController() = default;

  private:
    UIDocumentMenuViewController* imp_initWithDocumentTypesInMode(NSArray* types,
                                                                  UIDocumentPickerMode mode);
    void imp_addOptionWithTitle(NSString* title, id image, UIDocumentMenuOrder order,
                                Handler* handler);

    // The view is a sheet of the options, the providers and Cancel.
    void imp_loadView();

    // Takes the menu off screen, wherever it is shown.
    void dismissMenu(objc::Block<void()>* completion);

    objc::Strong<NSArray> types_;
    UIDocumentPickerMode mode_ = UIDocumentPickerModeImport;
    id delegate_ = nullptr;  // not retained
    std::vector<Option> options_;
};
