// The functions of the extension, one row for each case: an expression of SQL and what comes of it.
#include "tests/integrations/sqlite_connection.hpp"

namespace nls::test {
namespace {

struct Row {
    const char* expression;
    const char* want;  // of an error its beginning
};
constexpr Row rows[] = {
    // LIKE: wildcards, escapes in front of anything, no escape, texts that an order equals.
    {"nls_like('m_ller', 'MÜLLER')", "1"},
    {"nls_like('m_ller', 'MÜLLER', NULL, 'UTF-8/basic', 'exact')", "0"},
    {"nls_like('%', ''), nls_like('%%', ''), nls_like('a%%%', 'a'), nls_like('%b%%d', 'abcd')", "1|1|1|1"},
    {"nls_like('50\\%', '50%', '\\'), nls_like('50\\%', '50x', '\\'), nls_like('a\\bc', 'abc', '\\')", "1|0|1"},
    {"nls_like('a\\', 'a\\', '\\'), nls_like('%%5', '%5', '%'), nls_like('ä', 'Ä', 'ö')", "0|1|1"},
    {"nls_like(char(1)||'_'||char(2), char(1)||'x'||char(2), '', 'IBM037/basic')", "1"},
    {"nls_like('a', 'a', 'xy')", "error: nls_like: the escape is one character"},
    // What ISO8859-1 lacks equals itself alone, "?" too.
    {"nls_like('%€_', 'a€b', NULL, 'ISO8859-1/german'), nls_like('a?b', 'a€b', NULL, 'ISO8859-1/german')", "1|0"},
    {"nls_like('A€%', 'a€?', NULL, 'ISO8859-1/german'), nls_like('a', 'a' || x'ff', NULL, 'ISO8859-1/german')", "1|0"},
    // Search: characters from 1, over a NUL, past a "?" that stands for something else.
    {"nls_find('Strasse in MÜNCHEN', 'münchen'), nls_find('abc', ''), nls_find('abc', 'd')", "12|1|0"},
    {"nls_find('a?b€c', '€', 'ISO8859-1/german'), nls_find('a€b?c', '?', 'ISO8859-1/german')", "4|4"},
    {"nls_find('€€ä'||char(0)||'€Ä', '€ä', '1252/german', 'exact'), nls_find('日本語', '語', 'SHIFT-JIS/basic')",
     "2|3"},
    {"nls_find('x'||char(0)||'あいう', 'う', 'EUCJIS/basic')", "5"},
    // Case: tables, broken bytes and NULs stay.
    {"nls_upper('straße é'), nls_lower('ÄÖÜ ΣΑΣ'), nls_upper('istanbul', 'turkish')", "STRAßE É|äöü σασ|İSTANBUL"},
    {"hex(nls_upper(CAST(x'61ff6200c3a4' AS TEXT))), nls_lower(12.5), nls_upper('')", "41FF4200C384|12.5|"},
    {"nls_upper('a', 'none')", "error: nls_upper: UTF-8 has no case table \"none\""},
    // Conversion: text of UTF-8, blobs of the rest, two steps, what is lacked, what is broken.
    {"nls_convert(x'e4f6', '1252', 'UTF-8'), hex(nls_convert('äö', 'UTF-8', 'UTF-16BE'))", "äö|00E400F6"},
    {"typeof(nls_convert('a', 'UTF-8', '1252')), typeof(nls_convert(x'61', '1252', 'UTF-8'))", "blob|text"},
    {"hex(nls_convert(nls_convert('ąę', 'UTF-8', 'ISO8859-2'), 'ISO8859-2', '1250')), nls_convert('', '1252', 'UTF-8')",
     "B9EA|"},
    {"nls_convert('€', 'UTF-8', 'ISO8859-1')", "error: nls_convert: ISO8859-1 lacks a character"},
    {"hex(nls_convert('€', 'UTF-8', 'ISO8859-1', 'subst')), nls_convert('€', 'UTF-8', 'ISO8859-1', 'null')", "3F|NULL"},
    {"nls_convert(x'c3', 'UTF-8', '1252')", "error: nls_convert: "},
    {"nls_convert('a', 'UTF-8', '1253x')", "error: nls_convert: unknown charset \"1253x\" (do you mean 1253"},
    {"nls_convert('a', 'UTF-8', '1252', 'maybe')", "error: nls_convert: unknown way"},
    // Null in, null out.
    {"nls_like(NULL, 'a'), nls_find('a', NULL), nls_key(NULL, 'de'), nls_upper(NULL), nls_convert(NULL, '1252', "
     "'UTF-8')",
     "NULL|NULL|NULL|NULL|NULL"},
    // Keys and names of orders.
    {"nls_key('Müller', '1252/german', 'fold') = nls_key('mÜLLER ', '1252/german', 'fold')", "1"},
    {"nls_key(zeroblob(3), 'UTF-8/basic') = x'000100010001'", "1"},
    {"nls_key(nls_convert(zeroblob(40000), 'IBM037', 'UTF-8'), 'de')",
     "error: nls_key: no collation de is loaded or kept"},
    {"nls_key(replace(hex(zeroblob(20000)), '0', 'a'), '1252/german')",
     "error: nls_key: 1252/german has no key of so long a text; sort with COLLATE instead"},
    {"nls_key('a', 'UTF-16/basic')", "error: nls_key: UTF-16 has NULs in its texts and can't be compared; take UTF-8"},
    {"nls_key('a', '1252/klingon')", "error: nls_key: 1252 has no collation \"klingon\""},
    {"nls_key('a', '1252/german', 'loose')", "error: nls_key: unknown mode"},
    {"nls_key('a', '1252/german' || char(0) || 'x')", "error: nls_key: argument 2 has a NUL in it"},
    // Collations.
    {"nls_collation_load('NoCase', '1252/german')", "error: nls_collation_load: NoCase is SQLite's own"},
    {"nls_collation_load('a/b', '1252/german')", "error: nls_collation_load: a collation's name"},
    {"nls_collation_load('sv', '1252/swedish', 'exact')", "1252/swedish exact"},
    {"nls_collation_load('SV', '1252/Swedish')", "1252/swedish exact"},
    {"nls_collation_load('sv', '1252/swedish', 'fold')",
     "error: nls_collation_load: the collation sv is 1252/swedish, exact"},
    {"'z' < 'å' COLLATE sv, 'a€' = 'a€ ' COLLATE sv, 'a?' = 'a日' COLLATE sv, 'a日' = 'a本' COLLATE sv", "1|1|0|0"},
    {"'a'||char(0)||'b' = 'a' COLLATE sv, 'a' || x'ff' = 'a' || x'fe' COLLATE sv", "0|0"},
    {"nls_key('z', 'sv') < nls_key('å', 'sv'), nls_key('Z', 'sv', 'fold') = nls_key('z', 'sv', 'fold')", "1|1"},
    {"nls_collation_store('fr')",
     "error: nls_collation_store: no collation fr is loaded; SELECT nls_collation_load('fr'"},
    {"nls_collation_store('sv')", "1252/swedish exact"},
    {"nls_collation_store('sv')", "1252/swedish exact"},
    {"nls_collation_open('sv')", "1252/swedish exact"},
    {"count(*), min(name), min(length(record)) FROM nls_collations", "1|sv|2028"},
    {"nls_data_file('/nowhere/convmap.cp')", "error: nls_data_file: " NLS_CONVMAP " is in use"},
};

TEST(SqliteFunctions, AnswerAsTold) {
    Connection connection;
    for (const Row& row : rows) {
        const std::string answer = connection.ask(std::string("SELECT ") + row.expression);
        const std::string want = row.want;
        if (want.starts_with("error")) {
            EXPECT_EQ(answer.substr(0, want.size()), want) << row.expression << "\n" << answer;
        } else {
            EXPECT_EQ(answer, want) << row.expression;
        }
    }
}

// What a schema of somebody else's must not call, and what an index may.
TEST(SqliteFunctions, HaveTheirMarks) {
    Connection connection;
    EXPECT_EQ(
        connection.ask("SELECT count(DISTINCT name) FROM pragma_function_list WHERE name LIKE 'nls~_%' ESCAPE '~'"),
        "10");
    EXPECT_EQ(connection.ask("CREATE TABLE t(x, k AS (nls_key(x, '1252/german')) STORED, u AS (nls_upper(x)))"), "");
    EXPECT_EQ(connection.ask("CREATE INDEX i ON t(nls_lower(x)) WHERE nls_like('a%', x)"), "");
    EXPECT_EQ(connection.ask("CREATE VIEW v AS SELECT nls_collation_load('x', '1252/german') AS n"), "");
    EXPECT_EQ(connection.ask("SELECT n FROM v").substr(0, 13), "error: unsafe");
}

}  // namespace
}  // namespace nls::test
