#include "chat_screen_fakes.h"

#include "hooks/hook_table.h"

#include <objc/image.h>
#include <objc/message.h>
#include <objc/string.h>

namespace testsupport {

std::vector<Event>& events() {
    static std::vector<Event> recorded;
    return recorded;
}

std::vector<std::string> eventNames() {
    std::vector<std::string> names;
    for (const Event& event : events()) names.push_back(event.what);
    return names;
}

const std::vector<parcelvane::hooks::HookResult>& libraryInstalled() {
    static const std::vector<parcelvane::hooks::HookResult> results = [] {
        const objc::AutoreleasePool pool;
        // Two host classes as an older host has them: the settings screen lacks the hooked method.
        for (const char* name : {"WAStaticTableViewController", "WASettingsViewController"}) {
            objc_registerClassPair(objc_allocateClassPair(NSObject::objcClass(), name, 0));
        }
        return parcelvane::hooks::installParcelvane();
    }();
    return results;
}

namespace {

void record(id self, SEL sel, id first = nullptr, id second = nullptr) {
    events().push_back({sel_getName(sel), self, objc::retained(first), objc::retained(second)});
}
void noArguments(id self, SEL sel) {
    record(self, sel);
}
void oneObject(id self, SEL sel, id first) {
    record(self, sel, first);
}
void twoObjects(id self, SEL sel, id first, id second) {
    record(self, sel, first, second);
}

}  // namespace

SlotRecorder::SlotRecorder(IMP& slot, Shape shape) : slot_(slot), saved_(slot) {
    const IMP recorders[] = {reinterpret_cast<IMP>(&noArguments), reinterpret_cast<IMP>(&oneObject),
                             reinterpret_cast<IMP>(&twoObjects)};
    slot_ = recorders[static_cast<int>(shape)];
}

}  // namespace testsupport

using testsupport::events;

OBJC_DEFINE_CLASS(FakeChatScreen, UIViewController, "FakeChatScreen")
OBJC_REGISTER_CLASS(FakeChatScreen)

void FakeChatScreen::objcDefine(objc::ClassBuilder<FakeChatScreen>& b) {
    b.method<&FakeChatScreen::imp_sendDocumentAttachment>("sendDocumentAttachment:")
        .method<&FakeChatScreen::imp_sendParcelvaneFile>("sendParcelvaneFile")
        .method<&FakeChatScreen::imp_presentForCurrentInterface>("_presentForCurrentInterface:");
}

void FakeChatScreen::imp_sendDocumentAttachment(id attachment) {
    events().push_back({"sendDocumentAttachment:", this, objc::retained(attachment), {}});
}
void FakeChatScreen::imp_sendParcelvaneFile() {
    events().push_back({"sendParcelvaneFile", this, {}, {}});
}
void FakeChatScreen::imp_presentForCurrentInterface(id controller) {
    events().push_back({"_presentForCurrentInterface:", this, objc::retained(controller), {}});
}

OBJC_DEFINE_CLASS(FakeDocumentAttachment, NSObject, "WADocumentAttachment")
OBJC_REGISTER_CLASS(FakeDocumentAttachment)

void FakeDocumentAttachment::objcDefine(objc::ClassBuilder<FakeDocumentAttachment>& b) {
    b.method<&FakeDocumentAttachment::imp_initWithFileURL>(
        "initWithFileURL:transferFileOwnership:");
}

id FakeDocumentAttachment::imp_initWithFileURL(NSURL* fileURL, bool transferOwnership) {
    url = objc::retained(fileURL);
    transfersOwnership = transferOwnership;
    return this;
}

OBJC_DEFINE_CLASS(FakeActionSheet, NSObject, "FakeActionSheet")
OBJC_REGISTER_CLASS(FakeActionSheet)

void FakeActionSheet::objcDefine(objc::ClassBuilder<FakeActionSheet>& b) {
    b.method<&FakeActionSheet::imp_addButtonWithTitle>("addButtonWithTitle:handler:");
}

void FakeActionSheet::imp_addButtonWithTitle(NSString* title, Handler* handler) {
    buttons.push_back({title != nullptr ? title->utf8() : "", objc::retained(handler)});
}
