#include <Host/document_types.h>

#include <MobileCoreServices/UTType.h>

#include <objc/strong.h>

namespace host {

namespace {

// The first of the host's types `uti` conforms to; empty when none.
std::string hostTypeFor(NSString* uti) {
    if (uti == nullptr) return {};
    for (const std::string& type : shareDocumentTypes()) {
        const objc::Strong<NSString> wanted = NSString::create(type);
        if (UTTypeConformsTo(uti, wanted.get())) return type;
    }
    return {};
}

}  // namespace

const std::vector<std::string>& shareDocumentTypes() {
    static const std::vector<std::string> types = {
        "com.adobe.pdf",
        "com.microsoft.word.doc",
        "org.openxmlformats.wordprocessingml.document",
        "com.microsoft.excel.xls",
        "org.openxmlformats.spreadsheetml.sheet",
        "com.microsoft.powerpoint.ppt",
        "org.openxmlformats.presentationml.presentation",
    };
    return types;
}

std::string documentTypeForExtension(std::string_view extension) {
    // Extensions come without their dot: ".pdf" is no file's extension.
    if (extension.empty() || extension.front() == '.') return {};
    const objc::Strong<NSString> tag = NSString::create(extension);
    const objc::Strong<NSString> uti = objc::adopt(
        UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, tag.get(), nullptr));
    return hostTypeFor(uti.get());
}

bool isSupportedDocumentType(std::string_view uti) {
    const objc::Strong<NSString> type = NSString::create(uti);
    return !hostTypeFor(type.get()).empty();
}

}  // namespace host
