#include "convmap/utf8_tables.hpp"

#include <cstring>

#include "convmap/default_page.hpp"
#include "convmap/inverse_table.hpp"
#include "convmap/table_block.hpp"
// Against the arrows: the tables are made of forms that the codec alone knows how to write.
#include "conversion/utf_codec.hpp"

namespace nls {

namespace {

constexpr unsigned kByteValues = 256;
constexpr uint32_t kAsciiPageSize = 256;
constexpr uint32_t kPageSize = 72;  // 64 places, and slack for readers that load wide
constexpr uint16_t kForSurrogates = '?';

uint16_t unitOf(ByteView units, unsigned byteValue) {
    if (byteValue == 0) return 0;
    const auto unit = loadWord<uint16_t>(units.data() + byteValue * sizeof(uint16_t));
    return isSurrogate(unit) ? kForSurrogates : unit;
}

struct Place {
    unsigned page;
    unsigned index;
};

Place placeOf(const unsigned char (&form)[4]) {
    constexpr unsigned kLowSix = 0x3F;
    switch (bytesFromUtf8(form[0])) {
        case 0:
            return {0, form[0]};
        case 1:
            return {form[0], form[1] & kLowSix};
        default:
            return {form[1], form[2] & kLowSix};
    }
}

// The pages of the way back while they are filled; null where no character has come yet.
class PageBuilder {
public:
    explicit PageBuilder(const Arena& arena) : arena_(arena) {}

    nlsStatus put(Place place, unsigned char byteValue) {
        unsigned char*& page = pages_[place.page];
        if (page == nullptr)
            page = static_cast<unsigned char*>(arena_.take(place.page == 0 ? kAsciiPageSize : kPageSize, 1));
        if (page == nullptr) return NLS_NO_MEM;
        if (page[place.index] != 0) return NLS_BAD_TABLE;
        page[place.index] = byteValue;
        return NLS_OK;
    }

    SbcsPages finished() const {
        SbcsPages pages;
        for (unsigned i = 0; i < kByteValues; ++i) pages.page[i] = pages_[i] == nullptr ? kDefaultPage : pages_[i];
        return pages;
    }

private:
    const Arena& arena_;
    unsigned char* pages_[kByteValues] = {};
};

}  // namespace

Loaded<nlsConvTable> buildSbcsTables(const LoadContext& context, NamePair pair, int64_t typeWord, ByteView units) {
    if (blockOf(ConvTable::typeOfWord(typeWord)) != TableBlock::sbcsWords) return {NLS_BAD_TABLE, nullptr};
    SbcsWords words;
    PageBuilder builder{context.arena};
    for (unsigned byteValue = 0; byteValue < kByteValues; ++byteValue) {
        unsigned char form[sizeof words.utf8[0]] = {};
        encodeUtf8(unitOf(units, byteValue), form);
        words.utf8[byteValue] = loadWord<uint32_t>(form);
        if (const nlsStatus bad = builder.put(placeOf(form), static_cast<unsigned char>(byteValue)))
            return {bad, nullptr};
    }

    nlsConvTable* const table = makeTable(context.arena, typeWord, &words, sizeof words);
    if (table == nullptr) return {NLS_NO_MEM, nullptr};
    const SbcsPages pages = builder.finished();
    const ByteView block{reinterpret_cast<const unsigned char*>(&pages), sizeof pages};
    const nlsStatus installed = installInverse(context, pair.reversed(), block, TableBlock::sbcsPages);
    return {installed == NLS_OK ? NLS_OK : NLS_NO_MEM, table};
}

}  // namespace nls
