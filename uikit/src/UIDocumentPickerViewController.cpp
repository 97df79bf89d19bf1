#include <UIKit/UIDocumentPickerViewController.h>

#include <UIKit/UIScreen.h>
#include <UIKit/list_table_view.h>

#include <UIKit/UIPopoverController.h>
#include <UIKit/device_profile.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/NSURL.h>
#include <Foundation/dispatch.h>
#include <MobileCoreServices/UTType.h>

#include <objc/image.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

OBJC_DEFINE_CLASS(UIDocumentPickerViewController, UIViewController,
                  "UIDocumentPickerViewController")
OBJC_REGISTER_CLASS(UIDocumentPickerViewController)

namespace fs = std::filesystem;

namespace {

// The uniform type a file's name says it has (a dynamic one for an unknown
// extension, which still conforms to public.data).
std::string typeOfFileNamed(const fs::path& name) {
    std::string extension = name.extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    const objc::Strong<NSString> tag = NSString::create(extension);
    const objc::Strong<NSString> type = objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, tag.get(), nullptr));
    return type ? type->utf8() : std::string();
}

// Copies `source` into `folder` under its own name, or "name 2.ext",
// "name 3.ext"... when taken. Answers the copy's path, empty on failure.
fs::path copyWithFreeName(const fs::path& source, const fs::path& folder) {
    const std::string stem = source.stem().string();
    const std::string extension = source.extension().string();
    for (int n = 1; n < 10000; ++n) {
        const std::string name =
            n == 1 ? source.filename().string() : stem + " " + std::to_string(n) + extension;
        const fs::path destination = folder / name;
        std::error_code error;
        // Refusing to overwrite makes the name check and the copy one step.
        if (fs::copy_file(source, destination, fs::copy_options::none, error)) return destination;
        if (error != std::errc::file_exists) return {};
    }
    return {};
}

}  // namespace

void UIDocumentPickerViewController::objcDefine(
    objc::ClassBuilder<UIDocumentPickerViewController>& b) {
    using C = UIDocumentPickerViewController;
    b.method<&C::imp_initWithDocumentTypesInMode>("initWithDocumentTypes:inMode:")
        .property<&C::delegate_>("delegate", objc::Weak | objc::Nonatomic)
        .property<&C::mode_>("documentPickerMode", objc::Readonly | objc::Nonatomic)
        .method<&C::imp_loadView>("loadView");
}

UIDocumentPickerViewController::~UIDocumentPickerViewController() {
    // The view may outlive the picker; its rows came from the picker.
    if (auto* list = objc::cast<UIListTableView>(viewIfLoaded())) list->clearItems();
}

void UIDocumentPickerViewController::imp_loadView() {
    auto items = [this] {
        std::vector<UIListTableView::Item> list;
        for (const Entry& entry : entries()) list.push_back({entry.name, entry.isFolder});
        return list;
    };
    setView(UIListTableView::create(UIScreen::mainScreen()->bounds(), items).get());
}

UIDocumentPickerViewController* UIDocumentPickerViewController::imp_initWithDocumentTypesInMode(
    NSArray* types, UIDocumentPickerMode mode) {
    auto* self = static_cast<UIDocumentPickerViewController*>(
        objc::superSend<id>(this, objc::sel<"init">()));
    if (self == nullptr) return nullptr;
    self->types_ = types != nullptr ? objc::adopt(static_cast<NSArray*>(types->copy()))
                                    : objc::retained(NSArray::array());
    self->mode_ = mode;
    const std::vector<uikit::DocumentProvider> providers = uikit::currentDocumentProviders();
    if (!providers.empty()) self->setProvider(providers.front());
    return self;
}

std::vector<std::string> UIDocumentPickerViewController::typeList() const {
    std::vector<std::string> list;
    if (!types_) return list;
    for (id type : *types_) {
        if (auto* text = objc::cast<NSString>(type)) list.push_back(text->utf8());
    }
    return list;
}

void UIDocumentPickerViewController::setProvider(uikit::DocumentProvider provider) {
    provider_ = std::move(provider);
    folder_ = uikit::documentProviderFolder(provider_);
}

bool UIDocumentPickerViewController::accepts(const std::string& type) const {
    if (type.empty() || !types_) return false;
    const objc::Strong<NSString> candidate = NSString::create(type);
    for (id wanted : *types_) {
        auto* text = objc::cast<NSString>(wanted);
        if (text != nullptr && UTTypeConformsTo(candidate.get(), text)) return true;
    }
    return false;
}

std::vector<UIDocumentPickerViewController::Entry> UIDocumentPickerViewController::entries() const {
    std::vector<Entry> folders;
    std::vector<Entry> files;
    if (folder_.empty()) return folders;
    objc::AutoreleasePool pool;
    std::error_code error;
    for (fs::directory_iterator it(folder_, error), end; !error && it != end; it.increment(error)) {
        const fs::path& path = it->path();
        const std::string name = path.filename().string();
        if (name.empty() || name.front() == '.') continue;  // hidden, as in the Files view
        std::error_code kindError;
        if (it->is_directory(kindError)) {
            folders.push_back({name, path.string(), true, {}});
        } else if (it->is_regular_file(kindError)) {
            std::string type = typeOfFileNamed(path.filename());
            if (accepts(type)) files.push_back({name, path.string(), false, std::move(type)});
        }
    }
    const auto byName = [](const Entry& a, const Entry& b) { return a.name < b.name; };
    std::sort(folders.begin(), folders.end(), byName);
    std::sort(files.begin(), files.end(), byName);
    folders.insert(folders.end(), std::make_move_iterator(files.begin()),
                   std::make_move_iterator(files.end()));
    return folders;
}

bool UIDocumentPickerViewController::openFolderAtIndex(std::size_t index) {
    const std::vector<Entry> list = entries();
    if (index >= list.size() || !list[index].isFolder) return false;
    folder_ = list[index].path;
    return true;
}

bool UIDocumentPickerViewController::openParentFolder() {
    const fs::path top = fs::path(uikit::documentProviderFolder(provider_)).lexically_normal();
    const fs::path here = fs::path(folder_).lexically_normal();
    if (here == top || folder_.empty()) return false;
    folder_ = here.parent_path().string();
    return true;
}

std::string UIDocumentPickerViewController::inboxFolder() {
    objc::AutoreleasePool pool;
    return inboxFolder(NSHomeDirectory()->utf8());
}

std::string UIDocumentPickerViewController::inboxFolder(const std::string& home) {
    objc::AutoreleasePool pool;
    NSString* identifier = NSBundle::mainBundle()->bundleIdentifier();
    const std::string prefix = identifier != nullptr ? identifier->utf8() + "-" : std::string();
    return (fs::path(home) / "tmp" / (prefix + "Inbox")).string();
}

void UIDocumentPickerViewController::dismissThen(objc::Block<void()>* after) {
    if (presentingViewController() != nullptr) {
        dismissViewControllerAnimated(true, after);
        return;
    }
    for (UIPopoverController* popover : UIPopoverController::visiblePopovers()) {
        if (popover->contentViewController() == this) popover->dismissPopoverAnimated(true);
    }
    const objc::Strong<objc::Block<void()>> done = objc::retained(after);
    dispatch_async(dispatch_get_main_queue(), [done] {
        if (done) (*done)();
    });
}

bool UIDocumentPickerViewController::pickFileAtIndex(std::size_t index) {
    const std::vector<Entry> list = entries();
    if (index >= list.size() || list[index].isFolder) return false;
    fs::path picked = list[index].path;
    if (mode_ == UIDocumentPickerModeImport) {
        const fs::path inbox = inboxFolder();
        std::error_code error;
        fs::create_directories(inbox, error);
        if (error) return false;
        picked = copyWithFreeName(picked, inbox);
        if (picked.empty()) return false;
    }
    objc::AutoreleasePool pool;
    const objc::Strong<NSURL> url =
        objc::retained(NSURL::fileURLWithPath(NSString::create(picked.string()).get()));
    const objc::Strong<UIDocumentPickerViewController> self = objc::retained(this);
    auto after = objc::makeBlock<void()>([self, url] {
        const id delegate = self->delegate();
        const SEL didPick = objc::sel<"documentPicker:didPickDocumentAtURL:">();
        if (objc::sendIfAny<bool>(delegate, objc::sel<"respondsToSelector:">(), didPick)) {
            objc::msgSend<void>(delegate, didPick, self.get(), url.get());
        }
    });
    dismissThen(after.get());
    return true;
}

void UIDocumentPickerViewController::cancel() {
    const objc::Strong<UIDocumentPickerViewController> self = objc::retained(this);
    auto after = objc::makeBlock<void()>([self] {
        const id delegate = self->delegate();
        const SEL cancelled = objc::sel<"documentPickerWasCancelled:">();
        if (objc::sendIfAny<bool>(delegate, objc::sel<"respondsToSelector:">(), cancelled)) {
            objc::msgSend<void>(delegate, cancelled, self.get());
        }
    });
    dismissThen(after.get());
}
