// Collations made by hand, and locales on them: with a bridge to Shift-JIS, too.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/base/object_chain.hpp"
#include "nls/records.h"
#include "tests/reference/compare.hpp"
#include "tests/support/hand_charsets.hpp"
#include "tests/support/made_tables.hpp"

namespace nls::test {

// Exact: each byte its own weight; folded: capitals weigh what small letters do. 0xDF counts as two letters s in both.
inline nlsCollStruct plainCollation() {
    nlsCollStruct coll{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        coll.exactMap[byte] = static_cast<unsigned char>(byte);
        coll.foldMap[byte] = static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte + 0x20 : byte);
    }
    coll.exactMap[0xDF] = coll.foldMap[0xDF] = 0;
    coll.collKind = 1;
    coll.collSubKind = 1;
    coll.collMapSize = 256;
    return coll;
}

// Few different weights, so that texts stay equal for long, and expansions among first bytes too.
inline nlsCollStruct crowdedCollation(unsigned seed) {
    std::mt19937 random{seed};
    nlsCollStruct coll = plainCollation();
    for (unsigned byte = 1; byte < 256; ++byte) {
        coll.exactMap[byte] = static_cast<unsigned char>(random() % 6 * 0x20);
        coll.foldMap[byte] = static_cast<unsigned char>(random() % 3 * 0x7F);
    }
    return coll;
}

// A locale of a charset and a collation. With the flag for it, a locale "shift-jis" and a conversion to it stand on the
// handle's chain, as the making of a locale leaves them.
class CollatedLocale {
public:
    CollatedLocale(const nlsAttribStruct& attrib, const nlsCollStruct& coll) : locale_(attrib), coll_(coll) {
        locale_.get()->coll = &coll_;
        std::strcpy(locale_.get()->charsetName, "own");
        locale_.handle().chainHead = &locale_.handle().hdr;
    }

    void bridgeTo(const nlsConvTable* table) {
        sjisLocale_.hdr.typeTag = NLS_TAG_LOCALE;
        sjisLocale_.owner = &locale_.handle();
        sjisLocale_.attrib = &sjis_;
        std::strcpy(sjisLocale_.charsetName, "SHIFT-JIS");
        conversion_ = {
            {nullptr, nullptr, 0, NLS_TAG_CONVERSION}, get(), &sjisLocale_, const_cast<nlsConvTable*>(table)};
        linkObject(locale_.handle(), sjisLocale_.hdr);
        linkObject(locale_.handle(), conversion_.hdr);
    }

    nlsLocale* get() { return locale_.get(); }
    nlsCollStruct& coll() { return coll_; }
    const nlsAttribStruct& attrib() const { return locale_.attrib(); }
    const nlsAttribStruct& sjisAttrib() const { return sjis_; }

private:
    HandLocale locale_;
    nlsCollStruct coll_;
    nlsAttribStruct sjis_ = sjisCharset();
    nlsLocale sjisLocale_{};
    nlsConversion conversion_{};
};

struct HandRoute {
    const char* name;
    std::unique_ptr<CollatedLocale> locale;
    const nlsConvTable* bridge;

    nlsLocale* get() const { return locale->get(); }
    bool singleByte() const { return (locale->attrib().flags & NLS_CHARSET_SINGLE_BYTE) != 0; }
    // What the slow twins go by. With `single` they know no longer characters.
    reference::ByteOrder order(uint16_t mode, bool single = false) const {
        return {mode == 0 ? locale->coll().foldMap : locale->coll().exactMap, single ? nullptr : &locale->attrib(),
                bridge, &locale->sjisAttrib()};
    }
};

// Every way through the byte tables, with orderly and with crowded weights.
inline std::vector<HandRoute> handRoutes() {
    static const MadeTable eucToSjis{4};
    nlsAttribStruct bridged = oddCharset();
    bridged.flags |= NLS_CHARSET_VIA_SJIS;
    std::vector<HandRoute> routes;
    const auto add = [&](const char* name, const nlsAttribStruct& attrib, const nlsCollStruct& coll) {
        const bool viaSjis = (attrib.flags & NLS_CHARSET_VIA_SJIS) != 0;
        routes.push_back({name, std::make_unique<CollatedLocale>(attrib, coll), viaSjis ? eucToSjis.get() : nullptr});
        if (viaSjis) routes.back().locale->bridgeTo(eucToSjis);
    };
    add("single", singleByteCharset(), plainCollation());
    add("single, crowded", singleByteCharset(), crowdedCollation(1));
    add("shift-jis", sjisCharset(), plainCollation());
    add("shift-jis, crowded", sjisCharset(), crowdedCollation(2));
    add("odd, crowded", oddCharset(), crowdedCollation(3));
    add("euc", eucCharset(), plainCollation());
    add("euc, crowded", eucCharset(), crowdedCollation(4));
    add("odd through the bridge", bridged, crowdedCollation(5));
    return routes;
}

}  // namespace nls::test
