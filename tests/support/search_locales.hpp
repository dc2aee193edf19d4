// Every way in which characters compare, as locales made by hand, and texts that search tells apart late.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/case_locale.hpp"
#include "tests/support/hand_collations.hpp"

namespace nls::test {

struct SearchLocale {
    std::string name;
    std::unique_ptr<CollatedLocale> locale;
    std::string alphabet;  // few bytes that equal each other, or not, in every way

    nlsLocale* get() const { return locale->get(); }
};

// Case folds as in the C library where the locale is "utf-8", in wild ways where it is "utf-8, wild".
inline std::vector<SearchLocale> searchLocales() {
    static const MadeTable eucToSjis{4};
    static MadeCaseTable library, accents, wild, oddAscii;
    library.fillFromLibrary();
    accents.fillFromLibrary();
    for (uint32_t a = 0xC3A1; a <= 0xC3A5; ++a) accents.set(a, CaseForm::lower, 0xC3A0);
    accents.set(0xC3B8, CaseForm::lower, 'o');
    accents.set(0xC389, CaseForm::lower, 0xE381);
    accents.set(0xC38A, CaseForm::lower, 0x826F);
    accents.set(0xE2849A, CaseForm::lower, 0xE26F78);
    wild.fillWild(1, true);
    oddAscii.fillFromLibrary();
    oddAscii.set('b', CaseForm::lower, 'a');
    std::vector<SearchLocale> all;
    const auto add = [&](const char* name, const nlsAttribStruct& attrib, const nlsCollStruct& coll,
                         const char* alphabet) -> nlsLocale& {
        all.push_back({name, std::make_unique<CollatedLocale>(attrib, coll), alphabet});
        if ((attrib.flags & NLS_CHARSET_VIA_SJIS) != 0) all.back().locale->bridgeTo(eucToSjis);
        return *all.back().get();
    };
    const auto ofKind = [](int32_t kind, nlsCollStruct coll = plainCollation()) {
        coll.collKind = kind;
        if (kind == 5)  // without a record of ICU's
            for (unsigned char* const map : {coll.exactMap, coll.foldMap}) std::fill_n(map, sizeof(nlsIcuInfo*), 0);
        return coll;
    };
    const auto withFlags = [](nlsAttribStruct attrib, int32_t flags) {
        attrib.flags = flags;
        return attrib;
    };
    nlsCollStruct zeroLeads = plainCollation(), heavyBlank = plainCollation(), lightS = plainCollation(),
                  manyAlike = plainCollation();
    fill(manyAlike.foldMap, 0xE0, 0xE7, 'a');
    for (unsigned lead = 0x81; lead < 0x90; ++lead) zeroLeads.exactMap[lead] = zeroLeads.foldMap[lead] = 0;
    heavyBlank.exactMap[0x20] = heavyBlank.foldMap[0x20] = 0;
    lightS.exactMap[0x73] = lightS.foldMap[0x73] = 0x20;
    lightS.exactMap[0x81] = lightS.foldMap[0x81] = 0x20;
    nlsAttribStruct longA = utf8Charset(), longC3 = utf8Charset();
    longA.lengthMap[unsigned{'a'}] = 1;
    longC3.lengthMap[0xC3] = 2;
    nlsAttribStruct oddBridged = oddCharset();
    oddBridged.flags |= NLS_CHARSET_VIA_SJIS;

    add("single", singleByteCharset(), plainCollation(), "aAs\xDF ");
    add("single, crowded", singleByteCharset(), crowdedCollation(1), "ab\xDF ");
    add("single, many alike", singleByteCharset(), manyAlike, "bx\xE6\xE7");
    add("single, blank an expansion", singleByteCharset(), heavyBlank, "aA\xDF ");
    add("shift-jis", sjisCharset(), plainCollation(), "aA\x81\x40 ");
    add("shift-jis, crowded", sjisCharset(), crowdedCollation(2), "a\x81\x82 ");
    add("shift-jis, first bytes as expansions", sjisCharset(), zeroLeads, "s\x81\xDF ");
    add("shift-jis, s as a blank", sjisCharset(), lightS, "s\x81\xDF ");
    add("odd", oddCharset(), plainCollation(), "\x08\x09\x0A ");
    add("odd, crowded", oddCharset(), crowdedCollation(3), "\x08\x09\x0B\x20");
    add("odd, not marked", withFlags(oddCharset(), 0), plainCollation(), "a\x08\x09 ");
    add("odd, marked as single", withFlags(oddCharset(), NLS_CHARSET_SINGLE_BYTE), plainCollation(), "a\x08\x09 ");
    add("euc", eucCharset(), plainCollation(), "a\xA4\x8F\x8E");
    add("euc, crowded", eucCharset(), crowdedCollation(4), "a\xA4\x8F ");
    add("odd through the bridge", oddBridged, crowdedCollation(5), "\x08\x09\xDF ");
    add("euc without shift-jis", withFlags(sjisCharset(), NLS_CHARSET_VIA_SJIS | NLS_CHARSET_MULTI_BYTE),
        plainCollation(), "ab");
    all.back().locale->attrib();
    all.back().get()->owner->chainHead = &all.back().get()->owner->hdr;
    add("utf-8", utf8Charset(), ofKind(3), "aA\xC3\x89\xA9").caseTable = library.get();
    add("utf-8, many alike", utf8Charset(), ofKind(3), "bx\xC3\xA4\xA5").caseTable = accents.get();
    add("utf-8, odd ASCII", utf8Charset(), ofKind(3), "ab\xC3\x89").caseTable = oddAscii.get();
    add("utf-8, an odd length of ASCII", longA, ofKind(3), "ab\xC3\x89").caseTable = library.get();
    add("utf-8, an odd first byte", longC3, ofKind(3), "ab\xC3\x89").caseTable = library.get();
    add("utf-8, wild", utf8Charset(), ofKind(3), "a\xC3\x89\xE1 ").caseTable = wild.get();
    add("utf-8 without a case table", utf8Charset(), ofKind(3), "a\xC3\x89 ");
    add("utf-8 by bytes", utf8Charset(), plainCollation(), "aA\xC3\x89 ");
    add("single by code points", singleByteCharset(), ofKind(3), "aA\xDF ");
    add("shift-jis by code points", sjisCharset(), ofKind(3), "a\x81\x40 ");
    add("odd by code points", oddCharset(), ofKind(3), "\x08\x0C\x10 ");
    add("thai", singleByteCharset(), ofKind(4), "a\xA1\xE0\xE8 ");
    add("user sort", singleByteCharset(), ofKind(2), "aA ");
    add("user sort, shift-jis", sjisCharset(), ofKind(2), "aA\x81 ");
    add("of no kind", singleByteCharset(), ofKind(77), "aA\xDF ");
    add("icu", singleByteCharset(), ofKind(5), "ab");
    add("no collation", singleByteCharset(), plainCollation(), "ab").coll = nullptr;
    return all;
}

// A text of pieces of the alphabet, other bytes and well-made characters, and a pattern that is a piece of it with
// little changed, or stands nowhere.
struct SearchPair {
    std::string pattern, text;
};
inline SearchPair randomSearchPair(std::mt19937& random, const std::string& alphabet, bool utf8, std::size_t longest) {
    const std::size_t length = random() % (longest + 1);
    std::string text;
    if (utf8 && random() % 2 != 0) {
        text = randomUtf8(random, length, static_cast<unsigned>(random() % 4));
    } else {
        const unsigned strange = random() % 3 == 0 ? 8 : 1000;
        while (text.size() < length)
            text +=
                random() % strange == 0 ? static_cast<char>(1 + random() % 255) : alphabet[random() % alphabet.size()];
    }
    if (random() % 4 == 0 && text.size() > 3)  // repeats itself, so that candidates fail late
        for (std::size_t i = 3; i < text.size(); ++i)
            if (random() % 50 != 0) text[i] = text[i - 3];
    const std::size_t from = text.empty() ? 0 : random() % text.size();
    std::string pattern = text.substr(from, random() % 3 == 0 ? random() % (longest + 1) : random() % 8);
    for (auto changes = static_cast<unsigned>(random() % 3); changes != 0 && !pattern.empty(); --changes) {
        char& byte = pattern[random() % pattern.size()];
        switch (random() % 4) {
            case 0:
                byte = static_cast<char>(byte ^ 0x20);
                break;
            case 1:
                byte = alphabet[random() % alphabet.size()];
                break;
            case 2:
                byte = '_';
                break;
            default:
                for (char& each : pattern)
                    if ((each | 0x20) >= 'a' && (each | 0x20) <= 'z') each = static_cast<char>(each ^ 0x20);
        }
    }
    pattern.resize(std::min(pattern.size(), pattern.find('\0')));
    return {pattern, text};
}

}  // namespace nls::test
