#include "collation/byte_key.hpp"

#include <emmintrin.h>

#include <algorithm>

#include "core/base/charset.hpp"
#include "core/base/cpu.hpp"

namespace nls {

namespace {

// Is no byte the first one of a longer character?
bool announcesNothing(const nlsAttribStruct& attrib) {
    const auto* const part = reinterpret_cast<const unsigned char*>(attrib.lengthMap);
    __m128i all = _mm_setzero_si128();
    for (std::size_t i = 0; i < sizeof attrib.lengthMap; i += sizeof all)
        all = _mm_or_si128(all, _mm_loadu_si128(reinterpret_cast<const __m128i*>(part + i)));
    const __m128i trailCounts = _mm_and_si128(all, _mm_set1_epi8(0x07));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(trailCounts, _mm_setzero_si128())) == 0xFFFF;
}

// Writes the weights of single bytes up to the first expansion, and tells how many.
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

}  // namespace

void ByteKey::add(ByteView text) {
    ByteReader reader{text};
    if (cpuLevel() >= CpuLevel::avx512) return addWide(reader);
    const bool allSingle = announcesNothing(attrib_);
    while (!reader.atEnd() && !full()) {
        if (allSingle)
            addSingleBytes(reader);
        else
            addCharacter(reader);
    }
}

void ByteKey::addWide(ByteReader& text) {
    while (!text.atEnd() && !full()) {
        const Run run = weighAvx512({weights_, attrib_, expansion_}, {text.place(), text.left()},
                                    {key_.place(), key_.room()}, secondNext_);
        text.skip(run.consumed);
        key_.advance(run.written);
        if (!text.atEnd() && !full()) addCharacter(text);
    }
}

// As many bytes as weigh something, in one go, and an expansion behind them.
void ByteKey::addSingleBytes(ByteReader& text) {
    const std::size_t count = std::min(text.left(), key_.room());
    const std::size_t weighed = weighBytes(weights_, text.place(), count, key_.place());
    text.skip(weighed);
    key_.advance(weighed);
    if (weighed != count) addCharacter(text);
}

void ByteKey::addCharacter(ByteReader& text) {
    const unsigned char byte = text.next();
    if (secondNext_) {
        secondNext_ = false;
        key_.put(byte);
        return;
    }
    const unsigned char weight = weights_.entry(byte);
    secondNext_ = Charset{attrib_}.trailCount(byte) != 0;
    if (weight == 0 && !secondNext_) return expand();
    mayHoldNul_ |= weight == 0;
    key_.put(weight);
}

void ByteKey::expand() {
    key_.put(expansion_);
    key_.put(expansion_);
}

}  // namespace nls
