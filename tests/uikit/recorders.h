// Test doubles as runtime classes: a controller logging appearance and a delegate logging calls.
#pragma once

#include <UIKit/UIKit.h>

#include <string>
#include <vector>

// Appends "<name>.<event>" to a shared log for each appearance message.
class RecordingViewController : public UIViewController {
    OBJC_CLASS(RecordingViewController)

    static objc::Strong<RecordingViewController> create(std::string name,
                                                        std::vector<std::string>* log);

    std::string name;
    std::vector<std::string>* log = nullptr;
    int loadCount = 0;

  private:
    void record(const std::string& event) {
        if (log != nullptr) log->push_back(name + "." + event);
    }
    void imp_viewDidLoad() {
        ++loadCount;
        record("load");
    }
    void imp_viewWillAppear(bool) { record("willAppear"); }
    void imp_viewDidAppear(bool) { record("didAppear"); }
    void imp_viewWillDisappear(bool) { record("willDisappear"); }
    void imp_viewDidDisappear(bool) { record("didDisappear"); }
};

// Answers the alert-view delegate messages (logging "clicked:N",
// Logs the alert-view delegate messages ("clicked:N", "willDismiss:N", "didDismiss:N",
// "willPresent", "didPresent") and the popover ones ("shouldDismiss", "didDismissPopover").
class RecordingDelegate : public NSObject {
    OBJC_CLASS(RecordingDelegate)

    std::vector<std::string> log;
    bool allowPopoverDismissal = true;

  private:
    void imp_clicked(id, NSInteger i) { log.push_back("clicked:" + std::to_string(i)); }
    void imp_willDismiss(id, NSInteger i) { log.push_back("willDismiss:" + std::to_string(i)); }
    void imp_didDismiss(id, NSInteger i) { log.push_back("didDismiss:" + std::to_string(i)); }
    void imp_willPresent(id) { log.push_back("willPresent"); }
    void imp_didPresent(id) { log.push_back("didPresent"); }
    bool imp_shouldDismissPopover(id) {
        log.push_back("shouldDismiss");
        return allowPopoverDismissal;
    }
    void imp_didDismissPopover(id) { log.push_back("didDismissPopover"); }
    void imp_menuCancelled(id) { log.push_back("menuCancelled"); }
};

// A view whose content has a set size, as a label's text has.
class SizedView : public UIView {
    OBJC_CLASS(SizedView)

    static objc::Strong<SizedView> create(CGSize content);

    CGSize content{UIViewNoIntrinsicMetric, UIViewNoIntrinsicMetric};

  private:
    CGSize imp_intrinsicContentSize() const { return content; }
};
