#include "icu/collator.hpp"

#include <algorithm>
#include <cstring>

#include "icu/collation_name.hpp"
#include "icu/image.hpp"
#include "icu/loader.hpp"
#include "icu/name_list.hpp"

namespace nls {
namespace {

bool mayUseRoot(const char* locale) {
    return *locale == '\0' || std::strcmp(locale, "en") == 0 || std::strncmp(locale, "en_", 3) == 0;
}

// The collator of a locale as a collation's name tells it.
OpenedCollator openNamed(nlsIcuVersion& row, const char* name, char (&locale)[kIcuLocaleRoom]) {
    if (icuLocaleOf(row, name, locale, kIcuLocaleRoom) != NLS_OK) return {kIcuUsedDefault, nullptr};
    return openCollator(row, locale);
}

void writeVersions(const nlsIcuVersion& row, const IcuCollator* collator, IcuImage image) {
    constexpr unsigned char kUnknownUca[4] = {3, 1, 1, 0};
    row.entryPoints->ucol_getVersion(collator, image.collatorVersion());
    if ((row.capabilities & kHasUcaVersion) != 0)
        row.entryPoints->ucol_getUCAVersion(collator, image.ucaVersion());
    else
        std::memcpy(image.ucaVersion(), kUnknownUca, sizeof kUnknownUca);
}

template <std::size_t Size>
void copyText(char (&to)[Size], const char* from) {
    std::memset(to, 0, Size);
    std::memcpy(to, from, std::min(std::strlen(from), Size - 1));
}

}  // namespace

OpenedCollator openCollator(nlsIcuVersion& row, const char* locale) {
    if (loadLevel(row) < kCollates) {
        if (const nlsStatus bad = UL_init_icu(kCollates, row)) return {bad, nullptr};
    }
    IcuStatus status = kIcuOk;
    IcuCollator* const collator = row.entryPoints->ucol_open(locale, &status);
    if (status > kIcuOk) return {status, nullptr};
    if (status == kIcuUsedDefault && !mayUseRoot(locale)) {
        row.entryPoints->ucol_close(collator);
        return {status, nullptr};
    }
    return {kIcuOk, collator};
}

nlsStatus makeIcuCollation(const char* name, nlsCollStruct& coll) {
    IcuImage exact{coll.exactMap}, fold{coll.foldMap};
    nlsIcuInfo* const info = exact.info();
    if (info == nullptr) return NLS_NO_MEM;
    char locale[kIcuLocaleRoom];
    const OpenedCollator opened = openNamed(*info->version, name, locale);
    if (opened.status != kIcuOk) return NLS_NO_MEM;
    writeVersions(*info->version, opened.collator, exact);
    copyText(exact.locale(), *locale == '\0' ? "" : name);
    exact.clearReserved();

    char kept[IcuImage::kStrength];
    std::memcpy(kept, fold.strengthWord(), sizeof kept);
    std::memcpy(coll.foldMap, coll.exactMap, IcuImage::kSize);
    if (exact.strengthWord()[0] == '\0') std::strcpy(exact.strengthWord(), "TERTIARY");
    if (kept[0] == '\0') std::strcpy(kept, "SECONDARY");
    std::memcpy(fold.strengthWord(), kept, sizeof kept);
    info->sharedCollator = opened.collator;
    return NLS_OK;
}

ChosenCollator openForThread(nlsIcuInfo& info, nlsTlsBlock& tls) {
    char locale[kIcuLocaleRoom];
    const OpenedCollator opened = openNamed(*info.version, info.icuLocale, locale);
    tls.icuColl = &info;
    tls.icuStatus = opened.status;
    if (opened.status != kIcuOk)
        return {NLS_NO_COLL_TABLE, static_cast<IcuCollator*>(info.sharedCollator), info.version};
    tls.collator = reinterpret_cast<uint64_t>(opened.collator);
    return {NLS_OK, opened.collator, info.version};
}

void closeCollator(nlsTlsBlock& tls) {
    if (tls.collator == 0) return;
    tls.icuColl->version->entryPoints->ucol_close(reinterpret_cast<IcuCollator*>(tls.collator));
    tls.collator = 0;
}

int32_t strengthOfWord(const char* word) {
    constexpr char kInOrderOfIcusNumbers[] = "PRIMARY,SECONDARY,TERTIARY,QUATERNARY,IGNORE-SECONDARY";
    constexpr std::size_t kLongest = 32;  // with its NUL, as far as a word counts
    char counted[kLongest] = {};
    std::memcpy(counted, word, kLongest - 1);
    return static_cast<int32_t>(placeInList(counted, kInOrderOfIcusNumbers)) - 1;
}

}  // namespace nls
