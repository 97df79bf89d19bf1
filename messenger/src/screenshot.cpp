#include "screenshot.h"

#include <Foundation/NSArray.h>
#include <Foundation/NSData.h>
#include <UIKit/UIAlertPanelView.h>

#include <Host/WAActionSheet.h>

namespace messenger {

namespace {

UIAlertPanelContent alertContent(UIAlertView* alert) {
    UIAlertPanelContent content;
    content.title = objc::retained(alert->title());
    content.message = objc::retained(alert->message());
    for (NSInteger i = 0; i < alert->numberOfButtons(); ++i) {
        content.buttons.push_back(objc::retained(alert->buttonTitleAtIndex(i)));
    }
    return content;
}

UIAlertPanelContent sheetContent(WAActionSheet* sheet) {
    UIAlertPanelContent content;
    content.style = UIAlertPanelStyle::ActionSheet;
    content.title = objc::retained(sheet->title());
    for (const std::string& title : sheet->entryTitles()) {
        content.buttons.push_back(NSString::create(title));
    }
    if (sheet->hasCancelButton()) {
        content.cancelIndex = static_cast<NSInteger>(content.buttons.size());
        content.buttons.push_back(NSString::create(sheet->cancelTitle()));
    }
    return content;
}

}  // namespace

UIImage* pictureOfScreen(App& app) {
    UIScreen* screen = UIScreen::mainScreen();
    const CGRect bounds = screen->bounds();
    UIGraphicsBeginImageContextWithOptions(bounds.size, true, screen->scale());
    if (UIWindow* window = UIWindow::keyWindow()) window->drawViewHierarchyInRect(bounds, true);
    const App::Front front = app.front();
    switch (front.kind) {
        case App::Front::Kind::Alert:
            UIAlertPanelView::create(bounds, alertContent(static_cast<UIAlertView*>(front.object)))
                ->drawViewHierarchyInRect(bounds, true);
            break;
        case App::Front::Kind::ActionSheet:
            UIAlertPanelView::create(bounds,
                                     sheetContent(static_cast<WAActionSheet*>(front.object)))
                ->drawViewHierarchyInRect(bounds, true);
            break;
        case App::Front::Kind::Popover:
            // A phone shows a popover's content full screen.
            static_cast<UIPopoverController*>(front.object)
                ->contentViewController()
                ->view()
                ->drawViewHierarchyInRect(bounds, true);
            break;
        case App::Front::Kind::Screen:
            break;
    }
    UIImage* image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image;
}

std::string writeScreenshot(App& app, const std::string& path) {
    objc::AutoreleasePool pool;
    UIImage* image = pictureOfScreen(app);
    NSData* png = UIImagePNGRepresentation(image);
    if (png == nullptr) return "Could not draw the screen.";
    if (!png->writeToFileAtomically(NSString::create(path).get(), true)) {
        return "Could not write " + path + ".";
    }
    return {};
}

}  // namespace messenger
