#include "hooks/settings_keys.h"

#include <objc/string.h>

namespace parcelvane::keys {

NSString* sendDocumentsEnabled() {
    return NSSTR("send_documents_enabled");
}

NSString* sendFilesystemEnabled() {
    return NSSTR("send_filesystem_enabled");
}

NSString* docOptions() {
    return NSSTR("doc_options_bool");
}

}  // namespace parcelvane::keys
