#include "tools/nls/order_print.hpp"

#include <cstring>

#include "tools/nls/failure.hpp"
#include "tools/nls/sha256.hpp"

namespace nls::tool {
namespace {

void addNumber(Sha256& digest, uint32_t number) {
    const unsigned char bytes[] = {static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8),
                                   static_cast<unsigned char>(number >> 16), static_cast<unsigned char>(number >> 24)};
    digest.add(bytes);
}

void addTrailCounts(Sha256& digest, const nlsAttribStruct& attrib) {
    for (const unsigned char entry : attrib.lengthMap) {
        const unsigned char trails = entry & 7U;
        digest.add({&trails, 1});
    }
}

void addCaseTable(Sha256& digest, const nlsLocale& locale) {
    // In a UTF-8 charset the record is of the Unicode kind; kind 3 folds by no other.
    const bool folds = locale.caseTable != nullptr && (locale.attrib->flags & NLS_CHARSET_UTF8) != 0;
    addNumber(digest, folds ? 1 : 0);
    if (!folds) return;
    const auto& table = reinterpret_cast<const nlsUnicodeCaseStruct&>(*locale.caseTable);
    for (unsigned page = 0; page < 256; ++page) {
        for (unsigned entry = 0; entry < (page == 0 ? 256 : 128); ++entry) {
            const uint16_t form = table.casePages[page][entry];
            const unsigned char bytes[] = {static_cast<unsigned char>(form), static_cast<unsigned char>(form >> 8)};
            digest.add(bytes);
        }
    }
}

void addConverted(Sha256& digest, const nlsConvTable* table, ByteView source) {
    unsigned char told[3] = {static_cast<unsigned char>(source.size()), source[0],
                             source.size() > 1 ? source[1] : static_cast<unsigned char>(0)};
    if (table != nullptr) {
        unsigned char target[2] = {0, 0};
        uint32_t length = 0;
        const nlsStatus status =
            nlsConvertBytes(target, 2, source.data(), static_cast<int32_t>(source.size()), table, &length);
        const bool isWhole = status == NLS_OK && length <= 2;
        told[0] = static_cast<unsigned char>(isWhole ? length : 0);
        told[1] = target[0];
        told[2] = target[1];
    }
    digest.add(told);
}

void addBridge(Sha256& digest, const Order& order) {
    if (getSjisHandles(order.locale()) != NLS_OK) throw Failure(Exit::fileTrouble, order.name() + " lacks Shift-JIS");
    const nlsAttribStruct& own = order.attrib();
    const nlsConvTable* const table = own.sjisConversion->table;
    addTrailCounts(digest, *own.sjisAttrib);
    for (unsigned first = 1; first < 256; ++first) {
        const unsigned char pair[2] = {static_cast<unsigned char>(first), 0};
        if ((own.lengthMap[first] & 7U) == 0) {
            addConverted(digest, table, {pair, 1});
            continue;
        }
        for (unsigned second = 0; second < 256; ++second) {
            const unsigned char both[2] = {pair[0], static_cast<unsigned char>(second)};
            addConverted(digest, table, both);
        }
    }
}

// With its NUL, also where a stored map has filled the place of it.
void addText(Sha256& digest, const char* text, std::size_t width) {
    constexpr unsigned char nul[] = {0};
    digest.add({reinterpret_cast<const unsigned char*>(text), strnlen(text, width)});
    digest.add(nul);
}

// The maps of a collation of ICU's also hold a pointer, and as much of the locale as fits.
void addIcu(Sha256& digest, const nlsCollStruct& collation) {
    constexpr std::size_t versions = 16, strength = 48, ofVersions = 8;
    for (const unsigned char* const map : {collation.exactMap, collation.foldMap}) {
        digest.add({map + versions, ofVersions});
        addText(digest, reinterpret_cast<const char*>(map + strength), sizeof collation.exactMap - strength);
    }
    const nlsIcuInfo* info = nullptr;
    std::memcpy(&info, collation.exactMap, sizeof info);
    addText(digest, info->versionText, std::strlen(info->versionText));
    addText(digest, info->icuLocale, std::strlen(info->icuLocale));
}

void addMaps(Sha256& digest, const Order& order) {
    const nlsCollStruct& collation = order.collation();
    if (order.kind() == OrderKind::icu) return addIcu(digest, collation);
    digest.add(collation.exactMap);
    digest.add(collation.foldMap);
}

}  // namespace

std::string fingerprintOf(const Order& order) {
    if (order.kind() == OrderKind::site) {
        throw Failure(Exit::usage, order.name() + " is a sort of the site's own: no table tells its order");
    }
    constexpr unsigned char title[] = {'n', 'l', 's', ' ', 'o', 'r', 'd', 'e', 'r'};
    constexpr uint32_t deciding = NLS_CHARSET_SINGLE_BYTE | NLS_CHARSET_VIA_SJIS | NLS_CHARSET_UTF8;
    const nlsCollStruct& collation = order.collation();
    Sha256 digest;
    digest.add(title);
    addNumber(digest, NLS_ORDER_VERSION);
    addNumber(digest, static_cast<uint32_t>(collation.collKind));
    addNumber(digest, collation.collSubKind);
    addMaps(digest, order);
    addNumber(digest, static_cast<uint32_t>(order.attrib().flags) & deciding);
    addTrailCounts(digest, order.attrib());
    if (order.kind() == OrderKind::unicode) addCaseTable(digest, *order.locale());
    if (order.isBridged()) addBridge(digest, order);
    return digest.finish();
}

}  // namespace nls::tool
