#include "collation/char_equality.hpp"

#include "collation/weights.hpp"

namespace nls {

Compared CharacterEquality::operator()(const unsigned char* a, const unsigned char* b) const {
    if (locale_->coll == nullptr) return {NLS_BAD_COLLATION, 0};
    const Charset charset{*locale_->attrib};
    const auto length = [&](unsigned char first) { return static_cast<int32_t>(charset.trailCount(first)) + 1; };
    return compareLimited(*locale_, tls_, a, b, length(*a), length(*b), mode_);
}

bool equalByEntries(const nlsLocale& locale, uint16_t mode) {
    if (locale.coll == nullptr || !isByteMode(mode)) return false;
    const Charset charset{*locale.attrib};
    // A charset that is compared by way of another may lack it, and its comparison then fails.
    if (!comparesSingleBytes(locale) && (charset.comparesViaSjis() || !comparesByTables(*locale.coll))) return false;
    // An expansion is longer than a byte that weighs as its first letter. One of the blank would count as a blank too,
    // where the other text has ended.
    return charset.hasOnlySingleBytes() && WeightMap::of(*locale.coll, mode).entry(' ') != 0;
}

}  // namespace nls
