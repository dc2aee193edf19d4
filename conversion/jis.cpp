#include "conversion/jis.hpp"

#include "conversion/jis_wide.hpp"
#include "nls/status.h"

namespace nls {

namespace {

constexpr unsigned kCharactersAlone = 2;  // behind each run of blocks: kana come in company
constexpr uint8_t kEucKana = 0x8E;        // stands before a half-width kana in EUC

constexpr bool isSjisLead(uint8_t c) {
    return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xEF);
}
constexpr bool isSjisTrail(uint8_t c) {
    return c >= 0x40 && c <= 0xFC;
}
constexpr bool isKana(uint8_t c) {
    return c >= 0xA1 && c <= 0xDF;
}
constexpr bool isEucByte(uint8_t c) {
    return c >= 0xA1 && c <= 0xFE;
}

bool put(ByteWriter& target, BytePair pair) {
    const unsigned char bytes[] = {pair.first, pair.second};
    return target.put(bytes, 2);
}

// One character: a status other than 0 ends the walk.
nlsStatus sjisCharacter(ByteReader& source, ByteWriter& target) {
    const uint8_t c = source.next();
    if (isKana(c)) return put(target, {kEucKana, c}) ? NLS_OK : NLS_BUF_SMALL;
    if (!isSjisLead(c)) return target.put(c) ? NLS_OK : NLS_BUF_SMALL;
    if (source.atEnd()) return NLS_BAD_ARG;
    BytePair pair{c, source.next()};
    if (isSjisTrail(pair.second)) {
        const BytePair jis = jisOfSjis(pair);
        pair = {static_cast<uint8_t>(jis.first + 0x80), static_cast<uint8_t>(jis.second + 0x80)};
    }
    return put(target, pair) ? NLS_OK : NLS_BUF_SMALL;
}

nlsStatus eucCharacter(ByteReader& source, ByteWriter& target) {
    const uint8_t c = source.next();
    if (c != kEucKana && !isEucByte(c)) return target.put(c) ? NLS_OK : NLS_BUF_SMALL;
    if (source.atEnd()) return NLS_BAD_ARG;
    BytePair pair{c, source.next()};
    if (c == kEucKana) {
        if (isKana(pair.second)) return target.put(pair.second) ? NLS_OK : NLS_BUF_SMALL;
    } else if (isEucByte(pair.second)) {
        pair = sjisOfJis({static_cast<uint8_t>(c - 0x80), static_cast<uint8_t>(pair.second - 0x80)});
    }
    return put(target, pair) ? NLS_OK : NLS_BUF_SMALL;
}

// Blocks of sixteen bytes as far as they go, and the characters between them exactly.
template <typename Character, typename Blocks>
Converted walk(ByteView source, ByteSpan target, Character character, Blocks blocks) {
    ByteReader reader{source};
    ByteWriter writer{target};
    nlsStatus status = NLS_OK;
    while (status == NLS_OK && !reader.atEnd()) {
        const Run run = blocks({reader.place(), reader.left()}, {writer.place(), writer.room()});
        reader.skip(run.consumed);
        writer.advance(run.written);
        for (unsigned i = 0; i < kCharactersAlone && status == NLS_OK && !reader.atEnd(); ++i)
            status = character(reader, writer);
    }
    return {status, static_cast<uint32_t>(writer.written())};
}

}  // namespace

Converted sjisToEuc(ByteView source, ByteSpan target) {
    return walk(source, target, sjisCharacter, sjisToEucBlocks);
}

Converted eucToSjis(ByteView source, ByteSpan target) {
    return walk(source, target, eucCharacter, eucToSjisBlocks);
}

}  // namespace nls
