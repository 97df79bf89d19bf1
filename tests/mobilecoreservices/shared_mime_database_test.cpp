// Reading the shared MIME-info database files: weights, case-sensitive
// globs, directory precedence, aliases and subclasses, and bad input.
#include <gtest/gtest.h>

#include "SharedMimeDatabase.h"

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace mobilecoreservices {
namespace {

namespace fs = std::filesystem;

// A scratch folder of database directories, removed afterwards.
class MimeFolders {
  public:
    MimeFolders()
        : root_(fs::temp_directory_path() /
                ("pv-mime-" + std::to_string(::getpid()) + "-" + std::to_string(counter_++))) {
        fs::create_directories(root_);
    }
    ~MimeFolders() {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }
    fs::path write(const std::string& dir, const std::string& file, const std::string& text) {
        fs::create_directories(root_ / dir);
        std::ofstream(root_ / dir / file) << text;
        return root_ / dir;
    }
    fs::path path(const std::string& dir) const { return root_ / dir; }

  private:
    static inline int counter_ = 0;
    fs::path root_;
};

std::vector<std::string> strings(const std::vector<std::string_view>& views) {
    return {views.begin(), views.end()};
}

TEST(SharedMimeDatabase, GlobsByWeightCaseAndShape) {
    MimeFolders folders;
    const auto dir = folders.write("a", "globs2",
                                   "# comment\n"
                                   "50:text/x-low:*.both\n"
                                   "80:text/x-high:*.both\n"
                                   "50:text/x-csrc:*.c:cs\n"
                                   "50:text/x-c++src:*.C:cs\n"
                                   "50:application/x-lower:*.MiXeD\n"
                                   "50:application/x-tgz:*.tar.gz\n"
                                   "50:text/x-makefile:makefile\n"
                                   "50:video/x-anim:*.anim[1-9j]\n"
                                   "50:application/x-trash:*~\n"
                                   "not a line\n"
                                   "x:text/bad-weight:*.bad\n"
                                   "50:no-slash:*.noslash\n"
                                   "50:text/x-crlf:*.crlf\r\n");
    const auto db = SharedMimeDatabase::load({dir});
    EXPECT_EQ(strings(db.mimeTypesForExtension("both")),
              (std::vector<std::string>{"text/x-high", "text/x-low"}));
    // Case-sensitive globs match only as written.
    EXPECT_EQ(strings(db.mimeTypesForExtension("c")), std::vector<std::string>{"text/x-csrc"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("C")), std::vector<std::string>{"text/x-c++src"});
    // The others match in any case.
    EXPECT_EQ(strings(db.mimeTypesForExtension("mixed")),
              std::vector<std::string>{"application/x-lower"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("MIXED")),
              std::vector<std::string>{"application/x-lower"});
    EXPECT_EQ(strings(db.extensionsForMimeType("application/x-lower")),
              std::vector<std::string>{"mixed"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("tar.gz")),
              std::vector<std::string>{"application/x-tgz"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("crlf")), std::vector<std::string>{"text/x-crlf"});
    // Whole names, wildcards and malformed lines name no extension.
    for (const char* none : {"makefile", "anim[1-9j]", "bad", "noslash", "", "~"}) {
        EXPECT_TRUE(db.mimeTypesForExtension(none).empty()) << none;
    }
    EXPECT_TRUE(db.extensionsForMimeType("video/x-anim").empty());
}

TEST(SharedMimeDatabase, EarlierDirectoriesTakePrecedence) {
    MimeFolders folders;
    const auto user = folders.write("user", "globs2",
                                    "50:application/x-user:*.same\n"
                                    "50:application/x-cleared:__NOGLOBS__\n"
                                    "50:application/x-cleared:*.kept\n");
    const auto system = folders.write("system", "globs2",
                                      "50:application/x-system:*.same\n"
                                      "50:application/x-cleared:*.dropped\n");
    const auto db = SharedMimeDatabase::load({user, system, folders.path("missing")});
    EXPECT_EQ(strings(db.mimeTypesForExtension("same")),
              (std::vector<std::string>{"application/x-user", "application/x-system"}));
    EXPECT_TRUE(db.mimeTypesForExtension("dropped").empty());
    EXPECT_EQ(strings(db.extensionsForMimeType("application/x-cleared")),
              std::vector<std::string>{"kept"});
}

TEST(SharedMimeDatabase, AliasesAndSubclasses) {
    MimeFolders folders;
    folders.write("a", "globs2", "50:application/zip:*.zip\n");
    folders.write("a", "aliases", "application/x-zip application/zip\nbroken-line\n");
    const auto dir = folders.write("a", "subclasses",
                                   "application/x-kml application/xml\n"
                                   "application/x-kml application/x-geo\n"
                                   "text/x-script text/plain\n"
                                   "too many fields here\n");
    const auto db = SharedMimeDatabase::load({dir});
    EXPECT_EQ(db.canonicalMimeType("application/x-zip"), "application/zip");
    EXPECT_EQ(db.canonicalMimeType("APPLICATION/X-ZIP"), "application/zip");
    EXPECT_EQ(db.canonicalMimeType("application/other"), "application/other");
    EXPECT_EQ(strings(db.extensionsForMimeType("application/x-zip")),
              std::vector<std::string>{"zip"});
    EXPECT_EQ(strings(db.parentsOf("application/x-kml")),
              (std::vector<std::string>{"application/xml", "application/x-geo"}));
    // Every text type is plain text, listed or not, and only once.
    EXPECT_EQ(strings(db.parentsOf("text/x-script")), std::vector<std::string>{"text/plain"});
    EXPECT_EQ(strings(db.parentsOf("text/x-unlisted")), std::vector<std::string>{"text/plain"});
    EXPECT_TRUE(db.parentsOf("text/plain").empty());
    EXPECT_TRUE(db.parentsOf("too").empty());
}

TEST(SharedMimeDatabase, MissingFilesLeaveItEmpty) {
    MimeFolders folders;
    const auto db = SharedMimeDatabase::load({folders.path("nowhere")});
    EXPECT_TRUE(db.empty());
    EXPECT_TRUE(db.mimeTypesForExtension("zip").empty());
    EXPECT_TRUE(SharedMimeDatabase::load({}).empty());
}

TEST(SharedMimeDatabase, SystemDirectoriesFollowXdgDataDirs) {
    const char* saved = std::getenv("XDG_DATA_DIRS");
    const std::string restore = saved ? saved : "";
    ::setenv("XDG_DATA_DIRS", "/opt/one::/opt/two/", 1);
    const auto dirs = SharedMimeDatabase::systemDirectories();
    ::unsetenv("XDG_DATA_DIRS");
    const auto defaults = SharedMimeDatabase::systemDirectories();
    if (saved) ::setenv("XDG_DATA_DIRS", restore.c_str(), 1);
    EXPECT_EQ(dirs, (std::vector<fs::path>{"/opt/one/mime", "/opt/two/mime"}));
    ASSERT_FALSE(defaults.empty());
    EXPECT_EQ(defaults.back(), fs::path("/usr/share/mime"));
}

}  // namespace
}  // namespace mobilecoreservices
