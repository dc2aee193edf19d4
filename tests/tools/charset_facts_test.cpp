// The real data file: the figures of every single-byte charset, each byte beside ICU and the C library's iconv, the
// byte maps and what they lose. A figure that changes is a change of a source or of a description, and wants a look.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "nls/convert.h"
#include "nls/handle.h"
#include "nls/inner.h"
#include "nls/status.h"
#include "tests/tools/map_folder.hpp"
#include "tools/mkconvmap/compile.hpp"
#include "tools/mkconvmap/read_back.hpp"
#include "tools/mkconvmap/row_source.hpp"

namespace nls::test {
namespace {

using namespace mkconvmap;

const CompiledMap& realMap() {
    static const CompiledMap map = compileMap(readMap(dataFolder() / "convmap.list"));
    return map;
}

const std::vector<unsigned char>& realImage() {
    static const std::vector<unsigned char> image = realMap().file.build();
    return image;
}

uint32_t readReal(uint32_t, uint32_t offset, void* buffer, uint32_t length) {
    if (offset > realImage().size() || length > realImage().size() - offset) return 0;
    std::memcpy(buffer, realImage().data() + offset, length);
    return length;
}

const CharsetSource& charsetNamed(const std::string& name) {
    for (const CompiledCharset& charset : realMap().charsets) {
        if (charset.source.name == name) return charset.source;
    }
    throw std::runtime_error("no charset " + name);
}

// A handle on the real file in a block of `size` bytes.
struct RealHandle {
    explicit RealHandle(int32_t size) : block(static_cast<std::size_t>(size) / 8 + 1) {
        status = nlsInit(0, block.data(), size, readReal, &handle);
    }
    const nlsConvTable* table(const std::string& from, const std::string& to) const {
        nlsConvTable* result = nullptr;
        EXPECT_EQ(nlsGetConvTablePtr(handle, from.c_str(), to.c_str(), 0, &result), NLS_OK) << from << " to " << to;
        return result;
    }
    std::vector<uint64_t> block;
    nlsHandle* handle = nullptr;
    nlsStatus status = 0;
};

std::string utf8Of(uint32_t unit) {
    const auto byte = [](uint32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (unit < 0x80) return {byte(unit)};
    if (unit < 0x800) return {byte(0xC0 | unit >> 6), byte(0x80 | (unit & 0x3F))};
    return {byte(0xE0 | unit >> 12), byte(0x80 | (unit >> 6 & 0x3F)), byte(0x80 | (unit & 0x3F))};
}

// Code points of the BMP that the library takes for a byte although they aren't in the charset.
int foreignCharacters(const CharsetSource& charset, const nlsConvTable* fromUtf8) {
    int count = 0;
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        if (unit >= 0xD800 && unit <= 0xDFFF) continue;
        const std::string text = utf8Of(unit);
        unsigned char byte = 0;
        uint32_t length = 0;
        const nlsStatus status = nlsConvertBytes(&byte, 1, reinterpret_cast<const unsigned char*>(text.data()),
                                                 static_cast<int32_t>(text.size()), fromUtf8, &length);
        if (status == NLS_OK && charset.units[byte] != unit) ++count;
    }
    return count;
}

TEST(CharsetFacts, SingleByteFigures) {
    const struct {
        const char* name;
        int type;
        const char* fillers;  // "byte" for its C1 control, "*byte" for a private-use character
        int threeByte, foreign;
    } rows[] = {
        {"708", 19, "", 56, 784},
        {"720", 19, "80 81 84 86 8D 8E 8F 90", 54, 756},
        {"ISO8859-1", 51, "", 0, 0},
        {"ISO8859-2", 51, "", 0, 0},
        {"ISO8859-5", 19, "", 1, 14},
        {"ISO8859-8", 19,
         "*A1 *BF *C0 *C1 *C2 *C3 *C4 *C5 *C6 *C7 *C8 *C9 *CA *CB *CC *CD *CE *CF *D0 *D1 *D2 *D3 *D4 *D5 *D6 *D7 *D8 "
         "*D9 *DA *DB *DC *DD *DE *FB *FC *FF",
         3, 546},
        {"ISO8859-15", 19, "", 1, 14},
        {"ROMAN-8", 19, "*FF", 3, 56},
        {"MAZOVIA", 19, "", 61, 854},
        {"KOI8-R", 19, "", 56, 784},
        {"IBM850", 19, "", 30, 420},
        {"IBM851", 19, "91", 29, 406},
        {"IBM852", 19, "", 29, 406},
        {"IBM857", 19, "*D5 *E7 *F2", 29, 448},
        {"IBM858", 19, "", 31, 434},
        {"IBM861", 19, "", 62, 868},
        {"IBM862", 19, "", 62, 868},
        {"IBM866", 19, "", 52, 728},
        {"IBM437", 19, "", 62, 868},
        {"IBM037", 51, "", 0, 0},
        {"IBM278", 51, "", 0, 0},
        {"IBM280", 51, "", 0, 0},
        {"IBM500", 51, "", 0, 0},
        {"IBM297", 51, "", 0, 0},
        {"IBM273", 51, "", 0, 0},
        {"IBM277", 51, "", 0, 0},
        {"IBM284", 51, "", 0, 0},
        {"1250", 19, "81 83 88 90 98", 17, 238},
        {"1251", 19, "98", 18, 252},
        {"1252", 19, "81 8D 8F 90 9D", 17, 238},
        {"1253", 19, "81 88 8A 8C 8D 8E 8F 90 98 9A 9C 9D 9E 9F *AA *D2 *FF", 18, 294},
        {"1254", 19, "81 8D 8E 8F 90 9D 9E", 17, 238},
        {"1256", 19, "", 21, 294},
        {"1257", 19, "81 83 88 8A 8C 90 98 9A 9C 9F *A1 *A5", 17, 266},
        {"620-2533", 19,
         "80 81 82 83 84 85 86 87 88 89 8A 8B 8C 8D 8E 8F 90 91 92 93 94 95 96 97 98 99 9A 9B 9C 9D 9E 9F *A0 *DB *DC "
         "*DD *DE *FC *FD *FE *FF",
         87, 1344},
    };
    const RealHandle real{4 << 20};
    ASSERT_EQ(real.status, NLS_OK);
    for (const auto& row : rows) {
        const CharsetSource& charset = charsetNamed(row.name);
        std::string fillers;
        int threeByte = 0;
        for (uint32_t byte = 0; byte < 256; ++byte) {
            if (!charset.filled[byte]) {
                threeByte += charset.units[byte] >= 0x800 ? 1 : 0;
                continue;
            }
            const bool isPrivate = charset.units[byte] == 0xF700 + byte;
            EXPECT_TRUE(isPrivate || charset.units[byte] == byte) << row.name;
            fillers += std::string(fillers.empty() ? "" : " ") + (isPrivate ? "*" : "") + hexText(byte, 2);
        }
        EXPECT_EQ(fillers, row.fillers) << row.name;
        EXPECT_EQ(threeByte, row.threeByte) << row.name;
        EXPECT_EQ(nlsConversionType(real.table(row.name, "UTF-8")), row.type) << row.name;
        EXPECT_EQ(foreignCharacters(charset, real.table("UTF-8", row.name)), row.foreign) << row.name;
    }
    const auto isSingleByte = [](const CompiledCharset& charset) { return charset.source.isSingleByte(); };
    EXPECT_EQ(std::count_if(realMap().charsets.begin(), realMap().charsets.end(), isSingleByte), std::ssize(rows));
}

// Where a public source says otherwise than the data file, byte by byte. An empty `theirs` is no character.
struct Difference {
    const char* charset;
    const char* library;
    uint8_t byte;
    char32_t theirs;
    const char* why;
};
const char* const kMicro = "ICU reads the sign as the Greek letter";
const char* const kRoman = "another edition, which gives some characters to two bytes";
const Difference kDifferences[] = {
    {"IBM437", "icu", 0xE6, 0x3BC, kMicro},
    {"IBM861", "icu", 0xE6, 0x3BC, kMicro},
    {"IBM862", "icu", 0xE6, 0x3BC, kMicro},
    {"IBM852", "icu", 0xAA, 0, "an edition without the not sign"},
    {"IBM278", "iconv", 0x71, 0xC9, "exchanged with E0"},
    {"IBM278", "iconv", 0xE0, 0x5C, "exchanged with 71"},
    {"IBM851", "iconv", 0xB7, 0x39D, "capital Mu and Nu exchanged"},
    {"IBM851", "iconv", 0xB8, 0x39C, "capital Mu and Nu exchanged"},
    {"IBM851", "iconv", 0xF7, 0x2DB, "ogonek for cedilla"},
    {"ROMAN-8", "icu", 0xA0, 0, kRoman},
    {"ROMAN-8", "icu", 0xA9, 0x60, kRoman},
    {"ROMAN-8", "icu", 0xAF, 0xA3, kRoman},
    {"ROMAN-8", "icu", 0xB0, 0x203E, kRoman},
    {"ROMAN-8", "icu", 0xB3, 0x2DA, kRoman},
    {"ROMAN-8", "icu", 0xF3, 0x3BC, kRoman},
    {"ROMAN-8", "icu", 0xF6, 0x2D, kRoman},
};

// Besides, ICU exchanges three controls of every DOS page; ASCII is wanted.
bool isKnownDifference(const std::string& charset, const std::string& library, uint32_t byte, char32_t theirs) {
    const bool isDosPage = charset == "720" || charset.starts_with("IBM4") || charset.starts_with("IBM8");
    if (isDosPage && library == "icu") {
        const std::map<uint32_t, char32_t> exchanged{{0x1A, 0x1C}, {0x1C, 0x7F}, {0x7F, 0x1A}};
        const auto found = exchanged.find(byte);
        if (found != exchanged.end()) return found->second == theirs;
    }
    return std::any_of(std::begin(kDifferences), std::end(kDifferences), [&](const Difference& known) {
        return charset == known.charset && library == known.library && byte == known.byte && theirs == known.theirs;
    });
}

TEST(CharsetFacts, EachByteBesideIcuAndIconv) {
    const struct {
        const char *name, *icu, *iconv;
    } rows[] = {
        {"720", "ibm-720_P100-1997", nullptr},
        {"ISO8859-1", "ISO-8859-1", "ISO-8859-1"},
        {"ISO8859-2", "ISO-8859-2", "ISO-8859-2"},
        {"ISO8859-5", "ISO-8859-5", "ISO-8859-5"},
        {"ISO8859-8", "ISO-8859-8", "ISO-8859-8"},
        {"ISO8859-15", "ISO-8859-15", "ISO-8859-15"},
        {"ROMAN-8", "ibm-1051_P100-1995", "HP-ROMAN8"},
        {"KOI8-R", "KOI8-R", "KOI8-R"},
        {"IBM850", "ibm-850_P100-1995", "IBM850"},
        {"IBM851", "ibm-851_P100-1995", "IBM851"},
        {"IBM852", "ibm-852_P100-1995", "IBM852"},
        {"IBM857", "ibm-857_P100-1995", "IBM857"},
        {"IBM858", "ibm-858_P100-1997", "IBM858"},
        {"IBM861", "ibm-861_P100-1995", "IBM861"},
        {"IBM862", "ibm-862_P100-1995", "IBM862"},
        {"IBM866", "ibm-866_P100-1995", "IBM866"},
        {"IBM437", "ibm-437_P100-1995", "IBM437"},
        {"IBM037", "ibm-37_P100-1995", "IBM037"},
        {"IBM273", "ibm-273_P100-1995", "IBM273"},
        {"IBM277", "ibm-277_P100-1995", "IBM277"},
        {"IBM278", "ibm-278_P100-1995", "IBM278"},
        {"IBM280", "ibm-280_P100-1995", "IBM280"},
        {"IBM284", "ibm-284_P100-1995", "IBM284"},
        {"IBM297", "ibm-297_P100-1995", "IBM297"},
        {"IBM500", "ibm-500_P100-1995", "IBM500"},
        {"1250", "ibm-5346_P100-1998", "CP1250"},
        {"1251", "ibm-5347_P100-1998", "CP1251"},
        {"1252", "ibm-5348_P100-1997", "CP1252"},
        {"1253", "ibm-5349_P100-1998", "CP1253"},
        {"1254", "ibm-5350_P100-1998", "CP1254"},
        {"1256", "ibm-9448_X100-2005", "CP1256"},
        {"1257", "ibm-9449_P100-2002", "CP1257"},
        {"620-2533", nullptr, "TIS-620"},
    };
    std::size_t differences = 0;
    for (const auto& row : rows) {
        const CharsetSource& charset = charsetNamed(row.name);
        for (const std::string library : {"icu", "iconv"}) {
            const char* const peer = library == "icu" ? row.icu : row.iconv;
            if (peer == nullptr) continue;
            const auto source = openRowSource({row.name, 0}, library, peer);
            for (uint32_t byte = 0; byte < 256; ++byte) {
                if (charset.filled[byte]) continue;
                const auto one = static_cast<unsigned char>(byte);
                const std::u32string text = source->decode({&one, 1});
                const char32_t theirs = text.empty() ? 0 : text[0];
                if (text.size() == 1 && theirs == charset.units[byte]) continue;
                EXPECT_TRUE(isKnownDifference(row.name, library, byte, theirs))
                    << row.name << ' ' << library << ' ' << hexText(byte, 2) << ' ' << codePointText(theirs);
                ++differences;
            }
        }
    }
    constexpr std::size_t dosPages = 10;
    EXPECT_EQ(differences, std::size(kDifferences) + 3 * dosPages);
}

TEST(CharsetFacts, ByteMapsAndWhatTheyLose) {
    const struct {
        const char *from, *to;
        int lost;
    } rows[] = {
        {"ISO8859-1", "IBM037", 0},   {"ISO8859-1", "IBM273", 0},
        {"ISO8859-1", "IBM277", 0},   {"ISO8859-1", "IBM278", 0},
        {"ISO8859-1", "IBM280", 0},   {"ISO8859-1", "IBM284", 0},
        {"ISO8859-1", "IBM297", 0},   {"ISO8859-1", "IBM500", 0},
        {"IBM037", "IBM500", 0},      {"ISO8859-1", "ISO8859-15", 8},
        {"ISO8859-1", "1252", 32},    {"ISO8859-1", "IBM850", 32},
        {"ISO8859-1", "IBM858", 32},  {"ISO8859-1", "ROMAN-8", 11},
        {"ISO8859-1", "IBM437", 75},  {"ISO8859-1", "IBM861", 75},
        {"1252", "ISO8859-15", 32},   {"1252", "IBM850", 31},
        {"1252", "IBM858", 30},       {"1252", "IBM437", 74},
        {"1252", "IBM861", 74},       {"IBM850", "IBM858", 1},
        {"IBM850", "IBM437", 45},     {"ISO8859-2", "1250", 32},
        {"ISO8859-2", "IBM852", 32},  {"1250", "IBM852", 29},
        {"MAZOVIA", "IBM852", 61},    {"MAZOVIA", "1250", 87},
        {"MAZOVIA", "ISO8859-2", 93}, {"ISO8859-5", "1251", 32},
        {"ISO8859-5", "IBM866", 54},  {"ISO8859-5", "KOI8-R", 61},
        {"1251", "IBM866", 51},       {"1251", "KOI8-R", 58},
        {"KOI8-R", "IBM866", 8},      {"1253", "IBM851", 51},
        {"1254", "IBM857", 32},       {"ISO8859-8", "IBM862", 86},
        {"1256", "720", 62},          {"1256", "708", 62},
        {"720", "708", 16},
    };
    std::size_t maps = 0;
    for (const FileEntry& entry : realMap().file.entries()) {
        maps += entry.type == format::EntryType::conversion && entry.rawByte == 1 ? 1U : 0U;
    }
    EXPECT_EQ(maps, 2 * std::size(rows));
    const RealHandle real{4 << 20};
    for (const auto& row : rows) {
        EXPECT_EQ(byteMapBetween(charsetNamed(row.from), charsetNamed(row.to)).lost, row.lost) << row.from << row.to;
        EXPECT_EQ(byteMapBetween(charsetNamed(row.to), charsetNamed(row.from)).lost, row.lost) << row.to << row.from;
        EXPECT_EQ(nlsConversionType(real.table(row.from, row.to)), 1);
        EXPECT_EQ(nlsConversionType(real.table(row.to, row.from)), 1);
    }
}

// Every canonical name with a published source, in the smallest block that a handle takes.
TEST(CharsetFacts, TheSmallestBlockOpensTheFile) {
    EXPECT_EQ(realMap().charsets.size(), 50U + 4U);
    EXPECT_LE(realMap().file.entries().size(), 366U);
    EXPECT_EQ(RealHandle{25000}.status, NLS_OK);
}

TEST(CharsetFacts, LettersAreTheAlphabeticCharacters) {
    const struct {
        const char* charset;
        const char* letters;  // some bytes above 7F
        const char* others;
    } rows[] = {
        {"ISO8859-1", "\xAA\xB5\xC0\xDF\xFF", "\xA0\xD7\xF7\x80"},
        {"KOI8-R", "\xA3\xB3\xC0\xFF", "\x80\xBF"},
        {"620-2533", "\xA1\xD1\xD4\xE0\xED", "\xDF\xE7\xE8\xEE\xF0\xFB\xFC"},  // vowel signs are letters, tones aren't
        {"1256", "\xC7\xED", "\xA1\xBA\xD7"},
        {"SHIFT-JIS", "A\xA6\xDD", "\x81\xE0\xFC\x5C"},
        {"EUCJIS", "Az", "\x8E\xA1\xC0\xFE"},
        {"UTF-8", "Az", "\xC3\x80\xE0"},
        {"IBM037", "\x81\xC1", "A\x40\xF0"},
    };
    const RealHandle real{4 << 20};
    for (const auto& row : rows) {
        nlsAttribStruct* attrib = nullptr;
        ASSERT_EQ(nlsGetAttribStructPtr(real.handle, row.charset, &attrib), NLS_OK);
        for (const char* at = row.letters; *at != '\0'; ++at) {
            EXPECT_NE(attrib->alphaMap[static_cast<unsigned char>(*at)], 0) << row.charset << at - row.letters;
        }
        for (const char* at = row.others; *at != '\0'; ++at) {
            EXPECT_EQ(attrib->alphaMap[static_cast<unsigned char>(*at)], 0) << row.charset << at - row.others;
        }
    }
}

}  // namespace
}  // namespace nls::test
