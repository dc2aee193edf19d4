// Locales under which characters are found and trimmed: every way through the byte tables, and the other orders.
#pragma once

#include "tests/support/case_locale.hpp"
#include "tests/support/hand_collations.hpp"

namespace nls::test {

inline std::vector<HandRoute> findingLocales() {
    static MadeCaseTable caseTable;
    caseTable.fillFromLibrary();
    std::vector<HandRoute> routes = handRoutes();
    const auto add = [&](const char* name, const nlsAttribStruct& attrib, int32_t kind) {
        nlsCollStruct coll = plainCollation();
        coll.collKind = kind;
        routes.push_back({name, std::make_unique<CollatedLocale>(attrib, coll), nullptr});
    };
    nlsAttribStruct bytesAsUtf8 = singleByteCharset();  // single bytes by its table, UTF-8 by its flag
    bytesAsUtf8.flags = NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UTF8;
    nlsAttribStruct trailsInSingleBytes = oddCharset();  // counted by bytes, walked by trail counts
    trailsInSingleBytes.flags = NLS_CHARSET_SINGLE_BYTE;
    nlsAttribStruct trailsInBytes = oddCharset();
    trailsInBytes.flags = 0;
    add("utf-8", utf8Charset(), 1);
    add("bytes as utf-8", bytesAsUtf8, 1);
    add("trails in single bytes", trailsInSingleBytes, 1);
    add("trails in bytes", trailsInBytes, 1);
    add("user sort", sjisCharset(), 2);
    add("unicode", utf8Charset(), 3);
    routes.back().get()->caseTable = caseTable.get();
    add("thai", singleByteCharset(), 4);
    return routes;
}

// Bytes that the rules tell apart: a NUL, a blank, letters of both cases, the double s, and characters of every length.
inline const std::string findingBytes{"\0 aAs\xDF\x81\x40\x80\xC3\xE0\x8F\xA1", 13};

}  // namespace nls::test
