// Reads (and for tests, changes) the host's chat database straight through the SQLite file.
#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

namespace testsupport {

struct StoredDocument {
    std::string fileName;
    std::string mediaPath;
};

inline std::string columnText(sqlite3_stmt* statement, int column) {
    const auto* text = sqlite3_column_text(statement, column);
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

// The chat's documents in the order sent; nothing when the database cannot be read.
inline std::vector<StoredDocument> storedDocuments(const std::string& database,
                                                   const std::string& chat) {
    std::vector<StoredDocument> documents;
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return documents;
    }
    sqlite3_stmt* statement = nullptr;
    const char* sql =
        "SELECT m.file_name, m.media_path "
        "FROM messages m JOIN chats c ON c.id = m.chat_id "
        "WHERE c.contact_name = ?1 AND m.file_name IS NOT NULL ORDER BY m.id";
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_text(statement, 1, chat.c_str(), -1, SQLITE_TRANSIENT);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            documents.push_back({columnText(statement, 0), columnText(statement, 1)});
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return documents;
}

// Runs SQL on the database (made if missing) as another program would; false on failure.
inline bool runSql(const std::string& database, const std::string& sql) {
    sqlite3* db = nullptr;
    const bool done =
        sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) == SQLITE_OK &&
        sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return done;
}

}  // namespace testsupport
