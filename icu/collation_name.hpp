// The name of a collation of ICU's, such as "ICU-de__PHONEBOOK" or "ICU_48-zh@stroke": which build, and which locale.
// Tested by tests/icu/collation_name_test.cpp.
#pragma once

#include <cstdint>

#include "icu/builds.hpp"
#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Does the name ask for ICU? Its case counts.
bool isIcuName(const char* name);

// Makes `info` the record of a collation, from its name, and both maps of `coll` refer to it. NLS_OK, or
// NLS_NO_COLL_TABLE for a name that no build answers for. A name too long for the record tells a locale that can't be
// opened.
nlsStatus fillIcuInfo(nlsCollStruct& coll, nlsIcuInfo& info, const char* name);

// Bytes for any locale, its NUL included.
inline constexpr int32_t kIcuLocaleRoom = 32;

// The locale as ICU is given it, from the part of the name that tells it; empty for the root. NLS_OK, or NLS_BUF_SMALL,
// and nothing is written.
nlsStatus icuLocaleOf(const nlsIcuVersion& row, const char* name, char* locale, int32_t room);

}  // namespace nls
