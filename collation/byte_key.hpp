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
    bool holdsNul() const { return holdsNul_; }  // and ends there

    // REQUIRES: no NUL in `text`.
    void add(ByteView text);

private:
    void addSingleBytes(ByteReader& text);
    void put(unsigned char byte);
    void addCharacter(ByteReader& text);
    void expand();

    WeightMap weights_;
    Charset charset_;
    unsigned char expansion_;
    bool allSingle_;           // no byte announces another one
    bool secondNext_ = false;  // the piece before ended behind a first byte
    bool holdsNul_ = false;
    ByteWriter key_;
};

// Is no byte the first one of a longer character?
bool announcesNothing(const nlsAttribStruct& attrib);

// Writes the weights of bytes up to the first expansion, and tells how many. Behind them, within `count`, anything may be
// written. The second wants a processor with AVX-512.
std::size_t weighBytes(WeightMap weights, const unsigned char* bytes, std::size_t count, unsigned char* key);
std::size_t weighBytesAvx512(WeightMap weights, const unsigned char* bytes, std::size_t count, unsigned char* key);

}  // namespace nls
