// Door: the transforms between the forms of Unicode, their byte orders and their constants.
#include "conversion/byte_order.hpp"
#include "conversion/unicode_transforms.hpp"
#include "conversion/utf_codec.hpp"
#include "nls/status.h"
#include "nls/transforms.h"

const uint32_t kMaximumUCS2 = nls::kLastBmpValue;
const uint32_t kMaximumUTF16 = nls::kLastCodePoint;
const uint32_t kMaximumUCS4 = nls::kLastCodePoint;
const uint32_t halfShift = 10;
const uint32_t halfBase = 0x10000;
const uint32_t halfMask = 0x3FF;
const uint32_t kSurrogateHighStart = 0xD800;
const uint32_t kSurrogateHighEnd = 0xDBFF;
const uint32_t kSurrogateLowStart = 0xDC00;
const uint32_t kSurrogateLowEnd = 0xDFFF;

// Sixteen and sixty-four equal counts.
#define NLS_X16(n) n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n
#define NLS_X64(n) NLS_X16(n), NLS_X16(n), NLS_X16(n), NLS_X16(n)

const unsigned char bytesFromUTF8[256] = {
    NLS_X64(0), NLS_X64(0), NLS_X64(0),                 // 00 to BF
    NLS_X16(1), NLS_X16(1),                             // C0 to DF
    NLS_X16(2),                                         // E0 to EF
    3,          3,          3,          3, 3, 3, 3, 3,  // F0 to F7
    4,          4,          4,          4, 5, 5, 5, 5,  // F8 to FB, FC to FF
};
const uint32_t offsetsFromUTF8[6] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};
const unsigned char firstByteMark[7] = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

namespace {

template <typename Byte>
std::span<Byte> between(Byte* start, Byte* end) {
    return start < end ? std::span<Byte>{start, end} : std::span<Byte>{};
}

// No place to start from, and yet an end.
bool isHalfNull(const unsigned char* const* start, const unsigned char* end) {
    return start == nullptr || (*start == nullptr && end != nullptr);
}

template <typename Room>
nlsStatus transformBetween(Room room, const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                           unsigned char* tgtEnd, const nlsConvTable* table) {
    if (isHalfNull(srcPos, srcEnd) || isHalfNull(tgtPos, tgtEnd)) return NLS_BAD_ARG;
    const nls::ByteOrder order = nls::byteOrderOf(nls::ConvTable{table});
    const nls::Transformed result = room(between(*srcPos, srcEnd), between(*tgtPos, tgtEnd), order);
    *srcPos += result.consumed;
    *tgtPos += result.written;
    return result.status;
}

}  // namespace

void setSwap(const nlsConvTable* table, uint32_t* swapSource, uint32_t* swapTarget) {
    const nls::ByteOrder order = nls::byteOrderOf(nls::ConvTable{table});
    if (swapSource != nullptr) *swapSource = order.swapSource ? nls::ConvTable::kSwapSource : 0;
    if (swapTarget != nullptr) *swapTarget = order.swapTarget ? nls::ConvTable::kSwapTarget : 0;
}

nlsStatus nlsConvertUTF16toUCS4(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                                unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::utf16ToUcs4, srcPos, srcEnd, tgtPos, tgtEnd, table);
}

nlsStatus nlsConvertUCS4toUTF16(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                                unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::ucs4ToUtf16, srcPos, srcEnd, tgtPos, tgtEnd, table);
}

nlsStatus nlsConvertUTF8toUCS4(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                               unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::utf8ToUcs4, srcPos, srcEnd, tgtPos, tgtEnd, table);
}

nlsStatus nlsConvertUCS4toUTF8(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                               unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::ucs4ToUtf8, srcPos, srcEnd, tgtPos, tgtEnd, table);
}

nlsStatus nlsConvertUTF8toUCS2(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                               unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::utf8ToUcs2, srcPos, srcEnd, tgtPos, tgtEnd, table);
}

nlsStatus nlsConvertUCS2toUTF8(const unsigned char** srcPos, const unsigned char* srcEnd, unsigned char** tgtPos,
                               unsigned char* tgtEnd, const nlsConvTable* table) {
    return transformBetween(nls::ucs2ToUtf8, srcPos, srcEnd, tgtPos, tgtEnd, table);
}
