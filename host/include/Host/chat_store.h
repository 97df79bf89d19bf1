// Where the host keeps its chats and their messages. The app talks to this
// interface only: the messenger keeps them in an SQLite database in its
// container; tests may keep them in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct Message {
    enum class Kind { Text, Document };
    // A document is recorded as sending before its file is copied; it becomes
    // sent once the copy is in the media folder, or failed.
    enum class State { Sent, Sending, Failed };
    Kind kind = Kind::Text;
    bool outgoing = false;
    std::string text;      // the text, or a document's file name
    std::string filePath;  // documents: where the file is (empty until sent)
    std::uint64_t fileSize = 0;
    std::string uniformType;              // documents: "com.adobe.pdf", "dyn...."
    std::optional<std::string> mimeType;  // documents: none when the type has none
    double date = 0;                      // seconds since 1970
    State state = State::Sent;
    double progress = 0;  // sending: the part of the file copied, 0 to 1
    std::string failure;  // failed: why
    std::int64_t id = 0;  // given by the store when the message is appended

    static Message incomingText(std::string text);
    static Message outgoingText(std::string text);
    static Message document(std::string fileName, std::string filePath, std::uint64_t size);
};

class ChatStore {
  public:
    virtual ~ChatStore() = default;
    // The chats' names, in the order they were first made.
    virtual std::vector<std::string> chatNames() const = 0;
    virtual bool hasChat(const std::string& name) const = 0;
    // Makes the chat if it does not exist.
    virtual void addChat(const std::string& name) = 0;
    // Empty for an unknown chat.
    virtual std::vector<Message> messages(const std::string& chat) const = 0;
    // Appends to the chat, making it if needed; answers the message's id.
    virtual std::int64_t append(const std::string& chat, Message message) = 0;
    // Rewrites what can change of the message with message.id (state,
    // progress, failure, file path, size and types); an unknown id is ignored.
    virtual void update(const Message& message) = 0;
    // A chat's number, stable for the life of the store (media folders are
    // named after it); makes the chat if needed.
    virtual std::int64_t chatId(const std::string& name) = 0;
    // Why nothing can be written (every write then raises); empty when the
    // store can be written.
    virtual std::string readOnlyReason() const { return {}; }
};

// Keeps everything in memory, for the life of the process. Safe from any
// thread.
class MemoryChatStore final : public ChatStore {
  public:
    std::vector<std::string> chatNames() const override;
    bool hasChat(const std::string& name) const override;
    void addChat(const std::string& name) override;
    std::vector<Message> messages(const std::string& chat) const override;
    std::int64_t append(const std::string& chat, Message message) override;
    void update(const Message& message) override;
    std::int64_t chatId(const std::string& name) override;

  private:
    struct Chat {
        std::string name;
        std::vector<Message> messages;
    };
    Chat* find(const std::string& name);
    const Chat* find(const std::string& name) const;

    mutable std::mutex lock_;
    std::vector<Chat> chats_;
    std::int64_t lastId_ = 0;
};

// Keeps chats and messages in an SQLite database file (WAL journal), made
// with its tables on first open and brought up to date when older. Every
// write is checked and a message is written whole or not at all; a failure
// raises NSInternalInconsistencyException with SQLite's message. Several
// stores, in this process or others, may share the file: each waits for the
// others' locks for some seconds. Safe from any thread.
//
// Documents still sending when their process ended are failed at the next
// open, so a restart never shows a send that did not finish as sent.
class SqliteChatStore final : public ChatStore {
  public:
    enum class Access { ReadWrite, ReadOnly };
    // Raises when the file cannot be opened as asked (for writing: made, and
    // its tables made or brought up to date).
    explicit SqliteChatStore(const std::string& path, Access access = Access::ReadWrite);
    ~SqliteChatStore() override;
    SqliteChatStore(const SqliteChatStore&) = delete;
    SqliteChatStore& operator=(const SqliteChatStore&) = delete;

    // Opens for writing; when that cannot be done, opens the file read-only,
    // or else gives an empty store; either way with readOnlyReason() saying
    // why. Never raises.
    static std::shared_ptr<SqliteChatStore> open(const std::string& path);

    // "<home>/Documents/ChatStorage.sqlite" in the process's container.
    static std::string defaultPath();

    std::vector<std::string> chatNames() const override;
    bool hasChat(const std::string& name) const override;
    void addChat(const std::string& name) override;
    std::vector<Message> messages(const std::string& chat) const override;
    std::int64_t append(const std::string& chat, Message message) override;
    void update(const Message& message) override;
    std::int64_t chatId(const std::string& name) override;
    std::string readOnlyReason() const override { return readOnlyReason_; }

  private:
    class Database;
    std::int64_t findChat(const std::string& name) const;  // 0: none
    std::int64_t makeChat(const std::string& name);
    void checkWritable() const;

    mutable std::mutex lock_;
    std::unique_ptr<Database> db_;
    std::string readOnlyReason_;
};

// The store that chat screens use when none is given to them: one for the
// process, made on first use (SqliteChatStore::open of the default path).
std::shared_ptr<ChatStore> defaultChatStore();
// Replaces it (the messenger installs its own before building screens).
void setDefaultChatStore(std::shared_ptr<ChatStore> store);

}  // namespace host
