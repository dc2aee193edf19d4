#include "strings/short_search.hpp"

#include "core/base/charset.hpp"
#include "strings/search.hpp"

namespace nls {

nlsStatus searchShortPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                           const unsigned char** found) {
    constexpr std::ptrdiff_t kLongest = 256, kMostCompared = 1024;
    const WeightMap weights = WeightMap::of(*locale->coll, mode);
    const unsigned char first = weights.entry(*pattern);
    if (*pattern == 0 || !Charset{*locale->attrib}.hasOnlySingleBytes())
        return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    std::ptrdiff_t compared = 0;
    for (const unsigned char* place = text; *place != 0; ++place) {
        if (place - text > kLongest || compared > kMostCompared)
            return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
        if (weights.entry(*place) != first) continue;
        const unsigned char *p = pattern + 1, *t = place + 1;
        while (*p != 0 && *t != 0 && weights.entry(*p) == weights.entry(*t)) ++p, ++t;
        compared += p - pattern;
        if (*p != 0) continue;
        tellMatch({place, t}, text, pos, end, found);
        return NLS_OK;
    }
    tellNone(pos, found);
    return NLS_OK;
}

}  // namespace nls
