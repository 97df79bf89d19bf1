// Persistence of user defaults across instances and processes, also when killed or unreadable.
#include <gtest/gtest.h>

#include <Foundation/NSArray.h>
#include <Foundation/NSDate.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSUserDefaults.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>
#include <vector>

#include "foundation_helpers.h"
#include "scratch_folder.h"

namespace {

using namespace testsupport;
namespace fs = std::filesystem;

std::vector<std::string> filesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

struct DefaultsPersistence : PoolTest {
    ScratchFolder folder;
};

TEST_F(DefaultsPersistence, ValuesSurviveIntoANewInstanceWithTheirKinds) {
    const std::string file = folder / "Library/Preferences/app.plist";  // folders are created
    {
        auto defaults = NSUserDefaults::create(file);
        defaults->setBoolForKey(true, S("flag"));
        defaults->setIntegerForKey(12, S("count"));
        defaults->setDoubleForKey(0.5, S("ratio"));
        defaults->setObjectForKey(NSDate::create(100.25), S("when"));
        defaults->setObjectForKey(
            NSDictionary::create({{S("list"), NSArray::create({S("a"), S("b")}).get()}}),
            S("nested"));
        defaults->setObjectForKey(S("gone"), S("removed"));
        defaults->removeObjectForKey(S("removed"));
        EXPECT_TRUE(defaults->synchronize());
        EXPECT_TRUE(defaults->synchronize());  // nothing new: still on disk
    }
    auto reloaded = NSUserDefaults::create(file);
    auto* flag = objc::cast<NSNumber>(reloaded->objectForKey(S("flag")));
    ASSERT_NE(flag, nullptr);
    EXPECT_TRUE(flag->isBoolean());
    EXPECT_EQ(reloaded->integerForKey(S("count")), 12);
    EXPECT_EQ(reloaded->doubleForKey(S("ratio")), 0.5);
    EXPECT_TRUE(NSDate::create(100.25)->isEqual(reloaded->objectForKey(S("when"))));
    EXPECT_EQ(reloaded->objectForKey(S("removed")), nullptr);
    auto* nested = reloaded->dictionaryForKey(S("nested"));
    ASSERT_NE(nested, nullptr);
    EXPECT_EQ(objc::cast<NSArray>(nested->objectForKey(S("list")))->count(), 2u);
    // Only the file and the writers' lock file: no temporary files are left behind.
    EXPECT_EQ(filesIn(folder / "Library/Preferences"),
              (std::vector<std::string>{"app.plist", "app.plist.lock"}));
}

// Polls the file until the key holds the value, for up to 5 s.
bool appearsOnDisk(const std::string& file, NSString* key, NSObject* text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (std::chrono::steady_clock::now() < deadline) {
        objc::AutoreleasePool pool;
        if (fs::exists(file) && text->isEqual(NSUserDefaults::create(file)->objectForKey(key))) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

TEST_F(DefaultsPersistence, ChangesReachTheDiskSoonWithoutSynchronize) {
    const std::string file = folder / "app.plist";
    auto defaults = NSUserDefaults::create(file);
    for (int i = 0; i <= 100; ++i) defaults->setIntegerForKey(i, S("burst"));
    EXPECT_TRUE(appearsOnDisk(file, S("burst"), NSNumber::create(100).get()));
}

TEST_F(DefaultsPersistence, ChangesThatCannotBeSavedStayPendingUntilTheFolderCanBeWritten) {
    // A file where the folder belongs stops root as well as anybody.
    folder.write("Preferences", "not a folder");
    const std::string file = folder / "Preferences/app.plist";
    auto defaults = NSUserDefaults::create(file);
    defaults->setObjectForKey(S("one"), S("first"));
    EXPECT_FALSE(defaults->synchronize());
    EXPECT_NE(defaults->lastSaveError().find("Preferences"), std::string::npos)
        << defaults->lastSaveError();
    defaults->setObjectForKey(S("two"), S("second"));
    fs::remove(folder / "Preferences");
    // The writer tries again by itself, with everything that is pending.
    EXPECT_TRUE(appearsOnDisk(file, S("second"), S("two")));
    EXPECT_TRUE(S("one")->isEqual(NSUserDefaults::create(file)->objectForKey(S("first"))));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(defaults->lastSaveError(), "");
}

TEST_F(DefaultsPersistence, UnreadableFilesAreKeptAsideAndDefaultsStartEmpty) {
    const std::string file = folder / "app.plist";
    const std::vector<std::string> broken = {
        "not a property list at all",
        R"(<?xml version="1.0"?><plist><array><string>x</string></array></plist>)", "",
        // A key holding U+0000 aborted every start inside libplist.
        corpusFile("defaults_file/abort-libplist-utf16-key-nul.plist")};
    for (const auto& bytes : broken) {
        folder.write("app.plist", bytes);
        auto defaults = NSUserDefaults::create(file);
        EXPECT_EQ(defaults->dictionaryRepresentation()->count(), 0u);
        EXPECT_FALSE(fs::exists(file));
        defaults->setObjectForKey(S("fresh"), S("k"));
        EXPECT_TRUE(defaults->synchronize());
    }
    // Every broken file is still there, byte for byte, under its own name.
    std::vector<std::string> kept;
    for (const auto& name : filesIn(folder.path())) {
        if (name.rfind("app.plist.unreadable-", 0) == 0) kept.push_back(readFile(folder / name));
    }
    std::sort(kept.begin(), kept.end());
    auto expected = broken;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(kept, expected);
    EXPECT_TRUE(S("fresh")->isEqual(NSUserDefaults::create(file)->objectForKey(S("k"))));
}

// The helper program sits beside this test program.
std::string helperPath() {
    return (fs::read_symlink("/proc/self/exe").parent_path() / "defaults_writer").string();
}

struct Child {
    pid_t pid = -1;
    int output = -1;  // its standard output
};

Child spawn(const std::vector<std::string>& args) {
    int fds[2];
    EXPECT_EQ(::pipe2(fds, O_CLOEXEC), 0);
    std::vector<char*> argv;
    const std::string helper = helperPath();
    argv.push_back(const_cast<char*>(helper.c_str()));
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(fds[1], STDOUT_FILENO);
        ::execv(helper.c_str(), argv.data());
        ::_exit(127);
    }
    ::close(fds[1]);
    return Child{pid, fds[0]};
}

int waitFor(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return status;
}

TEST_F(DefaultsPersistence, ProcessesSharingAFileKeepEachOthersChanges) {
    const std::string file = folder / "app.plist";
    // This process read the file before the others changed it.
    auto mine = NSUserDefaults::create(file);
    mine->setObjectForKey(S("x"), S("doomed"));
    mine->setObjectForKey(S("y"), S("kept"));
    ASSERT_TRUE(mine->synchronize());
    constexpr int kWriters = 8;
    std::vector<Child> children;
    for (int i = 0; i < kWriters; ++i) {
        std::vector<std::string> args{file, "set", "key" + std::to_string(i) + "=v"};
        if (i == 0) args.push_back("-doomed");
        children.push_back(spawn(args));
    }
    for (const Child& child : children) {
        const int status = waitFor(child.pid);
        ::close(child.output);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    // Writing this process's own change merges too, taking in the others' values.
    mine->setObjectForKey(S("z"), S("own"));
    ASSERT_TRUE(mine->synchronize());
    const auto fresh = NSUserDefaults::create(file);
    for (NSUserDefaults* defaults : {mine.get(), fresh.get()}) {
        for (int i = 0; i < kWriters; ++i) {
            const std::string key = "key" + std::to_string(i);
            EXPECT_TRUE(S("v")->isEqual(defaults->objectForKey(S(key.c_str())))) << key;
        }
        EXPECT_EQ(defaults->objectForKey(S("doomed")), nullptr);
        EXPECT_TRUE(S("y")->isEqual(defaults->objectForKey(S("kept"))));
        EXPECT_TRUE(S("z")->isEqual(defaults->objectForKey(S("own"))));
    }
}

TEST_F(DefaultsPersistence, AProcessKilledAtAnyMomentLeavesEveryAcknowledgedValue) {
    const std::string file = folder / "app.plist";
    std::mt19937 random(std::random_device{}());
    long lastAcknowledged = 0;
    for (int round = 0; round < 8; ++round) {
        objc::AutoreleasePool turn;
        Child child = spawn({file, "loop"});
        // Once it writes (its first acknowledgement), let it run a random while, then kill it.
        std::string received;
        const auto readSome = [&](int timeoutMs) {
            pollfd p{child.output, POLLIN, 0};
            if (::poll(&p, 1, timeoutMs) <= 0) return false;
            char buffer[4096];
            const ssize_t n = ::read(child.output, buffer, sizeof buffer);
            if (n > 0) received.append(buffer, static_cast<std::size_t>(n));
            return n > 0;
        };
        const auto started = std::chrono::steady_clock::now();
        while (received.find('\n') == std::string::npos &&
               std::chrono::steady_clock::now() - started < std::chrono::seconds(20)) {
            readSome(50);
        }
        const auto until =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(random() % 120);
        while (std::chrono::steady_clock::now() < until) readSome(2);
        ::kill(child.pid, SIGKILL);
        // Lines that arrived before the kill count; a partial last line does not.
        char buffer[4096];
        for (ssize_t n; (n = ::read(child.output, buffer, sizeof buffer)) > 0;) {
            received.append(buffer, static_cast<std::size_t>(n));
        }
        ::close(child.output);
        const int status = waitFor(child.pid);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child ended by itself: " << status;
        if (const auto end = received.rfind('\n'); end != std::string::npos)
            lastAcknowledged = std::stol(received.substr(received.rfind('\n', end - 1) + 1));
        auto defaults = NSUserDefaults::create(file);
        EXPECT_GE(defaults->integerForKey(S("counter")), lastAcknowledged) << "round " << round;
        EXPECT_NE(defaults->stringForKey(S("padding")), nullptr) << "round " << round;
        // The file always loads: nothing was set aside as unreadable.
        for (const auto& name : filesIn(folder.path())) {
            EXPECT_EQ(name.find("unreadable"), std::string::npos) << name;
        }
    }
    EXPECT_GT(lastAcknowledged, 0) << "the child never acknowledged a write";
}

}  // namespace
