#include "tools/mkconvmap/attrib_writer.hpp"

#include "convmap/file_format.hpp"
#include "nls/records.h"
#include "tools/mkconvmap/row_source.hpp"

namespace nls::mkconvmap {

uint8_t attributeFlags(const CharsetSource& charset) {
    switch (charset.kind) {
        case CharsetKind::singleByte:
            return NLS_CHARSET_SINGLE_BYTE;
        case CharsetKind::multiByte:
            return NLS_CHARSET_MULTI_BYTE | (charset.viaShiftJis ? NLS_CHARSET_VIA_SJIS : 0);
        case CharsetKind::utf8:
            return NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UTF8;
        case CharsetKind::ucs2:
        case CharsetKind::utf16:
            return NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UNITS16;
        case CharsetKind::utf32:
            return NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UNITS32;
    }
    return 0;
}

char32_t characterOfByte(const CompiledCharset& charset, uint32_t byte) {
    if (charset.source.lengths[byte] != 0) return 0;
    if (charset.source.isSingleByte()) return charset.source.units[byte];
    if (charset.multiByte) {
        const auto found = charset.multiByte->toUnicode.find(static_cast<uint16_t>(byte));
        return found == charset.multiByte->toUnicode.end() ? 0 : found->second;
    }
    return byte < 0x80 ? byte : 0;
}

DataRecord attributeRecord(const CompiledCharset& charset) {
    DataRecord record;
    record.bytes.resize(format::attributes::kSize);
    format::putDecimal(record.bytes, format::kSlotSize, format::kMapEntries);
    unsigned char* const letters = record.bytes.data() + format::attributes::kAlphaMap.offset;
    unsigned char* const lengths = record.bytes.data() + format::attributes::kLengthMap.offset;
    unsigned char* const trails = record.bytes.data() + format::attributes::kTrailMap.offset;
    for (uint32_t byte = 0; byte < format::kMapEntries; ++byte) {
        lengths[byte] = charset.source.lengths[byte];
        trails[byte] = charset.source.trails[byte] ? 1 : 0;
        letters[byte] = isAlphabetic(characterOfByte(charset, byte)) ? 1 : 0;
    }
    return record;
}

}  // namespace nls::mkconvmap
