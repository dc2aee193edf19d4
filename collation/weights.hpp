// A weight map: the place of each byte value in the order, compared as an unsigned byte.
//
// The entry 0 is no weight. It marks a byte that counts as two letters s, an expansion; each of the two weighs what the
// map has for "s".
#pragma once

#include "nls/records.h"

namespace nls {

class WeightMap {
public:
    explicit WeightMap(const unsigned char* entries) : entries_(entries) {}
    // REQUIRES: mode is 0 or 1, or a kind of collation that takes every other mode for 1.
    static WeightMap of(const nlsCollStruct& coll, uint16_t mode) {
        return WeightMap{mode == 0 ? coll.foldMap : coll.exactMap};
    }

    // 0 for an expansion.
    unsigned char entry(unsigned char byte) const { return entries_[byte]; }
    unsigned char ofLetterS() const { return entries_[unsigned{'s'}]; }
    const unsigned char* entries() const { return entries_; }

private:
    const unsigned char* entries_;
};

}  // namespace nls
