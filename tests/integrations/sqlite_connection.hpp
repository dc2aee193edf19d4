// A connection of SQLite with the extension loaded.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

// ICU's collators that were opened with a locale stay open: the sanitizer's search for leaks passes over them.
extern "C" inline __attribute__((used)) const char* __lsan_default_suppressions() {
    return "leak:libicuuc\nleak:libicui18n\n";
}

namespace nls::test {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

class Connection {
public:
    explicit Connection(const std::string& file = ":memory:", const std::string& dataFile = NLS_CONVMAP) {
        EXPECT_EQ(sqlite3_open(file.c_str(), &db_), SQLITE_OK);
        EXPECT_EQ(sqlite3_db_config(db_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr), SQLITE_OK);
        char* error = nullptr;
        EXPECT_EQ(sqlite3_load_extension(db_, NLS_EXTENSION, nullptr, &error), SQLITE_OK) << error;
        sqlite3_free(error);
        EXPECT_EQ(ask("SELECT nls_data_file('" + dataFile + "')"), dataFile);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { EXPECT_EQ(sqlite3_close(db_), SQLITE_OK); }

    sqlite3* db() const { return db_; }

    Statement prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(db_);
        return Statement{statement};
    }
    // The columns of all rows, "|" between columns and a new line between rows; "error: " and its text of a failure.
    std::string ask(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        std::string rows;
        int status = sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr);
        while (status == SQLITE_OK || status == SQLITE_ROW) {
            status = sqlite3_step(statement);
            if (status != SQLITE_ROW) break;
            if (!rows.empty()) rows += '\n';
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
                rows += (column == 0 ? "" : "|") + std::string(text == nullptr ? "NULL" : text);
            }
        }
        const std::string error = sqlite3_errmsg(db_);
        sqlite3_finalize(statement);
        return status == SQLITE_DONE ? rows : "error: " + error;
    }

private:
    sqlite3* db_ = nullptr;
};

inline void bindText(const Statement& statement, int place, const std::string& text) {
    sqlite3_bind_text(statement.get(), place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

// What an index must bear: blanks, controls and NULs, characters that count as two, that a charset lacks or that stand
// for such, Thai marks without a base, Japanese, bytes that are no UTF-8.
inline const std::vector<std::string>& oddCharacters() {
    using namespace std::string_literals;
    static const std::vector<std::string> characters = {
        " ",          "\x01",     "\x1F",         "\0"s,     "a",      "A",      "s",
        "S",          "\u00DF",   "\u00E4",       "\u00C4",  "z",      "?",      "\u20AC",
        "\U0001F600", "\uFFFD",   "\u00A0",       "\u0130",  "\u3042", "\u6F22", "\uFF71",
        "\u0E01",     "\u0E40",   "\u0E31",       "\u0E48",  "\u0301", "\u0085", "\xFF",
        "\x80",       "\xE3\x81", "\xED\xA0\x80", "\xF0\x9F"};
    return characters;
}

}  // namespace nls::test
