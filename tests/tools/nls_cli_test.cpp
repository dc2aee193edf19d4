// The command nls and the real data file, from outside.
#include <gtest/gtest.h>

#include <pty.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include "tests/tools/command.hpp"

namespace {

using nls::test::Answer;
using nls::test::Folder;
using nls::test::run;
using nls::test::Words;
using namespace std::string_literals;

Words split(const std::string& line, char between = ' ') {
    std::istringstream words(line);
    Words all;
    for (std::string word; std::getline(words, word, between);) all.push_back(word);
    return all;
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A call as it is typed, what comes in, the exit code, what goes out, and a part of what is told; none for silence.
TEST(NlsConvert, TextAndTrouble) {
    const struct {
        const char* line;
        std::string in;
        int exit;
        std::string out;
        const char* told = "";
    } rows[] = {
        {"convert -t SHIFT-JIS", "A\xE6\xBC\xA2\n", 0, "A\x8A\xBF\n"},
        {"convert -f shift-jis -t utf-8", "A\x8A\xBF\n", 0, "A\xE6\xBC\xA2\n"},
        {"-f SHIFT-JIS -t UTF-8", "\x8A\xBF", 0, "\xE6\xBC\xA2"},
        {"--from-code=KOI8-R --to-code=1251", "\xC1", 0, "\xE0"},
        {"convert -f ISO8859-2 -t IBM852", "\xB3", 0, "\x88"},
        {"convert -f UTF-16BE -t UTF-16LE", "\0A\xD8\x3D\xDE\0"s, 0, "A\0\x3D\xD8\0\xDE"s},
        {"convert -t 1252", "a\0b"s, 0, "a\0b"s},
        {"convert -t SHIFT-JIS", "", 0, ""},
        {"convert -t KOI8-R", "x\ny\xE2\x82\xAC\n", 1, "x\ny",
         "(standard input):2:2: byte 3 (0xE282AC): no character in KOI8-R for U+20AC\n"},
        // It shares the euro's place in the table.
        {"convert -t 1252", "\xE3\x82\xAC", 1, "", ":1:1: byte 0 (0xE382AC): no character in 1252 for U+30AC\n"},
        // What is lost in a middle step isn't lost from sight.
        {"convert -f SHIFT-JIS -t UTF-32LE", "\x85\x40", 1, "", "(0x8540): no character of SHIFT-JIS"},
        {"convert -t 1252 --subst", "a\xE3\x82\xAC\xFFz", 3, "a??z", "nls: 2 substitutes in the output"},
        {"convert --subst", "a\xC0z", 3, "a\xEF\xBF\xBDz", ":1:2: byte 1 (0xC0)"},
        {"convert -t SHIFT-JIS --subst", "\xC3\xBC", 3, "\x81\xAC", "(0xC3BC)"},
        {"convert -t IBM037 --subst", "\xE2\x82\xAC", 3, "\x6F", "U+20AC"},
        {"convert -t UTF-32LE", "\xEF\xBF\xBD", 0, "\xFD\xFF\0\0"s},
        {"convert -c -t ISO8859-1", "a\xE2\x82\xAC\xE4z", 3, "az", "nls: 2 characters dropped"},
        {"-c -s -t ISO8859-1", "a\xE2\x82\xACz", 3, "az"},
        {"-t ISO8859-1//IGNORE", "a\xE2\x82\xACz", 3, "az", "1 character dropped"},
        {"convert --lossless -f SHIFT-JIS", "\x81\xE6", 0, "\xE2\x88\xB5"},
        {"convert --lossless -f SHIFT-JIS", "\x87\x9A", 1, "", "(0x879A): not lossless: U+2235 comes back as 0x81E6\n"},
        {"convert --lossless -t SHIFT-JIS", "\xC2\xA5", 1, "",
         "not lossless: U+00A5 becomes 0x5C, which comes back as U+005C\n"},
        {"convert -t SHIFT-JIS", "\xC2\xA5", 0, "\\"},
    };
    for (const auto& row : rows) {
        const Answer answer = run(split(row.line), row.in);
        EXPECT_EQ(answer.exit, row.exit) << row.line << ": " << answer.err;
        EXPECT_EQ(answer.out, row.out) << row.line;
        EXPECT_TRUE(*row.told == 0 ? answer.err.empty() : holds(answer.err, row.told)) << row.line << answer.err;
    }
}

TEST(NlsCheck, TellsEachBadPlace) {
    const struct {
        const char* charset;
        std::string in;
        const char* places;  // a part of each line, with "|" between
    } rows[] = {
        {"UTF-8", "a\nb\x80z", ":2:2: byte 3 (0x80): not valid UTF-8: a trail byte without a first byte"},
        {"UTF-8", "\xC0\xAF", "(0xC0): not valid UTF-8: an overlong form|byte 1 (0xAF): not valid UTF-8: a trail"},
        {"UTF-8", "\xE0\x80\x80", "(0xE0): not valid UTF-8: an overlong|byte 1 (0x80)|byte 2 (0x80)"},
        {"UTF-8", "\xED\xA0\x80", "(0xED): not valid UTF-8: a surrogate|byte 1 (0xA0)|byte 2 (0x80)"},
        {"UTF-8", "\xF4\x90\x80\x80", "(0xF4): not valid UTF-8: a value above U+10FFFF|byte 1|byte 2|byte 3"},
        {"UTF-8", "\xF5\xFF", "(0xF5): not valid UTF-8: a byte that begins no|byte 1 (0xFF)"},
        {"UTF-8", "\xE3\x81xy", "1:1: byte 0 (0xE381): not valid UTF-8: a character cut short"},
        {"UTF-8", "ab\xF0\x9F\x98", "1:3: byte 2 (0xF09F98): cut off by the end of the text"},
        {"UTF-16LE", "a\0\0\xD8z\0"s, "1:2: byte 2 (0x00D8): a high surrogate without a low"},
        {"UTF-16LE", "\0\0a\0\0\0\x3D\xD8\0\xDE\0\xD8\0\0"s, "1:5: byte 10 (0x00D8): a high surrogate without a low"},
        {"UTF-32BE", "\0\0\0\0\0\x10\xFF\xFF\0\0\0\0"s, ""},
        {"UTF-16BE", "\xDC\0\0a"s, "1:1: byte 0 (0xDC00): a low surrogate without a high"},
        {"UTF-16", "a", "byte 0 (0x61): cut off by the end"},
        {"UTF-32LE", "\0\xD8\0\0\0\0\x11\0"s, "a surrogate|byte 4 (0x00001100): a value above"},
        {"UTF-32BE", "\0\0\0a\0\0"s, "1:2: byte 4 (0x0000): cut off by the end"},
        {"SHIFT-JIS", "\x82\xA0\x81 \x85\x40\xFD",
         "1:2: byte 2 (0x81): a first byte without its trail byte|1:4: byte 4 (0x8540): no character of SHIFT-JIS|"
         "1:5: byte 6 (0xFD): no character of SHIFT-JIS"},
        {"SHIFT-JIS", "\x81\0\n\x81"s, "byte 0 (0x81): a first byte|2:1: byte 3 (0x81): cut off"},
        {"620-2533", "\xA1\xDB", "1:2: byte 1 (0xDB): no character of 620-2533"},
        {"IBM037", "\xC1\x15\xC1\x25\xC1", ""},
    };
    for (const auto& row : rows) {
        const Answer answer = run({"check", "-f", row.charset}, row.in);
        EXPECT_EQ(answer.exit, *row.places == 0 ? 0 : 1) << row.charset;
        std::size_t pos = 0;
        for (const std::string& place : split(row.places, '|')) {
            const std::size_t end = answer.out.find('\n', pos);
            EXPECT_TRUE(holds(answer.out.substr(pos, end - pos), place)) << place << "\nin " << answer.out;
            pos = end + 1;
        }
        EXPECT_EQ(answer.out.find('\n', pos), answer.out.size() - 1) << "one closing line: " << answer.out;
    }
}

TEST(NlsCheck, GoesOnBehindAFileThatCannotBeRead) {
    const Folder folder;
    const std::string good = folder.put("good", "abc\n");
    const Answer answer = run({"check", folder.path("none"), folder.put("bad", "\xFF"), good});
    EXPECT_EQ(answer.exit, 4);
    EXPECT_TRUE(holds(answer.err, "none: No such file"));
    EXPECT_TRUE(holds(answer.out, "bad: not valid UTF-8")) << answer.out;
    EXPECT_TRUE(holds(answer.out, good + ": valid UTF-8, 4 characters\n"));
    EXPECT_EQ(run({"check", good, folder.path("bad")}).exit, 1);
    EXPECT_EQ(run({"check", good, good}).exit, 0);
}

TEST(NlsCheck, TellsAtMostSoMany) {
    const std::string bad(50, '\xFF');
    EXPECT_TRUE(holds(run({"check"}, bad).out,
                      "1:20: byte 19 (0xFF): not valid UTF-8: a byte that begins no character\n"
                      "... and 30 more\n"));
    EXPECT_TRUE(holds(run({"check", "--limit", "0"}, bad).out, "1:50: byte 49"));
}

TEST(NlsCount, BytesCharactersColumns) {
    const struct {
        const char* charset;
        std::string in;
        const char* numbers;
    } rows[] = {
        {"UTF-8", "a\xC3\xBC\xE6\xBC\xA2\n", "           7            4            4  "},
        {"UTF-8", "\xE0\xB8\x81\xE0\xB8\xB4\r\n", "           8            4            1  "},
        {"SHIFT-JIS", "a\xB1\x8A\xBF\n", "           5            4            4  "},
        {"EUCJIS", "\x8E\xB1\xB4\xC1", "           4            2            3  "},
        {"UTF-16LE", std::string("a\0\x22\x6F\n\0", 6), "           6            3            3  "},
        {"1252", std::string("a\0\x80\n", 4), "           4            4            2  "},
        {"IBM037", "\xC1\x15\xC1\x25", "           4            4            2  "},
    };
    for (const auto& row : rows) {
        const Answer answer = run({"count", "-f", row.charset}, row.in);
        EXPECT_EQ(answer.exit, 0);
        EXPECT_TRUE(holds(answer.out, row.numbers)) << row.charset << "\n" << answer.out;
    }
    EXPECT_EQ(run({"count"}, "\xFF").exit, 1);
}

TEST(NlsConvert, OutputAppearsWhenItIsComplete) {
    const Folder folder;
    const std::string in = folder.put("in", "gr\xC3\xBC\xC3\x9F\xE2\x82\xAC\n");
    const std::string out = folder.put("out", "before");
    chmod(out.c_str(), 0640);

    EXPECT_EQ(run({"convert", "-t", "ISO8859-1", "-o", out, in}).exit, 1);
    EXPECT_EQ(folder.get("out"), "before");
    EXPECT_EQ(run({"convert", "-o", out, in, folder.path("none")}).exit, 4);
    EXPECT_EQ(folder.get("out"), "before");
    EXPECT_EQ(run({"convert", "-t", "ISO8859-15", "-o", out, in, in}).exit, 0);
    EXPECT_EQ(folder.get("out"), "gr\xFC\xDF\xA4\ngr\xFC\xDF\xA4\n");
    struct stat status {};
    EXPECT_EQ(stat(out.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);

    std::filesystem::create_symlink("in", folder.path("link"));
    EXPECT_EQ(run({"convert", "-t", "1252", "-o", folder.path("link"), in}).exit, 0) << "in place, through a link";
    EXPECT_EQ(folder.get("in"), "gr\xFC\xDF\x80\n");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_EQ(folder.names(), (std::set<std::string>{"in", "link", "out"}));
}

TEST(NlsConvert, ASignalLeavesNothingBehind) {
    const Folder folder;
    folder.put("out", "before");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int nowhere = open("/dev/null", O_RDWR);
    const pid_t child = nls::test::start(NLS_COMMAND, {"convert", "-o", folder.path("out")}, ends[0], nowhere, nowhere);
    for (int i = 0; i < 500 && folder.names().size() < 2; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(folder.names().size(), 2U);
    kill(child, SIGTERM);
    EXPECT_EQ(nls::test::ended(child), 1000 + SIGTERM);
    for (const int descriptor : {ends[0], ends[1], nowhere}) close(descriptor);
    EXPECT_EQ(folder.names(), std::set<std::string>{"out"});
    EXPECT_EQ(folder.get("out"), "before");
}

TEST(NlsFiles, TroubleEndsWithFour) {
    const Folder folder;
    const std::string in = folder.put("in", "text\n");
    EXPECT_EQ(run({"convert", in, "-o", "/dev/full"}).exit, 4);
    EXPECT_EQ(run({"convert", in, "-o", "/dev/null"}).exit, 0);
    EXPECT_EQ(run({"convert", in, "-o", folder.path("no/out")}).exit, 4);
    EXPECT_EQ(run({"convert", in, "-o", folder.path("")}).exit, 4);
    EXPECT_EQ(run({"convert", folder.path("none")}).exit, 4);
    EXPECT_EQ(run({"convert", folder.path("")}).exit, 4);
    EXPECT_EQ(run({"count", folder.path("none")}).exit, 4);
    EXPECT_EQ(folder.names(), std::set<std::string>{"in"});

    const int full = open("/dev/full", O_WRONLY);
    const int nowhere = open("/dev/null", O_RDWR);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    for (const Words& words : {Words{"convert", NLS_CONVMAP, "-c", "-s"}, Words{"dump"}, Words{"list"}}) {
        EXPECT_EQ(nls::test::ended(nls::test::start(NLS_COMMAND, words, nowhere, full, nowhere)), 4) << words[0];
        EXPECT_EQ(nls::test::ended(nls::test::start(NLS_COMMAND, words, nowhere, ends[1], nowhere)), 4) << words[0];
    }
    for (const int descriptor : {full, nowhere, ends[1]}) close(descriptor);
}

TEST(NlsUsage, WrongWordsEndWithTwo) {
    const struct {
        const char *line, *told;
    } rows[] = {
        {"", "say what to do"},
        {"chek", "do you mean check?"},
        {"convert --frob", "--frob"},
        {"convert -c --subst", "excludes"},
        {"convert --limit many", "--limit"},
        {"convert -t sjis", "do you mean SHIFT-JIS?"},
        {"check -f utf8", "do you mean UTF-8"},
        {"show charset koi8r", "do you mean KOI8-R?"},
        {"show colour KOI8-R", "colour"},
        {"show conversion KOI8-R", "conversion CHARSET TARGET"},
        {"list charsets KOI8-R", "takes no charset"},
        {"list cases nowhere", "unknown charset"},
        {"convert -f a-name-much-longer-than-any-charset-of-the-file", "unknown charset"},
        {"convert -t 1252//TRANSLIT", "--subst"},
    };
    for (const auto& row : rows) {
        const Answer answer = run(split(row.line));
        EXPECT_EQ(answer.exit, 2) << row.told;
        EXPECT_TRUE(holds(answer.err, row.told)) << answer.err;
        EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
    }
    for (const char* command : {"convert", "check", "count", "find", "like", "cut", "list", "show", "dump"}) {
        EXPECT_EQ(run({command, "--help"}).exit, 0);
    }
    EXPECT_TRUE(holds(run({"--help"}).out, "Examples:"));
    EXPECT_TRUE(holds(run({"--version"}).out, "nls "));
}

TEST(NlsData, IsFoundWhereItIsNamed) {
    const Folder folder;
    std::filesystem::copy(NLS_CONVMAP, folder.path("convmap.cp"));
    const std::string other = folder.put("other", "4242");
    EXPECT_EQ(run({"-D", folder.path("convmap.cp"), "list"}).exit, 0);
    EXPECT_EQ(run({"list", "-D", other}).exit, 4);
    EXPECT_EQ(run({"list"}, "", {"ZELCONV=" + other}).exit, 4);
    EXPECT_EQ(run({"list", "-D", folder.path("convmap.cp")}, "", {"ZELCONV=" + other}).exit, 0);
    EXPECT_TRUE(holds(run({"--json", "list"}, "", {"QRD=" + folder.path("")}).out, folder.path("convmap.cp")));
    EXPECT_TRUE(holds(run({"--json", "list"}, "", {"QRD=/nowhere"}).out, "share/nls/convmap.cp"));
    EXPECT_TRUE(holds(run({"list"}, "", {"ZELCONV=/nowhere/x"}).err, "/nowhere/x: No such file"));
}

TEST(NlsData, ListShowAndDumpSeeEveryRecord) {
    const std::string list = run({"list"}).out;
    EXPECT_TRUE(holds(list, "SHIFT-JIS     multi-byte\n"));
    EXPECT_EQ(run({"-l"}).out, list);
    const auto linesOf = [](const Words& words) {
        const Answer listed = run(words);
        EXPECT_EQ(listed.exit, 0) << listed.err;
        return std::count(listed.out.begin(), listed.out.end(), '\n');
    };
    std::ptrdiff_t cases = 0;
    std::ptrdiff_t ends = 0;  // of conversions
    for (std::size_t pos = 0; pos < list.size(); pos = list.find('\n', pos) + 1) {
        const std::string name = list.substr(pos, list.find(' ', pos) - pos);
        const Answer shown = run({"show", "charset", name});
        EXPECT_EQ(shown.exit, 0) << name << shown.err;
        EXPECT_TRUE(holds(shown.out, "charset       " + name + "\n"));
        cases += linesOf({"list", "cases", name});
        ends += linesOf({"list", "conversions", name});
    }
    EXPECT_EQ(cases, linesOf({"list", "cases"}));
    EXPECT_EQ(ends, 2 * linesOf({"list", "conversions"}));
    EXPECT_EQ(linesOf({"list", "collations"}), linesOf({"list", "--collations"}) + linesOf({"list", "--icu"}));
    EXPECT_TRUE(holds(run({"show", "conversion", "1252", "UCS2"}).out, "scratch       needed\n"));
    EXPECT_TRUE(
        holds(run({"show", "charset", "KOI8-R"}).out, "A0   \xE2\x95\x90  \xE2\x95\x91  \xE2\x95\x92  \xD1\x91"));
    const std::string dump = run({"dump", "--arrays", NLS_CONVMAP}).out;
    EXPECT_TRUE(holds(dump, "type 51, single-byte charset to UTF-8")) << dump.substr(0, 300);
    EXPECT_FALSE(holds(dump, "the file ends"));
    const std::string contents = run({"dump", "--contents", NLS_CONVMAP}).out;
    EXPECT_EQ(std::count(contents.begin(), contents.end(), '#'),
              std::count(contents.begin(), contents.end(), '\n') - 1);
}

// Nothing but a message and exit code 4 or an answer: whatever the data file holds, and wherever it ends.
TEST(NlsData, ABrokenFileIsRefusedOrRead) {
    const Folder folder;
    const std::string whole = [] {
        std::ifstream file(NLS_CONVMAP, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    unsigned state = 1;
    for (int round = 0; round < 9; ++round) {
        std::string broken = whole;
        state = state * 1103515245 + 12345;
        if (round % 3 == 0) {
            broken.resize(state / 65536 % (round % 2 == 0 ? 40000 : 1000000));
        } else {
            for (int i = 0; i < 3000; ++i) {
                state = state * 1103515245 + 12345;
                const std::size_t place = round % 3 == 1 ? state / 65536 * 17 % 20000 : state / 16 % broken.size();
                broken[place] = static_cast<char>(state >> 20);
            }
        }
        if (round % 2 == 0 && broken.size() > 16) broken.replace(0, 16, whole, 0, 16);
        const std::string data = folder.put("convmap.cp", broken);
        const Answer dumped = run({"dump", "--arrays", data});
        EXPECT_TRUE(dumped.exit == 0 || dumped.exit == 4) << dumped.exit << dumped.err;
        for (const Words& words : {Words{"convert", "-f", "SHIFT-JIS", "-t", "1252", "-c"},
                                   Words{"convert", "-f", "EUCJIS", "-t", "UTF-16", "--subst"},
                                   Words{"count", "-f", "CP949"}, Words{"show", "charset", "1252"}}) {
            Words all{"-D", data};
            all.insert(all.end(), words.begin(), words.end());
            const Answer answer = run(all, "ab\x81\x40\x8A\xBF\xB0\xA1 \xFF\x81");
            EXPECT_LE(answer.exit, 4) << words[0] << answer.err;
        }
    }
}

TEST(NlsProgress, ABarOnATerminalAfterASecond) {
    int terminal = 0;
    int side = 0;
    ASSERT_EQ(openpty(&terminal, &side, nullptr, nullptr, nullptr), 0);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    const int nowhere = open("/dev/null", O_RDWR);
    const pid_t child = nls::test::start(NLS_COMMAND, {"convert", "-t", "UTF-16"}, ends[0], nowhere, side);
    for (int i = 0; i < 13; ++i) {
        EXPECT_EQ(write(ends[1], "0123456789", 10), 10);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    close(ends[1]);
    EXPECT_EQ(nls::test::ended(child), 0);
    close(side);  // so that the terminal ends behind what was written
    std::string text;
    char seen[4096];
    for (ssize_t got = 0; (got = read(terminal, seen, sizeof seen)) > 0;)
        text.append(seen, static_cast<std::size_t>(got));
    for (const int descriptor : {terminal, ends[0], nowhere}) close(descriptor);
    EXPECT_TRUE(holds(text, " B/s  0:01")) << text;
    EXPECT_TRUE(text.ends_with("\r\033[K")) << "and the line is cleared at the end";
}

}  // namespace
