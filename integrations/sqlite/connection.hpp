// What the extension knows of one connection of SQLite: the library, and the orders by their names. Shared by all
// functions and collations that are registered with it, and gone when the last of these is.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "integrations/sqlite/keeping.hpp"
#include "integrations/sqlite/library.hpp"

namespace nls::sqlite {

class Connection : public std::enable_shared_from_this<Connection> {
public:
    explicit Connection(sqlite3* db) : db_(db) {}

    Library& library() { return library_; }

    // All three answer CHARSET/COLLATION and mode.
    // The collation `name` becomes that order. Throws where the name is another order's, here or in the database.
    std::string load(const std::string& name, const std::string& source, Mode mode);
    // Writes a loaded collation into the main database.
    std::string store(const std::string& name);
    // The collation `name` as the database keeps it.
    std::string openStored(const std::string& name);

    // For a function: CHARSET/COLLATION of the data file, in the usual mode unless one is given; or the name of a
    // collation that is loaded or kept in the database, in its own mode unless one is given. An empty mode is none.
    Order& order(const std::string& name, const std::string& mode, Mode usual);

private:
    struct Named {
        OpenOrder opened;
        KeptCollation form;  // its record and print stay empty until they are needed
        bool isCollation = false;
    };

    // The row of a name. Throws where that wants another row: a database's own table may go by what it keeps.
    std::optional<KeptCollation> kept(const std::string& name);
    // Complete.
    const KeptCollation& formOf(Named& named);
    Named& byName(const std::string& name);
    Named& add(const std::string& key, OpenOrder opened, KeptCollation form);
    Named& openKeptAs(const std::string& name, const KeptCollation& row);
    std::string registerCollation(const std::string& name, Named& named);

    sqlite3* db_;
    bool isReading_ = false;
    Library library_;
    std::map<std::string, Named> orders_;  // on the library, which is gone after them
};

}  // namespace nls::sqlite
