#include "tests/real/known_differences.hpp"

#include <algorithm>
#include <sstream>

namespace nls::real {

namespace {

// Charsets with ICU's and iconv's names for them; "-" where one has none.
constexpr const char* kConverters = R"(
708 ISO-8859-6 ISO-8859-6 | 720 ibm-720_P100-1997 - | ISO8859-1 ISO-8859-1 ISO-8859-1 |
ISO8859-2 ISO-8859-2 ISO-8859-2 | ISO8859-5 ISO-8859-5 ISO-8859-5 | ISO8859-8 ISO-8859-8 ISO-8859-8 |
ISO8859-15 ISO-8859-15 ISO-8859-15 | ROMAN-8 ibm-1051_P100-1995 HP-ROMAN8 | KOI8-R KOI8-R KOI8-R |
620-2533 windows-874-2000 TIS-620 | 1250 ibm-5346_P100-1998 CP1250 | 1251 ibm-5347_P100-1998 CP1251 |
1252 ibm-5348_P100-1997 CP1252 | 1253 ibm-5349_P100-1998 CP1253 | 1254 ibm-5350_P100-1998 CP1254 |
1256 ibm-9448_X100-2005 CP1256 | 1257 ibm-9449_P100-2002 CP1257 | IBM437 ibm-437_P100-1995 IBM437 |
IBM850 ibm-850_P100-1995 IBM850 | IBM851 ibm-851_P100-1995 IBM851 | IBM852 ibm-852_P100-1995 IBM852 |
IBM857 ibm-857_P100-1995 IBM857 | IBM858 ibm-858_P100-1997 IBM858 | IBM861 ibm-861_P100-1995 IBM861 |
IBM862 ibm-862_P100-1995 IBM862 | IBM866 ibm-866_P100-1995 IBM866 | MAZOVIA ibm-437_P100-1995 IBM437 |
IBM037 ibm-37_P100-1995 IBM037 | IBM273 ibm-273_P100-1995 IBM273 | IBM277 ibm-277_P100-1995 IBM277 |
IBM278 ibm-278_P100-1995 IBM278 | IBM280 ibm-280_P100-1995 IBM280 | IBM284 ibm-284_P100-1995 IBM284 |
IBM297 ibm-297_P100-1995 IBM297 | IBM500 ibm-500_P100-1995 IBM500 | SHIFT-JIS ibm-943_P15A-2003 CP932 |
EUCJIS ibm-33722_P12A_P12A-2009_U2 EUC-JP-MS | KSC5601 ibm-970_P110_P110-2006_U2 EUC-KR |
CP949 windows-949-2000 UHC | CP1361 - JOHAB | GB2312 ibm-1383_P110-1999 EUC-CN | CP936 windows-936-2000 GBK |
BIG-5 windows-950-2000 BIG5 | CP950 windows-950-2000 BIG5 | CP950-HKSCS ibm-1375_P100-2008 BIG5-HKSCS |
ISO6937 - ISO_6937)";

constexpr Axis codes = Axis::codes, codePoints = Axis::codePoints;
constexpr unsigned icu = 1U << static_cast<int>(Library::icu), iconv = 1U << static_cast<int>(Library::iconv);
constexpr unsigned both = icu | iconv;

// Bytes without a character. A single-byte charset has to make some character of each.
constexpr Difference kFillers[] = {
    {"720", icu, codes, 0x80, 0x90, 8, "a C1 control for no character"},
    {"IBM851", both, codes, 0x91, 0x91, 1, "a C1 control for no character"},
    {"1251", iconv, codes, 0x80, 0x9F, 1, "a C1 control for no character"},
    {"1250 1252", iconv, codes, 0x80, 0x9F, 5, "a C1 control for no character"},
    {"1254", iconv, codes, 0x80, 0x9F, 7, "a C1 control for no character"},
    {"1257", iconv, codes, 0x80, 0x9F, 10, "a C1 control for no character"},
    {"1253", iconv, codes, 0x80, 0x9F, 14, "a C1 control for no character"},
    {"620-2533", iconv, codes, 0x80, 0xFF, 41, "a C1 control or private use for no character"},
    {"620-2533", icu, codes, 0xDB, 0xFF, 8, "other private use for no character"},
    {"ISO8859-8", both, codes, 0xA1, 0xFF, 36, "private use for no character"},
    {"ROMAN-8", both, codes, 0xFF, 0xFF, 1, "private use for no character"},
    {"1253", both, codes, 0xAA, 0xFF, 3, "private use for no character"},
    {"1257", both, codes, 0xA1, 0xA5, 2, "private use for no character"},
    {"IBM857", both, codes, 0xD5, 0xF2, 3, "private use for no character"},
};

constexpr Difference kDifferences[] = {
    // C1 controls and single bytes of private use, which mean nothing in a multi-byte charset here.
    {"EUCJIS", both, codes, 0x80, 0x9F, 30, "C1 controls at their own bytes"},
    {"KSC5601 GB2312", icu, codes, 0x80, 0x9F, 30, "C1 controls at their own bytes"},
    {"KSC5601 ISO6937", iconv, codes, 0x80, 0x9F, 32, "C1 controls at their own bytes"},
    {"BIG-5 CP950", both, codes, 0x80, 0x80, 1, "C1 control at its own byte"},
    {"CP949", icu, codes, 0x80, 0x80, 1, "C1 control at its own byte"},
    {"CP950-HKSCS", iconv, codes, 0x80, 0x80, 1, "C1 control at its own byte"},
    {"CP949 CP936 BIG-5 CP950", icu, codes, 0xFF, 0xFF, 1, "private use at FF"},

    // Controls that are the plain ones here.
    {"720 IBM437 IBM850 IBM851 IBM852 IBM857 IBM858 IBM861 IBM862 IBM866 MAZOVIA SHIFT-JIS", icu, codes, 0x1A, 0x1C, 2,
     "1A, 1C and 7F exchanged"},
    {"720 IBM437 IBM850 IBM851 IBM852 IBM857 IBM858 IBM861 IBM862 IBM866 MAZOVIA SHIFT-JIS", icu, codes, 0x7F, 0x7F, 1,
     "1A, 1C and 7F exchanged"},

    // Characters that the converters see differently, mostly from one another as well.
    {"IBM437 IBM861 IBM862 MAZOVIA", icu, codes, 0xE6, 0xE6, 1, "the Greek letter mu for the micro sign"},
    {"IBM851", iconv, codes, 0xB7, 0xB8, 2, "Mu and Nu exchanged"},
    {"IBM851", iconv, codes, 0xF7, 0xF7, 1, "ogonek for the cedilla"},
    {"IBM852", icu, codes, 0xAA, 0xAA, 1, "no not sign"},
    {"IBM278", iconv, codes, 0x71, 0x71, 1, "backslash and E acute exchanged"},
    {"IBM278", iconv, codes, 0xE0, 0xE0, 1, "backslash and E acute exchanged"},
    {"ROMAN-8", icu, codes, 0xA0, 0xA0, 1, "no no-break space"},
    {"ROMAN-8", icu, codes, 0xA9, 0xB3, 4, "ASCII accents and other signs"},
    {"ROMAN-8", icu, codes, 0xF3, 0xF6, 2, "the Greek letter mu for the micro sign, hyphen for the dash"},
    {"CP1361", iconv, codes, 0x5C, 0x5C, 1, "won sign for the backslash"},
    {"KSC5601", icu, codes, 0xA2E6, 0xA2E8, 3, "no euro, registered sign and postal mark"},
    {"EUCJIS", icu, codes, 0x8EE0, 0x8EE4, 5, "signs behind the half-width kana"},
    {"EUCJIS", icu, codes, 0xADB5, 0xADFC, 22, "without the signs of NEC that JIS X 0212 has too"},
    {"GB2312", icu, codes, 0xA3A7, 0xA3A7, 1, "acute accent for the full-width apostrophe"},
    {"CP950-HKSCS", icu, codes, 0x8740, 0x8DFE, 35, "without the additions of 2008"},
    {"CP950-HKSCS", icu, codes, 0xC6A1, 0xC8FE, 3, "without the additions of 2008"},
    {"CP950-HKSCS", icu, codes, 0xA145, 0xA247, 16, "signs as in plain Big5"},
    {"CP950-HKSCS", icu, codes, 0xA2CC, 0xA2CE, 2, "numerals that stand twice"},
    {"CP950-HKSCS", icu, codes, 0xA3E1, 0xA3E1, 1, "without the euro"},

    // Charsets that are close relatives: no converter has this one.
    {"708", both, codes, 0x80, 0xDF, 60, "marks and letters of the DOS page"},
    {"708", both, codes, 0xF3, 0xFF, 13, "marks of the DOS page"},
    {"MAZOVIA", both, codes, 0x86, 0xA7, 17, "Polish letters"},
    {"620-2533", icu, codes, 0x80, 0xA0, 10, "quotation marks, dashes and the euro of page 874"},

    // User areas and private use.
    {"EUCJIS", both, codes, 0xF5A1, 0xFEFE, 940, "user area, where the rule puts the IBM extensions"},
    {"KSC5601", icu, codes, 0xC9A1, 0xC9FE, 94, "user area"},
    {"KSC5601", icu, codes, 0xFEA1, 0xFEFE, 94, "user area"},
    {"CP949", iconv, codes, 0xC9A1, 0xC9FE, 94, "without the user area"},
    {"CP949", iconv, codes, 0xFEA1, 0xFEFE, 94, "without the user area"},
    {"GB2312", icu, codes, 0xA2A1, 0xA2FE, 22, "private use"},
    {"GB2312", icu, codes, 0xA4F4, 0xAFFE, 706, "private use"},
    {"GB2312", icu, codes, 0xD7FA, 0xD7FE, 5, "private use"},
    {"CP936", iconv, codes, 0xA140, 0xA9FE, 842, "without the user area"},
    {"CP936", iconv, codes, 0xAAA1, 0xAFFE, 564, "without the user area"},
    {"CP936", iconv, codes, 0xD7FA, 0xD7FE, 5, "without the user area"},
    {"CP936", iconv, codes, 0xF8A1, 0xFEFE, 738, "without the user area"},
    {"CP950", iconv, codes, 0x8140, 0xA0FE, 5024, "without the user area"},
    {"CP950", iconv, codes, 0xFA40, 0xFEFE, 785, "without the user area"},
    {"BIG-5", icu, codePoints, 0xE000, 0xF6B0, 5809, "user area"},
    {"CP950-HKSCS", icu, codePoints, 0xE000, 0xF6B0, 2467, "user area, and the points of the supplement of 2001"},
    {"GB2312", icu, codePoints, 0xE2DD, 0xE54F, 627, "private use in the rows F8 to FE"},
    {"GB2312", icu, codePoints, 0xF83D, 0xF83E, 2, "private use in the row FE"},

    // Ways back alone.
    {"SHIFT-JIS", icu, codePoints, 0xA2, 0xA3, 2, "way back for the plain sign of a full-width one"},
    {"SHIFT-JIS", icu, codePoints, 0xA5, 0xA5, 1, "way back for the yen sign, as 5C"},
    {"SHIFT-JIS", both, codePoints, 0xA6, 0xA6, 1, "way back for the plain sign of a full-width one"},
    {"SHIFT-JIS", icu, codePoints, 0xAC, 0xAC, 1, "way back for the plain sign of a full-width one"},
    {"SHIFT-JIS", icu, codePoints, 0x203E, 0x203E, 1, "way back for the overline, as 7E"},
    {"SHIFT-JIS EUCJIS", icu, codePoints, 0x2014, 0x2016, 2, "way back for the JIS reading of a Microsoft one"},
    {"SHIFT-JIS EUCJIS", icu, codePoints, 0x2212, 0x2212, 1, "way back for the JIS reading of a Microsoft one"},
    {"SHIFT-JIS EUCJIS", icu, codePoints, 0x301C, 0x301C, 1, "way back for the JIS reading of a Microsoft one"},
    {"SHIFT-JIS", icu, codePoints, 0xF86F, 0xF86F, 1, "private-use twin of the numero sign"},
    {"EUCJIS", iconv, codePoints, 0xA5, 0xA5, 1, "yen sign as 5C"},
    {"EUCJIS", iconv, codePoints, 0x203E, 0x203E, 1, "overline as 7E"},
    {"KSC5601", icu, codePoints, 0x20A9, 0x20A9, 1, "way back for the won sign"},
    {"GB2312", both, codePoints, 0xB7, 0xB7, 1, "way back for the other reading of a sign"},
    {"GB2312", both, codePoints, 0x2014, 0x2014, 1, "way back for the other reading of a sign"},
    {"GB2312", icu, codePoints, 0x2010, 0x3231, 26, "more signs, in the row FE"},
    {"GB2312", icu, codePoints, 0xFFE2, 0xFFE4, 2, "more signs, in the row FE"},
    {"CP950-HKSCS", icu, codePoints, 0x256D, 0x2570, 4, "the other code of a sign that stands twice"},
    {"BIG-5", icu, codePoints, 0x2550, 0x256A, 4, "the other code of a sign that stands twice"},
    {"CP950", iconv, codePoints, 0x2550, 0x256A, 4, "the other code of a sign that stands twice"},
};

bool names(const char* list, const std::string& charset) {
    std::istringstream words(list);
    for (std::string word; words >> word;)
        if (word == charset) return true;
    return false;
}

bool holdsFor(const Difference& row, const Pairing& pairing) {
    return (row.libraries >> static_cast<int>(pairing.library) & 1U) != 0 && names(row.charsets, pairing.charset);
}

}  // namespace

const std::vector<Pairing>& pairings() {
    static const std::vector<Pairing> all = [] {
        std::vector<Pairing> rows;
        std::istringstream words(kConverters);
        for (std::string charset, icuName, iconvName, bar; words >> charset >> icuName >> iconvName; words >> bar) {
            if (icuName != "-") rows.push_back({charset, Library::icu, icuName});
            if (iconvName != "-") rows.push_back({charset, Library::iconv, iconvName});
        }
        return rows;
    }();
    return all;
}

std::vector<const Difference*> differencesOf(const Pairing& pairing) {
    std::vector<const Difference*> rows;
    for (const auto table : {std::span<const Difference>{kFillers}, std::span<const Difference>{kDifferences}})
        for (const Difference& row : table)
            if (holdsFor(row, pairing)) rows.push_back(&row);
    return rows;
}

bool isFiller(const std::string& charset, unsigned char byte) {
    for (const Pairing& pairing : pairings()) {
        if (pairing.charset != charset) continue;
        const auto covers = [&](const Difference& row) {
            return holdsFor(row, pairing) && row.first <= byte && byte <= row.last;
        };
        if (std::any_of(std::begin(kFillers), std::end(kFillers), covers) &&
            decodeByPeer(pairing.library, pairing.converter.c_str(), byte) == kNone)
            return true;
    }
    return false;
}

}  // namespace nls::real
