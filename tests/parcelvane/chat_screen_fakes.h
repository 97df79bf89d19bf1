// Stand-ins for the host's side of the chat hooks, recording what the hooks ask and pass on.
#pragma once

#include "hooks/hook_installation.h"

#include <Foundation/NSURL.h>
#include <UIKit/UIViewController.h>

#include <objc/block.h>
#include <objc/object.h>
#include <objc/strong.h>

#include <string>
#include <vector>

namespace testsupport {

// Everything sent to the fakes and every call a hook passed on, in order.
struct Event {
    std::string what;  // the selector
    id receiver = nullptr;
    objc::Strong<objc_object> first;
    objc::Strong<objc_object> second;
};
std::vector<Event>& events();
std::vector<std::string> eventNames();

// Installs the library's hook table once, as loading does; here only the document menu is hooked.
const std::vector<parcelvane::hooks::HookResult>& libraryInstalled();

// Puts a recorder in a hook's slot and the previous content back afterwards.
class SlotRecorder {
  public:
    enum class Shape { NoArguments, OneObject, TwoObjects };
    SlotRecorder(IMP& slot, Shape shape);
    ~SlotRecorder() { slot_ = saved_; }
    SlotRecorder(const SlotRecorder&) = delete;
    SlotRecorder& operator=(const SlotRecorder&) = delete;

  private:
    IMP& slot_;
    IMP saved_;
};

}  // namespace testsupport

// Records sendDocumentAttachment:, sendParcelvaneFile and _presentForCurrentInterface:.
class FakeChatScreen : public UIViewController {
    OBJC_CLASS(FakeChatScreen)

    FakeChatScreen() = default;

  private:
    void imp_sendDocumentAttachment(id attachment);
    void imp_sendParcelvaneFile();
    void imp_presentForCurrentInterface(id controller);
};

// Registered as "WADocumentAttachment", which this test program lacks.
class FakeDocumentAttachment : public NSObject {
    OBJC_CLASS(FakeDocumentAttachment)

    FakeDocumentAttachment() = default;

    objc::Strong<NSURL> url;
    bool transfersOwnership = false;

  private:
    id imp_initWithFileURL(NSURL* fileURL, bool transferOwnership);
};

// The host's action sheet as the attach menu uses it.
class FakeActionSheet : public NSObject {
    OBJC_CLASS(FakeActionSheet)

    using Handler = objc::Block<void()>;
    struct Button {
        std::string title;
        objc::Strong<Handler> handler;
    };
    std::vector<Button> buttons;

    FakeActionSheet() = default;

  private:
    void imp_addButtonWithTitle(NSString* title, Handler* handler);
};
