// The collations of the data file beside the published orders that they come from: every pair of characters of every
// charset beside ICU's collator of the language, pairs of letters beside the C library's locale, Thai clusters beside
// ICU's Thai collator. Where a table of one level has to differ, the rule is told and held too.
#include <unicode/ucol.h>
#include <unicode/utf16.h>

#include <memory>
#include <random>

#include "tests/real/charset_model.hpp"
#include "tests/support/c_locales.hpp"

namespace nls::real {
namespace {

constexpr uint16_t kFold = 0, kExact = 1;
constexpr char16_t kSharpS = 0xDF;

// What the order of each language is held to.
const std::map<std::string, const char*> kIcuLocales = {
    {"german", "de"},    {"german-phonebook", "de@collation=phonebook"},
    {"spanish", "es"},   {"spanish-traditional", "es@collation=traditional"},
    {"french", "fr"},    {"swedish", "sv"},
    {"finnish", "fi"},   {"danish", "da"},
    {"norwegian", "nb"}, {"icelandic", "is"},
    {"polish", "pl"},    {"czech", "cs"},
    {"slovak", "sk"},    {"hungarian", "hu"},
    {"romanian", "ro"},  {"croatian", "hr"},
    {"turkish", "tr"},   {"lithuanian", "lt"},
    {"latvian", "lv"},   {"russian", "ru"},
    {"ukrainian", "uk"}, {"greek", "el"},
    {"hebrew", "he"},    {"arabic", "ar"}};

class Collator {
public:
    Collator(const char* locale, UCollationStrength strength) {
        UErrorCode error = U_ZERO_ERROR;
        collator_.reset(ucol_open(locale, &error));
        ucol_setAttribute(collator_.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
        ucol_setStrength(collator_.get(), strength);
        EXPECT_TRUE(U_SUCCESS(error)) << locale;
    }
    int compare(const std::u16string& a, const std::u16string& b) const {
        return ucol_strcoll(collator_.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                            static_cast<int32_t>(b.size()));
    }
    bool passesOver(char16_t c) const { return compare({c}, {}) == 0; }

private:
    struct Close {
        void operator()(UCollator* collator) const { ucol_close(collator); }
    };
    std::unique_ptr<UCollator, Close> collator_;
};

int compare(const nlsLocale* locale, ByteView a, ByteView b, uint16_t mode) {
    uint16_t result = 0x5555;
    EXPECT_EQ(nlsCompareN(locale, nullptr, a.data(), b.data(), static_cast<int32_t>(a.size()),
                          static_cast<int32_t>(b.size()), mode, &result),
              NLS_OK);
    return static_cast<int16_t>(result);
}

// One collation of one charset, all its characters beside all others.
class SinglePairs {
public:
    SinglePairs(const std::string& charset, const std::string& name, bool isDerived)
        : locale_(RealFile::shared().find(charset, name.c_str(), nullptr)),
          name_(charset + " " + name),
          doubled_(name.starts_with("german") && CharsetModel::of(charset).decode(0x73) == 's'),
          primary_(kIcuLocales.at(name), UCOL_PRIMARY),
          folded_(kIcuLocales.at(name), UCOL_SECONDARY),
          exact_(kIcuLocales.at(name), UCOL_TERTIARY) {
        for (unsigned byte = 1; byte <= 0xFF; ++byte) {
            characters_[byte] = static_cast<char16_t>(CharsetModel::of(charset).decode(byte));
            passedOver_[byte] = exact_.passesOver(characters_[byte]);
            unfolded_[byte] = folded_.passesOver(characters_[byte]);
            // Byte 20 comes first. In EBCDIC it is a control; what is derived there keeps the weights of characters.
            if (isDerived && characters_[byte] == ' ') first_ = byte;
            isS_[byte] = primary_.compare({characters_[byte]}, u"s") == 0;
        }
    }

    void run() const {
        ASSERT_NE(locale_, nullptr) << name_;
        for (unsigned a = 1; a <= 0xFF; ++a)
            for (unsigned b = 1; b <= 0xFF; ++b) {
                const int have = sign(a, b, kExact), haveFolded = sign(a, b, kFold);
                const int want = wanted(a, b, exact_, true), wantFolded = wanted(a, b, folded_, false);
                ASSERT_EQ(have, want) << name_ << std::hex << ": " << a << " " << b;
                ASSERT_EQ(haveFolded, wantFolded) << name_ << std::hex << ", folded: " << a << " " << b;
            }
        if (doubled_) expectDoubleS();
    }

private:
    static int signOf(int value) { return (value > 0) - (value < 0); }

    int sign(unsigned a, unsigned b, uint16_t mode) const {
        const auto one = static_cast<unsigned char>(a), other = static_cast<unsigned char>(b);
        return compare(locale_, {&one, 1}, {&other, 1}, mode);
    }

    int wanted(unsigned a, unsigned b, const Collator& collator, bool exact) const {
        if (a == b) return 0;
        if (a == first_ || b == first_) return a == first_ ? -1 : 1;
        const char16_t one = characters_[a], other = characters_[b];
        // Characters that the collator passes over stand in front, by code point.
        if (passedOver_[a] || passedOver_[b]) {
            if (passedOver_[a] != passedOver_[b]) return passedOver_[a] ? -1 : 1;
            return signOf(one - other);
        }
        // Those that it passes over as long as it looks at accents alone, Arabic vowels, keep their order.
        if (!exact && (unfolded_[a] || unfolded_[b])) return wanted(a, b, exact_, true);
        // Sharp s weighs as its first s, in front of whatever else is an s, and is longer than the s itself.
        if (doubled_ && (one == kSharpS || other == kSharpS) && isS(a) && isS(b)) {
            const char16_t s = one == kSharpS ? other : one;
            const bool isTheS = s == u's' || (!exact && collator.compare({s}, u"s") == 0);
            return (one == kSharpS) == isTheS ? 1 : -1;
        }
        const int order = collator.compare({one}, {other});
        // What the collator doesn't tell apart the exact map does.
        return order == 0 && exact ? signOf(one - other) : order;
    }

    bool isS(unsigned byte) const { return isS_[byte] || characters_[byte] == kSharpS; }

    void expectDoubleS() const {
        const auto text = [this](std::u16string_view want) {
            Bytes bytes;
            for (const char16_t c : want)
                for (unsigned byte = 1; byte <= 0xFF; ++byte)
                    if (characters_[byte] == c) bytes.push_back(static_cast<unsigned char>(byte));
            return bytes;
        };
        for (const uint16_t mode : {kExact, kFold}) {
            EXPECT_EQ(compare(locale_, text(u"Stra\u00DFe"), text(u"Strasse"), mode), 0) << name_;
            EXPECT_EQ(compare(locale_, text(u"Ma\u00DF"), text(u"Mast"), mode), -1) << name_;
            EXPECT_EQ(compare(locale_, text(u"Ma\u00DF"), text(u"Masr"), mode), 1) << name_;
        }
    }

    const nlsLocale* locale_;
    std::string name_;
    bool doubled_;
    Collator primary_, folded_, exact_;
    std::array<char16_t, 256> characters_{};
    std::array<bool, 256> passedOver_{}, unfolded_{}, isS_{};
    unsigned first_ = 0x20;  // folds with nothing
};

class EveryLanguage : public testing::TestWithParam<std::string> {};

// The tables of the file, and what is derived for the EBCDIC charsets.
TEST_P(EveryLanguage, OrdersSingleCharactersAsItsCollator) {
    std::size_t charsets = 0;
    for (const auto& [charset, name] : RealFile::shared().collations()) {
        if (name != GetParam()) continue;
        SinglePairs{charset, name, false}.run();
        ++charsets;
    }
    EXPECT_GT(charsets, 0U);
    const bool isLatin1 = RealFile::shared().find("ISO8859-1", GetParam().c_str(), nullptr) != nullptr;
    for (const char* const ebcdic : {"IBM037", "IBM273", "IBM277", "IBM278", "IBM280", "IBM284", "IBM297", "IBM500"}) {
        const bool is = RealFile::shared().find(ebcdic, GetParam().c_str(), nullptr) != nullptr;
        EXPECT_EQ(is, isLatin1) << ebcdic;
        if (is && !GetParam().starts_with("german")) SinglePairs{ebcdic, GetParam(), true}.run();
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryLanguage, testing::ValuesIn([] {
                             std::vector<std::string> names;
                             for (const auto& [name, locale] : kIcuLocales) names.push_back(name);
                             return names;
                         }()),
                         [](const auto& row) { return identifier(row.param); });

TEST(Orders, EachHasALanguage) {
    for (const auto& [charset, name] : RealFile::shared().collations())
        EXPECT_TRUE(name == "basic" || kIcuLocales.contains(name)) << charset << " " << name;
}

// The C library's locales are another edition of these orders. Small letters in pairs, and the words that they begin.
TEST(Orders, LettersBesideTheCLibrary) {
    constexpr struct {
        const char *name, *charset, *locale, *encoding;
        const char* letters;  // besides a to z, in the encoding
        bool otherScript = false;
    } rows[] = {
        {"german", "ISO8859-1", "de_DE", "ISO-8859-1", "\xE4\xF6\xFC"},
        {"spanish", "ISO8859-1", "es_ES", "ISO-8859-1", "\xE1\xE9\xED\xF1\xF3\xFA\xFC"},
        {"french", "ISO8859-1", "fr_FR", "ISO-8859-1", "\xE0\xE2\xE7\xE8\xE9\xEA\xEB\xEE\xEF\xF4\xF9\xFB"},
        {"swedish", "ISO8859-1", "sv_SE", "ISO-8859-1", "\xE4\xE5\xE9\xF6"},
        {"finnish", "ISO8859-1", "fi_FI", "ISO-8859-1", "\xE4\xE5\xF6"},
        {"danish", "ISO8859-1", "da_DK", "ISO-8859-1", "\xE5\xE6\xF8"},
        {"icelandic", "ISO8859-1", "is_IS", "ISO-8859-1", "\xE1\xE6\xE9\xED\xF0\xF3\xF6\xFA\xFD\xFE"},
        {"polish", "ISO8859-2", "pl_PL", "ISO-8859-2", "\xB1\xB3\xB6\xBC\xBF\xE6\xEA\xF1\xF3"},
        {"czech", "ISO8859-2", "cs_CZ", "ISO-8859-2", "\xB9\xBE\xE1\xE8\xE9\xEC\xED\xF2\xF3\xF8\xF9\xFA\xFD"},
        {"hungarian", "ISO8859-2", "hu_HU", "ISO-8859-2", "\xE1\xE9\xED\xF3\xF5\xF6\xFA\xFB\xFC"},
        {"romanian", "ISO8859-2", "ro_RO", "ISO-8859-2", "\xBA\xE2\xE3\xEE\xFE"},
        {"turkish", "1254", "tr_TR", "ISO-8859-9", "\xE7\xF0\xF6\xFC\xFD\xFE"},
        {"greek", "1253", "el_GR", "ISO-8859-7", "\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xF0\xF8\xF9",
         true},
        {"russian", "KOI8-R", "ru_RU", "KOI8-R", "\xA3\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xDF",
         true},
    };
    test::CLocales locales;
    for (const auto& row : rows) {
        if (!locales.use(row.locale, row.encoding)) GTEST_SKIP() << "no localedef for " << row.locale;
        const nlsLocale* const locale = RealFile::shared().find(row.charset, row.name, nullptr);
        ASSERT_NE(locale, nullptr) << row.name;
        const std::string letters = std::string{"abcdefghijklmnopqrstuvwxyz"} + row.letters;
        for (const char a : letters)
            for (const char b : letters) {
                // ICU has a language's own script in front of Latin, the C library behind it.
                if (row.otherScript && (a & 0x80) != (b & 0x80)) continue;
                const char one[] = {a, 'b', 0}, other[] = {b, 'b', 0};
                const int want = strcoll(one, other);
                const int have = compare(locale, {reinterpret_cast<const unsigned char*>(one), 2},
                                         {reinterpret_cast<const unsigned char*>(other), 2}, kExact);
                EXPECT_EQ(have, (want > 0) - (want < 0))
                    << row.name << ": " << std::hex << (a & 0xFF) << " " << (b & 0xFF);
            }
    }
}

// Clusters of a base with any leading vowel, vowel and tone, each pair that random numbers hit, and all neighbours.
TEST(Orders, ThaiClustersAsTheThaiCollator) {
    std::vector<Bytes> clusters;
    const auto with = [](Bytes bytes, unsigned byte) {
        if (byte != 0) bytes.push_back(static_cast<unsigned char>(byte));
        return bytes;
    };
    for (unsigned lead = 0xDF; lead <= 0xE4; ++lead)  // DF: none
        for (unsigned base = 0xA1; base <= 0xCE; ++base)
            for (const unsigned vowel : {0x00U, 0xD1U, 0xD4U, 0xD5U, 0xD6U, 0xD7U, 0xD8U, 0xD9U, 0xEDU})
                for (const unsigned tone : {0x00U, 0xE7U, 0xE8U, 0xE9U, 0xEAU, 0xEBU})
                    clusters.push_back(with(with(with(with({}, lead == 0xDF ? 0 : lead), base), vowel), tone));
    const auto utf16 = [](const Bytes& bytes) {
        std::u16string text;
        for (const unsigned char byte : bytes) text.push_back(static_cast<char16_t>(0x0E00 + byte - 0xA0));
        return text;
    };
    const Collator collator{"th", UCOL_TERTIARY};
    const nlsLocale* const locale = RealFile::shared().find("620-2533", "basic", nullptr);
    ASSERT_NE(locale, nullptr);
    std::mt19937 random{620};
    for (int turn = 0; turn < 400000; ++turn) {
        const std::size_t at = random() % clusters.size();
        const Bytes& a = clusters[at];
        const Bytes& b =
            clusters[turn % 2 == 0 ? random() % clusters.size() : (at + 1 + random() % 60) % clusters.size()];
        ASSERT_EQ(compare(locale, a, b, kExact), collator.compare(utf16(a), utf16(b)))
            << testing::PrintToString(a) << testing::PrintToString(b);
    }
}

}  // namespace
}  // namespace nls::real
