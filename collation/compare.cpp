#include "collation/compare.hpp"

#include "collation/byte_walk.hpp"
#include "collation/hook_text.hpp"
#include "collation/sjis_bridge.hpp"
#include "collation/thai_compare.hpp"
#include "collation/unicode_compare.hpp"
#include "icu/icu_compare.hpp"
#include "nls/usersort.h"

namespace nls {

namespace {

inline Compared compareByTables(const Collation& by, Text a, Text b, uint16_t mode) {
    if (!isByteMode(mode)) return {NLS_BAD_COMPARE_MODE, 0};
    const Charset charset{by.attrib};
    ByteRoute route{WeightMap::of(by.coll, mode), charset, SjisBridge{nullptr}};
    if (charset.comparesViaSjis()) {
        const SjisHandles sjis = findSjisHandles(by.locale);
        if (sjis.status != NLS_OK) return {sjis.status, 0};
        route.bridge = SjisBridge{sjis.conversion->table};
    }
    return {NLS_OK, compareByWeights(route, a, b)};
}

HookText hookText(Text text) {
    if (text.limit == nullptr) return HookText{text.place};
    return HookText{text.place, static_cast<std::size_t>(text.limit - text.place)};
}

int32_t lengthOf(Text text) {
    return text.limit == nullptr ? -1 : static_cast<int32_t>(text.limit - text.place);
}

inline Compared compareThroughIcu(const nlsCollStruct& coll, nlsTlsBlock* tls, Text a, Text b, uint16_t mode) {
    static_assert(Compared::kNoAnswer == IcuCompared::kNoAnswer && Compared::kFailed == IcuCompared::kFailed);
    const IcuCompared done =
        compareByIcu(a.place, b.place, tls, mode == 0 ? coll.foldMap : coll.exactMap, mode, lengthOf(a), lengthOf(b));
    return {done.status, done.sign};
}

// Out of line, so that the other routes needn't make room for its copies.
[[gnu::noinline]] Compared compareByHook(const Collation& by, Text a, Text b, uint16_t mode) {
    const HookText first = hookText(a), second = hookText(b);
    const nlsHandle* const handle = by.locale.owner;
    const auto sign = UserSortComp(first.get(), second.get(), by.coll.foldMap, by.coll.exactMap, mode,
                                   handle != nullptr ? handle->userSortHandle : 0);
    return {NLS_OK, static_cast<int16_t>(sign)};
}

}  // namespace

Compared compareTexts(const Collation& by, nlsTlsBlock* tls, Text a, Text b, uint16_t mode) {
    switch (kindOf(by.coll)) {
        case CollKind::userSort:
            return compareByHook(by, a, b, mode);
        case CollKind::unicode:
            return {NLS_OK, compareUnicode(by.locale, a, b, mode)};
        case CollKind::thai:
            return {NLS_OK, compareThai(mode == 0 ? by.coll.foldMap : by.coll.exactMap, a, b)};
        case CollKind::icu:
            return compareThroughIcu(by.coll, tls, a, b, mode);
        default:
            return compareByTables(by, a, b, mode);
    }
}

Compared compareLimited(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* a, const unsigned char* b,
                        int32_t lengthA, int32_t lengthB, uint16_t mode) {
    if (!comparesSingleBytes(locale)) {
        const Text first = Text::of(a, lengthA), second = Text::of(b, lengthB);
        if (kindOf(*locale.coll) == CollKind::byteTables)
            return compareByTables(collationOf(locale), first, second, mode);
        return compareTexts(locale, tls, first, second, mode);
    }
    if (!isByteMode(mode)) return {NLS_BAD_COMPARE_MODE, 0};
    const WeightMap weights = WeightMap::of(*locale.coll, mode);
    const Text first{a, a + (lengthA < 0 ? 0 : lengthA)}, second{b, b + (lengthB < 0 ? 0 : lengthB)};
    return {NLS_OK, compareSingleBytes(weights, first, second)};
}

}  // namespace nls
