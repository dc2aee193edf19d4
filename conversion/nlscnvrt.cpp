// Doors of the conversion engine: tables, text, characters and string records.
#include "nls/convert.h"

#include "conversion/conv_type.hpp"
#include "conversion/convert_record.hpp"
#include "conversion/engine.hpp"
#include "conversion/sbcs_bridge.hpp"
#include "core/base/checks.hpp"
#include "nls/status.h"

namespace {

using nls::ByteSpan;
using nls::ByteView;
using nls::ConvTable;

bool usable(const unsigned char* bytes, int32_t count) {
    return bytes != nullptr || count <= 0;
}

nlsStatus handOut(const nls::EngineAnswer& answer, uint32_t* outLen) {
    if (answer.counted() && outLen != nullptr) *outLen = static_cast<uint32_t>(answer.length);
    return answer.status;
}

nlsStatus handOut(const nls::Converted& answer, uint32_t* outLen) {
    if (outLen != nullptr) *outLen = answer.length;
    return answer.status;
}

nlsStatus handOut(const nls::ConvertedCharacter& character, uint32_t* result) {
    if (character.counted()) *result = static_cast<uint32_t>(character.value);
    return character.status;
}

nlsStatus handOut(std::optional<uint32_t> answer, uint32_t* out) {
    if (!answer || out == nullptr) return NLS_BAD_ARG;
    *out = *answer;
    return NLS_OK;
}

nlsStatus convertText(const unsigned char* source, int32_t sourceLen, unsigned char* target, int32_t targetSize,
                      ByteSpan scratch, const nlsConvTable* table, uint32_t* outLen, bool check) {
    if (sourceLen < 0 || !usable(source, sourceLen) || !usable(target, targetSize)) return NLS_BAD_ARG;
    const nls::Conversion text{nls::firstBytes(target, targetSize), nls::firstBytes(source, sourceLen), scratch, check};
    return handOut(nls::convert(ConvTable{table}, text), outLen);
}

}  // namespace

int32_t nlsConversionType(const nlsConvTable* table) {
    return static_cast<int32_t>(ConvTable{table}.type());
}

nlsStatus convertBytes(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                       unsigned char* scratch, int32_t scratchSize, const nlsConvTable* table, uint32_t* outLen,
                       uint32_t check) {
    const ByteSpan middle = scratch != nullptr ? nls::firstBytes(scratch, scratchSize) : ByteSpan{};
    return convertText(source, sourceLen, target, targetSize, middle, table, outLen, check != 0);
}

nlsStatus nlsConvertBytes(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                          const nlsConvTable* table, uint32_t* outLen) {
    return convertText(source, sourceLen, target, targetSize, {}, table, outLen, false);
}

nlsStatus nlsConvertLong(uint32_t* result, nlsLChar value, const nlsConvTable* table) {
    if (result == nullptr) return NLS_BAD_ARG;
    return handOut(nls::convertCharacter(ConvTable{table}, value), result);
}

nlsStatus getMaxConvCharSize(const nlsConvTable* table, uint32_t targetCharSize, uint32_t* size) {
    return handOut(nls::largestCharacter(ConvTable{table}, targetCharSize), size);
}

nlsStatus getMaxExpSz(const nlsConvTable* table, uint32_t* factor) {
    return handOut(nls::largestGrowth(ConvTable{table}), factor);
}

nlsStatus nlsConvertLChar(const nlsConversion* conversion, nlsTlsBlock*, nlsLChar value, uint32_t* result) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (result == nullptr) return NLS_BAD_ARG;
    return handOut(nls::convertCharacter(ConvTable{conversion->table}, value), result);
}

nlsStatus nlsConvertToUCS2(const nlsConversion* conversion, nlsTlsBlock*, const nlsStr* str, int32_t targetSize,
                           unsigned char* target, uint32_t* outLen) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (str == nullptr || !usable(target, targetSize)) return NLS_BAD_ARG;
    const ByteSpan room = nls::firstBytes(target, targetSize);
    return handOut(nls::convertWithTerminator(ConvTable{conversion->table}, *str, room), outLen);
}

nlsStatus nlsConvertFromUCS2(const nlsConversion* conversion, nlsTlsBlock*, const unsigned char* source,
                             int32_t sourceLen, nlsStr* str) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (str == nullptr || sourceLen < 0 || !usable(source, sourceLen)) return NLS_BAD_ARG;
    return nls::convertIntoRecord(ConvTable{conversion->table}, nls::firstBytes(source, sourceLen), *str);
}

nlsStatus nlsConvertNLSCheck(const nlsConversion* conversion, nlsTlsBlock*, const nlsStr* from, nlsStr* to) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (from == to || from == nullptr || to == nullptr) return NLS_BAD_ARG;
    return nls::convertAndCheck(ConvTable{conversion->table}, *from, *to);
}

nlsStatus nlsConvertNLS(const nlsConversion* conversion, nlsTlsBlock*, const nlsStr* from, const nlsStr* scratchStr,
                        nlsStr* to) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (from == nullptr || to == nullptr) return NLS_BAD_ARG;
    return nls::convertAndTerminate(ConvTable{conversion->table}, *from, scratchStr, *to);
}

nlsStatus nlsToUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                    const nlsConvTable* table, uint32_t* outLen) {
    if (table == nullptr || !usable(source, sourceLen) || !usable(target, targetSize))
        return handOut(nls::Converted{NLS_BAD_ARG, 0}, outLen);
    return handOut(nls::sbcsToUtf8(ConvTable{table}.sbcsWords(), nls::firstBytes(source, sourceLen),
                                   nls::firstBytes(target, targetSize)),
                   outLen);
}

nlsStatus nlsFromUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                      const nlsConvTable* table, uint32_t* outLen) {
    if (table == nullptr || !usable(source, sourceLen) || !usable(target, targetSize))
        return handOut(nls::Converted{NLS_BAD_ARG, 0}, outLen);
    return handOut(nls::utf8ToSbcs(ConvTable{table}.sbcsPages(), nls::firstBytes(source, sourceLen),
                                   nls::firstBytes(target, targetSize)),
                   outLen);
}
