// NSData and NSMutableData: contents, equality, ranges, files (atomic replacement) and URLs.
#include <gtest/gtest.h>

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using namespace testsupport;

namespace fs = std::filesystem;

std::string contents(NSData* data) {
    return std::string(data->view());
}

class DataFiles : public PoolTest {
  protected:
    objc::Strong<NSString> pathOf(const std::string& name) const {
        return NSString::create((folder_ / name).string());
    }

    testsupport::ScratchFolder folder_;
};

TEST(Data, SubdataChecksItsRange) {
    objc::AutoreleasePool pool;
    auto data = NSData::create(std::string_view("abcdef"));
    EXPECT_EQ(contents(data->subdataWithRange(NSMakeRange(2, 3))), "cde");
    EXPECT_EQ(contents(data->subdataWithRange(NSMakeRange(6, 0))), "");
    EXPECT_EQ(raisedName([&] { data->subdataWithRange(NSMakeRange(4, 3)); }), "NSRangeException");
    EXPECT_EQ(raisedName([&] { data->subdataWithRange(NSMakeRange(1, NSUIntegerMax)); }),
              "NSRangeException");
}

TEST_F(DataFiles, RoundTripsThroughFiles) {
    std::string bytes(70000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31);
    auto data = NSData::create(std::string_view(bytes));
    for (const bool atomically : {false, true}) {
        auto path = pathOf(atomically ? "atomic.bin" : "plain.bin");
        ASSERT_TRUE(data->writeToFileAtomically(path, atomically));
        NSData* loaded = NSData::dataWithContentsOfFile(path);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(loaded->isEqualToData(data));
        // Writing again replaces the contents rather than appending to them.
        ASSERT_TRUE(
            NSData::create(std::string_view("short"))->writeToFileAtomically(path, atomically));
        EXPECT_EQ(contents(NSData::dataWithContentsOfFile(path)), "short");
    }
    EXPECT_EQ(NSData::dataWithContentsOfFile(pathOf("missing")), nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfFile(NSString::create(folder_.path())), nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfFile(nullptr), nullptr);
    EXPECT_FALSE(data->writeToFileAtomically(pathOf("no/such/folder/file"), true));
    EXPECT_FALSE(data->writeToFileAtomically(pathOf("no/such/folder/file"), false));
}

TEST_F(DataFiles, AtomicWritesNeverShowAPartialFileAndLeaveNoTemporary) {
    const std::string first(256 * 1024, 'a');
    const std::string second(256 * 1024, 'b');
    const std::string target = folder_ / "settings.plist";
    {
        objc::AutoreleasePool pool;
        ASSERT_TRUE(NSData::create(std::string_view(first))
                        ->writeToFileAtomically(pathOf("settings.plist"), true));
    }
    std::atomic<bool> done{false};
    std::atomic<int> torn{0};
    std::thread reader([&] {
        while (!done.load()) {
            const std::string seen = testsupport::readFile(target);
            if (seen != first && seen != second) ++torn;
        }
    });
    {
        objc::AutoreleasePool pool;
        auto path = pathOf("settings.plist");
        for (int i = 0; i < 20; ++i) {
            auto data = NSData::create(std::string_view(i % 2 == 0 ? second : first));
            ASSERT_TRUE(data->writeToFileAtomically(path, true));
        }
    }
    done = true;
    reader.join();
    EXPECT_EQ(torn.load(), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()), 1);
    EXPECT_EQ(testsupport::readFile(target), first);
}

TEST_F(DataFiles, LoadsFileURLsAndAsksTheLoaderForOthers) {
    auto path = pathOf("page.txt");
    ASSERT_TRUE(NSData::create(std::string_view("local"))->writeToFileAtomically(path, false));
    EXPECT_EQ(contents(NSData::dataWithContentsOfURL(NSURL::fileURLWithPath(path))), "local");
    EXPECT_EQ(NSData::dataWithContentsOfURL(nullptr), nullptr);
    NSURL* remote = NSURL::URLWithString(NSSTR("http://example.invalid/page"));
    NSURL* asked = nullptr;
    foundation::setURLLoader([&](NSURL* url) -> std::optional<std::vector<std::uint8_t>> {
        asked = url;
        return std::vector<std::uint8_t>{'w', 'e', 'b'};
    });
    EXPECT_EQ(contents(NSData::dataWithContentsOfURL(remote)), "web");
    EXPECT_EQ(asked, remote);
    foundation::setURLLoader(nullptr);
    EXPECT_EQ(NSData::dataWithContentsOfURL(remote), nullptr);
}

}  // namespace
