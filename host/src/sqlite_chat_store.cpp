// The chat store in an SQLite file: its schema and migrations, the wait for
// other processes' locks, and the read-only fallback.
#include <Host/chat_store.h>

#include <Foundation/NSPathUtilities.h>

#include <objc/exception.h>

#include <sqlite3.h>

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iterator>

namespace host {
namespace {

[[noreturn]] void fail(sqlite3* db, const std::string& what) {
    objc::raise(objc::exception_name::InternalInconsistency,
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
    Statement& bind(int i, std::optional<std::int64_t> v) {
        return v ? bind(i, *v) : check(sqlite3_bind_null(stmt_, i));
    }
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

// The first version's tables; kMigrations bring them up to date.
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

// Step N takes a database from user_version N to N + 1. Rows from before a
// column existed get its default: messages from before send states were sent.
constexpr const char* kMigrations[] = {
    R"(
ALTER TABLE messages ADD COLUMN state INTEGER NOT NULL DEFAULT 0;
ALTER TABLE messages ADD COLUMN progress REAL NOT NULL DEFAULT 0;
ALTER TABLE messages ADD COLUMN failure TEXT;
ALTER TABLE messages ADD COLUMN sender_pid INTEGER;
)",
};
constexpr int kVersion = static_cast<int>(std::size(kMigrations));

// How long a connection waits for another's lock before it gives up.
constexpr int kBusyTimeoutMs = 10000;

constexpr std::int64_t stateCode(Message::State state) {
    return static_cast<std::int64_t>(state);
}

Message::State stateOf(std::int64_t code) {
    switch (code) {
        case 1:
            return Message::State::Sending;
        case 2:
            return Message::State::Failed;
        default:
            return Message::State::Sent;
    }
}

// "file:" URI of a path, for the open flags that only URIs carry.
std::string fileUri(const std::string& path) {
    std::string uri = "file:";
    for (const char c : path) {
        if (c == '?' || c == '#' || c == '%') {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
            uri += escaped;
        } else {
            uri += c;
        }
    }
    return uri;
}

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
        UpdateMessage,
        Begin,
        Commit,
        Rollback,
        kCount
    };

    Database(const std::string& path, Access access) {
        try {
            if (access == Access::ReadWrite) {
                openWritable(path);
            } else {
                openReadOnly(path);
            }
            const bool current = version() >= kVersion;
            // A read-only file of the first version shows its rows as sent.
            const char* const messages =
                current ? "SELECT kind, outgoing, text, file_name, size_in_bytes, uniform_type, "
                          "mime_type, media_path, date, id, state, progress, failure "
                          "FROM messages WHERE chat_id = ?1 ORDER BY id"
                        : "SELECT kind, outgoing, text, file_name, size_in_bytes, uniform_type, "
                          "mime_type, media_path, date, id, 0, 0, NULL "
                          "FROM messages WHERE chat_id = ?1 ORDER BY id";
            const char* const sql[kCount] = {
                "SELECT contact_name FROM chats ORDER BY id",
                "SELECT id FROM chats WHERE contact_name = ?1",
                // Another process may make the same chat at the same moment.
                "INSERT OR IGNORE INTO chats (contact_name) VALUES (?1)",
                messages,
                "INSERT INTO messages (chat_id, kind, outgoing, text, file_name, size_in_bytes, "
                "uniform_type, mime_type, media_path, date, state, progress, failure, sender_pid) "
                "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)",
                "UPDATE messages SET state = ?2, progress = ?3, failure = ?4, media_path = ?5, "
                "size_in_bytes = ?6, uniform_type = ?7, mime_type = ?8 WHERE id = ?1",
                "BEGIN IMMEDIATE",
                "COMMIT",
                "ROLLBACK",
            };
            for (int i = 0; i < kCount; ++i) {
                // Statements that write cannot be prepared against an old
                // read-only file; they are never run there.
                if (!current && (i == InsertMessage || i == UpdateMessage)) continue;
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
    std::int64_t lastInsertId() const { return sqlite3_last_insert_rowid(db_); }

    // Fails the documents left sending by processes that are gone.
    void failInterruptedSends(const std::string& reason) {
        std::vector<std::int64_t> interrupted;
        once("SELECT id, sender_pid FROM messages WHERE state = 1", [&](Statement& s) {
            while (s.step()) {
                const auto pid = static_cast<pid_t>(s.integer(1));
                // This process, or another one still running, may be sending
                // it right now.
                const bool alive =
                    pid > 0 && (pid == ::getpid() || ::kill(pid, 0) == 0 || errno == EPERM);
                if (!alive) interrupted.push_back(s.integer(0));
            }
        });
        for (const std::int64_t id : interrupted) {
            once(
                "UPDATE messages SET state = 2, progress = 0, failure = ?2 "
                "WHERE id = ?1 AND state = 1",
                [&](Statement& s) { s.bind(1, id).bind(2, reason).step(); });
        }
    }

  private:
    void openWritable(const std::string& path) {
        open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        // Another process may hold the file: switching to WAL, making the
        // tables and migrating all wait for its lock rather than fail.
        exec("PRAGMA journal_mode=WAL");
        // With WAL, NORMAL still never corrupts the database; a power cut
        // may lose the last commits, not an application crash.
        exec("PRAGMA synchronous=NORMAL");
        exec("PRAGMA foreign_keys=ON");
        // One writer at a time makes and migrates the tables, so that two
        // processes starting together do not both add the same columns.
        exec("BEGIN IMMEDIATE");
        try {
            exec(kSchema);
            for (int v = version(); v < kVersion; ++v) exec(kMigrations[v]);
            exec(("PRAGMA user_version=" + std::to_string(kVersion)).c_str());
            exec("COMMIT");
        } catch (...) {
            sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    }

    void openReadOnly(const std::string& path) {
        open(path, SQLITE_OPEN_READONLY);
        try {
            version();
        } catch (const objc::Exception&) {
            // A WAL file in a folder where its shared-memory file cannot be
            // made: read it as a file nobody changes.
            close();
            open(fileUri(path) + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
        }
    }

    void open(const std::string& name, int flags) {
        const int rc = sqlite3_open_v2(name.c_str(), &db_, flags, nullptr);
        if (rc != SQLITE_OK) {
            const std::string message = db_ ? sqlite3_errmsg(db_) : "out of memory";
            close();
            objc::raise(objc::exception_name::InternalInconsistency,
                        "chat storage: cannot open " + name + ": " + message);
        }
        sqlite3_busy_timeout(db_, kBusyTimeoutMs);
    }

    int version() {
        int v = 0;
        once("PRAGMA user_version", [&](Statement& s) {
            if (s.step()) v = static_cast<int>(s.integer(0));
        });
        return v;
    }

    // Runs a statement that is not kept.
    template <class F>
    void once(const char* sql, F&& use) {
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v2(db_, sql, -1, &raw, nullptr) != SQLITE_OK) fail(db_, sql);
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> owner(raw, sqlite3_finalize);
        Statement s(db_, raw);
        use(s);
    }

    void exec(const char* sql) {
        char* error = nullptr;
        if (sqlite3_exec(db_, sql, nullptr, nullptr, &error) != SQLITE_OK) {
            const std::string message = error ? error : sqlite3_errmsg(db_);
            sqlite3_free(error);
            objc::raise(objc::exception_name::InternalInconsistency, "chat storage: " + message);
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

SqliteChatStore::SqliteChatStore(const std::string& path, Access access)
    : db_(std::make_unique<Database>(path, access)) {
    if (access == Access::ReadOnly) {
        readOnlyReason_ = "the chat database " + path + " is open for reading only";
    } else {
        db_->failInterruptedSends("the app stopped before the document was copied");
    }
}

std::shared_ptr<SqliteChatStore> SqliteChatStore::open(const std::string& path) {
    std::string why;
    try {
        return std::make_shared<SqliteChatStore>(path);
    } catch (const objc::Exception& error) {
        // "<path>: <SQLite's message>", for a person.
        why = error.reason();
        if (const std::string prefix = "chat storage: "; why.rfind(prefix, 0) == 0) {
            why.erase(0, prefix.size());
        }
        if (why.find(path) == std::string::npos) why = path + ": " + why;
    }
    std::shared_ptr<SqliteChatStore> store;
    try {
        store = std::make_shared<SqliteChatStore>(path, Access::ReadOnly);
    } catch (const objc::Exception&) {
        // Nothing to read either: an empty store, so that the app still runs.
        store = std::make_shared<SqliteChatStore>(":memory:");
    }
    store->readOnlyReason_ = why;
    return store;
}

void SqliteChatStore::checkWritable() const {
    if (!readOnlyReason_.empty()) {
        objc::raise(objc::exception_name::InternalInconsistency,
                    "chats cannot be saved: " + readOnlyReason_);
    }
}

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
    checkWritable();
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
        m.id = s.integer(9);
        m.state = stateOf(s.integer(10));
        m.progress = s.real(11);
        m.failure = s.text(12).value_or("");
        result.push_back(std::move(m));
    }
    return result;
}

std::int64_t SqliteChatStore::append(const std::string& chat, Message message) {
    std::lock_guard guard(lock_);
    checkWritable();
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
            .bind(10, message.date)
            .bind(11, stateCode(message.state))
            .bind(12, message.progress)
            .bind(13, orNull(!message.failure.empty(), message.failure))
            .bind(14, message.state == Message::State::Sending
                          ? std::optional<std::int64_t>(::getpid())
                          : std::nullopt);
        s.step();
        const std::int64_t messageId = db_->lastInsertId();
        db_->run(Database::Commit);
        return messageId;
    } catch (...) {
        try {
            db_->run(Database::Rollback);
        } catch (...) {
            // A failed COMMIT may already have rolled back.
        }
        throw;
    }
}

void SqliteChatStore::update(const Message& message) {
    std::lock_guard guard(lock_);
    checkWritable();
    const bool document = message.kind == Message::Kind::Document;
    db_->query(Database::UpdateMessage)
        .bind(1, message.id)
        .bind(2, stateCode(message.state))
        .bind(3, message.progress)
        .bind(4, message.failure.empty() ? std::nullopt : std::optional(message.failure))
        .bind(5, document ? std::optional(message.filePath) : std::nullopt)
        .bind(6, static_cast<std::int64_t>(message.fileSize))
        .bind(7, document ? std::optional(message.uniformType) : std::nullopt)
        .bind(8, document ? message.mimeType : std::nullopt)
        .step();
}

}  // namespace host
