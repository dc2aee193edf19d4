// Collations and case tables: every description that the format or the library can't follow is refused, with the place
// and the reason; and the check of the finished file sees every byte of them.
#include <gtest/gtest.h>

#include "tests/tools/map_folder.hpp"
#include "tools/mkconvmap/read_back.hpp"

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
        {"collation X\n", "collations/X.txt: the collation has no order: a line \"order …\" is missing"},
        {"collation Y\norder bytes\n", "collations/X.txt:1: the file of X describes Y"},
        {"collation X\nletters a\n", "collations/X.txt:2: \"order\" has to stand in front of \"letters\""},
        {"collation X\norder random\n", "collations/X.txt:2: \"random\" is no order: bytes, code-points, icu or thai"},
        {"collation X\norder bytes\nletters a\n",
         "collations/X.txt:3: \"letters\" means nothing in a collation of this order"},
        {icu + "letters \xFF\n", "collations/X.txt:3: \"\xFF\" is no UTF-8"},
        {icu + "letters aж\n", "map.list:3: LATIN doesn't carry X: it has no U+0436"},
        {icu + "letters ÿ\n", "map.list:3: LATIN doesn't carry X: it has no U+0178"},
        // Locales. ICU would take the order of no language, or leave out what the name asks for.
        {"collation X\norder icu\n", "collations/X.txt:2: order needs a locale of ICU"},
        {"collation X\norder icu xx\n", "collations/X.txt:2: ICU has no collator \"xx\"; it would take \"root\""},
        {"collation X\norder icu de_DE\n", "collations/X.txt:2: ICU has no collator \"de_DE\"; it would take \"de\""},
        {"collation X\norder icu de@collation=fonebook\n",
         "collations/X.txt:2: ICU has no collator \"de@collation=fonebook\"; it would take \"de\""},
        {"collation X\norder icu de@colStrength=primary\n",
         "collations/X.txt:2: ICU has no collator \"de@colStrength=primary\"; it would take \"de\""},
        // Thai weights.
        {thai, "map.list:3: Thai clusters are of TIS 620, and LATIN isn't: byte A1"},
        {thai + "weights 00 41\n", "collations/X.txt:3: the weights 00 and 80 have a meaning of their own"},
        {thai + "weights 70 20-40\n", "collations/X.txt:3: the weights 00 and 80 have a meaning of their own"},
        {thai + "weights F0 20-40\n", "collations/X.txt:3: the weights run past FF"},
        {thai + "weights F0 00\n", "collations/X.txt:3: byte 00 ends a text and has no weight"},
        {thai + "vowels 20-2F\n", "collations/X.txt:3: there is room for 15 vowels"},
        {thai + "tones 2 E7\n", "collations/X.txt:3: tones have weights from 3 to 7"},
        {thai + "tones 6 E7-E9\n", "collations/X.txt:3: tones have weights from 3 to 7"},
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
        {"", "case/X.txt: the case table has no name: a line \"case NAME\" is missing"},
        {"case X\nwith Y\n", "case/X.txt:2: \"with\" is none of case, like, take, upper, lower"},
        {"case X\nlike none\n", "case/X.txt:2: there is no case/none.txt"},
        {"case X\nlike X\n", "case/X.txt:2: a case table that others are like is like no other itself"},
        {"case X\ntake 100-F0\n", "case/X.txt:2: the range 100-F0 ends before it begins"},
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
        {"collation\n", "map.list:3: collation needs a name"},
        {"case basic\n", "map.list:3: case needs charsets"},
        {"collation none LATIN\n", "map.list:3: there is no collations/none.txt"},
        {"collation basic=../x LATIN\n", "map.list:3: \"../x\" is no name of a file"},
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

// Every byte of a weight map, a kind, a case map and a list of pairs is noticed where it is wrong; the unused half of a
// slot and what stands behind the lists may say anything.
TEST(CollationReadBack, EveryWrongByteIsNoticed) {
    const Folder folder;
    const auto map =
        folder.compile(kCharsets + "convert LATIN EBCDIC\n" +
                       "collation basic=points UTF-8\ncollation german LATIN EBCDIC\ncollation dutch LATIN\n"
                       "case basic UTF-8 LATIN\n");
    std::vector<unsigned char> image = map.file.build();
    const auto isNoticed = [&] {
        try {
            mkconvmap::readBack(map, image);
        } catch (const mkconvmap::ReadBackError&) {
            return true;
        }
        return false;
    };
    EXPECT_FALSE(isNoticed());
    std::size_t tried = 0;
    const auto expectNoticed = [&](std::size_t record, format::Field field, std::size_t count, std::size_t step) {
        for (std::size_t at = 0; at < count; at += step, ++tried) {
            const std::size_t place = record + field.offset + at;
            image[place] ^= 0x10;
            EXPECT_TRUE(isNoticed()) << "byte " << place;
            image[place] ^= 0x10;
        }
    };
    for (std::size_t index = 0; index < map.file.entries().size(); ++index) {
        const auto& entry = map.file.entries()[index];
        const ByteView fields = ByteView{image}.subspan(format::header::kSize + index * format::entry::kSize);
        const auto record = static_cast<std::size_t>(format::decimalOf(fields, format::entry::kOffset));
        if (entry.type == format::EntryType::collation) {
            expectNoticed(record, format::collation::kExactMap, 256, 37);
            expectNoticed(record, format::collation::kFoldMap, 256, 37);
            expectNoticed(record, format::collation::kKind, 2, 1);
        } else if (entry.type == format::EntryType::caseTable && entry.rawByte == format::kUnicodeCase) {
            // The words of the pairs: one left out, another form, another letter.
            expectNoticed(record, format::unicode_case::kUpperList, 80, 6);
            expectNoticed(record, format::unicode_case::kLowerList, 80, 6);
        } else if (entry.type == format::EntryType::caseTable) {
            expectNoticed(record, format::byte_case::kUpperMap, 256, 37);
            expectNoticed(record, format::byte_case::kLowerMap, 256, 37);
        }
    }
    EXPECT_GT(tried, 100U);
    EXPECT_FALSE(isNoticed());
}

}  // namespace
}  // namespace nls::test
