// Databases whose indexes go by kept collations: closed, opened again, copied and opened with another data file,
// damaged.
#include <atomic>
#include <random>
#include <thread>

#include "tests/integrations/sqlite_connection.hpp"
#include "tests/tools/command.hpp"

namespace nls::test {
namespace {

constexpr const char* kOrdered = "SELECT group_concat(id) FROM (SELECT id FROM t ORDER BY x COLLATE de, id)";

void fill(Connection& connection, int rows) {
    const std::vector<std::string>& odd = oddCharacters();
    std::mt19937 random(11);
    EXPECT_EQ(connection.ask("CREATE TABLE t(id INTEGER PRIMARY KEY, x TEXT)"), "");
    EXPECT_EQ(connection.ask("BEGIN"), "");
    const Statement insert = connection.prepare("INSERT INTO t(x) VALUES(?1)");
    for (int row = 0; row < rows; ++row) {
        std::string text;
        for (std::size_t left = 1 + random() % 12; left-- > 0;) {
            text += random() % 30 == 0 ? odd[random() % odd.size()] : std::string(1, "aeinrstAEST"[random() % 11]);
        }
        bindText(insert, 1, text);
        ASSERT_EQ(sqlite3_step(insert.get()), SQLITE_DONE);
        sqlite3_reset(insert.get());
    }
    EXPECT_EQ(connection.ask("COMMIT"), "");
}

TEST(SqliteDatabase, KeepsItsOrderInACopyWithAnotherDataFile) {
    const Folder folder;
    const std::string first = folder.path("first.db");
    std::string ordered;
    {
        Connection connection(first);
        EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', 'iso8859-1/German', 'fold', 'keep')"),
                  "ISO8859-1/german fold");
        fill(connection, 100000);
        EXPECT_EQ(connection.ask("CREATE INDEX by_order ON t(x COLLATE de)"), "");
        EXPECT_EQ(connection.ask("CREATE INDEX by_key ON t(nls_key(x, 'de'))"), "");
        ordered = connection.ask(kOrdered);
    }
    folder.put("copy.db", folder.get("first.db"));
    const std::string byKey = "SELECT group_concat(id) FROM (SELECT id FROM t ORDER BY nls_key(x, 'de'), id)";
    for (const auto& [database, dataFile] :
         {std::pair{first, NLS_CONVMAP}, std::pair{folder.path("copy.db"), NLS_SMALL_CONVMAP}}) {
        Connection connection(database, dataFile);
        EXPECT_EQ(connection.ask("PRAGMA integrity_check"), "ok") << database;
        EXPECT_TRUE(connection.ask(kOrdered) == ordered) << database;
        EXPECT_TRUE(connection.ask(byKey) == ordered) << database;
    }
    // Whatever the index finds, a walk without it finds too.
    Connection connection(first);
    EXPECT_EQ(
        connection.ask("SELECT count(*) FROM t AS a WHERE id % 20000 = 0 AND (SELECT count(*) FROM t AS b WHERE b.x "
                       "= a.x COLLATE de) <> (SELECT count(*) FROM t AS b WHERE +b.x = a.x COLLATE de)"),
        "0");
}

struct Drift {
    const char* why;
    const char* change;  // of the table
    const char* told;    // part of what nls_collation_open says
};
constexpr Drift drifts[] = {
    {"another conversion", "UPDATE nls_collations SET print = print || 'x'", "would sort otherwise here: its print is"},
    {"no form", "UPDATE nls_collations SET record = x'00'", "can't be used: no stored collation"},
    {"a cut form", "UPDATE nls_collations SET record = substr(record, 1, 500)", "cut or continued"},
    {"an unknown charset", "UPDATE nls_collations SET record = substr(record, 1, 16) || 'X' || substr(record, 18)",
     "has no charset XSO8859-1"},
    {"another case table",
     "UPDATE nls_collations SET record = substr(record, 1, 1600) || x'FF' || substr(record, 1602)",
     "forms or folds the characters of its charset otherwise"},
    {"a mode that isn't one", "UPDATE nls_collations SET mode = 'loose'", "unknown mode"},
    {"no row", "DELETE FROM nls_collations", "keeps no collation DE"},
};

TEST(SqliteDatabase, TellsWhereItWouldSortOtherwise) {
    for (const Drift& drift : drifts) {
        const Folder folder;
        const std::string file = folder.path("a.db");
        {
            Connection connection(file);
            EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', 'ISO8859-1/german', 'fold', 'keep')"),
                      "ISO8859-1/german fold");
            fill(connection, 20);
            EXPECT_EQ(connection.ask("CREATE INDEX by_order ON t(x COLLATE de)"), "");
        }
        Connection connection(file);
        EXPECT_EQ(connection.ask(drift.change), "");
        EXPECT_EQ(connection.ask(kOrdered), "error: no such collation sequence: de") << drift.why;
        EXPECT_EQ(connection.ask("INSERT INTO t(x) VALUES('a')"), "error: no such collation sequence: de") << drift.why;
        const std::string told = connection.ask("SELECT nls_collation_open('DE')");
        EXPECT_NE(told.find(drift.told), std::string::npos) << drift.why << ": " << told;
    }
}

// The stored weights count, and not those of the data file that has the same name.
TEST(SqliteDatabase, GoesByItsOwnWeights) {
    const Folder folder;
    const std::string file = folder.path("a.db");
    {
        Connection connection(file);
        EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', 'ISO8859-1/german', 'exact', 'keep')"),
                  "ISO8859-1/german exact");
        EXPECT_EQ(connection.ask("SELECT 'a' < 'b' COLLATE de"), "1");
        // Exchanges the weights of "a" and "b" in the exact map, which stands behind the 136 bytes of the head.
        EXPECT_EQ(
            connection.ask("UPDATE nls_collations SET record = substr(record, 1, 233) || substr(record, 235, 1) || "
                           "substr(record, 234, 1) || substr(record, 236)"),
            "");
    }
    Connection connection(file);
    EXPECT_EQ(connection.ask("SELECT 'a' < 'b' COLLATE de, nls_key('a', 'de') < nls_key('b', 'de')"), "0|0");
    EXPECT_EQ(connection.ask("SELECT nls_key('a', 'ISO8859-1/german') < nls_key('b', 'ISO8859-1/german')"), "1");
    EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', 'ISO8859-1/german')").substr(0, 40),
              "error: nls_collation_load: the collation");
    // Two databases that disagree.
    Connection other(folder.path("b.db"));
    other.ask("SELECT nls_collation_load('de', 'ISO8859-1/german', 'exact', 'keep')");
    EXPECT_EQ(connection.ask("ATTACH '" + folder.path("b.db") + "' AS b"), "");
    EXPECT_NE(connection.ask("SELECT nls_collation_open('de')").find("keep different collations named de"),
              std::string::npos);
}

// What a database keeps isn't known while it can't be read.
TEST(SqliteDatabase, LoadsNothingWhileItIsLocked) {
    const Folder folder;
    Connection first(folder.path("a.db")), second(folder.path("a.db"));
    EXPECT_EQ(first.ask("SELECT nls_collation_load('de', 'ISO8859-1/german', 'fold', 'keep')"),
              "ISO8859-1/german fold");
    EXPECT_EQ(first.ask("BEGIN EXCLUSIVE"), "");
    EXPECT_EQ(second.ask("SELECT nls_collation_load('de', 'ISO8859-1/swedish')"),
              "error: nls_collation_load: the database main can't be read: database is locked");
    EXPECT_EQ(first.ask("COMMIT"), "");
    EXPECT_EQ(second.ask("SELECT 'a' = 'A' COLLATE de"), "1");
}

// A database that comes from anywhere.
TEST(SqliteDatabase, BearsTablesThatAreMadeToHurt) {
    const std::string tables[] = {
        "CREATE TABLE nls_collations(name TEXT COLLATE de PRIMARY KEY, source, mode, record, print) WITHOUT ROWID",
        "CREATE TABLE nls_collations(name TEXT, source AS (nls_key(name, 'de')), mode, record, print)"};
    for (const std::string& table : tables) {
        const Folder folder;
        {
            Connection connection(folder.path("a.db"));
            EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', '1252/german')"), "1252/german exact");
            EXPECT_EQ(connection.ask(table), "");
            EXPECT_EQ(connection.ask("INSERT INTO nls_collations(name) VALUES('de')"), "");
        }
        Connection connection(folder.path("a.db"));
        EXPECT_EQ(connection.ask("SELECT 'a' < 'b' COLLATE de"), "error: no such collation sequence: de");
        EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', '1252/german')").substr(0, 6), "error:") << table;
    }
    // A record that brings its charset, in which each byte begins a character of eight.
    const Folder folder;
    {
        Connection connection(folder.path("a.db"));
        EXPECT_EQ(connection.ask("SELECT nls_collation_load('de', 'UTF-8/basic', 'fold', 'keep')"), "UTF-8/basic fold");
        EXPECT_EQ(connection.ask("UPDATE nls_collations SET record = substr(record, 1, 88) || x'06' || "
                                 "substr(record, 90, 887) || replace(hex(zeroblob(256)), '00', char(7)) || "
                                 "substr(record, 1233)"),
                  "");
    }
    Connection connection(folder.path("a.db"));
    EXPECT_EQ(connection.ask("SELECT nls_collation_open('de')"), "UTF-8/basic fold");
    for (const char* const text : {"'abcdefghij'", "'abcdefghij' || x'FF'"}) {
        EXPECT_NE(connection.ask(std::string("SELECT nls_like('abc%', ") + text + ", NULL, 'de')")
                      .find("forms characters otherwise"),
                  std::string::npos);
    }
}

// Each thread with a connection of its own; only what makes objects meets.
TEST(SqliteDatabase, ServesManyThreads) {
#if NLS_HAS_PACKS
    setenv("BINPATHX", NLS_PACKS, 1);
    const char* const order = "UTF-8/ICU-de";
#else
    const char* const order = "1252/german";
#endif
    std::string answers[4];
    std::vector<std::thread> threads;
    for (std::string& answer : answers) {
        threads.emplace_back([&answer, order] {
            Connection connection;
            connection.ask(std::string("SELECT nls_collation_load('de', '") + order + "', 'fold', 'keep')");
            fill(connection, 500);
            answer = connection.ask(kOrdered);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& answer : answers) EXPECT_EQ(answer, answers[0]);
    EXPECT_GT(answers[0].size(), 1000U);
}

}  // namespace
}  // namespace nls::test
