#include "collation/sjis_bridge.hpp"

#include "conversion/engine.hpp"
#include "core/base/names.hpp"
#include "core/base/object_chain.hpp"

namespace nls {

namespace {

constexpr const char* kSjis = "shift-jis";

template <typename T>
void writeMemo(T*& slot, T* value) {
    __atomic_store_n(&slot, value, __ATOMIC_RELAXED);
}

nlsLocale* findSjisLocale(const nlsHandle& handle) {
    return findOnChain<nlsLocale>(handle, NLS_TAG_LOCALE,
                                  [](const nlsLocale& one) { return sameName(one.charsetName, kSjis); });
}

nlsConversion* findConversionToSjis(const nlsHandle& handle, const char* charset) {
    return findOnChain<nlsConversion>(handle, NLS_TAG_CONVERSION, [charset](const nlsConversion& one) {
        return sameName(one.source->charsetName, charset) && sameName(one.target->charsetName, kSjis);
    });
}

}  // namespace

SjisHandles lookForSjisHandles(const nlsLocale& locale) {
    nlsAttribStruct& attrib = *locale.attrib;
    if (locale.owner == nullptr) return {NLS_NO_SJIS, nullptr, nullptr};
    const nlsLocale* const sjis = findSjisLocale(*locale.owner);
    if (sjis == nullptr || sjis->attrib == nullptr) return {NLS_NO_SJIS, nullptr, nullptr};
    nlsConversion* const conversion = findConversionToSjis(*locale.owner, locale.charsetName);
    if (conversion == nullptr) return {NLS_NO_CONV_TABLE, nullptr, nullptr};
    // That of a database locale may go with its block; a conversion keeps one that stays.
    nlsAttribStruct* const lasting = sjis->dbBlockSize == 0 ? sjis->attrib : conversion->target->attrib;
    writeMemo(attrib.sjisAttrib, lasting);
    writeMemo(attrib.sjisConversion, conversion);
    return {NLS_OK, lasting, conversion};
}

BridgedPair SjisBridge::throughTable(unsigned char first, unsigned char second) const {
    unsigned char pair[2] = {first, second};
    const EngineAnswer answer = convert(table_, {ByteSpan{pair}, ByteView{pair}, {}});
    return {pair[0], pair[1], answer.length == 1};
}

}  // namespace nls
