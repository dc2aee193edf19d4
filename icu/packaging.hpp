// What the two builds of ICU are called: their files, in the order data, common, i18n, and what stands behind the name
// of each function. The NLS_ICU_… settings of CMake tell it; a source that includes this has them as definitions.
#pragma once

namespace nls {

inline constexpr const char* iculib_2_4[] = {NLS_ICU_2_4_DATA, NLS_ICU_2_4_COMMON, NLS_ICU_2_4_I18N};
inline constexpr const char* iculib_4_8[] = {NLS_ICU_4_8_DATA, NLS_ICU_4_8_COMMON, NLS_ICU_4_8_I18N};
inline constexpr const char* kBaseSuffix = NLS_ICU_2_4_SUFFIX;
inline constexpr const char* kNewerSuffix = NLS_ICU_4_8_SUFFIX;

}  // namespace nls
