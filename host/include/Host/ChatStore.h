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
    Kind kind = Kind::Text;
    bool outgoing = false;
    std::string text;      // the text, or a document's file name
    std::string filePath;  // documents: where the file is
    std::uint64_t fileSize = 0;
    std::string uniformType;              // documents: "com.adobe.pdf", "dyn...."
    std::optional<std::string> mimeType;  // documents: none when the type has none
    double date = 0;                      // seconds since 1970

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
    // Appends to the chat, making it if needed.
    virtual void append(const std::string& chat, Message message) = 0;
    // A chat's number, stable for the life of the store (media folders are
    // named after it); makes the chat if needed.
    virtual std::int64_t chatId(const std::string& name) = 0;
};

// Keeps everything in memory, for the life of the process. Safe from any
// thread.
class MemoryChatStore final : public ChatStore {
  public:
    std::vector<std::string> chatNames() const override;
    bool hasChat(const std::string& name) const override;
    void addChat(const std::string& name) override;
    std::vector<Message> messages(const std::string& chat) const override;
    void append(const std::string& chat, Message message) override;
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
};

// Keeps chats and messages in an SQLite database file (WAL journal), made
// with its tables on first open. Every write is checked and a message is
// written whole or not at all; a failure raises NSInternalInconsistencyException
// with SQLite's message. Safe from any thread.
class SqliteChatStore final : public ChatStore {
  public:
    explicit SqliteChatStore(const std::string& path);
    ~SqliteChatStore() override;
    SqliteChatStore(const SqliteChatStore&) = delete;
    SqliteChatStore& operator=(const SqliteChatStore&) = delete;

    // "<home>/Documents/ChatStorage.sqlite" in the process's container.
    static std::string defaultPath();

    std::vector<std::string> chatNames() const override;
    bool hasChat(const std::string& name) const override;
    void addChat(const std::string& name) override;
    std::vector<Message> messages(const std::string& chat) const override;
    void append(const std::string& chat, Message message) override;
    std::int64_t chatId(const std::string& name) override;

  private:
    class Database;
    std::int64_t findChat(const std::string& name) const;  // 0: none
    std::int64_t makeChat(const std::string& name);

    mutable std::mutex lock_;
    std::unique_ptr<Database> db_;
};

// The store that chat screens use when none is given to them: one for the
// process, made on first use.
std::shared_ptr<ChatStore> defaultChatStore();
// Replaces it (the messenger installs its own before building screens).
void setDefaultChatStore(std::shared_ptr<ChatStore> store);

}  // namespace host
