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

// Half a megabyte at every alignment of the chunks to the characters.
TEST(NlsStream, LongTextIsCutBetweenCharacters) {
    std::string body;
    while (body.size() < 500000) body += "\xE6\xBC\xA2\xE5\xAD\x97\xE3\x81\x82 log";
    const Folder folder;
    for (const char* charset : {"UTF-8", "SHIFT-JIS", "EUCJIS", "UTF-16BE"}) {
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
    for (int round = 0; round < 2; ++round) {
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

// Random bytes under a charset of each kind: never a crash, and what is called lossless is.
TEST(NlsStream, RandomBytesUnderEveryKindOfCharset) {
    std::mt19937 random{5};
    for (const std::string charset :
         {"UTF-8", "UTF-16BE", "UTF-32LE", "UCS2", "1252", "IBM037", "SHIFT-JIS", "EUCJIS", "CP936", "ISO6937"}) {
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
