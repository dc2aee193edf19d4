#include "icu/builds.hpp"

#include <cstring>

#include "icu/name_list.hpp"

namespace nls {
namespace {

constexpr const char* iculib_2_4[] = {NLS_ICU_2_4_DATA, NLS_ICU_2_4_COMMON, NLS_ICU_2_4_I18N};
constexpr const char* iculib_4_8[] = {NLS_ICU_4_8_DATA, NLS_ICU_4_8_COMMON, NLS_ICU_4_8_I18N};

nlsIcuFuncs icufunc_2_4, icufunc_4_8;

}  // namespace

nlsIcuVersion icuarray[kIcuBuilds] = {
    {"", NLS_ICU_2_4_SUFFIX, 0, 0, iculib_2_4, &icufunc_2_4, icucollnames_2_4},
    {"48", NLS_ICU_4_8_SUFFIX, 0, kKeywordLocales | kHasUcaVersion, iculib_4_8, &icufunc_4_8, icucollnames_4_8},
};

nlsIcuVersion* UL_get_icuver(const char* key) {
    if (*key == '\0') return &baseBuild();
    for (nlsIcuVersion& row : icuarray) {
        if (std::strcmp(row.versionKey, key) == 0) return &row;
    }
    return nullptr;
}

}  // namespace nls
