// The host's Settings screen: the user's profile first, then the account,
// chats, notifications and data-usage pages, then help. Each row opens a
// page of its own.
#pragma once

#include <Host/WAStaticTableViewController.h>

#include <string>
#include <vector>

class WASettingsViewController : public WAStaticTableViewController {
    OBJC_CLASS(WASettingsViewController)

    static objc::Strong<WASettingsViewController> create() {
        return objc::make<WASettingsViewController>();
    }

    // Rebuilds `_sections`; viewDidLoad calls it.
    void setupTableView() { objc::msgSend<void>(this, objc::sel<"setupTableView">()); }

    // The user-defaults keys of the profile row.
    static constexpr const char* kProfileNameKey = "ProfileName";
    static constexpr const char* kProfileStatusKey = "ProfileStatus";

    WASettingsViewController() = default;

  private:
    void imp_viewDidLoad();
    void imp_setupTableView();

    objc::Strong<WATableRow> makeRow(NSString* title, NSString* detail,
                                     std::function<void()> action);
    // A row that opens a page listing `entries`.
    objc::Strong<WATableRow> pageRow(NSString* title, std::vector<const char*> entries);
    void pushPage(NSString* title, const std::vector<const char*>& entries);
};
