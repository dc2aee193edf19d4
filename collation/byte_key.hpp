// The sort key of byte tables: for each character its weight, and the second byte of a longer one as it is; for an
// expansion two weights.
//
// The text may come in pieces; a character may be cut between them. Here a first byte is looked for before an
// expansion, the other way round than in the comparison: a first byte of weight 0 leaves that 0 in the key, and ends it
// there.
// Tested by tests/collation/sort_key_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/weights.hpp"
#include "conversion/run.hpp"
#include "core/base/views.hpp"

namespace nls {

class ByteKey {
public:
    // `room` without the byte for the NUL. An expansion comes out as `expansion` twice.
    ByteKey(WeightMap weights, const nlsAttribStruct& attrib, unsigned char expansion, ByteSpan room)
        : weights_(weights), attrib_(attrib), expansion_(expansion), mayHoldNul_(expansion == 0), key_(room) {}

    bool full() const { return key_.room() == 0; }
    std::size_t length() const { return key_.written(); }
    bool mayHoldNul() const { return mayHoldNul_; }  // and end there

    // REQUIRES: no NUL in `text`.
    void add(ByteView text);

private:
    void addWide(ByteReader& text);
    void addSingleBytes(ByteReader& text);
    void addCharacter(ByteReader& text);
    void expand();

    WeightMap weights_;
    const nlsAttribStruct& attrib_;
    unsigned char expansion_;
    bool secondNext_ = false;  // what came so far ends behind a first byte
    bool mayHoldNul_;
    ByteWriter key_;
};

// What the wide loop needs to know of a key.
struct KeyWeights {
    WeightMap weights;
    const nlsAttribStruct& attrib;
    unsigned char expansion;
};

// Weighs as far as text and room go. It may stop early at an expansion, or at a first byte that weighs 0: the next byte
// is then to be added as a character. `secondNext`, in and out: does the text go on with a second byte?
// REQUIRES: the processor has AVX-512.
Run weighAvx512(const KeyWeights& by, ByteView text, ByteSpan room, bool& secondNext);

}  // namespace nls
