// Long and random text through the command nls: chunks, places and losses.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "tests/tools/command.hpp"

namespace {

using nls::test::Answer;
using nls::test::Folder;
using nls::test::run;
using nls::test::Words;

std::vector<std::string> charsets() {
    std::istringstream lines(run({"list"}).out);
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);)
        if (!line.ends_with("no conversion")) names.push_back(line.substr(0, line.find(' ')));
    return names;
}

// Characters of the alphabets at hand, as UTF-8.
std::string mixedText(std::mt19937& random, std::size_t length) {
    static const char* const letters[] = {"a",
                                          "Z",
                                          "\n",
                                          " ",
                                          "\xC3\xBC",
                                          "\xD0\xB6",
                                          "\xE3\x81\x82",
                                          "\xE6\xBC\xA2",
                                          "\xE2\x82\xAC",
                                          "\xED\x95\x9C",
                                          "\xE0\xB8\x81",
                                          "\xF0\x9F\x98\x80"};
    std::string text;
    while (text.size() < length) text += letters[random() % std::size(letters)];
    return text;
}

// Half a megabyte at every alignment of the chunks to the characters.
TEST(NlsStream, LongTextIsCutBetweenCharacters) {
    std::string body;
    while (body.size() < 500000) body += "\xE6\xBC\xA2\xE5\xAD\x97\xE3\x81\x82 log";
    const Folder folder;
    for (const char* charset : {"UTF-8", "SHIFT-JIS", "EUCJIS", "CP936", "UTF-16", "UTF-16BE", "UTF-32BE"}) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            const std::string text = std::string(shift, 'x') + body;
            const std::string utf8 = folder.put("utf8", text);
            EXPECT_EQ(run({"convert", "-t", charset, "-o", folder.path("coded"), utf8}).exit, 0) << charset;
            EXPECT_EQ(run({"convert", "-f", charset, "-o", folder.path("back"), folder.path("coded")}).exit, 0);
            EXPECT_TRUE(folder.get("back") == text) << charset << shift;
        }
    }
}

TEST(NlsStream, PlacesAreExactBehindAnyNumberOfChunks) {
    std::mt19937 random{11};
    const Folder folder;
    for (int round = 0; round < 6; ++round) {
        std::string text;
        std::ostringstream want;
        uint64_t line = 1;
        uint64_t column = 1;
        while (text.size() < 400000) {
            if (random() % 9000 == 0) {
                want << "(standard input):" << line << ':' << column++ << ": byte " << text.size()
                     << " (0xFE): not valid UTF-8: a byte that begins no character\n";
                text += '\xFE';
            } else if (random() % 60 == 0) {
                text += '\n';
                ++line;
                column = 1;
            } else {
                text += random() % 2 == 0 ? "k" : "\xE6\xBC\xA2";
                ++column;
            }
        }
        const Answer answer = run({"check", "--limit", "0"}, text);
        EXPECT_TRUE(answer.out.starts_with(want.str()));
        const Answer dropped = run({"convert", "-c", "-s"}, text);
        text.erase(std::remove(text.begin(), text.end(), '\xFE'), text.end());
        EXPECT_TRUE(dropped.out == text);
    }
}

// Every charset: what doesn't convert is dropped, so what is left converts there and back without a word.
TEST(NlsStream, WhatIsLeftOfMixedTextConvertsBothWays) {
    std::mt19937 random{3};
    const std::string text = mixedText(random, 20000);
    for (const std::string& charset : charsets()) {
        const Answer there = run({"convert", "-c", "-s", "-t", charset}, text);
        EXPECT_TRUE(there.exit == 0 || there.exit == 3) << charset << there.err;
        EXPECT_EQ(run({"check", "-f", charset}, there.out).exit, 0) << charset;
        const Answer back = run({"convert", "-f", charset}, there.out);
        EXPECT_EQ(back.exit, 0) << charset << back.err;
        const Answer again = run({"convert", "--lossless", "-t", charset}, back.out);
        EXPECT_EQ(again.exit, 0) << charset << again.err;
        EXPECT_TRUE(again.out == there.out) << charset;
    }
}

// Random bytes under every charset: never a crash, and what is called lossless is.
TEST(NlsStream, RandomBytesUnderEveryCharset) {
    std::mt19937 random{5};
    for (const std::string& charset : charsets()) {
        std::string bytes;
        for (int i = 0; i < 3000; ++i)
            bytes += static_cast<char>(random() % (i < 1500 ? 256 : 128) + (i < 1500 ? 0 : 64));
        const Answer checked = run({"check", "-f", charset}, bytes);
        EXPECT_LE(checked.exit, 1) << charset;
        const Answer strict = run({"convert", "-f", charset}, bytes);
        EXPECT_EQ(strict.exit, checked.exit) << charset;
        const Answer loose = run({"convert", "-f", charset, "--subst"}, bytes);
        EXPECT_EQ(loose.exit, checked.exit == 0 ? 0 : 3) << charset;
        EXPECT_EQ(run({"check"}, loose.out).exit, 0) << charset;
        const Answer sound = run({"convert", "-f", charset, "-c", "-s"}, bytes);
        const Answer lossless = run({"convert", "-t", charset, "--lossless"}, sound.out);
        if (lossless.exit != 0) continue;
        EXPECT_TRUE(run({"convert", "-f", charset}, lossless.out).out == sound.out) << charset;
    }
}

TEST(NlsJson, EveryCommandAnswersOneObject) {
    const Folder folder;
    const std::string name = folder.put("odd \"name\"\n\xFF", "a\xFF\n");
    const std::string out = folder.path("out");
    const struct {
        Words words;
        int exit;
    } rows[] = {
        {{"--json", "list"}, 0},
        {{"show", "charset", "1252", "--json"}, 0},
        {{"dump", "--json"}, 0},
        {{"check", "--json", name, folder.path("none")}, 4},
        {{"count", "--json", name}, 1},
        {{"convert", "--json", "-o", out, name}, 1},
        {{"convert", "--json", "--subst", "-o", out, name}, 3},
        {{"convert", "--json", "-t", "nothing", name}, 2},
    };
    for (const auto& row : rows) {
        const Answer answer = run(row.words);
        EXPECT_EQ(answer.exit, row.exit) << answer.err;
        EXPECT_EQ(answer.out[0], '{') << row.words[0];
        const Answer parsed = run({"-m", "json.tool", folder.put("answer", answer.out)}, "", {}, NLS_PYTHON);
        EXPECT_EQ(parsed.exit, 0) << parsed.err << answer.out.substr(0, 500);
    }
    const std::string told = run({"--json", "check", name}).out;
    EXPECT_NE(told.find("\"line\": 1, \"column\": 2, \"offset\": 1, \"bytes\": \"0xFF\""), std::string::npos) << told;
}

}  // namespace
