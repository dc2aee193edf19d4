// The sort key of byte tables: for each character its weight, and the second byte of a longer one as it is; for an
// expansion two weights.
//
// The text may come in pieces; a character may be cut between them. Here a first byte is looked for before an expansion,
// the other way round than in the comparison: a first byte of weight 0 leaves that 0 in the key, and ends it there.
// Tested by tests/collation/sort_key_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/weights.hpp"
#include "core/base/charset.hpp"
#include "core/base/views.hpp"

namespace nls {

class ByteKey {
public:
    // `room` without the byte for the NUL. An expansion comes out as `expansion` twice.
    ByteKey(WeightMap weights, const nlsAttribStruct& attrib, unsigned char expansion, ByteSpan room);

    bool full() const { return key_.room() == 0; }
    std::size_t length() const { return key_.written(); }

    // REQUIRES: no NUL in `text`.
    void add(ByteView text);

private:
    void addSingleBytes(ByteReader& text);
    void addCharacter(ByteReader& text);
    void expand();

    WeightMap weights_;
    Charset charset_;
    unsigned char expansion_;
    bool allSingle_;           // no byte announces another one
    bool secondNext_ = false;  // the piece before ended behind a first byte
    ByteWriter key_;
};

}  // namespace nls
