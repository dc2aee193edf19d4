// Text of multi-byte charsets to and from Unicode, through tables of any content, against the slow twins. What real
// tables make of every character and of every size is told in tests/real.
#include "conversion/dbcs_bridge.hpp"

#include <algorithm>

#include "core/base/cpu.hpp"
#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/dbcs.hpp"

namespace nls {
namespace {

using namespace test;

constexpr unsigned char kUntouched = 0x5A;

// The four bridges through their doors, beside their twins.
enum class Bridge { toUtf8, fromUtf8, toUtf16, fromUtf16 };
constexpr Bridge kBridges[] = {Bridge::toUtf8, Bridge::fromUtf8, Bridge::toUtf16, Bridge::fromUtf16};

reference::Bridged twin(Bridge bridge, const DbcsTable& table, bool swap, ByteView source, std::size_t room) {
    switch (bridge) {
        case Bridge::toUtf8:
            return reference::dbcsToUtf8(table, source, room);
        case Bridge::fromUtf8:
            return reference::utf8ToDbcs(table, source, room);
        case Bridge::toUtf16:
            return reference::dbcsToUtf16(table, swap, source, room);
        default:
            return reference::utf16ToDbcs(table, swap, source, room);
    }
}

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

// Both texts in front of pages that fault, the source up to 31 bytes before its page; at each level.
class Sweep {
public:
    explicit Sweep(RealDbcs& dbcs) : dbcs_(dbcs), source_(40032), target_(160064) {}

    void expectTwin(Bridge bridge, ByteView text, std::size_t room, bool swap = false, std::size_t shift = 0) {
        unsigned char* const target = target_.atEnd(room);
        unsigned char* const source = source_.atEnd(text.size() + shift);
        if (!text.empty()) std::memcpy(source, text.data(), text.size());
        reference::Bridged want = twin(bridge, dbcs_.table(), swap, text, room);
        want.bytes.resize(room, kUntouched);
        for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx512}) {
            limitCpuLevel(level);
            std::memset(target, kUntouched, room);
            uint32_t outLen = 0xDEAD;
            const nlsStatus status =
                throughDoor(bridge, dbcs_.handle(), swap, {source, text.size()}, {target, room}, &outLen);
            const ByteView got{target, room};
            ASSERT_TRUE(status == want.status && outLen == want.outLen && sameBytes(got, want.bytes))
                << "bridge " << static_cast<int>(bridge) << ": " << hex(text) << " into " << room << " swapped " << swap
                << "\ngot  " << status << ", " << outLen << ": " << hex(got) << "\nwant " << want.status << ", "
                << want.outLen << ": " << hex(want.bytes);
        }
    }

private:
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
    for (uint32_t code = 0x80; code < 0x10000; ++code) {
        const reference::Found found = reference::toUnicode(RealDbcs::of(name).table(), code);
        if (!found.substituted) known.push_back({found.value, static_cast<uint16_t>(code)});
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
            real::append(text, ucs, reference::form(bridge == Bridge::fromUtf16));
        } else {
            reference::putCode(text, code, SIZE_MAX);
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
    for (unsigned i = 0; i < 120; ++i) {
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
                    const std::size_t enough = twin(bridge, dbcs.table(), swap, text, 5000).bytes.size();
                    for (const std::size_t room : {enough, enough + 64, enough - std::min<std::size_t>(enough, 1),
                                                   std::size_t{random.below(static_cast<unsigned>(enough) + 1)}})
                        sweep.expectTwin(bridge, text, room, swap, random.below(32));
                }
                if (i % 15 == 0) sweep.expectTwin(bridge, madeText(bridge, name, 40000, wildness, random), 150000);
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
        EXPECT_EQ(hex({target, 3}), marked ? "E282AC" : "EFBFBD");
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
    Bytes twenty(40, 0xA1);
    for (std::size_t i = 1; i < 40; i += 2) twenty[i] = static_cast<unsigned char>(0xA1 + i / 2 % 4);
    for (const bool folded : {false, true}) {
        if (folded) third.rangesOnCjis = 1, third.ranges[0] = {0x4001234, 0, 0x4000000};
        for (std::size_t room = 0; room < 20; ++room)
            for (const Bridge bridge : {Bridge::toUtf8, Bridge::toUtf16}) {
                sweep.expectTwin(bridge, text, room);
                sweep.expectTwin(bridge, twenty, room * 4);
            }
    }
    limitCpuLevel(CpuLevel::avx512);
}

}  // namespace
}  // namespace nls
