// What the attribute tables of the real data file say of bytes fits the characters.
#include "core/base/charset.hpp"
#include "tests/real/charset_model.hpp"

namespace nls::real {
namespace {

nls::Charset attributesOf(const std::string& name) {
    return nls::Charset{*RealFile::shared().conversion(name, "UTF-16").source->attrib};
}

// How long each code is, what trails, and that no first byte counts as a letter, which would make its character one
// byte long.
TEST(Attributes, FitTheCodes) {
    for (const std::string& name : RealFile::shared().legacyCharsets()) {
        const nls::Charset attributes = attributesOf(name);
        const CharsetModel& model = CharsetModel::of(name);
        EXPECT_EQ(attributes.isMultiByte(), model.isMultiByte()) << name;
        EXPECT_EQ(attributes.isSingleByte(), !model.isMultiByte()) << name;
        EXPECT_FALSE(attributes.isUtf8()) << name;
        EXPECT_EQ(attributes.comparesViaSjis(), name == "EUCJIS");
        EXPECT_EQ(attributes.isCp936(), name == "CP936");
        for (uint32_t code = 0x100; code <= 0xFFFF; ++code) {
            if (model.decode(code) == kNone) continue;
            ASSERT_EQ(attributes.trailCount(static_cast<unsigned char>(code >> 8)), 1U) << name << code;
            ASSERT_TRUE(attributes.mayTrail(static_cast<unsigned char>(code))) << name << code;
            ASSERT_FALSE(attributes.isLetter(static_cast<unsigned char>(code >> 8))) << name << code;
        }
        for (unsigned byte = 0; byte <= 0xFF; ++byte) {
            const bool isNarrow =
                (name == "EUCJIS" && byte == 0x8E) || (name == "ISO6937" && byte >= 0xC1 && byte <= 0xCF);
            EXPECT_EQ(attributes.oneColumn(static_cast<unsigned char>(byte)), isNarrow) << name << byte;
        }
    }
}

TEST(Attributes, LettersAreTheAlphabeticCharacters) {
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
    for (const auto& row : rows) {
        const nls::Charset attributes = attributesOf(row.charset);
        for (const char* at = row.letters; *at != '\0'; ++at)
            EXPECT_TRUE(attributes.isLetter(static_cast<unsigned char>(*at))) << row.charset << at - row.letters;
        for (const char* at = row.others; *at != '\0'; ++at)
            EXPECT_FALSE(attributes.isLetter(static_cast<unsigned char>(*at))) << row.charset << at - row.others;
    }
}

}  // namespace
}  // namespace nls::real
