#include "icu/collation_name.hpp"

#include <cstring>

#include "icu/image.hpp"

namespace nls {
namespace {

constexpr std::size_t kPrefix = 4;  // "ICU-" or "ICU_"

bool startsWith(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

// The row whose key begins with `start`.
nlsIcuVersion* rowByStart(const char* start) {
    for (nlsIcuVersion& row : icuarray) {
        if (startsWith(row.versionKey, start)) return &row;
    }
    return nullptr;
}

// Stands for a locale that is too long for the record: it fits no locale's room, so that ICU is never asked for the
// part of it that would.
constexpr char kNoRoom[] = "a locale that is longer than any";
static_assert(sizeof kNoRoom > std::size_t{kIcuLocaleRoom});

}  // namespace

bool isIcuName(const char* name) {
    return startsWith(name, "ICU-") || startsWith(name, "ICU_");
}

nlsStatus fillIcuInfo(nlsCollStruct& coll, nlsIcuInfo& info, const char* name) {
    IcuImage{coll.exactMap}.setInfo(&info);
    IcuImage{coll.foldMap}.setInfo(&info);
    info = nlsIcuInfo{};
    if (!isIcuName(name)) return NLS_NO_COLL_TABLE;
    const char* const text = name + kPrefix;
    const std::size_t length = strnlen(text, sizeof info.nameText);
    const bool fits = length < sizeof info.nameText;
    std::memcpy(info.nameText, text, fits ? length : sizeof info.nameText - 1);
    const char* locale = info.nameText;
    if (name[kPrefix - 1] == '-') {
        info.version = &baseBuild();
    } else {
        char* const dash = std::strchr(info.nameText, '-');
        if (dash == nullptr) return NLS_NO_COLL_TABLE;
        *dash = '\0';
        locale = dash + 1;
        info.version = rowByStart(info.nameText);
    }
    if (info.version == nullptr) return NLS_NO_COLL_TABLE;
    info.versionText = info.version->versionKey;
    info.icuLocale = fits ? locale : kNoRoom;
    return NLS_OK;
}

nlsStatus icuLocaleOf(const nlsIcuVersion& row, const char* name, char* locale, int32_t room) {
    constexpr char kKeyword[] = "collation=";
    if (room < 1) return NLS_BUF_SMALL;
    if (std::strcmp(name, "UCA") == 0 || std::strcmp(name, "DUCET") == 0) {
        *locale = '\0';
        return NLS_OK;
    }
    const std::size_t length = std::strlen(name);
    const char* const at = (row.capabilities & kKeywordLocales) != 0 ? std::strchr(name, '@') : nullptr;
    const std::size_t added = at != nullptr ? sizeof kKeyword : 0;  // its NUL stands for a byte to spare
    if (length + added >= static_cast<std::size_t>(room)) return NLS_BUF_SMALL;
    const std::size_t front = at != nullptr ? static_cast<std::size_t>(at - name) + 1 : length;
    std::memcpy(locale, name, front);
    if (at != nullptr) std::memcpy(locale + front, kKeyword, sizeof kKeyword - 1);
    const std::size_t keyword = at != nullptr ? sizeof kKeyword - 1 : 0;
    std::memcpy(locale + front + keyword, name + front, length - front + 1);
    return NLS_OK;
}

}  // namespace nls
