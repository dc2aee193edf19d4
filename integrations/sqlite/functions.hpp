// The functions of SQL, and how they are registered with a connection.
#pragma once

#include <memory>

#include "integrations/sqlite/connection.hpp"

namespace nls::sqlite {

// What a function is called with. The answer is given through sqlite3_result_…; a std::exception becomes an SQL error
// with its text.
struct Call {
    Connection& connection;
    sqlite3_context* context;
    sqlite3_value** arguments;
    int count;

    bool isNull(int number) const { return number >= count || sqlite3_value_type(arguments[number]) == SQLITE_NULL; }
    // The bytes of a blob, and of anything else as text; good until the argument is asked again.
    ByteView bytes(int number) const;
    // A name or a sign; empty for an argument that isn't there, or is null. Throws where a NUL would hide a part of it.
    std::string text(int number) const;
    void answer(ByteView text) const;
    void answerBlob(ByteView bytes) const;
};

struct Function {
    const char* name;
    int least, most;  // arguments
    int flags;
    // Of these many arguments at the start each that is null makes the answer null.
    int nulls;
    void (*run)(const Call& call);
};

// Each registration keeps the connection's shared state alive. Answers a status of SQLite's.
int registerFunction(sqlite3* db, const std::shared_ptr<Connection>& connection, const Function& function);

// Functions of text: nls_like, nls_find, nls_key, nls_convert, nls_upper, nls_lower.
int registerTextFunctions(sqlite3* db, const std::shared_ptr<Connection>& connection);
// Functions that change the connection or the database: nls_collation_…, nls_data_file.
int registerCollationFunctions(sqlite3* db, const std::shared_ptr<Connection>& connection);

}  // namespace nls::sqlite
