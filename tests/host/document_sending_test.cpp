// Sending documents into a chat kept in SQLite, the copy engine, and the store itself.
#include "chat_database.h"
#include "host_fixture.h"

#include <Host/WAChatSessionViewController.h>
#include <Host/WADocumentAttachment.h>
#include <Host/media_copy.h>

#include <Foundation/NSBundle.h>
#include <Foundation/NSURL.h>
#include <Foundation/NSUserDefaults.h>

#include <UIKit/UIDocumentPickerViewController.h>

#include <objc/exception.h>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

using testsupport::readFile;
using testsupport::writeFile;

// Bytes that catch a copy that drops, repeats or reorders blocks.
std::string pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 7919 + i / 4096) & 0xff);
    return bytes;
}

// Holds a queue's work until released (at the latest when it goes).
class HeldQueue {
  public:
    HeldQueue() : queue_(dispatch_queue_create("held", DISPATCH_QUEUE_SERIAL)) {
        dispatch_async(queue_, [held = release_.get_future().share()] { held.wait(); });
    }
    ~HeldQueue() {
        release();
        dispatch_release(queue_);
    }
    HeldQueue(const HeldQueue&) = delete;
    HeldQueue& operator=(const HeldQueue&) = delete;
    dispatch_queue_t get() const { return queue_; }
    void release() {
        if (!released_) release_.set_value();
        released_ = true;
    }

  private:
    dispatch_queue_t queue_;
    std::promise<void> release_;
    bool released_ = false;
};

class DocumentSendingTest : public testsupport::HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        const fs::path& home = testsupport::container();
        database = home / "Documents" /
                   ("chats-" + std::to_string(::getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".sqlite");
        sqlite = std::make_shared<host::SqliteChatStore>(database.string());
        chat = WAChatSessionViewController::create("Bob", sqlite);
        inbox = UIDocumentPickerViewController::inboxFolder();
        outside = scratch_.path();
    }
    void TearDown() override {
        chat.reset();
        sqlite.reset();
        std::error_code error;
        fs::remove_all(inbox, error);
        for (const char* suffix : {"", "-wal", "-shm"})
            fs::remove(database.string() + suffix, error);
        HostTest::TearDown();
    }
    static objc::Strong<WADocumentAttachment> attach(const fs::path& path, bool transfer) {
        return WADocumentAttachment::create(NSURL::fileURL(path.string()).get(), transfer);
    }
    void send(const fs::path& path, bool transfer) {
        chat->sendDocumentAttachment(attach(path, transfer).get());
        drain();
    }
    host::Message sendDirectly(const fs::path& path, bool transfer) {
        return host::sendDocument(*sqlite, "Bob", *attach(path, transfer),
                                  testsupport::container());
    }
    std::vector<host::Message> sent() const { return sqlite->messages("Bob"); }
    // Other tests' stores share the folder: compare counts.
    std::size_t mediaFiles() const {
        std::error_code error;
        if (!fs::exists(mediaFolder(), error)) return 0;
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(mediaFolder()), fs::directory_iterator()));
    }
    fs::path mediaFolder() const {
        return testsupport::container() / "Library" / "Media" /
               std::to_string(sqlite->chatId("Bob"));
    }

    fs::path database;
    std::shared_ptr<host::SqliteChatStore> sqlite;
    objc::Strong<WAChatSessionViewController> chat;
    fs::path inbox;
    const testsupport::ScratchFolder scratch_{"host-outside"};
    fs::path outside;
};

TEST_F(DocumentSendingTest, AnInboxFileHandedOverIsMovedWithItsBytes) {
    const std::string bytes = pattern(3 << 20);
    writeFile(inbox / "Quarterly.pdf", bytes);
    send(inbox / "Quarterly.pdf", true);
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_FALSE(fs::exists(inbox / "Quarterly.pdf"));
    EXPECT_EQ(fs::path(messages[0].filePath).parent_path(), mediaFolder());
    EXPECT_EQ(readFile(messages[0].filePath), bytes);
    EXPECT_EQ(messages[0].text, "Quarterly.pdf");
    EXPECT_EQ(messages[0].fileSize, bytes.size());
    // Not handed over, an Inbox file is copied.
    writeFile(inbox / "draft.pdf", "draft");
    send(inbox / "draft.pdf", false);
    EXPECT_EQ(readFile(inbox / "draft.pdf"), "draft");
    EXPECT_EQ(readFile(sent().back().filePath), "draft");
}

TEST_F(DocumentSendingTest, AFileOutsideTheContainerIsCopiedEvenWhenHandedOver) {
    const std::string bytes = pattern((5 << 20) + 17);
    for (const bool transfer : {false, true}) {
        const fs::path original = outside / (transfer ? "handed.pdf" : "kept.pdf");
        writeFile(original, bytes);
        send(original, transfer);
        EXPECT_EQ(readFile(original), bytes) << "transfer " << transfer;
    }
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 2u);
    for (const host::Message& m : messages) {
        EXPECT_EQ(fs::path(m.filePath).parent_path(), mediaFolder());
        EXPECT_EQ(readFile(m.filePath), bytes);
    }
}

// Only the picker's Inbox copies are the host's: a handed-over file elsewhere stays.
TEST_F(DocumentSendingTest, AHandedOverContainerFileOutsideTheInboxIsCopied) {
    const fs::path& home = testsupport::container();
    writeFile(home / "Documents" / "notes.txt", "my notes");
    NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
    defaults->setBoolForKey(true, NSString::create("documentSendingTest").get());
    ASSERT_TRUE(defaults->synchronize());
    const fs::path settings = home / "Library" / "Preferences" /
                              (NSBundle::mainBundle()->bundleIdentifier()->utf8() + ".plist");
    ASSERT_TRUE(fs::exists(settings));
    struct stat live {};
    ASSERT_EQ(::stat(database.c_str(), &live), 0);

    for (const fs::path& original : {home / "Documents" / "notes.txt", settings, database}) {
        const std::string before = readFile(original);
        const host::Message message = sendDirectly(original, true);
        EXPECT_EQ(readFile(original), before) << original;
        EXPECT_EQ(readFile(message.filePath), before) << original;
    }
    struct stat after {};
    ASSERT_EQ(::stat(database.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, live.st_ino);
    sqlite = std::make_shared<host::SqliteChatStore>(database.string());
    EXPECT_EQ(sent().size(), 3u);
    EXPECT_TRUE(defaults->boolForKey(NSString::create("documentSendingTest").get()));
    defaults->removeObjectForKey(NSString::create("documentSendingTest").get());
    fs::remove(home / "Documents" / "notes.txt");
}

// Only the data is copied: the copy has the original's holes, also at the end.
TEST_F(DocumentSendingTest, ASparseFileStaysSparse) {
    const fs::path original = outside / "disk.img";
    const std::string data = pattern(64 << 10);
    {
        std::ofstream out(original, std::ios::binary);
        out.seekp(1 << 20);
        out << data;
    }
    fs::resize_file(original, 4 << 20);
    const host::Message message = sendDirectly(original, false);
    EXPECT_EQ(message.fileSize, std::uint64_t{4} << 20);
    EXPECT_EQ(readFile(message.filePath), readFile(original));
    struct stat source {
    }, copy{};
    ASSERT_EQ(::stat(original.c_str(), &source), 0);
    ASSERT_EQ(::stat(message.filePath.c_str(), &copy), 0);
    EXPECT_LT(source.st_blocks, 4 << 11);
    EXPECT_LE(copy.st_blocks, source.st_blocks);
}

TEST_F(DocumentSendingTest, RowsSurviveReopeningTheStore) {
    for (const auto& [name, bytes] :
         {std::pair<const char*, std::string>{"Budget.pdf", std::string(4321, 'b')},
          {"notes.zzqx", "?"},
          {"archive.zip", "PK"}}) {
        writeFile(outside / name, bytes);
        send(outside / name, false);
    }
    chat.reset();
    sqlite = std::make_shared<host::SqliteChatStore>(database.string());

    EXPECT_EQ(sqlite->chatNames(), std::vector<std::string>{"Bob"});
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].kind, host::Message::Kind::Document);
    EXPECT_EQ(messages[0].text, "Budget.pdf");
    EXPECT_EQ(messages[0].fileSize, 4321u);
    EXPECT_EQ(messages[0].uniformType, "com.adobe.pdf");
    EXPECT_EQ(messages[0].mimeType, "application/pdf");
    EXPECT_GT(messages[0].date, 0.0);
    EXPECT_TRUE(fs::exists(messages[0].filePath));
    // An extension nobody claims: a dynamic type, and no MIME type.
    EXPECT_EQ(messages[1].uniformType.rfind("dyn.", 0), 0u) << messages[1].uniformType;
    EXPECT_EQ(messages[1].mimeType, std::nullopt);
    EXPECT_EQ(messages[2].uniformType, "public.zip-archive");
    EXPECT_EQ(messages[2].mimeType, "application/zip");
}

TEST_F(DocumentSendingTest, TheCopyLeavesTheMainThreadAndTheMessageGoesFromSendingToSent) {
    const std::string bytes = pattern(1 << 20);
    writeFile(outside / "held.pdf", bytes);
    const std::size_t before = mediaFiles();
    HeldQueue queue;
    chat->setSendQueue(queue.get());
    auto attachment = attach(outside / "held.pdf", false);
    // Returns while the copy cannot even start.
    chat->sendDocumentAttachment(attachment.get());
    attachment.reset();
    auto messages = sent();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].state, host::Message::State::Sending);
    EXPECT_EQ(messages[0].text, "held.pdf");
    EXPECT_EQ(messages[0].fileSize, bytes.size());
    EXPECT_EQ(messages[0].uniformType, "com.adobe.pdf");
    EXPECT_TRUE(messages[0].filePath.empty());
    EXPECT_EQ(mediaFiles(), before);
    // Another store opened meanwhile leaves a live process's send alone.
    EXPECT_EQ(host::SqliteChatStore(database.string()).messages("Bob")[0].state,
              host::Message::State::Sending);

    queue.release();
    drain();
    messages = sent();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].state, host::Message::State::Sent);
    EXPECT_EQ(fs::path(messages[0].filePath).parent_path(), mediaFolder());
    EXPECT_EQ(readFile(messages[0].filePath), bytes);
    EXPECT_EQ(readFile(outside / "held.pdf"), bytes);
}

TEST_F(DocumentSendingTest, OpeningFailsCutShortSendsAndMigratesFirstVersionFiles) {
    host::Message cut = host::Message::document("cut.pdf", {}, 10);
    cut.state = host::Message::State::Sending;
    const std::int64_t id = sqlite->append("Bob", cut);
    cut.text = "ours.pdf";
    sqlite->append("Bob", cut);
    ASSERT_TRUE(testsupport::runSql(database,
                                    "UPDATE messages SET sender_pid = " + std::to_string(INT_MAX) +
                                        " WHERE id = " + std::to_string(id)));
    sqlite = std::make_shared<host::SqliteChatStore>(database.string());
    auto messages = sent();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].state, host::Message::State::Failed);
    EXPECT_FALSE(messages[0].failure.empty());
    EXPECT_EQ(messages[1].state, host::Message::State::Sending) << "this process may still send it";
    // A first-version database is migrated and its rows are sent.
    sqlite.reset();
    chat.reset();
    for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(database.string() + suffix);
    ASSERT_TRUE(testsupport::runSql(
        database,
        "CREATE TABLE chats (id INTEGER PRIMARY KEY, contact_name TEXT NOT NULL UNIQUE);"
        "CREATE TABLE messages (id INTEGER PRIMARY KEY, chat_id INTEGER NOT NULL "
        "REFERENCES chats(id), kind INTEGER NOT NULL, outgoing INTEGER NOT NULL, text TEXT, "
        "file_name TEXT, size_in_bytes INTEGER NOT NULL DEFAULT 0, uniform_type TEXT, "
        "mime_type TEXT, media_path TEXT, date REAL NOT NULL);"
        "INSERT INTO chats VALUES (1, 'Bob');"
        "INSERT INTO messages VALUES (1, 1, 1, 1, NULL, 'old.pdf', 3, 'com.adobe.pdf', "
        "'application/pdf', '/media/old.pdf', 1.5);"));
    // Read-only, the old file is read as it is.
    auto old = host::SqliteChatStore(database.string(), host::SqliteChatStore::Access::ReadOnly)
                   .messages("Bob");
    ASSERT_EQ(old.size(), 1u);
    EXPECT_EQ(old[0].state, host::Message::State::Sent);

    sqlite = std::make_shared<host::SqliteChatStore>(database.string());
    sqlite->append("Bob", host::Message::outgoingText("new"));
    sqlite = std::make_shared<host::SqliteChatStore>(database.string());
    messages = sent();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].text, "old.pdf");
    EXPECT_EQ(messages[0].filePath, "/media/old.pdf");
    EXPECT_EQ(messages[0].state, host::Message::State::Sent);
    EXPECT_EQ(messages[1].text, "new");
}

TEST_F(DocumentSendingTest, TwoStoresOnOneFileWaitForEachOtherAndLoseNothing) {
    // A second app starting while the first writes waits for the lock.
    const fs::path fresh = database.string() + "-fresh";
    sqlite3* holder = nullptr;
    ASSERT_EQ(sqlite3_open(fresh.c_str(), &holder), SQLITE_OK);
    ASSERT_EQ(
        sqlite3_exec(holder, "BEGIN EXCLUSIVE; CREATE TABLE held (x);", nullptr, nullptr, nullptr),
        SQLITE_OK);
    std::string openError;
    std::thread opener([&] {
        try {
            host::SqliteChatStore store(fresh.string());
        } catch (const std::exception& error) {
            openError = error.what();
        }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    sqlite3_exec(holder, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(holder);
    opener.join();
    EXPECT_EQ(openError, "");
    for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(fresh.string() + suffix);

    // Two writers: every message lands, and a chat both make at once is one.
    constexpr int kEach = 150;
    auto other = std::make_shared<host::SqliteChatStore>(database.string());
    std::vector<std::string> errors(2);
    const auto write = [&](host::ChatStore& store, int writer) {
        try {
            for (int i = 0; i < kEach; ++i) {
                store.chatId("Chat " + std::to_string(i));
                store.append("Shared", host::Message::outgoingText(std::to_string(writer)));
            }
        } catch (const std::exception& error) {
            errors[writer] = error.what();
        }
    };
    std::thread first(write, std::ref(*sqlite), 0);
    std::thread second(write, std::ref(*other), 1);
    first.join();
    second.join();
    EXPECT_EQ(errors, (std::vector<std::string>{"", ""}));
    EXPECT_EQ(sqlite->messages("Shared").size(), 2u * kEach);
    EXPECT_EQ(other->chatNames().size(), kEach + 2u);  // Bob, the chats, Shared
}

TEST_F(DocumentSendingTest, AFailedCopyFailsWithTheReasonAndLeavesNoPartialFile) {
    const std::size_t before = mediaFiles();
    writeFile(inbox / "gone.pdf", "x");
    auto attachment = attach(inbox / "gone.pdf", true);
    fs::remove(inbox / "gone.pdf");
    ::testing::internal::CaptureStderr();
    chat->sendDocumentAttachment(attachment.get());
    send(outside / "never.pdf", false);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("gone.pdf"), std::string::npos) << log;
    EXPECT_NE(log.find("never.pdf"), std::string::npos) << log;
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 2u);
    for (const host::Message& m : messages) {
        EXPECT_NE(m.failure.find("No such file"), std::string::npos) << m.failure;
        EXPECT_TRUE(m.filePath.empty());
    }
    // Only regular files are copied: the others never end or are no document.
    fs::create_directories(outside / "folder.pdf");
    ASSERT_EQ(::mkfifo((outside / "pipe.pdf").c_str(), 0644), 0);
    const struct {
        fs::path path;
        std::errc code;
        const char* kind;
    } refused[] = {{outside / "folder.pdf", std::errc::is_a_directory, "a folder"},
                   {outside / "pipe.pdf", std::errc::invalid_argument, "a FIFO"},
                   {"/dev/zero", std::errc::no_such_device, "a device"}};
    const fs::path unreadable = outside / "secret.pdf";
    writeFile(unreadable, "secret");
    fs::permissions(unreadable, fs::perms::none);
    for (const auto& file : refused) {
        try {
            sendDirectly(file.path, true);
            ADD_FAILURE() << file.path << " was sent";
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::make_error_code(file.code)) << error.what();
            EXPECT_NE(std::string(error.what()).find(file.kind), std::string::npos) << error.what();
        }
    }
    ::testing::internal::CaptureStderr();
    if (::access(unreadable.c_str(), R_OK) != 0) send(unreadable, false);  // not as root
    ::testing::internal::GetCapturedStderr();
    for (const host::Message& m : sent()) EXPECT_EQ(m.state, host::Message::State::Failed);
    EXPECT_EQ(mediaFiles(), before);
    EXPECT_TRUE(fs::exists(outside / "pipe.pdf"));
}

// A stalled source fails after the time-out instead of holding the sender; one that ends is whole.
TEST(MediaCopyTest, AStalledSourceTimesOut) {
    int stalled[2], ending[2];
    ASSERT_EQ(::pipe2(stalled, O_CLOEXEC), 0);
    ASSERT_EQ(::pipe2(ending, O_CLOEXEC), 0);
    const int sink = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(sink, 0);
    ASSERT_EQ(::write(stalled[1], "abc", 3), 3);  // some data, then none
    try {
        host::copyToEnd(stalled[0], sink, std::chrono::milliseconds(50));
        ADD_FAILURE() << "a stalled pipe was copied";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::make_error_code(std::errc::timed_out)) << error.what();
    }
    ASSERT_EQ(::write(ending[1], "abcdef", 6), 6);
    ::close(ending[1]);
    std::uint64_t reported = 0;
    EXPECT_EQ(host::copyToEnd(ending[0], sink, std::chrono::milliseconds(50),
                              [&](std::uint64_t copied, std::uint64_t) { reported = copied; }),
              6u);
    EXPECT_EQ(reported, 6u);
    for (const int fd : {stalled[0], stalled[1], ending[0], sink}) ::close(fd);
}

// Same names get distinct media files; a killed run's partial copy goes at the next start.
TEST_F(DocumentSendingTest, SameNamesGetDistinctMediaFilesAndLeftoversGoAtStartUp) {
    for (const char* folder : {"a", "b"}) {
        writeFile(outside / folder / "same.pdf", folder);
        send(outside / folder / "same.pdf", false);
    }
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_NE(messages[0].filePath, messages[1].filePath);
    EXPECT_EQ(messages[1].text, "same.pdf");
    EXPECT_EQ(readFile(messages[0].filePath), "a");
    EXPECT_EQ(readFile(messages[1].filePath), "b");
    const fs::path leftover = mediaFolder() / (std::string(host::kPartialCopyPrefix) + "0123abcd");
    writeFile(leftover, std::string(1000, 'p'));
    host::removeLeftoverCopies(testsupport::container() / "Library" / "Media");
    EXPECT_FALSE(fs::exists(leftover));
    EXPECT_EQ(readFile(messages[0].filePath), "a");
}

// A store whose writes fail, as a full disk would make them.
class FailingStore final : public host::ChatStore {
  public:
    std::vector<std::string> chatNames() const override { return memory.chatNames(); }
    bool hasChat(const std::string& name) const override { return memory.hasChat(name); }
    void addChat(const std::string& name) override { memory.addChat(name); }
    std::vector<host::Message> messages(const std::string& chat) const override {
        return memory.messages(chat);
    }
    std::int64_t append(const std::string&, host::Message) override {
        objc::raise(objc::exception_name::InternalInconsistency, "database or disk is full");
    }
    void update(const host::Message&) override {
        objc::raise(objc::exception_name::InternalInconsistency, "database or disk is full");
    }
    std::int64_t chatId(const std::string& name) override { return memory.chatId(name) + 1000; }

    host::MemoryChatStore memory;
};

TEST_F(DocumentSendingTest, AFailedWriteRecordsNothingAndKeepsTheFile) {
    FailingStore failing;
    const fs::path media =
        testsupport::container() / "Library" / "Media" / std::to_string(failing.chatId("Bob"));
    writeFile(inbox / "back.pdf", "moved");
    writeFile(outside / "copied.pdf", "copied");
    for (const fs::path& file : {inbox / "back.pdf", outside / "copied.pdf"})
        EXPECT_THROW(
            host::sendDocument(failing, "Bob", *attach(file, true), testsupport::container()),
            objc::Exception);
    EXPECT_EQ(readFile(inbox / "back.pdf"), "moved");
    EXPECT_EQ(readFile(outside / "copied.pdf"), "copied");
    EXPECT_TRUE(failing.messages("Bob").empty());
    EXPECT_TRUE(!fs::exists(media) || fs::is_empty(media));
}

TEST_F(DocumentSendingTest, AReadOnlyStoreIsReadButASendFailsWithTheReason) {
    sqlite->append("Bob", host::Message::outgoingText("kept"));
    const auto readOnly = std::make_shared<host::SqliteChatStore>(
        database.string(), host::SqliteChatStore::Access::ReadOnly);
    EXPECT_NE(readOnly->readOnlyReason(), "");
    EXPECT_EQ(readOnly->chatNames(), std::vector<std::string>{"Bob"});
    auto screen = WAChatSessionViewController::create("Bob", readOnly);
    writeFile(outside / "report.pdf", "report");
    const std::size_t before = mediaFiles();
    ::testing::internal::CaptureStderr();
    screen->sendDocumentAttachment(attach(outside / "report.pdf", false).get());
    drain();
    const std::string log = ::testing::internal::GetCapturedStderr();
    UIAlertView* alert = UIAlertView::topVisibleAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title()->utf8(), "Document Not Sent");
    EXPECT_NE(alert->message()->utf8().find("cannot be saved"), std::string::npos)
        << alert->message()->utf8();
    EXPECT_NE(log.find("report.pdf"), std::string::npos) << log;
    ASSERT_EQ(readOnly->messages("Bob").size(), 1u);
    EXPECT_EQ(readOnly->messages("Bob")[0].text, "kept");
    EXPECT_EQ(mediaFiles(), before);
    EXPECT_EQ(readFile(outside / "report.pdf"), "report");
}

TEST(SqliteChatStoreTest, AFileThatCannotBeMadeRaisesOrGivesAnEmptyReadOnlyStore) {
    const std::string path = "/nonexistent-folder/x/chats.sqlite";
    EXPECT_THROW(host::SqliteChatStore{path}, objc::Exception);
    const auto store = host::SqliteChatStore::open(path);
    EXPECT_NE(store->readOnlyReason().find(path), std::string::npos) << store->readOnlyReason();
    EXPECT_TRUE(store->chatNames().empty());
    EXPECT_THROW(store->append("Bob", host::Message::outgoingText("lost")), objc::Exception);
    EXPECT_TRUE(store->messages("Bob").empty());
}

}  // namespace
