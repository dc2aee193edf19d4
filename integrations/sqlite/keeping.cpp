#include "integrations/sqlite/keeping.hpp"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tools/nls/failure.hpp"
#include "tools/nls/hex_text.hpp"

namespace nls::sqlite {
namespace {

using tool::Exit;
using tool::Failure;

// Rises when order.hpp or text_form.hpp put two texts otherwise.
constexpr int rulesVersion = 1;
constexpr int32_t longFormat = 6;
constexpr std::size_t mapsSize = 512;

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

Statement prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr);
    return Statement{statement};
}

std::string quoted(const std::string& name) {
    std::string text = "\"";
    for (const char letter : name) text += letter == '"' ? "\"\"" : std::string(1, letter);
    return text + '"';
}

std::string textOf(sqlite3_stmt* statement, int column) {
    const unsigned char* const text = sqlite3_column_text(statement, column);
    const int size = sqlite3_column_bytes(statement, column);
    return text == nullptr ? std::string{}
                           : std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

Bytes blobOf(sqlite3_stmt* statement, int column) {
    const auto* const bytes = static_cast<const unsigned char*>(sqlite3_column_blob(statement, column));
    const int size = sqlite3_column_bytes(statement, column);
    return bytes == nullptr ? Bytes{} : Bytes(bytes, bytes + size);
}

// A database that can't be read now may well keep a collation.
[[noreturn]] void refuseUnread(sqlite3* db, const std::string& what) {
    throw Failure(Exit::fileTrouble, what + " can't be read: " + sqlite3_errmsg(db));
}

// Whether there is another row.
bool step(sqlite3* db, const Statement& statement, const std::string& what) {
    const int status = statement ? sqlite3_step(statement.get()) : SQLITE_ERROR;
    if (status != SQLITE_ROW && status != SQLITE_DONE) refuseUnread(db, what);
    return status == SQLITE_ROW;
}

std::vector<std::string> databases(sqlite3* db) {
    std::vector<std::string> names;
    const Statement list = prepare(db, "PRAGMA database_list");
    while (step(db, list, "the list of databases")) names.push_back(textOf(list.get(), 1));
    return names;
}

bool hasTable(sqlite3* db, const std::string& schema) {
    const Statement found = prepare(db, "SELECT 1 FROM " + quoted(schema) +
                                            ".sqlite_master WHERE type='table' "
                                            "AND name='nls_collations' COLLATE NOCASE");
    return step(db, found, "the database " + schema);
}

std::optional<KeptCollation> findIn(sqlite3* db, const std::string& schema, const std::string& name) {
    if (!hasTable(db, schema)) return std::nullopt;
    const Statement row = prepare(db, "SELECT source, mode, record, print FROM " + quoted(schema) +
                                          ".nls_collations WHERE name=?1 COLLATE NOCASE");
    const std::string table = "the table " + schema + ".nls_collations";
    if (!row) refuseUnread(db, table);
    sqlite3_bind_text(row.get(), 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    if (!step(db, row, table)) return std::nullopt;
    return KeptCollation{textOf(row.get(), 0), textOf(row.get(), 1), blobOf(row.get(), 2), textOf(row.get(), 3)};
}

std::string printOf(Library& library, const Order& order) {
    return "rules " + std::to_string(rulesVersion) + ", library " + std::to_string(NLS_ORDER_VERSION) +
           ", conversion " + tool::formatted("%016llX", static_cast<unsigned long long>(library.print(order)));
}

stored::StoredCollation taken(const nlsLocale& locale) {
    stored::StoredCollation stored;
    const nlsStatus status = stored::takeFrom(locale, longFormat, stored);
    if (status != NLS_OK) {
        throw Failure(Exit::fileTrouble, std::string(locale.charsetName) + "/" + locale.collationName +
                                             " can't be stored (status " + std::to_string(status) + ")");
    }
    return stored;
}

[[noreturn]] void refuseDrift(const std::string& name, const KeptCollation& collation, const std::string& what) {
    throw Failure(Exit::loss, "the collation " + name + " (" + collation.source +
                                  ") would sort otherwise here: " + what +
                                  "; use what the database was written with, or delete its row from nls_collations, "
                                  "load and store it anew, and REINDEX " +
                                  name);
}

}  // namespace

const char* nameOf(Mode mode) {
    return mode == Mode::exact ? "exact" : "fold";
}

Mode modeOf(const std::string& name) {
    if (name == "exact") return Mode::exact;
    if (name == "fold") return Mode::fold;
    throw Failure(Exit::usage, "unknown mode \"" + name + "\"; 'exact' and 'fold' are known");
}

std::optional<KeptCollation> findKept(sqlite3* db, const std::string& name) {
    std::optional<KeptCollation> found;
    std::string where;
    for (const std::string& schema : databases(db)) {
        const std::optional<KeptCollation> row = findIn(db, schema, name);
        if (!row) continue;
        if (found && !(*found == *row)) {
            std::string what = "the databases ";
            what.append(where).append(" and ").append(schema).append(" keep different collations named ").append(name);
            throw Failure(Exit::usage, what + "; open them on connections of their own");
        }
        found = row;
        where = schema;
    }
    return found;
}

KeptCollation keptForm(Library& library, const Order& order) {
    if (order.kind() == kSiteSort) {
        throw Failure(Exit::usage, order.name() + " is a sort of the site's own, of which nothing can be kept");
    }
    const stored::StoredCollation first = taken(*order.locale());
    // As it is after one opening it will be after each.
    const OpenOrder opened = library.open(first, order.mode());
    const stored::StoredCollation second = taken(*opened.order->locale());
    if (!std::equal(first.image.begin(), first.image.begin() + mapsSize, second.image.begin())) {
        throw Failure(Exit::fileTrouble, order.name() + " comes back from its stored form with other weights");
    }
    return {order.name(), nameOf(order.mode()), stored::toFileForm(second), printOf(library, order)};
}

void keep(sqlite3* db, const std::string& name, const KeptCollation& collation) {
    const char* const table =
        "CREATE TABLE IF NOT EXISTS main.nls_collations(name TEXT PRIMARY KEY COLLATE NOCASE, source TEXT NOT NULL, "
        "mode TEXT NOT NULL, record BLOB NOT NULL, print TEXT NOT NULL)";
    int status = sqlite3_exec(db, table, nullptr, nullptr, nullptr);
    if (status == SQLITE_OK) {
        const Statement row = prepare(db, "INSERT INTO main.nls_collations VALUES(?1, ?2, ?3, ?4, ?5)");
        const auto bind = [&](int place, const std::string& text) {
            sqlite3_bind_text(row.get(), place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        };
        if (row) {
            bind(1, name);
            bind(2, collation.source);
            bind(3, collation.mode);
            sqlite3_bind_blob(row.get(), 4, collation.record.data(), static_cast<int>(collation.record.size()),
                              SQLITE_STATIC);
            bind(5, collation.print);
        }
        status = row ? sqlite3_step(row.get()) : SQLITE_ERROR;
    }
    if (status != SQLITE_DONE) {
        throw Failure(Exit::fileTrouble, "the collation " + name + " can't be stored: " + sqlite3_errmsg(db));
    }
}

OpenOrder openKept(Library& library, const std::string& name, const KeptCollation& collation) {
    std::string trouble;
    const std::optional<stored::StoredCollation> stored = stored::fromFileForm(collation.record, trouble);
    if (!stored) throw Failure(Exit::badInput, "the stored collation " + name + " can't be used: " + trouble);
    if (stored->record.dbCollKind == kSiteSort) {
        throw Failure(Exit::usage,
                      "the stored collation " + name + " is a sort of a site's own, which can't be checked");
    }
    OpenOrder opened;
    try {
        opened = library.open(*stored, modeOf(collation.mode));
    } catch (const Failure& failure) {
        throw Failure(failure.code(), "the stored collation " + name + " can't be opened here: " + failure.what());
    }
    const stored::StoredCollation here = taken(*opened.order->locale());
    if (here.image != stored->image) {
        const auto versions = stored::icuVersionsOf(stored->image), now = stored::icuVersionsOf(here.image);
        if (stored->record.dbCollKind == kIcuOrder && versions && now && !(*versions == *now)) {
            refuseDrift(name, collation,
                        "it was stored with an ICU of versions " + versions->text() +
                            " (collator / Unicode's rules), and the one here has " + now->text());
        }
        refuseDrift(name, collation, library.dataFile() + " forms or folds the characters of its charset otherwise");
    }
    const std::string print = printOf(library, *opened.order);
    if (print != collation.print) {
        refuseDrift(name, collation,
                    "its print is \"" + collation.print + "\", and with this library and " + library.dataFile() +
                        " it is \"" + print + "\"");
    }
    return opened;
}

}  // namespace nls::sqlite
