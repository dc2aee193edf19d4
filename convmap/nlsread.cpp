// Door: the loaders of attribute, conversion, collation and case tables.
#include "convmap/attrib_table.hpp"
#include "convmap/case_table_load.hpp"
#include "convmap/coll_derive.hpp"
#include "convmap/coll_table_load.hpp"
#include "convmap/conv_table_load.hpp"
#include "convmap/inverse_table.hpp"
#include "convmap/ucs2_maps.hpp"
#include "convmap/utf8_tables.hpp"
#include "core/base/charset.hpp"
#include "core/base/checks.hpp"
#include "nls/inner.h"

namespace {

// Hands out what there is, also of an object that isn't finished.
template <typename Object>
nlsStatus handOut(nls::Loaded<Object> loaded, Object** out) {
    if (loaded.object != nullptr) *out = loaded.object;
    return loaded.status;
}

// Null is a table too: the identity.
nlsStatus handOutFinished(nls::Loaded<nlsConvTable> loaded, nlsConvTable** out) {
    if (loaded.status == NLS_OK) *out = loaded.object;
    return loaded.status;
}

}  // namespace

nlsStatus nlsGetAttribStructPtr(nlsHandle* handle, const char* charset, nlsAttribStruct** attrib) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return handOut(nls::loadAttributes(nls::loadContextOf(*handle), charset), attrib);
}

nlsStatus nlsGetConvTablePtr(nlsHandle* handle, const char* from, const char* to, uint32_t options,
                             nlsConvTable** table) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return handOutFinished(nls::loadConvTable(nls::loadContextOf(*handle), {from, to}, nls::LoadOptions{options & 1}),
                           table);
}

nlsStatus get2StepConvTablePtr(nlsHandle* handle, const char* from, const char* to, uint32_t refuse,
                               nlsConvTable** table) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    constexpr nlsStatus kNoWay = 1;  // of every failure; this operation has no other number
    if (refuse != 0) return kNoWay;
    const nls::Loaded<nlsConvTable> made = nls::makeTwoStepTable(nls::loadContextOf(*handle), {from, to});
    return made.status == NLS_OK ? handOutFinished(made, table) : kNoWay;
}

nlsStatus insertInverseStruct(nlsHandle* handle, const char* from, const char* to, const void* body, uint32_t length) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    const nls::ByteView block{static_cast<const unsigned char*>(body), length};
    return nls::installInverse(nls::loadContextOf(*handle), {from, to}, block);
}

nlsStatus readUCS2Data(nlsHandle* handle, const char* charset, const char* other, void* maps) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    const nls::ReadMaps read = nls::readUcs2Maps(nls::loadContextOf(*handle), {charset, other});
    if (read.status == NLS_OK) std::memcpy(maps, read.maps, sizeof read.maps);
    return read.status;
}

nlsStatus getUCS2Data(nlsHandle* handle, const char* from, const char* to, int64_t type, nlsConvTable** table) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return handOut(nls::loadDbcsTables(nls::loadContextOf(*handle), {from, to}, type), table);
}

nlsStatus computeUtf8TableData(nlsHandle* handle, const char* from, const char* to, int64_t type, const uint16_t* units,
                               nlsConvTable** table) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    const nls::ByteView bytes{reinterpret_cast<const unsigned char*>(units), 256 * sizeof *units};
    return handOut(nls::buildSbcsTables(nls::loadContextOf(*handle), {from, to}, type, bytes), table);
}

nlsStatus nlsGetCollStructPtr(nlsHandle* handle, const nlsAttribStruct* attrib, const char* charset,
                              const char* collationName, nlsCollStruct** coll) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    const bool mayDerive = attrib != nullptr && nls::Charset{*attrib}.isSingleByte();
    return handOut(nls::loadCollation(nls::loadContextOf(*handle), charset, collationName, mayDerive), coll);
}

nlsStatus convCollTable(nlsHandle* handle, const char* charset, const char* collationName, nlsCollStruct** coll) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return handOut(nls::deriveCollation(nls::loadContextOf(*handle), charset, collationName), coll);
}

void utMungeCollation(unsigned char* map, const nlsConvTable* table) {
    if (map == nullptr) return;
    nls::moveWeights(nls::WeightMapRef{map, nls::kWeights}, nls::ConvTable{table});
}

nlsStatus getCaseStructPtr(nlsHandle* handle, const char* charset, const char* caseName, nlsCaseStruct** caseTable) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return handOut(nls::loadCaseTable(nls::loadContextOf(*handle), charset, caseName), caseTable);
}

nlsStatus computeUCCaseTableData(nlsHandle* handle, const void* record, nlsUnicodeCaseStruct* caseTable,
                                 unsigned char* cursor, uint32_t remaining) {
    const nls::ByteView bytes{static_cast<const unsigned char*>(record), nls::format::unicode_case::kSize};
    if (cursor != nullptr)
        return nls::buildUnicodeCaseTable(nls::Arena{cursor, remaining}, bytes, *caseTable) ? NLS_OK : NLS_BUF_SMALL;
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    const nls::Arena arena{handle->freePtr, handle->freeBytes};
    return nls::buildUnicodeCaseTable(arena, bytes, *caseTable) ? NLS_OK : NLS_NO_MEM;
}
