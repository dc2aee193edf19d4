// Sizes and places inside the image of a stored collation, and inside the block of a database locale.
//
// The image, short form: exactMap, foldMap. Long form: the collation's record, the attribute table's, and what a case
// table has in front of its pages, as they lie in memory one behind another.
//
// The block: the locale's record, and then what the kind of the collation asks for; the text stands at its very end.
//
//   kinds up to 5   collation | words | (kind 5: padding, ICU's record) | … | text
//   kinds above 5   collation | attribute table | case table, its pages | words | … | text
//
// Tested by tests/core/db_collation_test.cpp.
#pragma once

#include <cstddef>

#include "core/base/charset.hpp"
#include "nls/records.h"

namespace nls {

// Collations up to this kind take attribute and case table from the data file; above it they bring their own.
inline constexpr int32_t kLastKindByFile = 5;

// A stored format up to this is the short form.
inline constexpr int32_t kLastShortFormat = 5;

inline constexpr uint32_t kMapsSize = sizeof(nlsCollStruct::exactMap) + sizeof(nlsCollStruct::foldMap);
inline constexpr uint32_t kTablesSize = sizeof(nlsCollStruct) + sizeof(nlsAttribStruct);
inline constexpr uint32_t kCaseRawSize = offsetof(nlsUnicodeCaseStruct, casePages);
static_assert(kMapsSize == 512 && kTablesSize == 1376 && kCaseRawSize == 5976);

// In front of words and text.
inline constexpr uint32_t kSmallBlockBase = sizeof(nlsLocale) + sizeof(nlsCollStruct);
inline constexpr uint32_t kLargeBlockBase = sizeof(nlsLocale) + kTablesSize;
static_assert(kSmallBlockBase == 736 && kLargeBlockBase == 1528);

// Of words: what a table has besides its body, and the room that is kept where there is none.
inline constexpr uint32_t kWordsHead = 62, kRoomForNoWords = 256 + kWordsHead;

// What a case table takes of an image, and of a block.
struct CaseSizes {
    uint32_t image, block;
};
inline constexpr CaseSizes kNoCase{0, 0}, kByteCase{sizeof(nlsCaseStruct), sizeof(nlsCaseStruct)};

// REQUIRES: the case table is null or that of the charset.
inline CaseSizes caseSizesOf(Charset charset, const nlsCaseStruct* table) {
    if (table == nullptr) return kNoCase;
    if (!charset.isUtf8()) return kByteCase;
    const auto& pages = reinterpret_cast<const nlsUnicodeCaseStruct&>(*table);
    return {pages.caseRawSize, pages.caseRawSize + pages.caseBuildSize};
}

}  // namespace nls
