// The first characters of a pattern and a text: most texts of a column differ from a pattern there, and are told apart
// before anything is prepared.
#pragma once

#include "collation/compare.hpp"
#include "strings/like_pattern.hpp"

namespace nls {

// Do the first characters differ, both of one byte and with a weight, and the pattern's no sign? Byte tables compare
// such characters by their weights alone, in every charset that isn't compared by way of another. REQUIRES: the locale
// has an attribute table and byte tables, and its charset is compared as it is.
inline bool differAtOnce(WeightMap weights, const Charset& charset, const LikeSigns& signs, unsigned char wanted,
                         unsigned char is) {
    if ((charset.trailCount(wanted) | charset.trailCount(is)) != 0 || wanted == 0 || is == 0) return false;
    if (wanted == signs.escape || wanted == signs.single || wanted == signs.multi) return false;
    const unsigned ofWanted = weights.entry(wanted), ofText = weights.entry(is);
    return ofWanted != ofText && ofWanted != 0 && ofText != 0;
}

}  // namespace nls
