// Made-up shared MIME-info databases: weights, globs, precedence, aliases, subclasses, bad input.
#include <gtest/gtest.h>

#include "shared_mime_database.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include "scratch_folder.h"

namespace mobilecoreservices {
namespace {

namespace fs = std::filesystem;

class SharedMimeDatabaseTest : public ::testing::Test {
  protected:
    fs::path write(const std::string& dir, const std::string& file, const std::string& text) {
        return fs::path(testsupport::writeFile(root_ / dir / file, text)).parent_path();
    }
    static std::vector<std::string> strings(const std::vector<std::string_view>& views) {
        return {views.begin(), views.end()};
    }

    const testsupport::ScratchFolder root_{"pv-mime"};
};

TEST_F(SharedMimeDatabaseTest, GlobsByWeightCaseAndShape) {
    const auto db = SharedMimeDatabase::load({write("a", "globs2",
                                                    "# comment\n50:text/x-low:*.both\n"
                                                    "80:text/x-high:*.both\n"
                                                    "50:text/x-csrc:*.c:cs\n"
                                                    "50:application/x-lower:*.MiXeD\n"
                                                    "50:application/x-tgz:*.tar.gz\n"
                                                    "50:text/x-makefile:makefile\n"
                                                    "50:video/x-anim:*.anim[1-9j]\n"
                                                    "not a line\nx:text/bad-weight:*.bad\n"
                                                    "50:text/x-crlf:*.crlf\r\n")});
    EXPECT_EQ(strings(db.mimeTypesForExtension("both")),
              (std::vector<std::string>{"text/x-high", "text/x-low"}));
    EXPECT_EQ(strings(db.mimeTypesForExtension("c")), std::vector<std::string>{"text/x-csrc"});
    EXPECT_TRUE(db.mimeTypesForExtension("C").empty());  // case-sensitive: only as written
    EXPECT_EQ(strings(db.mimeTypesForExtension("MIXED")),
              std::vector<std::string>{"application/x-lower"});
    EXPECT_EQ(strings(db.extensionsForMimeType("application/x-lower")),
              std::vector<std::string>{"mixed"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("tar.gz")),
              std::vector<std::string>{"application/x-tgz"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("crlf")), std::vector<std::string>{"text/x-crlf"});
    // Whole names, wildcards and malformed lines name no extension.
    for (const char* none : {"makefile", "anim[1-9j]", "bad", ""}) {
        EXPECT_TRUE(db.mimeTypesForExtension(none).empty()) << none;
    }
}

TEST_F(SharedMimeDatabaseTest, EarlierDirectoriesTakePrecedenceAndMissingOnesAreSkipped) {
    const auto user = write("user", "globs2",
                            "50:application/x-user:*.same\n"
                            "50:application/x-cleared:__NOGLOBS__\n"
                            "50:application/x-cleared:*.kept\n");
    const auto system = write("system", "globs2",
                              "50:application/x-system:*.same\n"
                              "50:application/x-cleared:*.dropped\n");
    const auto db = SharedMimeDatabase::load({user, system, root_ / "missing"});
    EXPECT_EQ(strings(db.mimeTypesForExtension("same")),
              (std::vector<std::string>{"application/x-user", "application/x-system"}));
    EXPECT_TRUE(db.mimeTypesForExtension("dropped").empty());
    EXPECT_TRUE(SharedMimeDatabase::load({root_ / "missing"}).empty());
}

TEST_F(SharedMimeDatabaseTest, AliasesAndSubclasses) {
    write("a", "globs2", "50:application/zip:*.zip\n");
    write("a", "aliases", "application/x-zip application/zip\nbroken-line\n");
    const auto db = SharedMimeDatabase::load({write("a", "subclasses",
                                                    "application/x-kml application/xml\n"
                                                    "application/x-kml application/x-geo\n"
                                                    "too many fields here\n")});
    EXPECT_EQ(db.canonicalMimeType("APPLICATION/X-ZIP"), "application/zip");
    EXPECT_EQ(strings(db.extensionsForMimeType("application/x-zip")),
              std::vector<std::string>{"zip"});
    EXPECT_EQ(strings(db.parentsOf("application/x-kml")),
              (std::vector<std::string>{"application/xml", "application/x-geo"}));
    // Every text type is plain text, listed or not.
    EXPECT_EQ(strings(db.parentsOf("text/x-unlisted")), std::vector<std::string>{"text/plain"});
    EXPECT_TRUE(db.parentsOf("text/plain").empty());
    EXPECT_TRUE(db.parentsOf("too").empty());
}

}  // namespace
}  // namespace mobilecoreservices
