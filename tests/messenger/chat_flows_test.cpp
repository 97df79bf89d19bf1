// The chat's document flows end to end: scripts run with and without the library.
#include "chat_database.h"
#include "messenger_process.h"

#include <unistd.h>

#include <algorithm>
#include <climits>

namespace {

using namespace testsupport;

// A device's folders (--home): the container, a document provider, and the user's files.
class ChatFlows : public ::testing::Test {
  protected:
    ChatFlows() {
        // Every byte value, so that a text-mode copy or a truncation shows.
        for (int i = 0; i < 3000; ++i) zipBytes.push_back(static_cast<char>((i * 7 + 3) % 256));
        for (const std::string folder : {"DocumentProviders/iCloud Drive/", "files/"}) {
            base.write(folder + "archive.zip", zipBytes);
            base.write(folder + "report.pdf", "%PDF-1.4 report");
        }
        base.write("files/notes.txt", "notes");
        base.folder("files/sub");
    }

    fs::path home() const { return base / "Container"; }
    fs::path provider() const { return base / "DocumentProviders" / "iCloud Drive"; }
    fs::path files() const { return base / "files"; }
    std::string database() const { return (home() / "Documents" / "ChatStorage.sqlite").string(); }

    // Runs the script, FILES and BASE standing for those folders; `library` injects Parcelvane.
    Result runScript(std::string script, std::vector<std::string> options, bool library) {
        for (const auto& [word, path] : {std::pair{std::string("FILES"), files().string()},
                                         std::pair{std::string("BASE"), base.path()}}) {
            for (std::size_t at; (at = script.find(word)) != std::string::npos;)
                script.replace(at, word.size(), path);
        }
        return testsupport::runScript(base, script, std::move(options), library);
    }

    static long count(const std::vector<StoredDocument>& documents, const std::string& name) {
        return std::count_if(documents.begin(), documents.end(),
                             [&](const StoredDocument& d) { return d.fileName == name; });
    }

    const ScratchFolder base{"messenger-test"};
    std::string zipBytes;
};

TEST_F(ChatFlows, WithoutTheLibraryAZipCannotBeSent) {
    // The settings are on, but nothing reads them: the host's own flows.
    const Result r = runScript(R"script(chat alice
set send_documents_enabled true
set send_filesystem_enabled true
attach
expect-not (Parcelvane)
choose "Share Document"
expect Types: com.adobe.pdf
expect-not public.data
expect Presented: modal, full screen (style 0)
choose "iCloud Drive"
expect report.pdf
expect-not archive.zip
choose report.pdf
expect You: [document] report.pdf (15 bytes, com.adobe.pdf, application/pdf)
share
choose 1
# Not listed, so not there to be chosen: this line ends the script.
choose archive.zip
quit
)script",
                               {}, false);
    EXPECT_EQ(r.status, 1) << r.out << r.err;
    EXPECT_TRUE(contains(r.err, "test.script:18: No choice archive.zip here.")) << r.err;
    EXPECT_TRUE(contains(r.err, "== Document Picker: iCloud Drive ==")) << r.err;
    EXPECT_FALSE(contains(r.out, "> quit"));

    const auto documents = storedDocuments(database(), "Alice");
    ASSERT_EQ(documents.size(), 1u) << r.out;
    EXPECT_EQ(documents[0].fileName, "report.pdf");
}

TEST_F(ChatFlows, WithTheLibraryAnyFileIsSentFromTheMenuAndFromTheBrowser) {
    const std::string script = R"script(chat alice
set send_documents_enabled true
share
expect Types: public.data
expect Presented: modal, full screen (style 0)
choose "iCloud Drive"
expect Presented: modal, form sheet (style 2)
choose archive.zip
expect You: [document] archive.zip (3000 bytes, public.zip-archive, application/zip)

attach
expect-not (Parcelvane)
cancel
set send_filesystem_enabled true
attach
expect 6. Share Document (Parcelvane)
choose "Share Document (Parcelvane)"
expect == File Browser ==
open FILES
choose sub
expect Path: FILES/sub
up
expect Path: FILES
choose notes.txt
expect-not == File Browser ==
expect You: [document] notes.txt (5 bytes

# Given up: nothing is sent.
attach
choose 6
open FILES
cancel
expect-not == File Browser ==
quit
)script";
    const Result r = runScript(script, {}, true);
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_TRUE(contains(r.out, "> choose \"Share Document (Parcelvane)\"\n== File Browser =="));

    const auto documents = storedDocuments(database(), "Alice");
    ASSERT_EQ(documents.size(), 2u) << r.out;
    EXPECT_EQ(documents[0].fileName, "archive.zip");  // its type and size are on the screen
    fs::path media = documents[0].mediaPath;
    if (media.is_relative()) media = home() / media;
    EXPECT_EQ(readFile(media), zipBytes);
    EXPECT_EQ(readFile(provider() / "archive.zip"), zipBytes) << "the provider keeps its file";

    EXPECT_EQ(documents[1].fileName, "notes.txt");
    EXPECT_EQ(count(documents, "notes.txt"), 1) << "sent exactly once";
    EXPECT_TRUE(fs::exists(files() / "notes.txt")) << "the user's own file is copied, not taken";
}

// `up` and a relative `open` start at the folder shown; control characters are escaped.
TEST_F(ChatFlows, TheBrowserMovesFromTheFolderShownAndNamesAreEscaped) {
    const std::string evil = "red\x1b[31m\nline.txt";
    std::ofstream(files() / "sub" / evil) << "x";
    std::ofstream(provider() / ("bell\x07.pdf")) << "%PDF";
    const Result r = runScript(R"script(chat alice
set send_documents_enabled true
set send_filesystem_enabled true
share
choose "iCloud Drive"
expect bell\x07.pdf
cancel
attach
choose "Share Document (Parcelvane)"
open FILES/sub
up
expect Path: FILES
open sub
expect Path: FILES/sub
open ../..
expect Path: BASE
expect 3. files/
open /
expect Path: /
open BASE/files/sub/../sub
expect Path: FILES/sub
choose "red\x1b[31m\nline.txt"
expect You: [document] red\x1b[31m\nline.txt (1 bytes
)script",
                               {}, true);
    ASSERT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_EQ(r.out.find('\x1b'), std::string::npos);
    EXPECT_EQ(r.out.find('\x07'), std::string::npos);
    EXPECT_TRUE(contains(r.out, "1. red\\x1b[31m\\nline.txt — 1 byte")) << r.out;
    EXPECT_EQ(count(storedDocuments(database(), "Alice"), evil), 1);
}

TEST_F(ChatFlows, TwoCopiesOfTheLibraryEachHookOnceAndTheAttachMenuStillOpens) {
    // Installed twice under two paths: each copy's hooks pass on to the other's, not to themselves.
    std::vector<std::string> injections;
    for (const char* name : {"first.so", "second.so"}) {
        const fs::path copy = base / name;
        fs::copy_file(PARCELVANE_LIBRARY, copy);
        injections.insert(injections.end(), {"--inject", copy.string()});
    }
    const Result r = runScript(
        "chat alice\n"
        "set send_filesystem_enabled true\n"
        "attach\n"
        "expect 5. Share Contact\n"
        "expect 6. Share Document (Parcelvane)\n"
        "expect 7. Share Document (Parcelvane)\n"
        "expect-not 8.\n"
        "choose 6\n"
        "open FILES\n"
        "choose notes.txt\n"
        "expect You: [document] notes.txt (5 bytes\n",
        injections, false);
    EXPECT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_EQ(count(storedDocuments(database(), "Alice"), "notes.txt"), 1);
}

TEST_F(ChatFlows, OnIPadTheMenuIsAPopoverAndTheEntryIsTranslated) {
    // An iPad Air 2 window is 768 × 1024 points: the anchor is its centre.
    const Result r = runScript(R"script(chat bob
set send_documents_enabled true
set send_filesystem_enabled true
share
expect == Popover: Document Menu ==
expect Presented: popover from {384, 512, 1, 1} in UIView arrows any
choose "iCloud Drive"
expect-not Popover
expect Presented: modal, form sheet (style 2)
cancel
attach
expect Partager un document (Parcelvane)
expect-not Share Document
choose "Partager un document (Parcelvane)"
expect == File Browser ==
cancel
)script",
                               {"--device", "ipad", "--language", "fr"}, true);
    EXPECT_EQ(r.status, 0) << r.out << r.err;
}

TEST_F(ChatFlows, ARestartShowsEachSendAsItReallyIs) {
    ASSERT_EQ(runScript("quit\n", {}, false).status, 0);
    // One send whose process is gone (no process has that number), one whose process still runs.
    const std::string row =
        "INSERT INTO messages (chat_id, kind, outgoing, file_name, size_in_bytes, uniform_type, "
        "date, state, progress, sender_pid) SELECT id, 1, 1, '";
    ASSERT_TRUE(runSql(
        database(), row + "cut.zip', 10, 'public.zip-archive', 1, 1, 0.5, " +
                        std::to_string(INT_MAX) + " FROM chats WHERE contact_name = 'Alice'; " +
                        row + "live.zip', 10, 'public.zip-archive', 2, 1, 0.42, " +
                        std::to_string(::getpid()) + " FROM chats WHERE contact_name = 'Alice';"));
    const Result r = runScript(R"script(chat alice
expect You: [document] cut.zip … not sent: the app stopped before the document was copied
expect You: [document] live.zip … sending 42%
)script",
                               {}, false);
    EXPECT_EQ(r.status, 0) << r.out << r.err;
}

TEST_F(ChatFlows, ChatsThatCannotBeSavedAreStillShownAndSaySo) {
    ASSERT_EQ(runScript("quit\n", {}, false).status, 0);
    // The journal cannot be made beside the database, as in a read-only folder (not stopping root).
    fs::create_directory(database() + "-wal");
    // What a send then does is the host's own test (a read-only store).
    const Result r = runScript("expect Chats cannot be saved: " + database() +
                                   "\nchat alice\nexpect You: Not yet, can you send it again?\n",
                               {}, false);
    EXPECT_EQ(r.status, 0) << r.out << r.err;
    EXPECT_TRUE(contains(r.err, "chats cannot be saved: " + database())) << r.err;
}

}  // namespace
