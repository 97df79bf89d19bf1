// The screen of one document provider: its folder's entries, filtered by
// the uniform types the app asked for, and the pick that hands a file to the
// app.
//
// A file is shown when the type its name's extension maps to conforms to
// one of the picker's types; folders are always shown and can be opened.
// Picking in import mode copies the file into the app's Inbox
// ("<home>/tmp/<bundle identifier>-Inbox/") and gives the app the copy; in
// open mode the app gets the original. Either way the picker is dismissed
// first, then the delegate hears documentPicker:didPickDocumentAtURL:.
#pragma once

#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/document_provider.h>

#include <cstddef>
#include <string>
#include <vector>

class NSArray;
class NSURL;

class PV_EXPORT UIDocumentPickerViewController : public UIViewController {
    OBJC_CLASS(UIDocumentPickerViewController)

    // The types (strings, copied; nil is empty) and the mode. The picker
    // shows the device's first provider until told otherwise.
    UIDocumentPickerViewController* initWithDocumentTypesInMode(NSArray* types,
                                                                UIDocumentPickerMode mode) {
        return objc::msgSend<UIDocumentPickerViewController*>(
            this, objc::sel<"initWithDocumentTypes:inMode:">(), types, mode);
    }
    static objc::Strong<UIDocumentPickerViewController> create(NSArray* types,
                                                               UIDocumentPickerMode mode) {
        return objc::adopt(
            objc::alloc<UIDocumentPickerViewController>()->initWithDocumentTypesInMode(types,
                                                                                       mode));
    }

    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }
    UIDocumentPickerMode documentPickerMode() {
        return objc::msgSend<UIDocumentPickerMode>(this, objc::sel<"documentPickerMode">());
    }

    // C++ side, without messages (the terminal UI browses with these).
    struct Entry {
        std::string name;
        std::string path;
        bool isFolder = false;
        std::string type;  // the file's uniform type; empty for a folder
    };
    std::vector<std::string> typeList() const;
    UIDocumentPickerMode mode() const noexcept { return mode_; }

    // Shows a provider, at its folder's top.
    void setProvider(uikit::DocumentProvider provider);
    const uikit::DocumentProvider& provider() const noexcept { return provider_; }
    // The folder shown now: the provider's folder or one inside it.
    const std::string& currentFolder() const noexcept { return folder_; }
    // The folders, then the files whose type fits, each by name. A missing
    // or unreadable folder lists nothing.
    std::vector<Entry> entries() const;
    // Opens the folder at `index` of entries(); false when that is no folder.
    bool openFolderAtIndex(std::size_t index);
    // Back to the enclosing folder; false at the provider's top.
    bool openParentFolder();

    // The user picks the file at `index` of entries(). False (and nothing
    // happens) when there is no such file or an import cannot copy it.
    bool pickFileAtIndex(std::size_t index);
    // The user cancels: the picker is dismissed, then the delegate hears
    // documentPickerWasCancelled: (where it responds).
    void cancel();

    // Where imports go: "<home>/tmp/<main bundle identifier>-Inbox", for the
    // process's home or a container named by its home folder.
    static std::string inboxFolder();
    static std::string inboxFolder(const std::string& home);

    UIDocumentPickerViewController() = default;
    ~UIDocumentPickerViewController() override;

  private:
    UIDocumentPickerViewController* imp_initWithDocumentTypesInMode(NSArray* types,
                                                                    UIDocumentPickerMode mode);
    // The view lists the entries of the folder shown, folders with a chevron.
    void imp_loadView();

    bool accepts(const std::string& type) const;
    // Takes the picker off screen, then runs `after` on the main queue.
    void dismissThen(objc::Block<void()>* after);

    objc::Strong<NSArray> types_;
    UIDocumentPickerMode mode_ = UIDocumentPickerModeImport;
    id delegate_ = nullptr;  // not retained
    uikit::DocumentProvider provider_;
    std::string folder_;
};
