// Door: the Japanese transforms, the grid of a multi-byte charset, its maps, and its bridges to and from Unicode.
#include "conversion/cjis_grid.hpp"
#include "conversion/dbcs_bridge.hpp"
#include "conversion/jis.hpp"
#include "conversion/ucs2_lookup.hpp"
#include "convmap/conv_table.hpp"
#include "nls/dbcs_transforms.h"
#include "nls/status.h"

namespace {

nls::BytePair bytesOf(uint32_t first, uint32_t second) {
    return {static_cast<uint8_t>(first), static_cast<uint8_t>(second)};
}

void storePair(nls::BytePair pair, uint32_t* first, uint32_t* second) {
    *first = pair.first;
    *second = pair.second;
}

nlsStatus answer(nls::Converted converted, uint32_t* outLen) {
    *outLen = converted.length;
    return converted.status;
}

// Hands views of the two texts to a room; a negative length is refused.
template <typename Room>
nlsStatus throughViews(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                       uint32_t* outLen, Room room) {
    if (sourceLen < 0) return answer({NLS_BAD_ARG, 0}, outLen);
    return answer(room(nls::firstBytes(source, sourceLen), nls::firstBytes(target, targetSize)), outLen);
}

}  // namespace

void sjis2jis(uint32_t* first, uint32_t* second) {
    storePair(nls::jisOfSjis(bytesOf(*first, *second)), first, second);
}

void jis2sjis(uint32_t* first, uint32_t* second) {
    storePair(nls::sjisOfJis(bytesOf(*first, *second)), first, second);
}

nlsStatus ccSJIS2EUCBytes(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                          uint32_t* outLen) {
    return throughViews(target, targetSize, source, sourceLen, outLen, nls::sjisToEuc);
}

nlsStatus ccEUC2SJISBytes(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                          uint32_t* outLen) {
    return throughViews(target, targetSize, source, sourceLen, outLen, nls::eucToSjis);
}

uint32_t nlsSjisToCjis(const nlsUcs2Map* map, uint16_t code) {
    return nls::gridNumber(*map, code);
}

uint32_t nlsCjisToSjis(const nlsUcs2Map* map, uint16_t cjis) {
    return nls::gridCode(*map, cjis);
}

uint32_t CjisToUnicode(const nlsUcs2Map* map, uint16_t cjis) {
    return nls::unicodeAt(*map, cjis);
}

uint32_t UnicodeToCjis(const nlsUcs2Map* map, uint32_t ucs) {
    return nls::cjisInRows(*map, ucs);
}

uint32_t UnicodeToDbcs(const nlsUcs2Map* map, uint32_t ucs) {
    return nls::cjisDirect(*map, static_cast<uint16_t>(ucs));
}

nlsStatus nlsDbcsToUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                        const nlsConvTable* table, uint32_t* outLen) {
    const nls::DbcsTable& maps = nls::ConvTable{table}.dbcs();
    return throughViews(target, targetSize, source, sourceLen, outLen,
                        [&](auto from, auto to) { return nls::dbcsToUtf8(maps, from, to); });
}

nlsStatus nlsUTF8ToDbcs(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                        const nlsConvTable* table, uint32_t* outLen) {
    const nls::DbcsTable& maps = nls::ConvTable{table}.dbcs();
    return throughViews(target, targetSize, source, sourceLen, outLen,
                        [&](auto from, auto to) { return nls::utf8ToDbcs(maps, from, to); });
}

nlsStatus nlsDbcsToUTF16(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                         const nlsConvTable* table, uint32_t* outLen) {
    const nls::ConvTable outer{table};
    return throughViews(target, targetSize, source, sourceLen, outLen, [&](auto from, auto to) {
        return nls::dbcsToUtf16(outer.inner().dbcs(), outer.swapsTarget(), from, to);
    });
}

nlsStatus nlsUTF16ToDbcs(unsigned char* target, int32_t targetSize, const unsigned char* source, uint32_t unitCount,
                         const nlsConvTable* table, uint32_t* outLen) {
    const nls::ConvTable outer{table};
    const nls::ByteView units{source, std::size_t{unitCount} * 2};
    return answer(
        nls::utf16ToDbcs(outer.inner().dbcs(), outer.swapsSource(), units, nls::firstBytes(target, targetSize)),
        outLen);
}
