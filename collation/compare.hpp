// Which of two texts sorts first: the choice of the route, and its answer.
// Tested by tests/collation/compare_test.cpp.
#pragma once

#include <cstdint>

#include "collation/coll_kind.hpp"
#include "collation/single_byte_walk.hpp"
#include "collation/text.hpp"
#include "core/base/charset.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// `sign`: 1 after, 0 equal, -1 before. A site's own sort may answer another number of 16 bits. It is an answer with
// status NLS_OK, but ICU tells one of a failure too, and can end without either.
struct Compared {
    static constexpr int kNoAnswer = INT32_MIN + 1, kFailed = -2;  // ICU's; no answer is no equality, in 16 bits either

    nlsStatus status;
    int sign;

    bool answered() const { return status == NLS_OK ? sign != kNoAnswer : sign == kFailed; }
};

// What a locale compares by.
struct Collation {
    const nlsLocale& locale;
    const nlsAttribStruct& attrib;
    const nlsCollStruct& coll;
};
// REQUIRES: the locale has both.
inline Collation collationOf(const nlsLocale& locale) {
    return {locale, *locale.attrib, *locale.coll};
}

Compared compareTexts(const Collation& by, nlsTlsBlock* tls, Text a, Text b, uint16_t mode);

// The same under the locale's own tables. REQUIRES: the locale has an attribute table and a collation.
inline Compared compareTexts(const nlsLocale& locale, nlsTlsBlock* tls, Text a, Text b, uint16_t mode) {
    return compareTexts(collationOf(locale), tls, a, b, mode);
}

// Is there a faster way for texts of known length?
inline bool comparesSingleBytes(const nlsLocale& locale) {
    return Charset{*locale.attrib}.isSingleByte() && kindOf(*locale.coll) == CollKind::byteTables;
}

// Is the weight of a text's first byte the first of its weights, where it has one? It is that of a first byte of two,
// too; but on the way through Shift-JIS the second byte has its say.
inline bool firstPairMayDecide(const nlsLocale& locale) {
    return !Charset{*locale.attrib}.comparesViaSjis() && kindOf(*locale.coll) == CollKind::byteTables;
}

// Texts of known length, in bytes; a NUL ends them earlier. On the faster way a negative length is an empty text;
// elsewhere -1 is no limit. REQUIRES: as above.
Compared compareLimited(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* a, const unsigned char* b,
                        int32_t lengthA, int32_t lengthB, uint16_t mode);

}  // namespace nls
