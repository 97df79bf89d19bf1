// A browser over the real file system, one folder per screen.
//
// Entries: folders first, then files, each group in the order the platform
// sorts names for people (localizedStandardCompare:: case-insensitive, digits
// by value); hidden files included. A symbolic link is followed: a link to a
// folder is listed and opened as a folder, a link to a file as a file; a link
// that dangles or loops is listed (kind BrokenLink) but opening or choosing it
// only reports an error.
//
// Navigation: inside a navigation controller, opening a folder pushes a new
// browser for it (sharing the blocks and the delegate); a browser outside
// one changes its own path instead. goUp goes to the parent of the folder
// shown: back to the browser below when that shows the parent, else this
// browser shows the parent itself. Links are opened at their real path, and a
// folder whose real path already has a browser in the stack pops back to it,
// so a link cycle never piles up screens. A folder that cannot be read leaves the browser where it
// was, with errorText() saying why ("Cannot open folder: Permission denied").
//
// A terminal UI drives it from C++: entries(), openEntryAtIndex(),
// chooseEntryAtIndex(), goUp(), cancel(). The browser never dismisses
// itself; its blocks receive presentedController() (the navigation
// controller that was presented) for the caller to dismiss.
#pragma once

#include <UIKit/UIViewController.h>

#include <objc/block.h>

#include <string>
#include <vector>

class PV_EXPORT ParcelvaneFileBrowserViewController : public UIViewController {
    OBJC_CLASS(ParcelvaneFileBrowserViewController)

    // (presented controller, full path)
    using PathBlock = objc::Block<void(id, NSString*)>;

    struct Entry {
        enum class Kind { Folder, File, BrokenLink };
        std::string name;
        std::string path;  // the folder's path joined with the name
        Kind kind = Kind::File;
        bool isSymbolicLink = false;
        unsigned long long size = 0;  // files only: the size of what a link points to
        std::string sizeText;         // files only: "1.5 KB"
    };

    // A browser at "/" (init) or at the path (owned, for C++ callers).
    static objc::Strong<ParcelvaneFileBrowserViewController> create(NSString* path);

    // A relative path is taken from the current folder; nil means "/".
    ParcelvaneFileBrowserViewController* initWithPath(NSString* path) {
        return objc::msgSend<ParcelvaneFileBrowserViewController*>(
            this, objc::sel<"initWithPath:">(), path);
    }

    NSString* path() { return objc::msgSend<NSString*>(this, objc::sel<"path">()); }
    // Not retained. Optional messages, sent beside the blocks:
    // fileBrowser:didSelectFile:, fileBrowser:didLoadPath:, fileBrowserDidCancel:.
    id delegate() { return objc::msgSend<id>(this, objc::sel<"delegate">()); }
    void setDelegate(id delegate) {
        objc::msgSend<void>(this, objc::sel<"setDelegate:">(), delegate);
    }

    // The blocks are copied and kept.
    PathBlock* didSelectFile() {
        return objc::msgSend<PathBlock*>(this, objc::sel<"didSelectFile">());
    }
    void setDidSelectFile(PathBlock* block) {
        objc::msgSend<void>(this, objc::sel<"setDidSelectFile:">(), block);
    }
    PathBlock* didLoadPath() { return objc::msgSend<PathBlock*>(this, objc::sel<"didLoadPath">()); }
    void setDidLoadPath(PathBlock* block) {
        objc::msgSend<void>(this, objc::sel<"setDidLoadPath:">(), block);
    }
    PathBlock* cancelBlock() { return objc::msgSend<PathBlock*>(this, objc::sel<"cancelBlock">()); }
    void setCancelBlock(PathBlock* block) {
        objc::msgSend<void>(this, objc::sel<"setCancelBlock:">(), block);
    }

    // Reads the current folder again; false (and errorText) when it cannot.
    // On success didLoadPath runs with the folder's path.
    bool reloadData() { return objc::msgSend<bool>(this, objc::sel<"reloadData">()); }
    // A folder (or link to one) navigates; a file is chosen. False, with
    // errorText, when that cannot happen; the browser stays.
    bool openEntryAtIndex(NSUInteger index) {
        return objc::msgSend<bool>(this, objc::sel<"openEntryAtIndex:">(), index);
    }
    // Opens the folder at `path` as opening an entry would (a terminal UI's
    // "go to"); a relative path ("..", "sub/dir") starts at the folder shown.
    bool openPath(NSString* path) {
        return objc::msgSend<bool>(this, objc::sel<"openPath:">(), path);
    }
    // Calls didSelectFile with the file's full path; false for a folder, a
    // broken link or a bad index.
    bool chooseEntryAtIndex(NSUInteger index) {
        return objc::msgSend<bool>(this, objc::sel<"chooseEntryAtIndex:">(), index);
    }
    // To the parent of the folder shown; false at "/" or when the parent
    // cannot be read (errorText).
    bool goUp() { return objc::msgSend<bool>(this, objc::sel<"goUp">()); }
    // Calls cancelBlock with the current path.
    void cancel() { objc::msgSend<void>(this, objc::sel<"cancel">()); }
    // The outermost container holding the browser (its navigation
    // controller), or the browser itself.
    UIViewController* presentedController() {
        return objc::msgSend<UIViewController*>(this, objc::sel<"presentedController">());
    }

    // C++ views. entries() reads the folder on first use.
    const std::vector<Entry>& entries();
    const std::string& currentPath() const noexcept { return path_; }
    // Why the last load or open failed; empty after a success.
    const std::string& errorText() const noexcept { return error_; }

    // "0 bytes", "1 byte", "999 bytes", "1.5 KB", "12 KB", "3.4 MB" (powers of 1000).
    static std::string formatSize(unsigned long long bytes);

    ParcelvaneFileBrowserViewController() = default;
    ~ParcelvaneFileBrowserViewController() override;

  private:
    // The view lists the folder's entries, folders with a chevron.
    void imp_loadView();
    ParcelvaneFileBrowserViewController* imp_init();
    ParcelvaneFileBrowserViewController* imp_initWithPath(NSString* path);
    NSString* imp_path() const;
    bool imp_reloadData();
    bool imp_openEntryAtIndex(NSUInteger index);
    bool imp_openPath(NSString* path);
    bool imp_chooseEntryAtIndex(NSUInteger index);
    bool imp_goUp();
    void imp_cancel();
    UIViewController* imp_presentedController();
    void imp_viewWillAppear(bool animated);

    // Shows `path` here (not pushing); false with errorText when unreadable.
    bool showPath(const std::string& path);
    // Opens the folder at `path` the way this browser navigates.
    bool navigateTo(const std::string& path);
    // The browser of this one's navigation stack showing the real folder of
    // `path`, or null.
    ParcelvaneFileBrowserViewController* stackedBrowserAt(const std::string& path);
    // A new browser for `path` with this one's blocks and delegate.
    objc::Strong<ParcelvaneFileBrowserViewController> makeChild(const std::string& path);
    // Runs a block (and the delegate's optional message) with the presented
    // controller and a path, keeping both alive while it runs.
    void notify(PathBlock* block, const char* delegateSelector, const std::string& path);

    std::string path_ = "/";
    std::vector<Entry> entries_;
    bool loaded_ = false;
    std::string error_;
    id delegate_ = nullptr;  // not retained
    objc::Strong<PathBlock> didSelectFile_;
    objc::Strong<PathBlock> didLoadPath_;
    objc::Strong<PathBlock> cancelBlock_;
};
