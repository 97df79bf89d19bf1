#include <Host/WASettingsViewController.h>

#include <Host/host_strings.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSUserDefaults.h>

#include <UIKit/UINavigationController.h>

#include <objc/image.h>

OBJC_DEFINE_CLASS(WASettingsViewController, WAStaticTableViewController, "WASettingsViewController")
OBJC_REGISTER_CLASS(WASettingsViewController)

void WASettingsViewController::objcDefine(objc::ClassBuilder<WASettingsViewController>& b) {
    using C = WASettingsViewController;
    b.method<&C::imp_viewDidLoad>("viewDidLoad").method<&C::imp_setupTableView>("setupTableView");
}

namespace {

NSString* profileText(const char* key, NSString* fallback) {
    NSString* value =
        NSUserDefaults::standardUserDefaults()->stringForKey(NSString::stringWithUTF8String(key));
    return value != nullptr && value->length() > 0 ? value : fallback;
}

objc::Strong<WATableSection> section(NSString* header,
                                     std::initializer_list<objc::Strong<WATableRow>> rows) {
    auto s = WATableSection::create();
    s->setHeaderText(header);
    for (const auto& row : rows) s->addRow(row.get());
    return s;
}

}  // namespace

void WASettingsViewController::imp_viewDidLoad() {
    objc::superSend<void>(this, objc::sel<"viewDidLoad">());
    setTitle(host::localized(NSSTR("Settings")));
    setupTableView();
}

objc::Strong<WATableRow> WASettingsViewController::makeRow(NSString* title, NSString* detail,
                                                           std::function<void()> action) {
    auto row = WATableRow::create();
    row->setTitle(title);
    row->setDetailText(detail);
    row->setHandler(objc::makeBlock<void()>(std::move(action)).get());
    return row;
}

objc::Strong<WATableRow> WASettingsViewController::pageRow(NSString* title,
                                                           std::vector<const char*> entries) {
    // The rows belong to this controller: their handlers must not retain it.
    WASettingsViewController* const self = this;
    const objc::Strong<NSString> kept = objc::retained(title);
    return makeRow(title, nullptr, [self, kept, entries] { self->pushPage(kept.get(), entries); });
}

void WASettingsViewController::pushPage(NSString* title, const std::vector<const char*>& entries) {
    deselectActiveCell();
    auto page = objc::make<WAStaticTableViewController>();
    page->setTitle(title);
    auto list = WATableSection::create();
    WAStaticTableViewController* const pageRef = page.get();
    for (const char* entry : entries) {
        auto row = WATableRow::create();
        row->setTitle(NSString::stringWithUTF8String(entry));
        row->setHandler(
            objc::makeBlock<void()>([pageRef] { pageRef->deselectActiveCell(); }).get());
        list->addRow(row.get());
    }
    page->sectionsArray()->addObject(list.get());
    navigationController()->pushViewController(page.get(), true);
}

void WASettingsViewController::imp_setupTableView() {
    NSMutableArray* sections = sectionsArray();
    sections->removeAllObjects();

    NSString* name = profileText(kProfileNameKey, NSSTR("WhatsApp User"));
    NSString* status = profileText(kProfileStatusKey, NSSTR("Hey there! I am using WhatsApp."));
    auto profile = WATableRow::create();
    profile->setTitle(name);
    profile->setDetailText(status);
    WASettingsViewController* const self = this;
    const objc::Strong<NSString> shownName = objc::retained(name);
    const objc::Strong<NSString> shownStatus = objc::retained(status);
    profile->setHandler(objc::makeBlock<void()>([self, shownName, shownStatus] {
                            self->pushPage(host::localized(NSSTR("Profile")),
                                           {shownName->UTF8String(), shownStatus->UTF8String()});
                        }).get());
    sections->addObject(section(nullptr, {profile}).get());

    sections->addObject(
        section(nullptr,
                {pageRow(host::localized(NSSTR("Account")),
                         {"Privacy", "Security", "Two-Step Verification", "Change Number",
                          "Delete My Account"}),
                 pageRow(host::localized(NSSTR("Chats")),
                         {"Chat Wallpaper", "Save Incoming Media", "Chat Backup",
                          "Archive All Chats", "Clear All Chats"}),
                 pageRow(host::localized(NSSTR("Notifications")),
                         {"Message Notifications", "Group Notifications", "In-App Notifications"}),
                 pageRow(host::localized(NSSTR("Data Usage")),
                         {"Media Auto-Download", "Low Data Usage", "Network Usage"})})
            .get());

    sections->addObject(
        section(nullptr,
                {pageRow(host::localized(NSSTR("About and Help")),
                         {"FAQ", "Contact Us", "Terms and Privacy Policy", "System Status"}),
                 pageRow(host::localized(NSSTR("Tell a Friend")), {"Mail", "Message"})})
            .get());
}
