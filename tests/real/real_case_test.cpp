// Upper and lower case of every character of every charset and of the first plane, beside Unicode's simple mappings as
// ICU and the C library have them. A form that a table can't give is left alone, by rules that are held here.
#include <unicode/uchar.h>

#include <algorithm>
#include <clocale>
#include <cwctype>

#include "tests/real/charset_model.hpp"

namespace nls::real {
namespace {

enum class Case { upper, lower };

uint32_t formOf(uint32_t character, Case form) {
    const auto codePoint = static_cast<UChar32>(character);
    return static_cast<uint32_t>(form == Case::upper ? u_toupper(codePoint) : u_tolower(codePoint));
}

// As formOf, from the C library's locale of no language.
class OtherEdition {
public:
    ~OtherEdition() { freelocale(locale_); }
    uint32_t formOf(uint32_t character, Case form) const {
        return form == Case::upper ? towupper_l(character, locale_) : towlower_l(character, locale_);
    }

private:
    locale_t locale_ = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
};

Bytes changed(const nlsLocale* locale, const Bytes& text, Case form) {
    Bytes source = text, target(text.size() * 2 + 8);
    source.push_back(0);
    const nlsStr from{source.data(), static_cast<int32_t>(source.size()), static_cast<uint32_t>(text.size())};
    nlsStr to{target.data(), static_cast<int32_t>(target.size()), 0};
    EXPECT_EQ(
        form == Case::upper ? nlsUpperCase(locale, nullptr, &from, &to) : nlsLowerCase(locale, nullptr, &from, &to),
        NLS_OK);
    target.resize(to.strLength);
    return target;
}

// Turkish pairs that differ from everyone else's.
uint32_t turkishFormOf(uint32_t character, Case form) {
    if (character == 'i' && form == Case::upper) return 0x130;
    if (character == 'I' && form == Case::lower) return 0x131;
    return formOf(character, form);
}

// A single byte has the form that the charset holds as a single byte, else it is left alone; double bytes always are.
TEST(Case, OfEveryByteOfEveryCharset) {
    const std::vector<std::string> legacy = RealFile::shared().legacyCharsets();
    std::size_t charsets = 0, forms = 0;
    for (const auto& [charset, name] : RealFile::shared().caseTables()) {
        if (std::find(legacy.begin(), legacy.end(), charset) == legacy.end()) continue;
        const CharsetModel& model = CharsetModel::of(charset);
        const nlsLocale* const locale = RealFile::shared().find(charset, NLS_NO_COLLATION, name.c_str());
        ASSERT_NE(locale, nullptr) << charset;
        for (const Case form : {Case::upper, Case::lower})
            for (uint32_t code = 1; code <= 0xFFFF; ++code) {
                if (code > 0xFF && (model.trails(static_cast<unsigned char>(code >> 8)) != 1 || code % 256 == 0))
                    continue;
                if (code <= 0xFF && model.trails(static_cast<unsigned char>(code)) != 0) continue;
                const uint32_t character = model.decode(code);
                uint32_t want = code;
                if (code <= 0xFF && character != kNone) {
                    const uint32_t formed =
                        name == "turkish" ? turkishFormOf(character, form) : formOf(character, form);
                    const uint32_t formCode = model.exactCode(formed);
                    if (formCode <= 0xFF) want = formCode;
                }
                Bytes text, wanted;
                model.append(text, code);
                model.append(wanted, want);
                ASSERT_EQ(changed(locale, text, form), wanted) << charset << " " << name << std::hex << " " << code;
                forms += want != code ? 1U : 0U;
            }
        ++charsets;
    }
    EXPECT_EQ(charsets, 46U + 2U);
    EXPECT_GT(forms, 3000U);
}

std::size_t utf8Length(uint32_t character) {
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

// Whether the table of UTF-8 can hold a form: no look-up knows three bytes that begin with anything but E1, E2 and EF,
// and the first of three bytes stays.
bool canBeHeld(uint32_t character, uint32_t formed) {
    if (utf8Length(character) < 3) return utf8Length(formed) < 3;
    if (utf8Length(formed) != 3 || character >> 12 != formed >> 12) return false;
    return character >> 12 == 1 || character >> 12 == 2 || character >> 12 == 15;
}

// Blocks for which there is no room.
bool isLeftOut(uint32_t character) {
    constexpr uint32_t blocks[][2] = {{0x10A0, 0x10FF}, {0x13A0, 0x13FF}, {0x1C90, 0x1CBF},
                                      {0x24B6, 0x24E9}, {0x2C00, 0x2C7F}, {0x2C80, 0x2CFF}};
    return std::any_of(std::begin(blocks), std::end(blocks),
                       [character](const auto& block) { return character >= block[0] && character <= block[1]; });
}

TEST(Case, OfTheFirstPlaneInUtf8) {
    const Name& utf8 = RealFile::shared().charset("UTF-8");
    const OtherEdition other;
    for (const std::string name : {"basic", "turkish"}) {
        const nlsLocale* const locale = RealFile::shared().find("UTF-8", NLS_NO_COLLATION, name.c_str());
        ASSERT_NE(locale, nullptr);
        for (const Case form : {Case::upper, Case::lower}) {
            std::size_t pairs = 0;
            for (uint32_t character = 1; character <= 0x10FFFF; ++character) {
                if (character >= 0xD800 && character <= 0xDFFF) continue;
                if (character > 0x1FFFF && (character & 0xFFFF) != 0x400) continue;
                uint32_t want = name == "turkish" ? turkishFormOf(character, form) : formOf(character, form);
                if (want != character && (!canBeHeld(character, want) || isLeftOut(character))) want = character;
                Bytes text, wanted;
                append(text, character, utf8);
                append(wanted, want, utf8);
                ASSERT_EQ(changed(locale, text, form), wanted) << name << std::hex << " " << character;
                pairs += want != character ? 1U : 0U;
                // Another edition of the same data, as far as it has the character.
                const bool isCommon = name == "basic" && want != character;
                ASSERT_EQ(isCommon ? other.formOf(character, form) : want, want) << std::hex << character;
            }
            EXPECT_EQ(pairs, form == Case::upper ? 741U : 730U) << name;
        }
    }
}

}  // namespace
}  // namespace nls::real
