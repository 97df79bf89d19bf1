#include <Host/host_strings.h>

#include <Foundation/NSBundle.h>

namespace host {

NSString* localized(NSString* key) {
    return NSBundle::mainBundle()->localizedStringForKey(key, NSSTR(""), nullptr);
}

}  // namespace host
