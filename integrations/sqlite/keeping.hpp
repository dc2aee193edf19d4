// Collations that a database keeps: a row of the table nls_collations for each, with the stored form of its tables, and
// what shows whether the order is still the same where the row is read.
//
//   name    of the SQLite collation
//   source  CHARSET/COLLATION that it came from
//   mode    exact or fold
//   record  the file form of a stored collation (docs/stored-collation.md), with the long image
//   print   versions of the rules of orders, here and in the library, and the print of the conversion to the charset
#pragma once

#include <optional>
#include <string>

#include "integrations/sqlite/library.hpp"
#include "integrations/sqlite/sqlite_api.hpp"

namespace nls::sqlite {

struct KeptCollation {
    std::string source;
    std::string mode;
    Bytes record;
    std::string print;

    bool operator==(const KeptCollation&) const = default;
};

const char* nameOf(Mode mode);
// Throws where it is neither "exact" nor "fold".
Mode modeOf(const std::string& name);

// The row of that name in the main database, the temporary one and those that are attached. Throws where two of them
// hold different ones, since a connection knows one collation of a name.
std::optional<KeptCollation> findKept(sqlite3* db, const std::string& name);

// What a row of this order would hold. Throws for an order that can't be kept.
KeptCollation keptForm(Library& library, const Order& order);

// Writes a row into the main database. Throws where SQLite refuses.
void keep(sqlite3* db, const std::string& name, const KeptCollation& collation);

// The order of a row, after all that could make it another has been looked at: the tables of the data file that it goes
// by, the versions of ICU, the rules. Throws what differs and what to do.
OpenOrder openKept(Library& library, const std::string& name, const KeptCollation& collation);

}  // namespace nls::sqlite
