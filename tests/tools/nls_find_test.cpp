// Text looked for and cut by the command nls: find, like and cut, on the real data file.
#include <gtest/gtest.h>

#include <pty.h>

#include <algorithm>
#include <random>

#include "tests/tools/command.hpp"

namespace {

using nls::test::Answer;
using nls::test::Folder;
using nls::test::run;
using nls::test::Words;
using namespace std::string_literals;

struct Row {
    Words words;
    std::string in;
    int exit;
    std::string out;
    const char* told = "";  // a part of what is told; none for silence
};

void expectAsTold(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        std::string line;
        for (const std::string& word : row.words) line += word + " ";
        const Answer answer = run(row.words, row.in);
        EXPECT_EQ(answer.exit, row.exit) << line << answer.err;
        EXPECT_EQ(answer.out, row.out) << line;
        EXPECT_TRUE(*row.told == 0 ? answer.err.empty() : answer.err.find(row.told) != std::string::npos)
            << line << answer.err;
    }
}

TEST(NlsFind, LinesMatchesAndTrouble) {
    const std::string words = "Haus\nhausen\nMaus\n";
    expectAsTold({
        {{"find", "-l", "1252/german", "aus"}, words, 0, words},
        {{"find", "-l", "1252/german", "Haus"}, words, 0, "Haus\n"},
        {{"find", "-l", "1252/german", "--fold", "Haus"}, words, 0, "Haus\nhausen\n"},
        {{"find", "-l", "UTF-8", "-f", "fold", "HAUS"}, words, 0, "Haus\nhausen\n"},
        {{"find", "-l", "1252", "-v", "H"}, words, 0, "hausen\nMaus\n"},
        {{"find", "-l", "1252", "--count", "us"}, words, 0, "3\n"},
        {{"find", "-l", "1252", "-n", "e"}, words, 0, "2:hausen\n"},
        {{"find", "-l", "1252", "-o", "-n", "a"}, "banana\nx\na", 0, "1:a\n1:a\n1:a\n3:a\n"},
        {{"find", "-l", "1252", "q"}, words, 1, ""},
        {{"find", "-l", "1252", "--count", "q"}, "", 1, "0\n"},
        {{"find", "-l", "1252", ""}, "a\n\n", 0, "a\n\n"},
        {{"find", "-l", "1252", "-o", ""}, "a\n", 0, ""},
        {{"find", "-l", "1252", "--color", "always", "b"}, "abcb", 0, "a\033[01;31mb\033[mc\033[01;31mb\033[m\n"},
        // No match begins inside a character, and letters of the command line become those of the charset.
        {{"find", "-l", "SHIFT-JIS", "A"}, "\x83\x41\nA\n", 0, "A\n"},
        {{"find", "-l", "SHIFT-JIS", "\xE8\xA1\xA8"}, "\x95\x5C\n\x5C\n", 0, "\x95\x5C\n"},
        {{"find", "-l", "1252", "--fold", "\xC3\x89"}, "\xE9t\xE9\n", 0, "\xE9t\xE9\n"},
        {{"find", "-l", "1252", "--raw", "\xE9"}, "\xE9t\xE9\n", 0, "\xE9t\xE9\n"},
        {{"find", "-l", "IBM037", "-n", "a"}, "\x81\x25\x82\x15\x81\x81", 0, "\xF1\x7A\x81\x25\xF3\x7A\x81\x81\x25"},
        // Lines with NULs, and lines that end with one.
        {{"find", "-l", "1252", "b"}, "a\0b\nc\0\n"s, 0, "a\0b\n"s},
        {{"find", "-l", "1252", "ab"}, "a\0b\n"s, 1, ""},
        {{"find", "-l", "1252", "-z", "b"}, "a\0b\0"s, 0, "b\0"s},
        // What is no text is passed over.
        {{"find", "-l", "UTF-8", "b"},
         "a\nx\xC3zb\n\x80"
         "b\n",
         3,
         "x\xC3zb\n\x80"
         "b\n",
         "nls: (standard input):2:2: byte 3 (0xC3): not valid text, and passed over\nnls: (standard input): ... and 1 "
         "line more\n"},
        {{"find", "-l", "SHIFT-JIS", "b"}, "b\x81\n", 3, "b\x81\n", ":1:2: byte 1 (0x81)"},
        {{"find", "-l", "UTF-8"}, "", 2, "", "PATTERN"},
        {{"find", "-l", "1252", "\xE3\x81\x82"}, "", 2, "", "1252 lacks a character of"},
        {{"find", "-l", "1252", "\xFF"}, "", 2, "", "not valid UTF-8; --raw"},
        {{"find", "-l", "UTF-16", "a"}, "", 2, "", "can't be compared"},
        {{"find", "-l", "1252", "-o", "--replace", "x", "a"}, "", 2, "", "excludes"},
        {{"find", "-l", "1252", "--output", "x", "a"}, "", 2, "", "--replace"},
        {{"find", "-l", "1252", "--json", "a"},
         "banana\nx\n",
         0,
         "{\"command\": \"find\", \"order\": \"1252/basic\", \"mode\": \"exact\", \"files\": [{\"file\": \"(standard "
         "input)\", \"lines\": 2, \"selected\": 1, \"matches\": 3, \"linesNotValid\": 0}], \"exit\": 0}\n"},
    });
}

TEST(NlsFind, ReplacesAndLosesNothing) {
    expectAsTold({
        {{"find", "-l", "1252", "--replace", "oo", "a"}, "banana\r\n\nx", 0, "boonoonoo\r\n\nx"},
        {{"find", "-l", "1252", "--replace", "", "an"}, "banana", 0, "ba"},
        {{"find", "-l", "1252", "--replace", "b", "aa"}, "aaaaa\n", 0, "bba\n"},
        {{"find", "-l", "1252", "--replace", "!", ""}, "a\n\nb", 0, "a!\n!\nb!"},
        {{"find", "-l", "1252", "--replace", "x", "q"}, "a\0b\n\xFF"s, 1, "a\0b\n\xFF"s},
        {{"find", "-l", "1252", "--fold", "--replace", "\xC3\xBC", "UE"}, "MuellerUe\n", 0, "M\xFCller\xFC\n"},
        {{"find", "-l", "UTF-8", "--replace", "y", "x"},
         "x\xE3\x81x\0\x80\x80x"s,
         3,
         "y\xE3\x81y\0\x80\x80y"s,
         "byte 1 (0xE3)"},
    });
    const Folder folder;
    const std::string file = folder.put("in", "one\ntwo\n");
    EXPECT_EQ(run({"find", "-l", "1252", "--replace", "1", "one", file, "--output", file}).exit, 0);
    EXPECT_EQ(folder.get("in"), "1\ntwo\n");
    EXPECT_EQ(run({"find", "-l", "1252", "--replace", "2", "two", file, folder.path("none"), "--output", file}).exit,
              4);
    EXPECT_EQ(folder.get("in"), "1\ntwo\n");
}

TEST(NlsFind, SeveralFiles) {
    const Folder folder;
    const std::string a = folder.put("a", "x\ny\n"), b = folder.put("b", "y"), none = folder.path("none");
    EXPECT_EQ(run({"find", "-l", "UTF-8", "y", a, b}).out, a + ":y\n" + b + ":y\n");
    EXPECT_EQ(run({"find", "-l", "UTF-8", "-c", "x", a, b}).out, a + ":1\n" + b + ":0\n");
    const Answer answer = run({"find", "-l", "UTF-8", "y", none, b});
    EXPECT_EQ(answer.exit, 4);
    EXPECT_EQ(answer.out, b + ":y\n");
    EXPECT_NE(answer.err.find("none: No such file"), std::string::npos);
}

TEST(NlsFind, ColorsOnATerminalAlone) {
    for (const Words& environment : {Words{}, Words{"NO_COLOR=1"}}) {
        const Folder folder;
        int terminal = 0, side = 0;
        ASSERT_EQ(openpty(&terminal, &side, nullptr, nullptr, nullptr), 0);
        const int nowhere = open("/dev/null", O_RDWR);
        const Words words{"find", "-l", "1252", "b", folder.put("in", "abc\n")};
        EXPECT_EQ(nls::test::ended(nls::test::start(NLS_COMMAND, words, nowhere, side, nowhere, environment)), 0);
        char seen[256];
        const ssize_t got = read(terminal, seen, sizeof seen);
        const char* const want = environment.empty() ? "a\033[01;31mb\033[mc\r\n" : "abc\r\n";
        EXPECT_EQ(std::string(seen, static_cast<std::size_t>(std::max<ssize_t>(got, 0))), want);
        for (const int descriptor : {terminal, side, nowhere}) close(descriptor);
    }
}

// Few letters, so that much is found; lines up to many times the windows in which they are searched.
std::string randomLine(std::mt19937& random, std::size_t length) {
    static const char* const letters[] = {"a", "A", "b", "\xC3\xA9", "\xC3\x89", "\xE3\x81\x82", "\xF0\x9F\x98\x80"};
    std::string line;
    while (line.size() < length) line += letters[random() % 8 % 7];
    return line;
}

std::string replacedPlainly(std::string text, const std::string& pattern, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(pattern, at)) != std::string::npos; at += replacement.size())
        text.replace(at, pattern.size(), replacement);
    return text;
}

TEST(NlsFind, LongLinesAreSearchedWhole) {
    std::mt19937 random{1};
    for (const std::size_t patternLength : {1U, 2U, 5U, 700U, 5000U}) {
        const std::string pattern = randomLine(random, patternLength);
        std::string text;
        for (const std::size_t length : {100U, 4000U, 33000U, 200000U}) {
            for (int i = 0; i < 3; ++i) text += randomLine(random, random() % length) + pattern;
            text += "\n";
        }
        const Answer answer = run({"find", "-l", "UTF-8", "--replace", "<>", pattern}, text);
        EXPECT_EQ(answer.exit, 0);
        EXPECT_TRUE(answer.out == replacedPlainly(text, pattern, "<>")) << patternLength;
    }
}

TEST(NlsLike, WholeLines) {
    const std::string names = "Andersson\nJohansson\nBerg\n\xC5kesson\n";
    expectAsTold({
        {{"like", "-l", "1252/swedish", "%sson"}, names, 0, "Andersson\nJohansson\n\xC5kesson\n"},
        {{"like", "-l", "1252/swedish", "--fold", "\xC3\xA5%"}, names, 0, "\xC5kesson\n"},
        {{"like", "-l", "1252/swedish", "B_rg"}, names, 0, "Berg\n"},
        {{"like", "-l", "1252/swedish", "ber"}, names, 1, ""},
        {{"like", "-l", "1252/swedish", "-v", "-n", "%s%"}, names, 0, "3:Berg\n"},
        {{"like", "-l", "1252/swedish", "-c", "%"}, names, 0, "4\n"},
        {{"like", "-l", "UTF-8", "_"}, "\xE3\x81\x82\nab\n\n", 0, "\xE3\x81\x82\n"},
        {{"like", "-l", "SHIFT-JIS", "%\xE8\xA1\xA8"}, "a\x95\x5C\n\x5C", 0, "a\x95\x5C\n"},
        {{"like", "-l", "1252", "--escape", "\\", "100\\%"}, "100%\n1000\n", 0, "100%\n"},
        {{"like", "-l", "1252", "--escape", "\xC3\xA9", "a\xC3\xA9__"}, "a_b\nabc\n", 0, "a_b\n"},
        {{"like", "-l", "IBM037", "%\xC3\xA9_"}, "\x6C\x51\x81\x25\x51\x25", 0, "\x6C\x51\x81\x25"},
        {{"like", "-l", "1252", "--escape", "\\", "a\\b"}, "ab\n", 2, "", "the escape stands in front of"},
        {{"like", "-l", "1252", "--escape", "ab", "a"}, "ab\n", 2, "", "--escape takes one character"},
        {{"like", "-l", "1252", "a%"}, "a\0b\nab\n"s, 3, "ab\n", ":1:2: byte 1 (0x00): a NUL inside a line"},
        {{"like", "-l", "1252", "-v", "x"}, "a\0b\nab\n"s, 3, "ab\n", "a NUL inside a line"},
        {{"like", "-l", "UTF-8", "a%b"}, "a\xC3zb\n", 3, "a\xC3zb\n", ":1:2: byte 1 (0xC3): not valid text"},
        {{"like", "-l", "1252", "a", "/no/file"}, "", 4, "", "No such file"},
    });
}

TEST(NlsCut, NeverCutsACharacter) {
    const std::string text = "a\xE3\x81\x82\xE3\x81\x84z\n\nxy";
    expectAsTold({
        {{"cut", "-b", "1,4"}, text, 0, "a\xE3\x81\x82\n\nxy"},
        {{"cut", "-b", "1,6"}, text, 0, "a\xE3\x81\x82\n\nxy"},
        {{"cut", "-b", "3,5"}, text, 0, "\xE3\x81\x84\n\n"},
        {{"cut", "-b", "2"}, text, 0, "\xE3\x81\x82\xE3\x81\x84z\n\ny"},
        {{"cut", "-b", "1,0"}, text, 0, "\n\n"},
        {{"cut", "-b", "9"}, text, 0, "\n\n"},
        {{"cut", "-b", "1,99999999999"}, text, 0, text},
        {{"cut", "-f", "SHIFT-JIS", "-b", "1,3"}, "\x81\x40\x81\x40\n", 0, "\x81\x40\n"},
        {{"cut", "-b", "2,4"}, "12\0"s + "3456\n", 0, "2\0"s + "34\n"},
        {{"cut", "-z", "-b", "2,1"}, "12\0"s + "3456\0"s, 0, "2\0"s + "4\0"s},
        {{"cut", "-b", "0,1"}, "", 2, "", "no range"},
        {{"cut", "-b", "1,-1"}, "", 2, "", "no range"},
        {{"cut", "-b", "x"}, "", 2, "", "no range"},
        {{"cut", "-f", "UTF-16", "-b", "1"}, "", 2, "", "convert it to UTF-8"},
        {{"cut", "-b", "1", "/no/file"}, "", 4, "", "No such file"},
    });
}

// What is left out at the end of one range begins the next one, as long as the ranges begin where characters do.
TEST(NlsCut, EveryRangeOfALine) {
    std::mt19937 random{2};
    const std::string line = randomLine(random, 60);
    for (std::size_t start = 1; start <= line.size(); start += 11) {
        for (std::size_t count = 1; count < 20; count += 6) {
            std::string want;
            for (std::size_t at = 0; at < line.size();) {
                std::size_t size = 1;
                while (at + size < line.size() && (static_cast<unsigned char>(line[at + size]) & 0xC0U) == 0x80) ++size;
                if (at + 1 >= start && at + size < start + count) want += line.substr(at, size);
                at += size;
            }
            const std::string range = std::to_string(start) + "," + std::to_string(count);
            EXPECT_EQ(run({"cut", "-b", range}, line).out, want) << range;
        }
    }
}

}  // namespace
