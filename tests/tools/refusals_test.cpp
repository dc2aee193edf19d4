// Every description that the format can't hold is refused, and the message says where and why.
#include <gtest/gtest.h>

#include <iterator>

#include "tests/tools/map_folder.hpp"

namespace nls::test {
namespace {

const std::string kHead = "charset X\nkind single-byte\n";
const std::string kLatin = kHead + "source iconv ISO-8859-1\n";

// One charset X, told by `text`.
TEST(Refusals, OfACharset) {
    const struct {
        std::string text, message;
    } rows[] = {
        {"", "charsets/X.txt: the charset has no name: a line \"charset NAME\" is missing"},
        {"charset Y\nkind single-byte\nsource iconv ISO-8859-1\n", "charsets/X.txt:1: the file of X describes Y"},
        {"source iconv ASCII\n", "charsets/X.txt:1: \"kind\" has to stand in front of \"source\""},
        {"charset X\nkind octet\n",
         "charsets/X.txt:2: \"octet\" is no kind: single-byte, multi-byte, utf-8, ucs2, utf-16 or utf-32"},
        {kHead + "wide 41\n", "charsets/X.txt:3: \"wide\" means nothing in a charset of this kind"},
        {"charset X\nkind utf-8\n",
         "charsets/X.txt:1: the library looks for this form of Unicode under the name UTF-8"},
        {"charset X\nkind utf-16\n",
         "charsets/X.txt:1: the library looks for this form of Unicode under names that begin with UTF-16"},
        {"charset Undefined\n",
         "charsets/X.txt:1: the library takes the name Undefined for a charset that is never converted"},
        {kHead + "row 00 \x01\n", "charsets/X.txt:3: a control character stands in the line"},
        // Sources.
        {kHead + "source iconv NO-SUCH\n", "charsets/X.txt:3: iconv knows no charset \"NO-SUCH\""},
        {kHead + "source icu NO-SUCH\n", "charsets/X.txt:3: ICU has no converter \"NO-SUCH\""},
        // Rows and fillers.
        {kHead, "charsets/X.txt:1: byte 00 has no character and isn't filled"},
        {kHead + "source iconv ASCII\n", "charsets/X.txt:3: byte 80 has no character and isn't filled"},
        {kLatin + "row FF 100 101\n", "charsets/X.txt:4: the row runs past byte FF"},
        {kLatin + "row 41 100\nrow 41 101\n", "charsets/X.txt:5: byte 41 has a row already"},
        {kLatin + "row 80 1F600\n", "charsets/X.txt:4: byte 80 has U+1F600; the format ends at U+FFFF"},
        {kLatin + "row 80 DEAD\n", "charsets/X.txt:4: byte 80 (U+DEAD) is half a surrogate pair"},
        {kLatin + "row 80 FFFD\n", "charsets/X.txt:4: byte 80 (U+FFFD) is no character"},
        {kLatin + "row 80 0\n", "charsets/X.txt:4: byte 80 (U+0000): byte 00 and no other is U+0000"},
        {kLatin + "row 00 100\n", "charsets/X.txt:4: byte 00 (U+0100): byte 00 and no other is U+0000"},
        {kLatin + "row 80 41\n", "charsets/X.txt:4: bytes 41 (U+0041) and 80 (U+0041) are one character"},
        {kLatin + "row 80 20AC\nrow A4 30AC\n",
         "charsets/X.txt:5: bytes 80 (U+20AC) and A4 (U+30AC) share a key: the way back sees the low 12 bits alone "
         "above U+07FF"},
        {kHead + "source iconv ASCII\nfill 80-FF\nrow 41 7CC\n", ""},
        {kLatin + "fill 80\n", "charsets/X.txt:4: byte 80 has a character, U+0080"},
        {kHead + "source iconv ASCII\nfill 80-FF\nfill 90\n", "charsets/X.txt:5: byte 90 is named twice"},
        // The bytes of a multi-byte charset.
        {"charset X\nkind multi-byte\nlength 4 81\n", "charsets/X.txt:3: 4 is above 3"},
        {"charset X\nkind multi-byte\nlength 1 81-90\nlength 2 90\n", "charsets/X.txt:4: byte 90 has a length already"},
        {"charset X\nkind multi-byte\nlength 0 narrow 80\n", "charsets/X.txt:3: a single byte is never narrow"},
    };
    for (const auto& row : rows) {
        const MapFolder folder;
        folder.charset("X", row.text);
        EXPECT_EQ(folder.refusal("charset X\n"), row.message) << row.text;
    }
}

// Line 6 begins behind it. The charset has 8227 codes, among them A1A1, U+3000, and A3DC, U+FFE6.
const std::string kMultiByte = "charset X\nkind multi-byte\nlength 1 A1-FE\ntrail A1-FE\nsource iconv EUC-KR\n";
const std::string kThirdMap = "grid third lead A1-FE trail A1-FE\nforth third\n";
const std::string kFirstMap = "grid first lead A1-FE trail A1-FE\n";

// One multi-byte charset X; the beginnings of messages, behind the file's name. Some rows are lines behind kMultiByte.
TEST(Refusals, OfAMultiByteCharset) {
    const struct {
        std::string text, message;
    } rows[] = {
        {"single A1", "6: byte A1 begins a double byte"},
        {"single 7F-80", "6: bytes below 80 are ASCII"},
        {"forth third", "6: the third map has no grid yet"},
        {"grid third lead A1-FE trail 41-5A 61-7A 81-FE", "6: three ranges of trail bytes don't inv"},
        {"grid third lead A1 B1 C1 trail A1-FE", "6: the format holds two ranges of lead bytes"},
        {"grid third lead A1-FE trail 40-7E 7E-FE", "6: the ranges of trail bytes overlap"},
        {"grid third lead A1-FE trail 00-FF", "6: a row has 256 trail bytes"},
        {kFirstMap + "direct first AC00-D7A3", "7: the third map alone is searched in the direct"},
        {kThirdMap + "direct third FF00-10000", "8: the direct form ends at U+FFFF"},
        {kThirdMap + "direct third 0-FFFF", "8: the block has more than 65535 code points"},
        {kThirdMap + "rows third 2/2 A1-451", "8: the third map is searched in the direct form"},
        {kFirstMap + "rows first 2/2 A0-A3 B0 C0 D0 E0 F0", "7: 6 blocks; the format holds 5"},
        {kFirstMap + "rows first 2/2 A0-B0 B0-C0", "7: the blocks overlap or aren't ascending"},
        {kThirdMap + kFirstMap + "rows first 3/2 A0-A1 A4-C0", "9: the block at U+00A4 begins within"},
        {kThirdMap + kFirstMap + "rows first 2/2 A1-8000 20000-2FFFF", "9: the blocks have too many"},
        {kThirdMap + kFirstMap + "rows first 0/1 0-FFFF", "9: more than 65535 rows"},
        {kThirdMap + kFirstMap + "rows first 2/4 A1-FFE6", "9: U+4E00 has the number 7123"},
        {kThirdMap + kFirstMap + "rows first 2/2 A00-AFF", "9: no code point of the blocks is left"},
        {"grid third lead A1-FE trail A1-FE", "6: the third map is looked at only if it has"},
        {kThirdMap + kFirstMap, "8: the map has neither a way forth nor a way back"},
        {kThirdMap + "grid second lead A1-FE trail A1-FE\nforth second", "8: no code is left for"},
        {"grid third lead A2-FE trail A1-FE\nforth third", "1: no map has a way forth for A1A1 (U+3000)"},
        {kThirdMap, "1: no map has a way back for U+00A1 (A2AE) and 8226 other"},
        {"without ACF2-ACFE", "6: ACF2-ACFE: the source has no code of this range"},
        {"yield C9A1-C9FE", "6: C9A1-C9FE: no code of this range has a character"},
        {"back A5 C9A1", "6: C9A1 has no character"},
        {"back 3000 A1A2", "6: U+3000 goes to A1A1 already"},
        {"substitute C9A1", "1: the substitute C9A1 has no character"},
        {"charset X\nkind multi-byte\nlength 2 8F\nsource iconv EUC-JP\n", "1: a mapping of characters above"},
        {"charset X\nkind multi-byte\nlength 1 87-FE\ntrail 40-7E A1-FE\nsource iconv BIG5-HKSCS\n",
         "5: 8862 is a sequence of 2 code points"},
        {"charset cp936\nkind multi-byte\nlength 1 A1-FE\ntrail A1-FE\nsource iconv EUC-KR\n",
         "5: A2E6 is U+20AC; CP936 has the euro at 80"},
        {"charset X\nkind multi-byte\nlength 1 C1-CF\ntrail 20-7F\nsource iconv ISO_6937\nsingle 80-FF\n",
         "6: byte C1 begins a double byte"},
    };
    for (const auto& row : rows) {
        const MapFolder folder;
        const std::string name = row.text.starts_with("charset cp936") ? "cp936" : "X";
        folder.charset(name, row.text.starts_with("charset ") ? row.text : kMultiByte + row.text + "\n");
        const std::string message = folder.refusal("charset " + name + "\n");
        EXPECT_TRUE(message.starts_with("charsets/" + name + ".txt:" + row.message)) << row.text << ": " << message;
    }
}

// A way forth into a higher plane hangs on one block, which must leave the plane's last code point to the holes.
TEST(Refusals, OfPlanesThatCantBeReached) {
    std::ifstream file{dataFolder() / "charsets/CP950-HKSCS.txt"};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    const std::string block = "20021-2F9D4";
    ASSERT_NE(text.find(block), std::string::npos);
    const struct {
        const char *blocks, *message;
    } rows[] = {
        {"20021-21000 21020-2F9D4", "a plane of its own takes one block"},
        {"20021-2FFFF", "the block has to end below U+2FFFF"},
        {"20021-2F000", "no map has a way forth for "},
    };
    for (const auto& row : rows) {
        const MapFolder folder;
        folder.charset("CP950-HKSCS", std::string{text}.replace(text.find(block), block.size(), row.blocks));
        const std::string message = folder.refusal("charset CP950-HKSCS\n");
        EXPECT_NE(message.find(std::string{": "} + row.message), std::string::npos) << row.blocks << ": " << message;
    }
}

// A list over a few sound charsets.
TEST(Refusals, OfAList) {
    const std::string charsets = "charset UTF-8 UTF-16 LATIN CYRILLIC\n";
    const struct {
        std::string text, message;
    } rows[] = {
        {"charset NONE\n", "map.list:1: there is no charsets/NONE.txt"},
        {"charset A-NAME-OF-20-LETTERS\n",
         "map.list:1: the name \"A-NAME-OF-20-LETTERS\" has 20 characters; the data file holds 19"},
        {"charset LATIN latin\n", "map.list:1: the charset latin is in the list already"},
        {charsets + "convert LATIN GREEK\n", "map.list:2: no charset GREEK in the list so far"},
        {charsets + "convert LATIN latin\n", "map.list:2: LATIN converts to itself without an entry"},
        {charsets + "convert LATIN UTF-8 CYRILLIC\nconvert CYRILLIC LATIN\n",
         "map.list:3: CYRILLIC to LATIN is entered already, at map.list:2"},
        {charsets + "convert LATIN UTF-16\n",
         "map.list:2: no conversion type leads from LATIN to UTF-16; the route through UTF-8 needs no entry"},
        {charsets + "convert LATIN CYRILLIC UTF-8\n",
         "map.list:2: LATIN to UTF-8 has to stand in front of the conversions without UTF-8, or routes of two steps "
         "would miss UTF-8"},
        {charsets + "charset GB2312\nconvert UTF-16 GB2312\n",
         "map.list:3: UTF-16 to GB2312 needs the conversion UTF-8 to GB2312"},
        {charsets + "charset SHIFT-JIS EUCJIS\nconvert UTF-8 SHIFT-JIS EUCJIS\n",
         "charsets/EUCJIS.txt:3: EUCJIS needs the conversion EUCJIS to SHIFT-JIS"},
        {charsets + "convert-by-rule LATIN CYRILLIC\n",
         "map.list:2: the rule between Shift-JIS and EUC needs two multi-byte charsets"},
    };
    for (const auto& row : rows) {
        const MapFolder folder;
        addSmallCharsets(folder);
        for (const char* name : {"GB2312", "SHIFT-JIS", "EUCJIS"}) {
            const std::string file = std::string{"charsets/"} + name + ".txt";
            std::filesystem::copy_file(dataFolder() / file, folder.path(file));
        }
        EXPECT_EQ(folder.refusal(row.text), row.message) << row.text;
    }
}

// 999 entries can be counted, and a thousandth can't.
TEST(Refusals, OfOneEntryTooMany) {
    const MapFolder folder;
    std::string list;
    for (int number = 0; number < 1000; ++number) {
        const std::string name = "UCS2-" + std::to_string(number);
        folder.charset(name, "charset " + name + "\nkind ucs2\n");
        list += "charset " + name + "\n";
    }
    EXPECT_EQ(folder.refusal(list),
              "charsets/UCS2-999.txt:1: the entry UCS2-999 is one more than the 999 that the contents can hold");
    EXPECT_EQ(folder.refusal(list.substr(0, list.size() - 17)), "");
}

}  // namespace
}  // namespace nls::test
