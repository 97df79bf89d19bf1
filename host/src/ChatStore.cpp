#include <Host/ChatStore.h>

#include <Foundation/NSPathUtilities.h>

#include <objc/exception.h>

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace host {

namespace {
double now() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}
}  // namespace

Message Message::incomingText(std::string text) {
    Message m;
    m.text = std::move(text);
    m.date = now();
    return m;
}

Message Message::outgoingText(std::string text) {
    Message m = incomingText(std::move(text));
    m.outgoing = true;
    return m;
}

Message Message::document(std::string fileName, std::string filePath, std::uint64_t size) {
    Message m;
    m.kind = Kind::Document;
    m.outgoing = true;
    m.date = now();
    m.text = std::move(fileName);
    m.filePath = std::move(filePath);
    m.fileSize = size;
    return m;
}

MemoryChatStore::Chat* MemoryChatStore::find(const std::string& name) {
    const auto it =
        std::find_if(chats_.begin(), chats_.end(), [&](const Chat& c) { return c.name == name; });
    return it == chats_.end() ? nullptr : &*it;
}

const MemoryChatStore::Chat* MemoryChatStore::find(const std::string& name) const {
    return const_cast<MemoryChatStore*>(this)->find(name);
}

std::vector<std::string> MemoryChatStore::chatNames() const {
    std::lock_guard guard(lock_);
    std::vector<std::string> names;
    for (const Chat& c : chats_) names.push_back(c.name);
    return names;
}

bool MemoryChatStore::hasChat(const std::string& name) const {
    std::lock_guard guard(lock_);
    return find(name) != nullptr;
}

void MemoryChatStore::addChat(const std::string& name) {
    std::lock_guard guard(lock_);
    if (find(name) == nullptr) chats_.push_back(Chat{name, {}});
}

std::vector<Message> MemoryChatStore::messages(const std::string& chat) const {
    std::lock_guard guard(lock_);
    const Chat* c = find(chat);
    return c != nullptr ? c->messages : std::vector<Message>{};
}

std::int64_t MemoryChatStore::chatId(const std::string& name) {
    std::lock_guard guard(lock_);
    if (find(name) == nullptr) chats_.push_back(Chat{name, {}});
    return find(name) - chats_.data() + 1;
}

void MemoryChatStore::append(const std::string& chat, Message message) {
    std::lock_guard guard(lock_);
    Chat* c = find(chat);
    if (c == nullptr) {
        chats_.push_back(Chat{chat, {}});
        c = &chats_.back();
    }
    c->messages.push_back(std::move(message));
}

// --- SQLite ---------------------------------------------------------------

namespace {

[[noreturn]] void fail(sqlite3* db, const std::string& what) {
    objc::raise(objc::kInternalInconsistencyException,
                "chat storage: " + what + ": " + (db ? sqlite3_errmsg(db) : "out of memory"));
}

// A prepared statement, reset (and its bindings cleared) when the holder goes.
class Statement {
  public:
    Statement(sqlite3* db, sqlite3_stmt* stmt) : db_(db), stmt_(stmt) {}
    ~Statement() {
        sqlite3_reset(stmt_);
        sqlite3_clear_bindings(stmt_);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(int i, std::int64_t v) { return check(sqlite3_bind_int64(stmt_, i, v)); }
    Statement& bind(int i, double v) { return check(sqlite3_bind_double(stmt_, i, v)); }
    Statement& bind(int i, const std::string& v) {
        return check(
            sqlite3_bind_text(stmt_, i, v.data(), static_cast<int>(v.size()), SQLITE_TRANSIENT));
    }
    Statement& bind(int i, const std::optional<std::string>& v) {
        return v ? bind(i, *v) : check(sqlite3_bind_null(stmt_, i));
    }
    // True while there is a row.
    bool step() {
        const int rc = sqlite3_step(stmt_);
        if (rc == SQLITE_ROW) return true;
        if (rc != SQLITE_DONE) fail(db_, sqlite3_sql(stmt_));
        return false;
    }
    std::int64_t integer(int col) const { return sqlite3_column_int64(stmt_, col); }
    double real(int col) const { return sqlite3_column_double(stmt_, col); }
    std::optional<std::string> text(int col) const {
        const auto* p = sqlite3_column_text(stmt_, col);
        if (p == nullptr) return std::nullopt;
        return std::string(reinterpret_cast<const char*>(p),
                           static_cast<std::size_t>(sqlite3_column_bytes(stmt_, col)));
    }

  private:
    Statement& check(int rc) {
        if (rc != SQLITE_OK) fail(db_, "bind");
        return *this;
    }
    sqlite3* db_;
    sqlite3_stmt* stmt_;
};

constexpr const char* kSchema = R"(
CREATE TABLE IF NOT EXISTS chats (
    id INTEGER PRIMARY KEY,
    contact_name TEXT NOT NULL UNIQUE
);
CREATE TABLE IF NOT EXISTS messages (
    id INTEGER PRIMARY KEY,
    chat_id INTEGER NOT NULL REFERENCES chats(id),
    kind INTEGER NOT NULL,
    outgoing INTEGER NOT NULL,
    text TEXT,
    file_name TEXT,
    size_in_bytes INTEGER NOT NULL DEFAULT 0,
    uniform_type TEXT,
    mime_type TEXT,
    media_path TEXT,
    date REAL NOT NULL
);
CREATE INDEX IF NOT EXISTS messages_by_chat ON messages(chat_id, id);
)";

}  // namespace

// The connection and its statements, prepared once.
class SqliteChatStore::Database {
  public:
    enum Query {
        ChatNames,
        FindChat,
        InsertChat,
        Messages,
        InsertMessage,
        Begin,
        Commit,
        Rollback,
        kCount
    };

    explicit Database(const std::string& path) {
        const int rc = sqlite3_open_v2(path.c_str(), &db_,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        if (rc != SQLITE_OK) {
            const std::string message = db_ ? sqlite3_errmsg(db_) : "out of memory";
            sqlite3_close(db_);
            objc::raise(objc::kInternalInconsistencyException,
                        "chat storage: cannot open " + path + ": " + message);
        }
        try {
            exec("PRAGMA journal_mode=WAL");
            // With WAL, NORMAL still never corrupts the database; a power cut
            // may lose the last commits, not an application crash.
            exec("PRAGMA synchronous=NORMAL");
            exec("PRAGMA foreign_keys=ON");
            exec("PRAGMA busy_timeout=5000");
            exec(kSchema);
            static constexpr const char* sql[kCount] = {
                "SELECT contact_name FROM chats ORDER BY id",
                "SELECT id FROM chats WHERE contact_name = ?1",
                "INSERT INTO chats (contact_name) VALUES (?1)",
                "SELECT kind, outgoing, text, file_name, size_in_bytes, uniform_type, mime_type, "
                "media_path, date FROM messages WHERE chat_id = ?1 ORDER BY id",
                "INSERT INTO messages (chat_id, kind, outgoing, text, file_name, size_in_bytes, "
                "uniform_type, mime_type, media_path, date) "
                "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
                "BEGIN IMMEDIATE",
                "COMMIT",
                "ROLLBACK",
            };
            for (int i = 0; i < kCount; ++i) {
                if (sqlite3_prepare_v3(db_, sql[i], -1, SQLITE_PREPARE_PERSISTENT, &stmts_[i],
                                       nullptr) != SQLITE_OK) {
                    fail(db_, sql[i]);
                }
            }
        } catch (...) {
            close();
            throw;
        }
    }
    ~Database() { close(); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    Statement query(Query q) { return Statement(db_, stmts_[q]); }
    void run(Query q) { query(q).step(); }

  private:
    void exec(const char* sql) {
        char* error = nullptr;
        if (sqlite3_exec(db_, sql, nullptr, nullptr, &error) != SQLITE_OK) {
            const std::string message = error ? error : sqlite3_errmsg(db_);
            sqlite3_free(error);
            objc::raise(objc::kInternalInconsistencyException, "chat storage: " + message);
        }
    }
    void close() {
        for (sqlite3_stmt*& s : stmts_) {
            sqlite3_finalize(s);
            s = nullptr;
        }
        sqlite3_close(db_);
        db_ = nullptr;
    }

    sqlite3* db_ = nullptr;
    sqlite3_stmt* stmts_[kCount] = {};
};

SqliteChatStore::SqliteChatStore(const std::string& path) : db_(std::make_unique<Database>(path)) {}

SqliteChatStore::~SqliteChatStore() = default;

std::string SqliteChatStore::defaultPath() {
    NSString* home = NSHomeDirectory();
    const std::filesystem::path documents =
        std::filesystem::path(home != nullptr ? home->utf8() : ".") / "Documents";
    std::error_code error;
    std::filesystem::create_directories(documents, error);
    return (documents / "ChatStorage.sqlite").string();
}

std::int64_t SqliteChatStore::findChat(const std::string& name) const {
    Statement s = db_->query(Database::FindChat);
    s.bind(1, name);
    return s.step() ? s.integer(0) : 0;
}

std::int64_t SqliteChatStore::makeChat(const std::string& name) {
    if (const std::int64_t id = findChat(name)) return id;
    db_->query(Database::InsertChat).bind(1, name).step();
    return findChat(name);
}

std::vector<std::string> SqliteChatStore::chatNames() const {
    std::lock_guard guard(lock_);
    std::vector<std::string> names;
    Statement s = db_->query(Database::ChatNames);
    while (s.step()) names.push_back(s.text(0).value_or(""));
    return names;
}

bool SqliteChatStore::hasChat(const std::string& name) const {
    std::lock_guard guard(lock_);
    return findChat(name) != 0;
}

void SqliteChatStore::addChat(const std::string& name) {
    std::lock_guard guard(lock_);
    makeChat(name);
}

std::int64_t SqliteChatStore::chatId(const std::string& name) {
    std::lock_guard guard(lock_);
    return makeChat(name);
}

std::vector<Message> SqliteChatStore::messages(const std::string& chat) const {
    std::lock_guard guard(lock_);
    std::vector<Message> result;
    const std::int64_t id = findChat(chat);
    if (id == 0) return result;
    Statement s = db_->query(Database::Messages);
    s.bind(1, id);
    while (s.step()) {
        Message m;
        m.kind = s.integer(0) == 1 ? Message::Kind::Document : Message::Kind::Text;
        m.outgoing = s.integer(1) != 0;
        m.text = (m.kind == Message::Kind::Document ? s.text(3) : s.text(2)).value_or("");
        m.fileSize = static_cast<std::uint64_t>(s.integer(4));
        m.uniformType = s.text(5).value_or("");
        m.mimeType = s.text(6);
        m.filePath = s.text(7).value_or("");
        m.date = s.real(8);
        result.push_back(std::move(m));
    }
    return result;
}

void SqliteChatStore::append(const std::string& chat, Message message) {
    std::lock_guard guard(lock_);
    // The chat and its message go in together, or neither does.
    db_->run(Database::Begin);
    try {
        const std::int64_t id = makeChat(chat);
        const bool document = message.kind == Message::Kind::Document;
        const auto orNull = [](bool present, const std::string& v) {
            return present ? std::optional<std::string>(v) : std::nullopt;
        };
        Statement s = db_->query(Database::InsertMessage);
        s.bind(1, id)
            .bind(2, static_cast<std::int64_t>(document ? 1 : 0))
            .bind(3, static_cast<std::int64_t>(message.outgoing ? 1 : 0))
            .bind(4, orNull(!document, message.text))
            .bind(5, orNull(document, message.text))
            .bind(6, static_cast<std::int64_t>(message.fileSize))
            .bind(7, orNull(document, message.uniformType))
            .bind(8, document ? message.mimeType : std::nullopt)
            .bind(9, orNull(document, message.filePath))
            .bind(10, message.date);
        s.step();
        db_->run(Database::Commit);
    } catch (...) {
        try {
            db_->run(Database::Rollback);
        } catch (...) {
            // A failed COMMIT may already have rolled back.
        }
        throw;
    }
}

namespace {
struct DefaultStore {
    std::mutex lock;
    std::shared_ptr<ChatStore> store;
};
DefaultStore& defaultStore() {
    static DefaultStore holder;
    return holder;
}
}  // namespace

std::shared_ptr<ChatStore> defaultChatStore() {
    DefaultStore& holder = defaultStore();
    std::lock_guard guard(holder.lock);
    if (!holder.store) {
        holder.store = std::make_shared<SqliteChatStore>(SqliteChatStore::defaultPath());
    }
    return holder.store;
}

void setDefaultChatStore(std::shared_ptr<ChatStore> store) {
    DefaultStore& holder = defaultStore();
    std::lock_guard guard(holder.lock);
    holder.store = std::move(store);
}

}  // namespace host
