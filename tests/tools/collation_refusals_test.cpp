// Collations and case tables: descriptions that the format or the library can't follow are refused, with the place and
// the reason.
#include <gtest/gtest.h>

#include "tests/tools/map_folder.hpp"

namespace nls::test {
namespace {

const std::string kCharsets = "charset UTF-8 LATIN CYRILLIC EBCDIC\nconvert UTF-8 LATIN CYRILLIC EBCDIC\n";

struct Folder : MapFolder {
    Folder() {
        addSmallCharsets(*this);
        charset("EBCDIC", "charset EBCDIC\nkind single-byte\nsource iconv IBM037\n");
        for (const char* const name : {"SHIFT-JIS", "EUCJIS"}) {
            const std::string file = std::string{"charsets/"} + name + ".txt";
            std::filesystem::copy_file(dataFolder() / file, path(file));
        }
        write("collations/basic.txt", "collation basic\norder bytes\n");
        write("collations/points.txt", "collation points\norder code-points\n");
        write("collations/german.txt", "collation german\norder icu de\nletters äß\ndouble-s ß\n");
        write("collations/dutch.txt", "collation dutch\norder icu nl\nletters ë\n");
        write("collations/russian.txt", "collation russian\norder icu ru\nletters ж\n");
        write("case/basic.txt", "case basic\ntake 0000-00FF\n");
    }
};

TEST(CollationRefusals, OfADescription) {
    const std::string icu = "collation X\norder icu de\n", thai = "collation X\norder thai th\n";
    const struct {
        std::string text, message;
    } rows[] = {
        {"", "collations/X.txt: the collation has no name: a line \"collation NAME\" is missing"},
        {"collation Y\norder bytes\n", "collations/X.txt:1: the file of X describes Y"},
        {icu + "letters \xFF\n", "collations/X.txt:3: \"\xFF\" is no UTF-8"},
        {icu + "letters aж\n", "map.list:3: LATIN doesn't carry X: it has no U+0436"},
        {icu + "letters ÿ\n", "map.list:3: LATIN doesn't carry X: it has no U+0178"},
        // Locales. ICU would take the order of no language, or leave out what the name asks for.
        {"collation X\norder icu xx\n", "collations/X.txt:2: ICU has no collator \"xx\"; it would take \"root\""},
        {"collation X\norder icu de_DE\n", "collations/X.txt:2: ICU has no collator \"de_DE\"; it would take \"de\""},
        {"collation X\norder icu de@collation=fonebook\n",
         "collations/X.txt:2: ICU has no collator \"de@collation=fonebook\"; it would take \"de\""},
        // Thai weights.
        {thai, "map.list:3: Thai clusters are of TIS 620, and LATIN isn't: byte A1"},
        {thai + "weights 00 41\n", "collations/X.txt:3: the weights 00 and 80 have a meaning of their own"},
        {thai + "weights F0 20-40\n", "collations/X.txt:3: the weights run past FF"},
        {thai + "weights F0 00\n", "collations/X.txt:3: byte 00 ends a text and has no weight"},
        {thai + "vowels 20-2F\n", "collations/X.txt:3: there is room for 15 vowels"},
        {thai + "tones 2 E7\n", "collations/X.txt:3: tones have weights from 3 to 7"},
    };
    for (const auto& row : rows) {
        const Folder folder;
        folder.write("collations/X.txt", row.text);
        EXPECT_EQ(folder.refusal(kCharsets + "collation X LATIN\n"), row.message) << row.text;
    }
    const Folder folder;
    std::filesystem::copy_file(dataFolder() / "charsets/620-2533.txt", folder.path("charsets/620-2533.txt"));
    const std::string list = "charset 620-2533\ncollation X 620-2533\n";
    folder.write("collations/X.txt", thai + "weights 01 01-7E\nvowels D1\n");
    EXPECT_EQ(folder.refusal(list), "collations/X.txt:1: byte 7F has no weight");
    folder.write("collations/X.txt", thai + "weights 01 01-7F\ntones 3 7F\n");
    EXPECT_EQ(folder.refusal(list), "collations/X.txt:4: byte 7F has a weight already");
}

TEST(CollationRefusals, OfACaseTable) {
    const struct {
        std::string text, message;
    } rows[] = {
        {"case X\nlike X\n", "case/X.txt:2: a case table that others are like is like no other itself"},
        {"case X\nlike basic\nupper 61 100\n", "case/X.txt:3: LATIN has no U+0100, the upper-case form of U+0061"},
        {"case X\nlower 41 1E9E\ntake 0-FF\n", "case/X.txt:2: LATIN has no U+1E9E, the lower-case form of U+0041"},
        {"case X\nlike basic\n", ""},
    };
    for (const auto& row : rows) {
        const Folder folder;
        folder.write("case/X.txt", row.text);
        EXPECT_EQ(folder.refusal(kCharsets + "case X LATIN\n"), row.message) << row.text;
    }
    const Folder folder;
    folder.write("case/X.txt", "case X\nlike basic\nlower 41 1E9E\n");
    EXPECT_EQ(folder.refusal(kCharsets + "case X UTF-8\n"),
              "case/X.txt:3: UTF-8's table can't hold the form: two bytes become three");
    folder.write("case/X.txt", "case X\ntake 0-FFFF\n");
    EXPECT_EQ(folder.refusal(kCharsets + "case X UTF-8\n"),
              "case/X.txt:1: 926 pairs to upper case; the format holds 743");
}

TEST(CollationRefusals, OfAList) {
    const struct {
        std::string text, message;
    } rows[] = {
        {"collation basic GREEK\n", "map.list:3: no charset GREEK in the list so far"},
        {"collation spanish-traditionals=dutch LATIN\n",
         "map.list:3: the name \"spanish-traditionals\" has 20 characters; the data file holds 19"},
        {"collation ICU_48-DE=dutch LATIN\n",
         "map.list:3: the library looks for no ICU_48-DE in a file: it takes ICU's"},
        {"collation dutch LATIN\ncollation Dutch=dutch LATIN\n",
         "map.list:4: LATIN to Dutch is entered already, at map.list:3"},
        // Orders that don't fit.
        {"collation basic UTF-8\n", "map.list:3: the order of basic is for charsets other than UTF-8; UTF-8 isn't"},
        {"collation points LATIN\n", "map.list:3: the order of points is for UTF-8; LATIN isn't"},
        {"collation dutch UTF-8\n", "map.list:3: the order of dutch is for single-byte charsets; UTF-8 isn't"},
        {"collation russian LATIN\n", "map.list:3: LATIN doesn't carry russian: it has no U+0436"},
        {"collation-part russian LATIN\n", ""},
        {"collation-part dutch LATIN\n", "map.list:3: LATIN has all letters of dutch"},
        // What would be derived.
        {"convert LATIN CYRILLIC\ncollation dutch LATIN\n",
         "map.list:4: CYRILLIC needs a dutch of its own: one derived from LATIN loses characters"},
        {"convert LATIN CYRILLIC\ncollation dutch LATIN\ncollation-part dutch CYRILLIC\n", ""},
        {"convert LATIN EBCDIC\ncollation dutch LATIN\n", ""},
        {"convert LATIN EBCDIC\ncollation german LATIN\n",
         "map.list:4: EBCDIC needs a german of its own: one derived from LATIN has a double s"},
        {"convert LATIN EBCDIC\ncollation german LATIN EBCDIC\n", ""},
        // Companions.
        {"charset SHIFT-JIS EUCJIS\nconvert UTF-8 SHIFT-JIS EUCJIS\nconvert-by-rule SHIFT-JIS EUCJIS\n"
         "collation basic EUCJIS\n",
         "map.list:6: basic of EUCJIS needs basic of SHIFT-JIS"},
        {"charset SHIFT-JIS EUCJIS\nconvert UTF-8 SHIFT-JIS EUCJIS\nconvert-by-rule SHIFT-JIS EUCJIS\n"
         "collation basic EUCJIS SHIFT-JIS\ncase basic EUCJIS\n",
         "map.list:7: basic of EUCJIS needs basic of SHIFT-JIS"},
    };
    for (const auto& row : rows) {
        const Folder folder;
        EXPECT_EQ(folder.refusal(kCharsets + row.text), row.message) << row.text;
    }
}

}  // namespace
}  // namespace nls::test
