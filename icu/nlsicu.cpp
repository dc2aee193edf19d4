// Door: ICU.
#include "core/base/checks.hpp"
#include "icu/collation_name.hpp"
#include "icu/collator.hpp"
#include "icu/control.hpp"
#include "icu/converter.hpp"
#include "icu/icu_compare.hpp"
#include "icu/icu_convert.hpp"
#include "icu/icu_key.hpp"
#include "icu/loader.hpp"
#include "icu/name_list.hpp"
#include "nls/icu.h"

// ---- Loading ----

void* nlsLoadLibrary(const char* path, uint32_t* status, const char** errorText) {
    const nls::LoadedLibrary loaded = nls::loadLibrary(path);
    if (loaded.handle == nullptr) {
        *status = NLS_ICU_LOAD;
        *errorText = loaded.error;
    }
    return loaded.handle;
}

void* nlsGetProcAddress(void* library, const char* name) {
    return nls::symbolAddress(library, name);
}

uint32_t lookup(const char* word, const char* list) {
    return nls::placeInList(word, list);
}

nlsStatus nlsIcuInit(nlsHandle*) {
    nls::startIcuControl();
    return NLS_OK;
}

const char* nlsICUCollationList(uint32_t* length) {
    *length = nls::gicuctl.collationListLength;
    return nls::gicuctl.collationList;
}

// ---- Collation ----

namespace {

nls::IcuCollator* collatorAt(void* collator) {
    return static_cast<nls::IcuCollator*>(collator);
}

const nls::IcuUnit* unitsAt(const uint16_t* text) {
    return reinterpret_cast<const nls::IcuUnit*>(text);
}

}  // namespace

nlsStatus nlsIcuFillInfo(nlsCollStruct* coll, nlsIcuInfo* info, const char* name) {
    return nls::fillIcuInfo(*coll, *info, name);
}

nlsStatus nlsIcuGetCollData(nlsHandle*, const char* name, nlsCollStruct* coll) {
    return nls::makeIcuCollation(name, *coll);
}

nlsStatus nlsIcuGetIcuFromZel(const nlsIcuInfo* info, const char* name, char* dst, int32_t dstSize) {
    return nls::icuLocaleOf(*info->version, name, dst, dstSize);
}

nlsStatus nlsIcuGetTlsCollator(nlsIcuInfo* info, nlsTlsBlock* tls, void** collator) {
    const nls::ChosenCollator chosen = nls::collatorOf(*info, tls);
    *collator = chosen.collator;
    return chosen.status;
}

nlsStatus nlsIcuTlsClose(nlsTlsBlock* tls) {
    nls::closeCollator(*tls);
    return NLS_OK;
}

void* UL_ucol_open(nlsIcuVersion* row, const char* locale, int32_t* status) {
    const nls::OpenedCollator opened = nls::openCollator(*row, locale);
    *status = opened.status;
    return opened.collator;
}

void UL_ucol_setStrength(const nlsIcuVersion* row, void* collator, int32_t strength) {
    nls::setStrength(*row, collatorAt(collator), strength);
}

int32_t UL_ucol_strcoll(const nlsIcuVersion* row, void* collator, const uint16_t* s1, int32_t len1, const uint16_t* s2,
                        int32_t len2) {
    return nls::compareUnits(*row, collatorAt(collator), unitsAt(s1), len1, unitsAt(s2), len2);
}

int32_t UL_ucol_getSortKey(const nlsIcuVersion* row, void* collator, const uint16_t* text, int32_t length,
                           unsigned char* key, int32_t keySize) {
    return nls::keyOfUnits(*row, collatorAt(collator), unitsAt(text), length, key, keySize);
}

nlsStatus nlsIcuCompare(const unsigned char* s1, const unsigned char* s2, nlsTlsBlock* tls, const unsigned char* map,
                        uint16_t compareMode, int32_t len1, int32_t len2, uint16_t* result) {
    const nls::IcuCompared compared = nls::compareByIcu(s1, s2, tls, map, compareMode, len1, len2);
    if (compared.answered()) *result = static_cast<uint16_t>(compared.sign);
    return compared.status;
}

void nlsIcuSortKey(unsigned char* key, const unsigned char* text, nlsTlsBlock* tls, int16_t keySize,
                   const unsigned char* map, uint16_t options, uint32_t primaryOnly) {
    const nls::ByteSpan room = nls::firstBytes(key, keySize);
    if (!room.empty()) nls::keyByIcu(room, nls::untilNul(text), tls, map, options, primaryOnly != 0);
}

// ---- Conversion ----

void* UL_ucnv_open(const char* name, uint32_t* status) {
    const nls::OpenedConverter opened = nls::openConverter(name);
    *status = static_cast<uint32_t>(opened.status);
    return opened.converter;
}

nlsStatus ccGetICUConvPtr(const char* name, void** converter) {
    const nls::OpenedConverter opened = nls::openConverter(name);
    if (opened.status != nls::kIcuOk) return NLS_NO_CONV_TABLE;
    *converter = opened.converter;
    return NLS_OK;
}

nlsStatus nlsICUConversion(unsigned char* target, uint32_t targetSize, const unsigned char* source, uint32_t sourceLen,
                           const nlsConvTable* table, uint32_t* outLen) {
    const nls::ConvTable by{table};
    if (nls::blockOf(by.type()) != nls::TableBlock::icuConverter) return NLS_BAD_ARG;
    const nls::IcuConverted converted = nls::convertByIcu(by, {target, targetSize}, source, sourceLen);
    if (converted.told) *outLen = converted.length;
    return converted.status;
}
