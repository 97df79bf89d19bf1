#include <Foundation/NSArray.h>
#include <Foundation/NSPathUtilities.h>
#include <Foundation/process_environment.h>

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

NSString* autoreleased(const std::string& text) {
    return objc::autorelease(NSString::create(text).leak());
}

const char* userSubfolder(NSSearchPathDirectory directory) {
    switch (directory) {
        case NSLibraryDirectory:
            return "/Library";
        case NSDocumentationDirectory:
            return "/Library/Documentation";
        case NSDocumentDirectory:
            return "/Documents";
        case NSCachesDirectory:
            return "/Library/Caches";
        case NSApplicationSupportDirectory:
            return "/Library/Application Support";
        default:
            return nullptr;
    }
}

}  // namespace

NSString* NSHomeDirectory() {
    return autoreleased(foundation::processEnvironment().homeDirectory);
}

NSString* NSTemporaryDirectory() {
    const std::string containerTmp = foundation::processEnvironment().homeDirectory + "/tmp";
    struct stat info {};
    if (::stat(containerTmp.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
        return autoreleased(containerTmp + "/");
    }
    std::string folder = "/tmp";
    if (const char* tmp = std::getenv("TMPDIR"); tmp != nullptr && *tmp != '\0') folder = tmp;
    if (folder.back() != '/') folder += '/';
    return autoreleased(folder);
}

NSArray* NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                             NSSearchPathDomainMask domainMask, bool expandTilde) {
    std::vector<objc::Strong<NSString>> paths;
    if ((domainMask & NSUserDomainMask) != 0) {
        if (const char* sub = userSubfolder(directory)) {
            std::string base =
                expandTilde ? foundation::processEnvironment().homeDirectory : std::string("~");
            if (base == "/") base.clear();
            paths.push_back(NSString::create(base + sub));
        }
    }
    std::vector<id> objects(paths.begin(), paths.end());
    return objc::autorelease(NSArray::create(std::move(objects)).leak());
}
