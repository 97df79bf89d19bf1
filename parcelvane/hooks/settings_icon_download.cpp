#include "hooks/settings_icon_download.h"

#include "support/maker_server.h"

#include <Foundation/NSData.h>
#include <Foundation/NSURL.h>
#include <Foundation/string_format.h>
#include <Foundation/dispatch.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UITableViewCell.h>

#include <objc/strong.h>

namespace parcelvane::hooks {

void startSettingsIconDownload(UITableViewCell* cell) {
    dispatch_async(
        dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
        [cell = objc::retained(cell)] {
            NSURL* const url = NSURL::URLWithString(objc::format(
                NSSTR("http://%s%s"), maker::kPackageServerHost, maker::kSettingsIconPath));
            // A blocking read, off the main thread.
            const objc::Strong<NSData> data =
                objc::adopt(objc::alloc<NSData>()->initWithContentsOfURL(url));
            if (!data) return;
            // Views are touched on the main thread only.
            dispatch_async(dispatch_get_main_queue(), [cell, data] {
                cell->imageView()->setImage(UIImage::imageWithData(data.get()));
            });
        });
}

}  // namespace parcelvane::hooks
