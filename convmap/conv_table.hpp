// A conversion table behind its type word: the one place that reads the word and casts the block.
//
// The pointer handed around points behind a signed 64-bit type word. What stands at the pointer depends on the type:
//
//   word | 3 maps, attrib     types 17, 18, 50, 81, 89
//   word | 256 words          types 19, 51: the UTF-8 bytes of each byte value
//   word | 256 page pointers  type 20
//   word | inner table        types 29, 30
//   word | first, second, 0   type 7
//   word | 256 bytes          type 1
//   word | converter          types 5, 6
//   word                      types 3, 4, 21 to 28
//
// Tested by tests/convmap/conv_table_load_test.cpp and tests/conversion/engine_test.cpp.
#pragma once

#include <cstdint>
#include <cstring>

#include "nls/records.h"

namespace nls {

enum class ConvType : int32_t {
    byteMap = 1,
    identity = 2,
    sjisToEuc = 3,
    eucToSjis = 4,
    unicodeToIcu = 5,
    icuToUnicode = 6,
    twoStep = 7,
    dbcsToUtf8 = 17,
    utf8ToDbcs = 18,
    sbcsToUtf8 = 19,
    utf8ToSbcs = 20,
    ucs2ToUtf8 = 21,
    utf8ToUcs2 = 22,
    utf16ToUtf8 = 23,
    utf8ToUtf16 = 24,
    ucs4ToUtf8 = 25,
    utf8ToUcs4 = 26,
    utf16ToUcs4 = 27,
    ucs4ToUtf16 = 28,
    dbcsToUtf16 = 29,
    utf16ToDbcs = 30,
    utf8ToDbcsShort = 50,    // as 18, for a charset whose substitute is one byte
    sbcsToUtf8Short = 51,    // as 19, for a charset without three-byte forms
    dbcsToUtf8Long = 81,     // as 17, for a charset with four-byte forms
    dbcsToUtf8Longest = 89,  // the same, with the largest growth
};

// The block of the multi-byte bridges.
struct DbcsTable {
    nlsUcs2Map maps[3];             // called first, second and third; the third is optional
    const nlsAttribStruct* attrib;  // of the multi-byte charset
};
static_assert(sizeof(DbcsTable) == 488);

// The block of the bridge from a single-byte charset: word c holds the UTF-8 bytes of byte c, first byte lowest.
struct SbcsWords {
    uint32_t utf8[256];
};
static_assert(sizeof(SbcsWords) == 1024);

// The block of the bridge to a single-byte charset. Page 0 has 256 entries, the others at least 64.
struct SbcsPages {
    const unsigned char* page[256];
};
static_assert(sizeof(SbcsPages) == 2048);

struct ByteMapTable {
    unsigned char map[256];
};

struct IcuTable {
    void* converter;
};

// What stands behind the type word. A table is never made with less than its readers read.
enum class TableBlock { none, byteMap, icuConverter, twoSteps, dbcs, sbcsWords, sbcsPages, innerTable };

constexpr TableBlock blockOf(ConvType type) {
    switch (type) {
        case ConvType::byteMap:
            return TableBlock::byteMap;
        case ConvType::unicodeToIcu:
        case ConvType::icuToUnicode:
            return TableBlock::icuConverter;
        case ConvType::twoStep:
            return TableBlock::twoSteps;
        case ConvType::dbcsToUtf8:
        case ConvType::dbcsToUtf8Long:
        case ConvType::dbcsToUtf8Longest:
        case ConvType::utf8ToDbcs:
        case ConvType::utf8ToDbcsShort:
            return TableBlock::dbcs;
        case ConvType::sbcsToUtf8:
        case ConvType::sbcsToUtf8Short:
            return TableBlock::sbcsWords;
        case ConvType::utf8ToSbcs:
            return TableBlock::sbcsPages;
        case ConvType::dbcsToUtf16:
        case ConvType::utf16ToDbcs:
            return TableBlock::innerTable;
        default:
            return TableBlock::none;
    }
}

class ConvTable {
public:
    static constexpr uint32_t kSwapSource = 0x080, kSwapTarget = 0x200;
    static constexpr uint32_t kUtf8Source = 0x180, kUtf8Target = 0x600;  // types 5 and 6 alone
    static constexpr uint32_t kOrderBits = 0x780;                        // all that the type mask clears

    explicit ConvTable(const nlsConvTable* table) : table_(table) {}

    bool isNull() const { return table_ == nullptr; }
    const nlsConvTable* raw() const { return table_; }

    // The type with its order bits cleared; null is the identity, and a word above 1599 a byte map.
    ConvType type() const { return isNull() ? ConvType::identity : typeOfWord(typeWord()); }
    static constexpr ConvType typeOfWord(int64_t word) {
        if (word > kLastTypeWord) return ConvType::byteMap;
        return ConvType{static_cast<int16_t>(static_cast<uint16_t>(word) & kTypeMask)};
    }
    bool swapsSource() const { return !isNull() && (static_cast<uint32_t>(typeWord()) & kSwapSource) != 0; }
    bool swapsTarget() const { return !isNull() && (static_cast<uint32_t>(typeWord()) & kSwapTarget) != 0; }

    bool hasUtf8Side() const { return hasAll(kUtf8Source) || hasAll(kUtf8Target); }

    // REQUIRES of each: type() is one of the types of that block.
    const DbcsTable& dbcs() const { return block<DbcsTable>(); }
    const SbcsWords& sbcsWords() const { return block<SbcsWords>(); }
    const SbcsPages& sbcsPages() const { return block<SbcsPages>(); }
    const ByteMapTable& byteMap() const { return block<ByteMapTable>(); }
    void* icuConverter() const { return block<IcuTable>().converter; }
    ConvTable inner() const { return step(0); }
    ConvTable firstStep() const { return step(0); }
    ConvTable secondStep() const { return step(1); }

private:
    static constexpr int64_t kLastTypeWord = 1599;
    static constexpr uint16_t kTypeMask = 0xF87F;

    int64_t typeWord() const {
        int64_t word;
        std::memcpy(&word, reinterpret_cast<const unsigned char*>(table_) - sizeof word, sizeof word);
        return word;
    }
    bool hasAll(uint32_t bits) const { return !isNull() && (static_cast<uint32_t>(typeWord()) & bits) == bits; }
    template <typename Block>
    const Block& block() const {
        return *reinterpret_cast<const Block*>(table_);
    }
    ConvTable step(int index) const { return ConvTable{reinterpret_cast<nlsConvTable* const*>(table_)[index]}; }

    const nlsConvTable* table_;
};

}  // namespace nls
