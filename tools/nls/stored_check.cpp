#include "tools/nls/stored_check.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "tools/nls/icu_install.hpp"
#include "tools/nls/order_print.hpp"
#include "tools/nls/stored_fields.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t mapSize = 256;
constexpr std::size_t atAttrib = sizeof(nlsCollStruct), atCase = atAttrib + sizeof(nlsAttribStruct);
constexpr const char* printTitle = "nls order ";
constexpr std::size_t printDigits = 64;

std::string strengthOf(ByteView map) {
    constexpr std::size_t strength = 48;
    const ByteView word = map.subspan(strength);
    return {word.begin(), std::find(word.begin(), word.end(), 0)};
}

bool sameTrailCounts(const unsigned char* a, const unsigned char* b) {
    return std::equal(a, a + mapSize, b,
                      [](unsigned char left, unsigned char right) { return (left & 7U) == (right & 7U); });
}

class Judge {
public:
    Judge(const std::string& dataFile, const stored::StoredCollation& stored)
        : stored_(stored), session_(dataFile), image_(stored.image) {}

    StoredVerdict judge() {
        if (isOfKind(stored_, StoredKind::site)) {
            reason("a sort of the site's own orders by code, which no record holds and nothing here can compare");
            return finish();
        }
        // In front of the record: names find the newest locale, so later they would find that of the record.
        const nlsLocale* const byName = findByName();
        const StoredLocale opened{session_, stored_};
        const nlsLocale& locale = *opened.locale();
        if (isOfKind(stored_, StoredKind::icu)) {
            compareIcu(*locale.coll, byName);
        } else if (byName != nullptr) {
            compareWeights(*byName->coll, locale);
        }
        if (image_.size() >= atCase) compareCharset(locale, byName);
        if (hasPrint()) {
            comparePrint(opened.locale());
        } else if (image_.size() < atCase) {
            note("the record has the weights alone, and not how its charset forms characters");
        }
        return finish();
    }

private:
    void reason(const std::string& text) { verdict_.reasons.push_back(text); }
    void note(const std::string& text) { verdict_.notes.push_back(text); }
    StoredVerdict finish() {
        if (!verdict_.reasons.empty()) verdict_.exit = Exit::loss;
        return verdict_;
    }

    const nlsLocale* findByName() {
        const std::string charset = stored::charsetOf(stored_.record);
        const std::string collation = stored::collationOf(stored_.record);
        if (collation.empty()) return nullptr;
        try {
            return session_.locale(charset, collation, "");
        } catch (const Failure& failure) {
            note("nothing here to compare with: " + shown(failure.what()));
            return nullptr;
        }
    }

    void compareIcu(const nlsCollStruct& now, const nlsLocale* byName) {
        constexpr std::size_t versions = 16, bytes = 8;
        const ByteView maps[] = {now.exactMap, now.foldMap};
        for (std::size_t i = 0; i < 2; ++i) {
            const ByteView stored = image_.subspan(i * mapSize, mapSize);
            if (!std::equal(maps[i].begin() + versions, maps[i].begin() + versions + bytes,
                            stored.begin() + versions)) {
                const std::string told = "it was stored with another ICU: collator and UCA " + versionsOf(stored) +
                                         ", and " + versionsOf(maps[i]) + " here";
                if (verdict_.reasons.empty() || verdict_.reasons.back() != told) reason(told);
            }
            const ByteView usual = byName == nullptr ? ByteView{}
                                   : i == 0          ? byName->coll->exactMap
                                                     : byName->coll->foldMap;
            if (!usual.empty() && strengthOf(stored) != strengthOf(usual)) {
                reason("its strength is " + shown(strengthOf(stored)) + ", and by its name here " + strengthOf(usual));
            }
        }
    }
    static std::string versionsOf(ByteView map) {
        const IcuVersions versions = icuVersionsOf(map.data());
        return versions.collator + ", " + versions.uca;
    }

    void compareWeights(const nlsCollStruct& here, const nlsLocale& opened) {
        if (here.collKind != stored_.record.dbCollKind || here.collSubKind != stored_.record.dbCollSubKind) {
            reason("its kind is " + std::to_string(stored_.record.dbCollKind) + " (" +
                   std::to_string(stored_.record.dbCollSubKind) + "), and in this data file " +
                   std::to_string(here.collKind) + " (" + std::to_string(here.collSubKind) + ")");
        }
        const TextCharset charset(session_, opened.charsetName, TextCharset::Tables::ifAny);
        compareWeights("exact", image_.first(mapSize), here.exactMap, charset);
        compareWeights("folded", image_.subspan(mapSize, mapSize), here.foldMap, charset);
    }
    void compareWeights(const char* mode, ByteView stored, ByteView here, const TextCharset& charset) {
        const MapDifference difference =
            compareMaps(stored, here, [&charset](unsigned byte) { return characterOf(charset, byte); });
        if (difference.bytes.empty()) return;
        reason(std::to_string(difference.bytes.size()) + " of its " + mode +
               " weights aren't those of this data file (stored | here): " + difference.inWords);
    }

    // A locale made from the record takes these from the data file, unless its kind brings them.
    void compareCharset(const nlsLocale& opened, const nlsLocale* byName) {
        constexpr uint32_t deciding = NLS_CHARSET_SINGLE_BYTE | NLS_CHARSET_VIA_SJIS | NLS_CHARSET_UTF8;
        const nlsLocale* const here = bringsItsTables(stored_) ? byName : &opened;
        if (here == nullptr) return;
        const unsigned char* const attrib = image_.data() + atAttrib;
        if (!sameTrailCounts(attrib + offsetof(nlsAttribStruct, lengthMap), here->attrib->lengthMap)) {
            reason("its charset forms characters otherwise in this data file");
        }
        const auto flags = loadWord<uint32_t>(attrib + offsetof(nlsAttribStruct, flags));
        if (((flags ^ static_cast<uint32_t>(here->attrib->flags)) & deciding) != 0) {
            reason("its charset has other flags in this data file");
        }
        if (isOfKind(stored_, StoredKind::unicode)) compareCase(opened);
    }

    // Kind 3 folds by it; a locale made from the record has "basic" of the data file.
    void compareCase(const nlsLocale& opened) {
        constexpr std::size_t atRecord = atCase + offsetof(nlsUnicodeCaseStruct, caseRaw);
        const bool isUnicode = (opened.attrib->flags & NLS_CHARSET_UTF8) != 0;
        if (!isUnicode || opened.caseTable == nullptr) return;
        const auto& here = reinterpret_cast<const nlsUnicodeCaseStruct&>(*opened.caseTable);
        if (image_.size() < atRecord + sizeof here.caseRaw ||
            std::memcmp(image_.data() + atRecord, here.caseRaw, sizeof here.caseRaw) != 0) {
            reason("it folds by another case table than \"basic\" of this data file");
        }
    }

    bool hasPrint() const {
        return stored_.text.starts_with(printTitle) && stored_.text.size() == std::strlen(printTitle) + printDigits;
    }
    void comparePrint(const nlsLocale* opened) {
        const Order order{session_, opened, Fold::exact};
        if (stored_.text == printText(order)) return;
        const char* const other = ": the library, the case table or the way to Shift-JIS has changed, or the record";
        reason(std::string("the fingerprint in its text isn't that of its order here") +
               (verdict_.reasons.empty() ? other : ""));
    }

    const stored::StoredCollation& stored_;
    Session session_;
    ByteView image_;
    StoredVerdict verdict_;
};

}  // namespace

std::string printText(const Order& order) {
    return order.kind() == OrderKind::site ? std::string{} : printTitle + fingerprintOf(order);
}

StoredVerdict judgeStored(const std::string& dataFile, const stored::StoredCollation& stored) {
    return Judge(dataFile, stored).judge();
}

}  // namespace nls::tool
