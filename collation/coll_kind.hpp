// The kinds of collation, each a route of its own. Every other number goes as byteTables.
#pragma once

#include <cstdint>

#include "nls/records.h"

namespace nls {

enum class CollKind : int32_t { byteTables = 1, userSort = 2, unicode = 3, thai = 4, icu = 5 };

inline CollKind kindOf(const nlsCollStruct& coll) {
    return CollKind{coll.collKind};
}

inline bool comparesByTables(const nlsCollStruct& coll) {
    const CollKind kind = kindOf(coll);
    return kind != CollKind::userSort && kind != CollKind::unicode && kind != CollKind::thai && kind != CollKind::icu;
}

// Byte tables take no other mode.
inline bool isByteMode(uint16_t mode) {
    return mode <= 1;
}

}  // namespace nls
