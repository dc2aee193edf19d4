#include "icu/builds.hpp"

#include <cstring>

#include "icu/name_list.hpp"
#include "icu/packaging.hpp"

namespace nls {
namespace {

nlsIcuFuncs icufunc_2_4, icufunc_4_8;

}  // namespace

nlsIcuVersion icuarray[kIcuBuilds] = {
    {"", kBaseSuffix, 0, 0, iculib_2_4, &icufunc_2_4, icucollnames_2_4},
    {"48", kNewerSuffix, 0, kKeywordLocales | kHasUcaVersion, iculib_4_8, &icufunc_4_8, icucollnames_4_8},
};

nlsIcuVersion* UL_get_icuver(const char* key) {
    if (*key == '\0') return &baseBuild();
    for (nlsIcuVersion& row : icuarray) {
        if (std::strcmp(row.versionKey, key) == 0) return &row;
    }
    return nullptr;
}

}  // namespace nls
