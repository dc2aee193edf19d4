// The extension in the sqlite3 shell: the example of its README, and a database whose ICU has become another.
#include <gtest/gtest.h>

#include "tests/tools/command.hpp"

namespace nls::test {
namespace {

Answer shell(const std::string& database, const std::string& script, Words environment = {}) {
    environment.emplace_back("ZELCONV=" NLS_CONVMAP);
    environment.emplace_back("BINPATHX=" NLS_PACKS);
    return run({"-batch", database}, "SELECT load_extension('" NLS_EXTENSION "');\n" + script, environment);
}

// The SQL of the README's first example stands in front of what it says that comes of it.
TEST(SqliteShell, DoesWhatTheReadmeShows) {
    const std::string page = [] {
        std::ifstream file(NLS_README);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    }();
    const auto block = [&page](const std::string& language) {
        const std::string fence = "```" + language + "\n";
        const std::size_t begin = page.find(fence) + fence.size();
        return page.substr(begin, page.find("```\n", begin) - begin);
    };
    const Folder folder;
    const Answer answer = shell(folder.path("a.db"), block("sql"));
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "\n" + block("text"));
}

TEST(SqliteShell, TellsThatIcuIsAnother) {
    const Folder folder;
    const std::string database = folder.path("a.db");
    const Answer made = shell(database,
                              "SELECT nls_collation_load('de', 'UTF-8/ICU-de', 'exact', 'keep');"
                              "CREATE TABLE t(x COLLATE de PRIMARY KEY); INSERT INTO t VALUES('z'),('ä');"
                              "SELECT x FROM t ORDER BY x;");
    EXPECT_EQ(made.out, "\nUTF-8/ICU-de exact\nä\nz\n") << made.err;
    EXPECT_EQ(shell(database, "SELECT x FROM t ORDER BY x; PRAGMA integrity_check;").out, "\nä\nz\nok\n");
    const Answer other = shell(database, "SELECT x FROM t ORDER BY x;\nSELECT nls_collation_open('de');",
                               {"LD_PRELOAD=" NLS_OTHER_ICU, "NLS_OTHER_COLLATOR=7"});
    EXPECT_EQ(other.out, "\n");
    EXPECT_NE(other.err.find("no such collation sequence: de"), std::string::npos) << other.err;
    EXPECT_NE(other.err.find("would sort otherwise here: it was stored with an ICU of versions"), std::string::npos)
        << other.err;
}

// A comparison can't tell that it failed: the text goes to no place then, and what else was written isn't kept.
TEST(SqliteShell, CommitsNothingAfterAComparisonThatFailed) {
    const Folder folder;
    const std::string longText = "('\u00E4' || printf('%0999d', 0))", count = "SELECT count(*) FROM t;\n";
    const Answer answer =
        shell(folder.path("a.db"),
              ".mode list\nSELECT nls_collation_load('de', 'UTF-8/ICU-de', 'exact', 'keep');\n"
              "CREATE TABLE t(id INTEGER PRIMARY KEY, x COLLATE de); CREATE INDEX i ON t(x);\n"
              "INSERT INTO t(x) VALUES('a');\n"
              "INSERT INTO t(x) VALUES" +
                  longText + ";\n" + count + "BEGIN; INSERT INTO t(x) VALUES('b'); INSERT INTO t(x) VALUES" + longText +
                  ";\n" + "COMMIT;\n" + count + "BEGIN; INSERT INTO t(x) VALUES" + longText + ";\nROLLBACK;\n" +
                  "INSERT INTO t(x) VALUES('b');\n" + count + "PRAGMA integrity_check;\n",
              {"LD_PRELOAD=" NLS_OTHER_ICU, "NLS_OTHER_LONGEST=500"});
    EXPECT_EQ(answer.out, "\nUTF-8/ICU-de exact\n1\n1\n2\nok\n") << answer.err;
}

}  // namespace
}  // namespace nls::test
