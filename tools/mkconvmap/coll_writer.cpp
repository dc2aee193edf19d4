#include "tools/mkconvmap/coll_writer.hpp"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>
#include <string_view>
#include <tuple>

#include "collation/coll_kind.hpp"
#include "convmap/file_format.hpp"
#include "tools/mkconvmap/collator.hpp"

namespace nls::mkconvmap {

namespace {

constexpr uint8_t kBasic = 0, kWeighted = 1;  // second kinds

struct WeightMaps {
    ByteTable exact{}, fold{};
};

DataRecord recordOf(CollKind kind, uint8_t subKind, const WeightMaps& maps) {
    DataRecord record;
    record.bytes.resize(format::collation::kSize);
    format::putDecimal(record.bytes, format::kSlotSize, format::kMapEntries);
    std::memcpy(record.bytes.data() + format::collation::kExactMap.offset, maps.exact.data(), maps.exact.size());
    std::memcpy(record.bytes.data() + format::collation::kFoldMap.offset, maps.fold.data(), maps.fold.size());
    record.bytes[format::collation::kKind.offset] = static_cast<uint8_t>(kind);
    record.bytes[format::collation::kSubKind.offset] = subKind;
    return record;
}

// Each byte is its own weight, but that a small letter folds to its capital.
WeightMaps basicMaps(const CompiledCharset& indexed) {
    WeightMaps maps;
    std::iota(maps.exact.begin(), maps.exact.end(), uint8_t{0});
    maps.fold = byteCase(CaseSource{}, indexed, CaseForm::upper);
    return maps;
}

// A map without weights: its slots open with a word that the library looks for.
WeightMaps codePointMaps() {
    constexpr std::string_view mark{"BASIC"};
    WeightMaps maps;
    std::copy(mark.begin(), mark.end(), maps.exact.begin());
    maps.fold = maps.exact;
    return maps;
}

// Weights in the order of a collator. Bytes that differ in nothing but case, or in less, fold: in the second map they
// have the weight of the first of them, whichever row of weights that stands in. The blank folds with nothing, nor do
// characters that the collator passes over.
class Weigher {
public:
    Weigher(const CollationSource& collation, const CharsetSource& charset)
        : collator_(collation.orderPlace, collation.locale), charset_(charset) {}

    // One weight after the other from `first`.
    void weigh(const std::vector<uint8_t>& bytes, uint8_t first, WeightMaps& maps) {
        std::vector<std::pair<Rank, uint8_t>> ranked;
        ranked.reserve(bytes.size());
        for (const uint8_t byte : bytes) ranked.emplace_back(rankOf(byte), byte);
        std::sort(ranked.begin(), ranked.end());
        uint8_t weight = first;
        for (const auto& [rank, byte] : ranked) {
            maps.exact[byte] = weight;
            const std::string key = byte == kTrimmedBlank ? "" : collator_.secondaryKey(charset_.units[byte]);
            maps.fold[byte] = key.empty() ? weight : firstOfKey_.try_emplace(key, weight).first->second;
            ++weight;
        }
    }

private:
    // The blank, then by key, then by code point.
    using Rank = std::tuple<bool, std::string, uint16_t>;
    Rank rankOf(uint8_t byte) const {
        return {byte != kTrimmedBlank, collator_.tertiaryKey(charset_.units[byte]), charset_.units[byte]};
    }

    Collator collator_;
    const CharsetSource& charset_;
    std::map<std::string, uint8_t> firstOfKey_;
};

WeightMaps languageMaps(const CollationSource& collation, const CharsetSource& charset) {
    std::vector<uint8_t> bytes(format::kMapEntries - 1);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    WeightMaps maps;
    Weigher{collation, charset}.weigh(bytes, 1, maps);
    // Where another letter stands at the place of "s", such as in EBCDIC, the double letter keeps its own weight.
    if (charset.units[kSmallS] != 's') return maps;
    for (const uint8_t byte : bytes) {
        if (collation.doubled.find(charset.units[byte]) == std::u16string::npos) continue;
        maps.exact[byte] = maps.fold[byte] = kNoWeight;
    }
    return maps;
}

// The clusters are read by byte, so the charset has to be TIS 620.
void requireThai(const Place& place, const CharsetSource& charset) {
    constexpr uint16_t thaiBlock = 0x0E00 - 0xA0;
    for (uint32_t byte = 0xA1; byte <= 0xFB; ++byte) {
        if (!charset.filled[byte] && charset.units[byte] != thaiBlock + byte) {
            fail(place, "Thai clusters are of TIS 620, and " + charset.name + " isn't: byte " + hexText(byte, 2));
        }
    }
}

WeightMaps thaiMaps(const Place& place, const CollationSource& collation, const CharsetSource& charset) {
    requireThai(place, charset);
    Weigher weigher{collation, charset};
    WeightMaps maps;
    for (const WeightRow& row : collation.rows) {
        for (const uint8_t byte : row.bytes) {
            if (maps.exact[byte] != 0) fail(row.place, "byte " + hexText(byte, 2) + " has a weight already");
            maps.exact[byte] = 1;  // its own in a moment
        }
        if (row.sorted) {
            weigher.weigh(row.bytes, row.first, maps);
            continue;
        }
        uint8_t weight = row.first;
        for (const uint8_t byte : row.bytes) {
            maps.exact[byte] = maps.fold[byte] = weight;
            weight = static_cast<uint8_t>(weight + row.step);
        }
    }
    for (uint32_t byte = 1; byte < format::kMapEntries; ++byte) {
        if (maps.exact[byte] == 0) fail(collation.place, "byte " + hexText(byte, 2) + " has no weight");
    }
    return maps;
}

}  // namespace

DataRecord collationRecord(const Place& place, const CollationSource& collation, const CompiledCharset& charset,
                           const CompiledCharset& indexed) {
    const CharsetSource& source = charset.source;
    const auto require = [&](bool fits, const char* which) {
        if (!fits) fail(place, "the order of " + collation.name + " is for " + which + "; " + source.name + " isn't");
    };
    switch (collation.order) {
        case CollationOrder::bytes:
            require(source.kind != CharsetKind::utf8, "charsets other than UTF-8");
            return recordOf(CollKind::byteTables, kBasic, basicMaps(indexed));
        case CollationOrder::codePoints:
            require(source.kind == CharsetKind::utf8, "UTF-8");
            return recordOf(CollKind::unicode, kBasic, codePointMaps());
        case CollationOrder::language:
            require(source.isSingleByte(), "single-byte charsets");
            return recordOf(CollKind::byteTables, kWeighted, languageMaps(collation, source));
        case CollationOrder::thai:
            require(source.isSingleByte(), "single-byte charsets");
            return recordOf(CollKind::thai, kWeighted, thaiMaps(place, collation, source));
    }
    return {};
}

std::optional<char32_t> missingLetter(const CollationSource& collation, const CharsetSource& charset) {
    const auto lacks = [&charset](char32_t letter) {
        return std::find(charset.units.begin(), charset.units.end(), letter) == charset.units.end();
    };
    for (const char16_t letter : collation.letters) {
        if (lacks(letter)) return letter;
        const auto capital = static_cast<char32_t>(u_toupper(static_cast<UChar32>(letter)));
        if (lacks(capital)) return capital;
    }
    return std::nullopt;
}

bool hasDoubleS(const DataRecord& collation) {
    const unsigned char* const map = collation.bytes.data() + format::collation::kExactMap.offset;
    return CollKind{collation.bytes[format::collation::kKind.offset]} == CollKind::byteTables &&
           std::find(map + 1, map + format::kMapEntries, kNoWeight) != map + format::kMapEntries;
}

}  // namespace nls::mkconvmap
