#include "collation/byte_key.hpp"

#include <emmintrin.h>

#include <algorithm>

#include "core/base/cpu.hpp"

namespace nls {

bool announcesNothing(const nlsAttribStruct& attrib) {
    const auto* const part = reinterpret_cast<const unsigned char*>(attrib.lengthMap);
    __m128i all = _mm_setzero_si128();
    for (std::size_t i = 0; i < sizeof attrib.lengthMap; i += sizeof all)
        all = _mm_or_si128(all, _mm_loadu_si128(reinterpret_cast<const __m128i*>(part + i)));
    const __m128i trailCounts = _mm_and_si128(all, _mm_set1_epi8(0x07));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(trailCounts, _mm_setzero_si128())) == 0xFFFF;
}

std::size_t weighBytes(WeightMap weights, const unsigned char* bytes, std::size_t count, unsigned char* key) {
    constexpr uint64_t kLow = 0x0101010101010101, kHigh = 0x8080808080808080;
    std::size_t done = 0;
    for (; count - done >= 8; done += 8) {
        uint64_t eight = 0;
        for (unsigned i = 0; i < 8; ++i) eight |= uint64_t{weights.entry(bytes[done + i])} << (8 * i);
        storeWord(key + done, eight);
        if (((eight - kLow) & ~eight & kHigh) != 0) break;
    }
    for (; done < count; ++done) {
        key[done] = weights.entry(bytes[done]);
        if (key[done] == 0) break;
    }
    return done;
}

ByteKey::ByteKey(WeightMap weights, const nlsAttribStruct& attrib, unsigned char expansion, ByteSpan room)
    : weights_(weights), charset_(attrib), expansion_(expansion), allSingle_(announcesNothing(attrib)), key_(room) {}

void ByteKey::add(ByteView text) {
    ByteReader reader{text};
    while (!reader.atEnd() && !full()) {
        if (allSingle_)
            addSingleBytes(reader);
        else
            addCharacter(reader);
    }
}

// As many bytes as weigh something, in one go.
void ByteKey::addSingleBytes(ByteReader& text) {
    const std::size_t count = std::min(text.left(), key_.room());
    const bool wide = cpuLevel() >= CpuLevel::avx512;
    const std::size_t weighed = wide ? weighBytesAvx512(weights_, text.place(), count, key_.place())
                                     : weighBytes(weights_, text.place(), count, key_.place());
    text.skip(weighed);
    key_.advance(weighed);
    if (weighed == count) return;
    text.skip(1);
    expand();
}

void ByteKey::addCharacter(ByteReader& text) {
    const unsigned char byte = text.next();
    if (secondNext_) {
        secondNext_ = false;
        return put(byte);
    }
    const unsigned char weight = weights_.entry(byte);
    secondNext_ = charset_.trailCount(byte) != 0;
    if (weight == 0 && !secondNext_) return expand();
    put(weight);
}

void ByteKey::put(unsigned char byte) {
    holdsNul_ |= byte == 0;
    key_.put(byte);
}

void ByteKey::expand() {
    put(expansion_);
    put(expansion_);
}

}  // namespace nls
