// Text of multi-byte charsets to and from Unicode through tables of any content. The fast ways, by an index and by
// lanes, answer what the walk of one character after the other does, and nothing outside the arrays is read. What each
// character of the real tables becomes, in text of every size, is told in tests/real.
#include "conversion/dbcs_bridge.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "conversion/cjis_grid.hpp"
#include "conversion/dbcs_search.hpp"
#include "conversion/ucs2_lookup.hpp"
#include "convmap/dbcs_index.hpp"
#include "core/base/cpu.hpp"
#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/real/data_file.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/real_dbcs.hpp"

namespace nls {
namespace {

using namespace test;
using Bytes = std::vector<unsigned char>;

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    unsigned below(unsigned bound) { return static_cast<unsigned>(engine_() % bound); }
    unsigned char byte(unsigned first, unsigned last) {
        return static_cast<unsigned char>(first + below(last - first + 1));
    }
    uint16_t word() { return static_cast<uint16_t>(engine_()); }
    bool oneIn(unsigned n) { return below(n) == 0; }

private:
    std::mt19937 engine_;
};

// The three arrays of one map, each ending where reading ends the test.
class GuardedArrays {
public:
    explicit GuardedArrays(nlsUcs2Map& map) {
        map.cjisToUcs = moved(0, map.cjisToUcs, map.cjisCount);
        map.ucsRows = moved(1, map.ucsRows, map.ucsRowCount);
        map.ucsCells = moved(2, map.ucsCells, map.ucsCellCount);
    }

private:
    uint16_t* moved(std::size_t index, const uint16_t* array, std::size_t count) {
        if (array == nullptr) return nullptr;
        buffers_[index] = std::make_unique<GuardedBuffer>(count * 2);
        return reinterpret_cast<uint16_t*>(buffers_[index]->atEnd(array, count * 2));
    }
    std::unique_ptr<GuardedBuffer> buffers_[3];
};

// An index tied to a table, at the end of memory that may be read; none with a number of pages below 0.
class GuardedIndex {
public:
    GuardedIndex(DbcsTable& table, int pages) : table_(table) {
        if (pages < 0) return;
        const std::size_t size = bytesOfIndex(static_cast<unsigned>(pages));
        buffer_ = std::make_unique<GuardedBuffer>(size);
        auto* const index = reinterpret_cast<DbcsIndex*>(buffer_->atEnd(size));
        buildDbcsIndex(table, static_cast<unsigned>(pages), *index);
        tieDbcsIndex(table, index);
    }
    GuardedIndex(const GuardedIndex&) = delete;
    GuardedIndex& operator=(const GuardedIndex&) = delete;
    ~GuardedIndex() { tieDbcsIndex(table_, nullptr); }

private:
    DbcsTable& table_;
    std::unique_ptr<GuardedBuffer> buffer_;
};

// Puts odd values into some entries of a map's arrays: no mapping, surrogates, substitutes, anything. Every second time
// only those that leave the runs of an index at work.
void scramble(nlsUcs2Map& map, Random& random) {
    if (random.oneIn(2)) {
        constexpr uint16_t kLeft[] = {0x80, 0xA7, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF};
        for (uint32_t i = 0; map.cjisToUcs != nullptr && i < 3000 && map.cjisCount != 0; ++i)
            map.cjisToUcs[random.below(map.cjisCount)] = kLeft[random.below(10)];
        for (uint32_t i = 0; map.ucsCells != nullptr && i < 3000 && map.ucsCellCount != 0; ++i)
            map.ucsCells[random.below(map.ucsCellCount)] = static_cast<uint16_t>(random.below(3000));
        return;
    }
    const auto some = [&](uint16_t* array, uint32_t count) {
        constexpr uint16_t kOdd[] = {0, 0xFFFF, 0xFFFD, 0xFFFE, 0xD800, 0xDFFF, 0x7F, 0x80, 0x7FF, 0x800};
        for (uint32_t i = 0; array != nullptr && i < 200 && count != 0; ++i)
            array[random.below(count)] = random.oneIn(3) ? random.word() : kOdd[random.below(10)];
    };
    some(map.cjisToUcs, map.cjisCount);
    some(map.ucsRows, map.ucsRowCount);
    some(map.ucsCells, map.ucsCellCount);
}

// Changes some fields of a record to anything, as a data file of any origin may hold it. The arrays and their counts
// stay: what the loader takes from the file always has the length that the counts tell.
void mutate(nlsUcs2Map& map, Random& random) {
    const auto any = [&](auto& field) {
        constexpr unsigned kEdges[] = {0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0x8000, 0xFFFF};
        field = static_cast<std::remove_reference_t<decltype(field)>>(random.oneIn(2) ? kEdges[random.below(8)]
                                                                                      : random.word());
    };
    const auto sometimes = [&](auto&... fields) { ((random.oneIn(6) ? any(fields) : void()), ...); };
    sometimes(map.sjisZero, map.cjisBase, map.gapAfter, map.gapSize, map.ucsMin, map.ucsMax, map.rowShift,
              map.valueShift, map.colMask, map.skipMask, map.rangesOnCjis, map.leadGap, map.trailGap2, map.trailGap3,
              map.trailsPerRow, map.leadFirst1, map.leadLast1, map.leadFirst2, map.leadLast2, map.trailFirst1,
              map.trailLast1, map.trailFirst2, map.trailLast2, map.trailFirst3, map.trailLast3);
    for (nlsUcs2Range& range : map.ranges) {
        if (!random.oneIn(8)) continue;
        range = {random.word() * (1U + random.below(4)), random.word(), random.word() - random.below(0x8000U)};
    }
    if (random.oneIn(12)) map.ucsRows = nullptr;
    if (random.oneIn(12)) map.ucsCells = nullptr;
    if (random.oneIn(12)) map.cjisToUcs = nullptr;
}

constexpr unsigned char kUntouched = 0x5A;

// The four bridges through their doors.
enum class Bridge { toUtf8, fromUtf8, toUtf16, fromUtf16 };
constexpr Bridge kBridges[] = {Bridge::toUtf8, Bridge::fromUtf8, Bridge::toUtf16, Bridge::fromUtf16};

nlsStatus throughDoor(Bridge bridge, const nlsConvTable* table, bool swap, ByteView source, ByteSpan target,
                      uint32_t* outLen) {
    struct {
        int64_t typeWord;
        const nlsConvTable* inner;
    } const outer{swap ? 0x29E : 0x11E, table};
    const auto* const units = reinterpret_cast<const nlsConvTable*>(&outer.inner);
    const auto size = static_cast<int32_t>(source.size()), room = static_cast<int32_t>(target.size());
    switch (bridge) {
        case Bridge::toUtf8:
            return nlsDbcsToUTF8(target.data(), room, source.data(), size, table, outLen);
        case Bridge::fromUtf8:
            return nlsUTF8ToDbcs(target.data(), room, source.data(), size, table, outLen);
        case Bridge::toUtf16:
            return nlsDbcsToUTF16(target.data(), room, source.data(), size, units, outLen);
        default:
            return nlsUTF16ToDbcs(target.data(), room, source.data(), static_cast<uint32_t>(source.size() / 2), units,
                                  outLen);
    }
}

struct Outcome {
    nlsStatus status;
    uint32_t outLen;
    Bytes target;
    bool operator==(const Outcome&) const = default;
};

// Both texts in front of pages that fault, the source up to 31 bytes before its page.
class Sweep {
public:
    explicit Sweep(RealDbcs& dbcs) : dbcs_(dbcs), source_(40032), target_(160064) {}

    // Without an index, at the lowest level: one character after the other, unless the text is long.
    Outcome plain(Bridge bridge, ByteView text, std::size_t room, bool swap = false) {
        const DbcsIndex* const index = dbcsIndexOf(dbcs_.table());
        tieDbcsIndex(dbcs_.table(), nullptr);
        limitCpuLevel(CpuLevel::baseline);
        const Outcome outcome = run(bridge, text, room, swap, 0);
        limitCpuLevel(CpuLevel::avx512);
        tieDbcsIndex(dbcs_.table(), index);
        return outcome;
    }
    void expectPlain(Bridge bridge, ByteView text, std::size_t room, bool swap = false, std::size_t shift = 0) {
        const Outcome want = plain(bridge, text, room, swap);
        for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx512}) {
            limitCpuLevel(level);
            const Outcome have = run(bridge, text, room, swap, shift);
            ASSERT_TRUE(have == want) << "bridge " << static_cast<int>(bridge) << " into " << room << " swapped "
                                      << swap << ": " << have.status << ' ' << have.outLen << " for " << want.status
                                      << ' ' << want.outLen << "; " << real::firstDifference(have.target, want.target);
        }
    }

private:
    Outcome run(Bridge bridge, ByteView text, std::size_t room, bool swap, std::size_t shift) {
        unsigned char* const target = target_.atEnd(room);
        unsigned char* const source = source_.atEnd(text.size() + shift);
        if (!text.empty()) std::memcpy(source, text.data(), text.size());
        std::memset(target, kUntouched, room);
        Outcome outcome{0, 0xDEAD, {}};
        outcome.status =
            throughDoor(bridge, dbcs_.handle(), swap, {source, text.size()}, {target, room}, &outcome.outLen);
        outcome.target.assign(target, target + room);
        return outcome;
    }

    RealDbcs& dbcs_;
    GuardedBuffer source_, target_;
};

struct Character {
    uint32_t ucs;
    uint16_t code;
    bool operator<(const Character& other) const { return ucs < other.ucs; }
};

// What a charset has, in the order of Unicode.
const std::vector<Character>& charactersOf(const std::string& name) {
    static std::map<std::string, std::vector<Character>> all;
    std::vector<Character>& known = all[name];
    if (!known.empty()) return known;
    for (uint32_t code = 0x20; code < 0x10000; ++code) {
        const uint32_t ucs = mappedUnicode(RealDbcs::of(name).table(), static_cast<uint16_t>(code));
        if (ucs != kNoMapping) known.push_back({ucs, static_cast<uint16_t>(code)});
    }
    std::sort(known.begin(), known.end());
    return known;
}

// Text as a bridge reads it, from sound to broken: `wildness` 0 is characters of the charset in runs of ASCII and of
// neighbours, 1 has strangers now and then, 2 is any bytes.
Bytes madeText(Bridge bridge, const std::string& name, std::size_t length, unsigned wildness, Random& random) {
    const std::vector<Character>& known = charactersOf(name);
    Bytes text;
    bool ascii = false;
    std::size_t near = 0;
    while (text.size() < length) {
        if (random.oneIn(9)) {
            ascii = !ascii;
            const uint32_t kana = random.oneIn(2) ? 0x3041 : 0xFF01;
            const auto start = std::lower_bound(known.begin(), known.end(), Character{kana, 0});
            near = random.oneIn(2) ? static_cast<std::size_t>(start - known.begin()) : random.below(0x10000);
        }
        auto [ucs, code] = known[(near + random.below(150)) % known.size()];
        if (ascii) ucs = code = static_cast<uint16_t>(random.byte(wildness == 0 ? 0x20 : 0, 0x7F));
        if (wildness == 1 && random.oneIn(12)) ucs = random.oneIn(4) ? 0x1F600 : random.word(), code = random.word();
        if (wildness == 2 && !random.oneIn(3)) {
            text.push_back(random.byte(0, 0xFF));
            if (random.oneIn(8)) text.push_back(0);
        } else if (bridge == Bridge::fromUtf8 || bridge == Bridge::fromUtf16) {
            real::append(text, ucs,
                         {"", bridge == Bridge::fromUtf16 ? real::Family::units16 : real::Family::utf8, false});
        } else {
            if (code > 0xFF) text.push_back(static_cast<unsigned char>(code >> 8));
            text.push_back(static_cast<unsigned char>(code));
        }
    }
    text.resize(length);
    return text;
}

// Changes maps and attributes to anything in every second round; the index has no pages to three, or is missing: then
// long texts make one of their own.
TEST(DbcsBridge, AnyRecordAnyTextAnyRoom) {
    const std::string charsets[] = {"SHIFT-JIS", "CP936", "KSC5601", "CP950-HKSCS"};
    Random random{24};
    for (unsigned i = 0; i < 80; ++i) {
        const std::string& name = charsets[i / 2 % 4];
        RealDbcs dbcs{name};
        std::vector<std::unique_ptr<GuardedArrays>> guards;
        for (nlsUcs2Map& map : dbcs.table().maps) {
            if (i % 2 == 0 && !random.oneIn(3)) mutate(map, random);
            guards.push_back(std::make_unique<GuardedArrays>(map));
            if (i % 2 == 0 && random.oneIn(2)) scramble(map, random);
        }
        if (i % 8 == 0) dbcs.attrib.lengthMap[random.byte(0, 0xFF)] = random.byte(0, 0xFF);
        if (i % 10 == 0) dbcs.attrib.flags |= NLS_CHARSET_CP936;
        const GuardedIndex index{dbcs.table(), static_cast<int>(i / 8 % 5) - 1};
        Sweep sweep{dbcs};
        for (const Bridge bridge : kBridges) {
            for (unsigned wildness = 0; wildness < 3; ++wildness) {
                for (const unsigned longest : {9U, 40U, 70U, 1000U}) {
                    const Bytes text = madeText(bridge, name, random.below(longest), wildness, random);
                    const bool swap = bridge >= Bridge::toUtf16 && random.oneIn(2);
                    const std::size_t enough = sweep.plain(bridge, text, 5000, swap).outLen;
                    for (const std::size_t room : {enough, enough + 64, enough - std::min<std::size_t>(enough, 1),
                                                   std::size_t{random.below(static_cast<unsigned>(enough) + 1)}})
                        sweep.expectPlain(bridge, text, room, swap, random.below(32));
                }
                if (i % 15 == 0) sweep.expectPlain(bridge, madeText(bridge, name, 40000, wildness, random), 150000);
            }
        }
        if (testing::Test::HasFatalFailure()) break;
    }
    limitCpuLevel(CpuLevel::avx512);
}

TEST(DbcsBridge, TheEuroOfCp936GoesByItsMark) {
    RealDbcs dbcs{"CP936"};
    for (const bool marked : {true, false}) {
        dbcs.attrib.flags = NLS_CHARSET_MULTI_BYTE | (marked ? NLS_CHARSET_CP936 : 0);
        const unsigned char byte[] = {0x80}, euro[] = {0xE2, 0x82, 0xAC};
        unsigned char target[4] = {};
        EXPECT_EQ(dbcsToUtf8(dbcs.table(), byte, target).status, marked ? 0 : -3);
        EXPECT_EQ(Bytes(target, target + 3), marked ? Bytes({0xE2, 0x82, 0xAC}) : Bytes({0xEF, 0xBF, 0xBD}));
        EXPECT_EQ(utf8ToDbcs(dbcs.table(), euro, target).status, marked ? 0 : -3);
        EXPECT_EQ(target[0], marked ? 0x80 : 0x3F);
    }
}

// A surrogate that a map delivers becomes "?" and ends the walk; values above U+10FFFF keep their long forms.
TEST(DbcsBridge, OddCodePointsFromMaps) {
    RealDbcs dbcs{"GB2312"};
    dbcs.arrays[2][0] = {0xFFFF, 0xD800, 0xFFFD, 0x1234, 0x41};
    dbcs.link();
    nlsUcs2Map& third = dbcs.table().maps[2];
    Sweep sweep{dbcs};
    const Bytes text = {'a', 0xA1, 0xA2, 0xA1, 0xA3, 0xA1, 0xA1, 'b'};
    const struct {
        bool folded;
        Bridge bridge;
        nlsStatus status;
        uint32_t count;
        Bytes want;
    } rows[] = {
        {false, Bridge::toUtf8, NLS_INVALID_STRING, 0, {'a', 0xEF, 0xBF, 0xBD, 0xE1, 0x88, 0xB4, '?'}},
        {false, Bridge::toUtf16, NLS_CONV_SUBST, 10, {'a', 0, 0xFD, 0xFF, 0x34, 0x12, 0, 0xD8, 'b', 0}},
        {true, Bridge::toUtf8, NLS_INVALID_STRING, 0, {'a', 0xEF, 0xBF, 0xBD, 0xF9, 0x88, 0x81, 0x88, 0xB4, '?'}},
        {true, Bridge::toUtf16, NLS_CONV_SUBST, 10, {'a', 0, 0xFD, 0xFF, 0xFD, 0xFF, 0, 0xD8, 'b', 0}},
    };
    for (const auto& row : rows) {
        if (row.folded) third.rangesOnCjis = 1, third.ranges[0] = {0x1201234, 0, 0x1200000};
        Outcome have = sweep.plain(row.bridge, text, 40);
        EXPECT_EQ(have.status, row.status);
        EXPECT_EQ(have.outLen, row.count);
        have.target.resize(row.want.size());
        EXPECT_EQ(have.target, row.want);
        for (std::size_t room = 0; room < 20; ++room) sweep.expectPlain(row.bridge, text, room);
    }
}

// --- the index

// Whatever else stands in the record, and whatever a copy of it is told.
TEST(DbcsIndex, OnlyItsOwnTableFindsIt) {
    RealDbcs dbcs{"GB2312"};
    DbcsTable& table = dbcs.table();
    DbcsIndex index;
    buildDbcsIndex(table, 1, index);
    tieDbcsIndex(table, &index);
    EXPECT_EQ(dbcsIndexOf(table), &index);
    EXPECT_EQ(dbcsIndexOf(DbcsTable{table}), &index) << "a copy shares it";

    const DbcsTable tied = table;
    for (unsigned byte = 0; byte < sizeof table.maps[0].reserved24; ++byte) {
        table.maps[0].reserved24 ^= 1U << 8 * byte;
        EXPECT_EQ(dbcsIndexOf(table), nullptr);
        table = tied;
    }
    for (unsigned byte = 2; byte < 10; ++byte) {
        table.maps[0].reserved150[byte] ^= 0x10;
        EXPECT_EQ(dbcsIndexOf(table), nullptr);
        table = tied;
    }
    ++table.maps[2].ucsCells;
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    table = tied;
    ++table.attrib;
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    table = tied;
    tieDbcsIndex(table, nullptr);
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    std::memset(table.maps[0].reserved150, 0xAB, sizeof table.maps[0].reserved150);
    table.maps[0].reserved24 = 0xABABABAB;
    EXPECT_EQ(dbcsIndexOf(table), nullptr) << "what a file or a caller left there";
}

// With every size of the arena: as many pages as fit, the reserve untouched, and marked as having none when none fits.
TEST(DbcsIndex, TakesWhatRoomThereIs) {
    DbcsTable table = RealDbcs::of("BIG-5").table();
    constexpr uint32_t kReserve = 1000;
    alignas(8) static unsigned char memory[4000];
    for (uint32_t size = 0; size < sizeof memory; size += 4) {
        unsigned char* next = memory;
        uint32_t left = size;
        std::memset(table.maps[0].reserved150, 0xFF, sizeof table.maps[0].reserved150);
        addDbcsIndex(Arena{next, left}, kReserve, table);
        const DbcsIndex* const index = dbcsIndexOf(table);
        const uint32_t free = size < kReserve ? 0 : size - kReserve;
        ASSERT_EQ(index != nullptr, free >= bytesOfIndex(0) + alignof(DbcsIndex)) << size;
        ASSERT_EQ(next - memory, static_cast<std::ptrdiff_t>(size - left));
        if (index == nullptr) {
            ASSERT_EQ(left, size);
            continue;
        }
        ASSERT_GE(left, kReserve);
        ASSERT_EQ(size - left, bytesOfIndex(index->pageCount)) << size;
        ASSERT_EQ(index->pageCount == DbcsIndex::kPageCount, free >= bytesOfIndex(3) + alignof(DbcsIndex)) << size;
    }
}

// What disturbs the lanes is left to the exact walk.
TEST(DbcsIndex, DoubtfulTablesArentCovered) {
    struct Row {
        const char* why;
        void (*spoil)(RealDbcs& dbcs);
        bool ascii, pairs, codes;
    } const rows[] = {
        {"sound", [](RealDbcs&) {}, true, true, true},
        {"ASCII has a trail byte", [](RealDbcs& p) { p.attrib.lengthMap[0x61] = 1; }, false, true, true},
        {"a map holds ASCII", [](RealDbcs& p) { p.table().maps[2].ucsMin = 0x40; }, false, true, true},
        {"a lead byte of three bytes", [](RealDbcs& p) { p.attrib.lengthMap[0xB0] = 2; }, true, true, true},
        {"lead bytes in three ranges", [](RealDbcs& p) { p.attrib.lengthMap[0xB0] = p.attrib.lengthMap[0xC0] = 0; },
         true, false, true},
        {"no third map", [](RealDbcs& p) { p.table().maps[2].cjisToUcs = nullptr; }, true, false, false},
        {"triples on the way forth", [](RealDbcs& p) { p.table().maps[2].rangesOnCjis = 1; }, true, false, true},
        {"a gap in the numbering", [](RealDbcs& p) { p.table().maps[2].gapAfter = 100, p.table().maps[2].gapSize = 7; },
         true, false, false},
        {"no columns", [](RealDbcs& p) { p.table().maps[2].trailsPerRow = 0; }, true, false, false},
        {"a code with two numbers", [](RealDbcs& p) { p.table().maps[2].sjisZero = 0xB0A1; }, true, false, true},
        {"a surrogate", [](RealDbcs& p) { p.arrays[2][0][500] = 0xD800; }, true, false, true},
        {"a pair that is ASCII", [](RealDbcs& p) { p.arrays[2][0][500] = 0x7F; }, true, false, true},
        {"surrogates in the dense block",
         [](RealDbcs& p) { p.table().maps[2].ucsMin = 0xB000, p.table().maps[2].ucsMax = 0xFFFF; }, true, true, false},
        {"a trail byte of 0", [](RealDbcs& p) { p.table().maps[2].trailFirst1 = 0xF0; }, true, true, false},
        {"a place behind the last row", [](RealDbcs& p) { p.arrays[2][2][500] = 0xF000; }, true, true, false},
    };
    for (const char* const name : {"SHIFT-JIS", "EUCJIS", "KSC5601", "CP949", "CP936", "BIG-5", "CP950-HKSCS"}) {
        DbcsIndex index;
        buildDbcsIndex(RealDbcs::of(name).table(), DbcsIndex::kPageCount, index);
        EXPECT_TRUE(index.asciiPasses && index.pairsInGrid && index.codesInBlock) << name;
        EXPECT_EQ(index.pageCount, DbcsIndex::kPageCount) << name;
    }
    for (const Row& row : rows) {
        RealDbcs dbcs{"GB2312"};
        row.spoil(dbcs);
        DbcsIndex index;
        buildDbcsIndex(dbcs.table(), 0, index);
        EXPECT_EQ(index.asciiPasses, row.ascii) << row.why;
        EXPECT_EQ(index.pairsInGrid, row.pairs) << row.why;
        EXPECT_EQ(index.codesInBlock, row.codes) << row.why;
    }
}

// --- the plain search itself

TEST(CjisGrid, ReciprocalsDivideExactly) {
    for (uint32_t d = 1; d < 256; ++d)
        for (uint32_t n = 0; n < 0x10000; ++n)
            ASSERT_EQ(divideBy(kReciprocals[d], static_cast<uint16_t>(n)), n / d) << n << " / " << d;
}

// Every code, every number, every code point of the BMP and plane 2, on records that hold anything.
TEST(Ucs2Lookup, ReadsNothingOutsideTheArraysOfAnyRecord) {
    Random random{12};
    uint32_t found = 0;
    for (int i = 0; i < 48; ++i) {
        nlsUcs2Map map = RealDbcs::of(i % 2 == 0 ? "SHIFT-JIS" : "CP950-HKSCS").table().maps[i % 3];
        mutate(map, random);
        if (i % 10 == 0) map.trailsPerRow = 0;
        const GuardedArrays guard{map};
        for (uint32_t at = 0; at < 0x20000; ++at) {
            const uint32_t ucs = at < 0x10000 ? at : at + 0x10000;
            const auto code = static_cast<uint16_t>(at);
            found += UnicodeToCjis(&map, ucs) + UnicodeToDbcs(&map, ucs);
            if (at < 0x10000)
                found += CjisToUnicode(&map, code) + nlsSjisToCjis(&map, code) + nlsCjisToSjis(&map, code);
        }
        for (const uint32_t ucs : {0x10FFFFU, 0x3FFFFFFU, 0x80000000U, 0xFFFFFFFFU}) found += UnicodeToCjis(&map, ucs);
    }
    EXPECT_NE(found, 0U);
}

// Absent ranges as the data file writes them, FF-00, and as it mustn't, with what comes of it.
TEST(CjisGrid, AbsentRanges) {
    nlsUcs2Map map = RealDbcs::of("KSC5601").table().maps[2];
    EXPECT_EQ(gridNumber(map, 0xA1A1), 1U);
    EXPECT_EQ(gridNumber(map, 0xB0FF), kNoMapping) << "a trail byte behind the last one isn't the next row's first";
    map.leadFirst2 = map.leadLast2 = 0;
    EXPECT_EQ(gridNumber(map, 0xA1A1), kNoMapping) << "00-00 is a range, and every lead byte lies above it";
    map.leadFirst2 = 1;
    EXPECT_NE(gridNumber(map, 0xFFA1), kNoMapping) << "01-00 is none, but every lead byte passes its first value";
}

// One row of eight columns: 0 and 3 mapped near each other, 7 behind a distance that has a cell of its own.
TEST(Ucs2Lookup, CellsOfOneRow) {
    uint16_t rows[] = {0};
    uint16_t cells[] = {10 << 2 | 3, 13 << 2 | 0, 4, 17 << 2 | 1};
    nlsUcs2Map map{};
    map.ucsRows = rows, map.ucsRowCount = 1, map.ucsCells = cells, map.ucsCellCount = 4;
    map.ucsMin = 0x100, map.ucsMax = 0x107;
    map.rowShift = 32 + 3, map.colMask = 7, map.valueShift = 32 + 2, map.skipMask = 3;  // shifts count modulo 32
    const uint32_t want[] = {kNoMapping, 10,         kNoMapping, kNoMapping, 13,
                             kNoMapping, kNoMapping, kNoMapping, 17,         kNoMapping};
    for (uint32_t c = 0; c < 10; ++c) EXPECT_EQ(UnicodeToCjis(&map, 0xFF + c), want[c]) << c;
    map.ranges[0] = {0x4FF, 0x400, 0x300};
    EXPECT_EQ(UnicodeToCjis(&map, 0x403), 13U);
    EXPECT_EQ(UnicodeToCjis(&map, 0x103), kNoMapping) << "in none of the triples";
    cells[2] = 0xFFF0;  // takes the column past zero and round to a positive number: the walk goes on behind the array
    EXPECT_EQ(UnicodeToCjis(&map, 0x407), kNoMapping);
}

}  // namespace
}  // namespace nls
