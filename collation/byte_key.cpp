#include "collation/byte_key.hpp"

#include <algorithm>
#include <cstring>

#include "conversion/byte_map.hpp"

namespace nls {

namespace {

bool announcesNothing(const unsigned char (&lengthMap)[256]) {
    constexpr uint64_t kTrailCounts = 0x0707070707070707;
    uint64_t all = 0;
    for (std::size_t i = 0; i < sizeof lengthMap; i += sizeof all) all |= loadWord<uint64_t>(lengthMap + i);
    return (all & kTrailCounts) == 0;
}

}  // namespace

ByteKey::ByteKey(WeightMap weights, const nlsAttribStruct& attrib, unsigned char expansion, ByteSpan room)
    : weights_(weights),
      charset_(attrib),
      expansion_(expansion),
      allSingle_(announcesNothing(attrib.lengthMap)),
      key_(room) {}

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
    constexpr std::size_t kMost = 256;  // what is done again behind an expansion
    const std::size_t count = std::min({text.left(), key_.room(), kMost});
    mapBytes(weights_.entries(), text.place(), count, key_.place());
    const void* const expansion = std::memchr(key_.place(), 0, count);
    if (expansion == nullptr) {
        text.skip(count);
        key_.advance(count);
        return;
    }
    const auto before = static_cast<std::size_t>(static_cast<const unsigned char*>(expansion) - key_.place());
    text.skip(before + 1);
    key_.advance(before);
    expand();
}

void ByteKey::addCharacter(ByteReader& text) {
    const unsigned char byte = text.next();
    if (secondNext_) {
        secondNext_ = false;
        key_.put(byte);
        return;
    }
    const unsigned char weight = weights_.entry(byte);
    secondNext_ = charset_.trailCount(byte) != 0;
    if (weight == 0 && !secondNext_) return expand();
    key_.put(weight);
}

void ByteKey::expand() {
    key_.put(expansion_);
    key_.put(expansion_);
}

}  // namespace nls
