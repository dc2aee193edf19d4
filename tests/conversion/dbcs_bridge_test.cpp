// Text of multi-byte charsets to and from Unicode: every code and every code point against iconv, and whole texts of
// every kind against the slow twins.
#include "conversion/dbcs_bridge.hpp"

#include "conversion/dbcs_search.hpp"
#include "conversion/utf_codec.hpp"
#include "nls/convert.h"
#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/dbcs.hpp"

namespace nls {
namespace {

using namespace test;

constexpr unsigned char kUntouched = 0x5A;

// The four bridges through their doors, beside their twins. The UTF-16 side is swapped in half of the calls.
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

// Both texts between pages that fault: the target in front of one, the source in front of one or behind one.
class Sweep {
public:
    Sweep(PackedDbcs& packed, std::size_t capacity) : packed_(packed), source_(capacity), target_(capacity * 4 + 64) {}

    void expectTwin(Bridge bridge, ByteView text, std::size_t room, bool swap = false, std::size_t shift = 0) {
        unsigned char* const target = target_.atEnd(room);
        std::memset(target, kUntouched, room);
        unsigned char* const source = shift == 0 ? source_.atEnd(text.size()) : source_.atStart() + shift;
        if (!text.empty()) std::memcpy(source, text.data(), text.size());
        uint32_t outLen = 0xDEAD;
        const nlsStatus status =
            throughDoor(bridge, packed_.handle(), swap, {source, text.size()}, {target, room}, &outLen);
        const reference::Bridged want = twin(bridge, packed_.table(), swap, text, room);
        const auto what = [&] {
            return "bridge " + std::to_string(static_cast<int>(bridge)) + ": " + hex(text) + " into " +
                   std::to_string(room) + (swap ? " swapped" : "");
        };
        ASSERT_EQ(status, want.status) << what();
        ASSERT_EQ(outLen, want.outLen) << what();
        const ByteView got{target, want.bytes.size()};
        ASSERT_TRUE(sameBytes(got, want.bytes)) << what() << "\ngot  " << hex(got) << "\nwant " << hex(want.bytes);
        for (std::size_t i = want.bytes.size(); i < room; ++i)
            ASSERT_EQ(target[i], kUntouched) << what() << " at " << i;
    }
    void expectTwins(Bridge bridge, ByteView text, std::size_t room) {
        expectTwin(bridge, text, room);
        if (bridge == Bridge::toUtf16 || bridge == Bridge::fromUtf16) expectTwin(bridge, text, room, true);
    }

private:
    PackedDbcs& packed_;
    GuardedBuffer source_, target_;
};

// --- texts

Bytes utf8Of(uint32_t value) {
    Bytes form(utf8Length(value));
    encodeUtf8(value, form.data());
    return form;
}

void append(Bytes& text, const Bytes& more) {
    text.insert(text.end(), more.begin(), more.end());
}
void appendCode(Bytes& text, uint16_t code) {
    if (code > 0xFF) text.push_back(static_cast<unsigned char>(code >> 8));
    text.push_back(static_cast<unsigned char>(code));
}
void appendUnits(Bytes& text, uint32_t value) {
    const auto unit = [&](uint32_t u) {
        append(text, {static_cast<unsigned char>(u), static_cast<unsigned char>(u >> 8)});
    };
    if (value > 0xFFFF)
        unit(highSurrogateOf(value)), unit(lowSurrogateOf(value));
    else
        unit(value);
}

// Text as a bridge reads it, from sound to broken: `wildness` 0 is characters of the charset in runs of ASCII and of
// others, 1 has strangers now and then, 2 is any bytes.
Bytes madeText(Bridge bridge, const PackedDbcs& packed, std::size_t length, unsigned wildness, Random& random) {
    static std::map<const PackedDbcs*, std::vector<std::pair<uint32_t, uint16_t>>> characters;
    auto& known = characters[&packed];
    if (known.empty()) known.assign(packed.fromUnicode.begin(), packed.fromUnicode.end());
    Bytes text;
    bool ascii = false;
    while (text.size() < length) {
        if (random.oneIn(9)) ascii = !ascii;
        const bool dense = random.oneIn(2);
        auto [ucs, code] = known[random.below(static_cast<unsigned>(known.size()))];
        if (dense) {
            const unsigned block = random.below(3);
            const uint32_t near = block == 0   ? 0x3041 + random.below(0xB0)
                                  : block == 1 ? 0xFF01 + random.below(0x9E)
                                               : packed.block.table.maps[2].ucsMin + random.below(0x2000);
            if (const auto found = packed.fromUnicode.find(near); found != packed.fromUnicode.end())
                ucs = near, code = found->second;
        }
        if (ascii) ucs = code = static_cast<uint16_t>(random.byte(wildness == 0 ? 0x20 : 0, 0x7F));
        if (wildness == 1 && random.oneIn(12)) ucs = random.oneIn(4) ? 0x1F600 : random.word(), code = random.word();
        if (wildness == 2 && !random.oneIn(3)) {
            text.push_back(random.byte(0, 0xFF));
            if (random.oneIn(8)) text.push_back(0);
        } else if (bridge == Bridge::fromUtf8)
            append(text, utf8Of(ucs));
        else if (bridge == Bridge::fromUtf16)
            appendUnits(text, ucs);
        else
            appendCode(text, code);
    }
    text.resize(length);
    return text;
}

// --- one character

struct Charset : ::testing::TestWithParam<std::string> {
    PackedDbcs& packed = packedDbcs(GetParam());
};
INSTANTIATE_TEST_SUITE_P(Dbcs, Charset, ::testing::ValuesIn(dbcsRecipeNames()));

// Every code and every code point of the BMP and plane 2, as iconv has them and as the twin finds them.
TEST_P(Charset, EveryCharacter) {
    const DbcsTable& table = packed.table();
    std::size_t mapped = 0;
    for (uint32_t code = 0; code < 0x10000; ++code) {
        const auto [ucs, substituted] = findUnicode(table, static_cast<uint16_t>(code));
        const reference::Found want = reference::toUnicode(table, code);
        ASSERT_EQ(ucs, want.value) << code;
        ASSERT_EQ(substituted, want.substituted) << code;
        const auto known = packed.toUnicode.find(static_cast<uint16_t>(code));
        const uint32_t told = known != packed.toUnicode.end() ? known->second : code < 0x80 ? code : 0xFFFD;
        ASSERT_EQ(ucs, told) << std::hex << code;
        mapped += substituted ? 0 : 1;
    }
    EXPECT_GT(mapped, 6000U);
    std::size_t wayBack = 0;
    for (uint32_t ucs = 0; ucs < 0x30000; ++ucs) {
        const auto [code, substituted] = findCode(table, ucs);
        const reference::Found want = reference::toCharset(table, ucs);
        ASSERT_EQ(code, want.value) << std::hex << ucs;
        ASSERT_EQ(substituted, want.substituted) << std::hex << ucs;
        const auto known = packed.fromUnicode.find(ucs);
        if (!substituted && ucs > 0x7F) {
            ASSERT_TRUE(known != packed.fromUnicode.end()) << std::hex << ucs;
            ASSERT_EQ(code, known->second) << std::hex << ucs;
            ++wayBack;
        }
    }
    EXPECT_GT(wayBack, 6000U);
}

// --- whole texts

// By charset, level of the processor and pages of the index; -1 for none, where long texts make one of their own.
class Texts : public ::testing::TestWithParam<std::tuple<std::string, CpuLevel, int>> {
protected:
    void SetUp() override { limitCpuLevel(std::get<1>(GetParam())); }
    void TearDown() override { limitCpuLevel(CpuLevel::avx512); }
    PackedDbcs& packed = packedDbcs(std::get<0>(GetParam()));
    GuardedIndex index{packed.table(), std::get<2>(GetParam())};
};
// Two ranges of trail bytes and single-byte kana; two and one; one, with Hangul as the dense block; plane 2.
INSTANTIATE_TEST_SUITE_P(Dbcs, Texts,
                         ::testing::Combine(::testing::Values("SHIFT-JIS", "CP936", "KSC5601", "CP950-HKSCS"), kLevels,
                                            ::testing::Values(-1, 3)));

TEST_P(Texts, EveryLengthIntoEveryRoom) {
    Random random{21};
    Sweep sweep{packed, 256};
    for (const Bridge bridge : kBridges) {
        for (std::size_t length = 0; length <= 64; length += length < 40 ? 1 : 3) {
            for (unsigned wildness = 0; wildness < 3; ++wildness) {
                const Bytes text = madeText(bridge, packed, length, wildness, random);
                const std::size_t enough = twin(bridge, packed.table(), false, text, 1000).bytes.size();
                for (std::size_t room = 0; room <= enough + 1; room += room + 20 > enough ? 1 : 5)
                    sweep.expectTwins(bridge, text, room);
                sweep.expectTwins(bridge, text, enough + 40);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(Texts, EveryAlignment) {
    Random random{22};
    Sweep sweep{packed, 512};
    for (const Bridge bridge : kBridges) {
        for (std::size_t shift = 0; shift < 32; ++shift) {
            for (unsigned wildness = 0; wildness < 3; ++wildness) {
                const Bytes text = madeText(bridge, packed, 150 + shift * 3, wildness, random);
                const std::size_t enough = twin(bridge, packed.table(), false, text, 2000).bytes.size();
                for (const std::size_t room : {enough + 64, enough, enough - 1, enough / 2, enough / 3 + shift})
                    sweep.expectTwin(bridge, text, room, shift % 2 == 1, shift);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(Texts, LongTexts) {
    Random random{23};
    Sweep sweep{packed, 40001};
    for (const Bridge bridge : kBridges) {
        for (unsigned wildness = 0; wildness < 3; ++wildness) {
            for (const std::size_t length : {3000U, 40001U})
                sweep.expectTwin(bridge, madeText(bridge, packed, length, wildness, random), 150000);
            if (HasFatalFailure()) return;
        }
    }
}

// Every character of the charset in the middle of a run, in an order that lets each meet other neighbours.
TEST_P(Texts, EveryCharacterInARun) {
    Sweep sweep{packed, 200000};
    for (const Bridge bridge : {Bridge::toUtf8, Bridge::fromUtf8}) {
        Bytes text;
        for (uint32_t i = 0; i < 0x10000; ++i) {
            const uint32_t value = i * 40503 % 0x10000;
            if (bridge == Bridge::fromUtf8)
                append(text, utf8Of(value));
            else if (value > 0xFF && packed.attrib.lengthMap[value >> 8] == 1)
                appendCode(text, static_cast<uint16_t>(value));
        }
        for (std::size_t part = 0; part < text.size(); part += 150000) {
            const std::size_t size = std::min<std::size_t>(150000, text.size() - part);
            sweep.expectTwin(bridge, ByteView{text}.subspan(part, size), 500000);
        }
    }
}

// --- records that hold anything

class AnyRecord : public EachLevel {};
INSTANTIATE_TEST_SUITE_P(Dbcs, AnyRecord, kLevels);

TEST_P(AnyRecord, NeverReadsOutsideAndAgrees) {
    Random random{24};
    for (int i = 0; i < 60; ++i) {
        const PackedDbcs& sound = packedDbcs(i % 3 == 0 ? "SHIFT-JIS" : i % 3 == 1 ? "CP936" : "CP950-HKSCS");
        PackedDbcs packed;
        packed.block = sound.block, packed.attrib = sound.attrib;
        packed.table().attrib = &packed.attrib;
        std::vector<std::unique_ptr<GuardedArrays>> guards;
        for (nlsUcs2Map& map : packed.table().maps) {
            if (!random.oneIn(3)) mutate(map, random);
            guards.push_back(std::make_unique<GuardedArrays>(map));
            if (random.oneIn(2)) scramble(map, random);
        }
        if (i % 4 == 0) packed.attrib.lengthMap[random.byte(0, 0xFF)] = random.byte(0, 0xFF);
        if (i % 5 == 0) packed.attrib.flags |= NLS_CHARSET_CP936;
        const GuardedIndex index{packed.table(), i % 4 - 1};
        Sweep sweep{packed, 40000};
        for (const Bridge bridge : kBridges) {
            for (unsigned wildness = 0; wildness < 3; ++wildness) {
                sweep.expectTwin(bridge, madeText(bridge, sound, 40, wildness, random), 200);
                sweep.expectTwin(bridge, madeText(bridge, sound, 1000, wildness, random), i % 2 == 0 ? 4000 : 700);
                if (i % 4 == 0) sweep.expectTwin(bridge, madeText(bridge, sound, 40000, wildness, random), 150000);
            }
        }
        if (HasFatalFailure()) return;
    }
}

// --- what is told of single cases

TEST(DbcsBridge, ToldCases) {
    PackedDbcs& packed = packedDbcs("GB2312");
    struct Row {
        const char* why;
        Bridge bridge;
        Bytes source;
        std::size_t room;
        nlsStatus status;
        uint32_t outLen;
        const char* want;
    } const rows[] = {
        {"ASCII that no map holds", Bridge::toUtf8, {'a'}, 9, 0, 1, "61"},
        {"a first byte at the end", Bridge::toUtf8, {0xB0}, 9, -3, 3, "EFBFBD"},
        {"a NUL alone", Bridge::toUtf8, {0}, 9, 0, 1, "00"},
        {"a NUL ends a character and stays", Bridge::toUtf8, {0xB0, 0, 'b'}, 9, -3, 5, "EFBFBD0062"},
        {"too small: no count", Bridge::toUtf8, {'a', 0xB0, 0xA1}, 3, 2, 0, "61"},
        {"too small in UTF-16: the count", Bridge::toUtf16, {'a', 0xB0, 0xA1}, 3, 2, 2, "6100"},
        {"a code point that no map holds", Bridge::fromUtf8, {0xC3, 0xA5}, 9, -3, 1, "3F"},
        {"half of a code", Bridge::fromUtf8, {0xE5, 0x95, 0x8A}, 1, 2, 1, "B0"},
        {"cut off", Bridge::fromUtf8, {'a', 0xE5, 0x95}, 9, 16, 1, "61"},
        {"a NUL goes out with no search", Bridge::fromUtf8, {0xC0, 0x80, 'b'}, 9, 0, 2, "0062"},
        {"a lone surrogate", Bridge::fromUtf16, {0x3D, 0xD8, 'a', 0}, 9, -3, 2, "3F61"},
        {"a pair is one character", Bridge::fromUtf16, {0x3D, 0xD8, 0x00, 0xDE}, 9, -3, 1, "3F"},
    };
    for (const Row& row : rows) {
        Bytes target(row.room, kUntouched);
        uint32_t outLen = 0xDEAD;
        EXPECT_EQ(throughDoor(row.bridge, packed.handle(), false, row.source, target, &outLen), row.status) << row.why;
        EXPECT_EQ(outLen, row.outLen) << row.why;
        EXPECT_EQ(hex(target).substr(0, std::strlen(row.want)), row.want) << row.why;
    }
}

TEST(DbcsBridge, EuroOfCp936) {
    PackedDbcs& packed = packedDbcs("CP936");
    for (const bool marked : {true, false}) {
        packed.attrib.flags = NLS_CHARSET_MULTI_BYTE | (marked ? NLS_CHARSET_CP936 : 0);
        const unsigned char byte[] = {0x80}, euro[] = {0xE2, 0x82, 0xAC};
        unsigned char target[4] = {};
        EXPECT_EQ(dbcsToUtf8(packed.table(), byte, target).status, marked ? 0 : -3);
        EXPECT_EQ(hex({target, 3}), marked ? "E282AC" : "EFBFBD");
        EXPECT_EQ(utf8ToDbcs(packed.table(), euro, target).status, marked ? 0 : -3);
        EXPECT_EQ(target[0], marked ? 0x80 : 0x3F);
    }
}

// A surrogate that a map delivers becomes "?" and ends the walk; values above U+10FFFF keep their long forms.
TEST(DbcsBridge, OddCodePointsFromMaps) {
    PackedDbcs packed;
    packed.block = packedDbcs("GB2312").block, packed.attrib = packedDbcs("GB2312").attrib;
    packed.table().attrib = &packed.attrib;
    packed.arrays[2][0] = {0xFFFF, 0xD800, 0xFFFD, 0x1234, 0x41};
    nlsUcs2Map& third = packed.table().maps[2];
    third.cjisToUcs = packed.arrays[2][0].data(), third.cjisCount = 5;
    Sweep sweep{packed, 200};
    const Bytes text = {'a', 0xA1, 0xA2, 0xA1, 0xA3, 0xA1, 0xA1, 'b'};
    for (const bool folded : {false, true}) {
        if (folded) third.rangesOnCjis = 1, third.ranges[0] = {0x4001234, 0, 0x4000000};
        for (std::size_t room = 0; room < 20; ++room) {
            sweep.expectTwins(Bridge::toUtf8, text, room);
            sweep.expectTwins(Bridge::toUtf16, text, room);
            Bytes twenty(40, 0xA1);
            for (std::size_t i = 1; i < 40; i += 2) twenty[i] = static_cast<unsigned char>(0xA1 + i / 2 % 4);
            sweep.expectTwins(Bridge::toUtf8, twenty, room * 4);
        }
    }
}

// One character with one buffer as source and target, as single characters are converted.
TEST(DbcsBridge, OneCharacterInPlace) {
    for (const std::string& name : dbcsRecipeNames()) {
        PackedDbcs& packed = packedDbcs(name);
        for (const auto& [code, ucs] : packed.toUnicode) {
            if (ucs > 0xFFFF) continue;
            unsigned char buffer[4] = {};
            Bytes text;
            appendCode(text, code);
            std::memcpy(buffer, text.data(), text.size());
            const Converted there = dbcsToUtf8(packed.table(), {buffer, text.size()}, buffer);
            ASSERT_EQ(hex({buffer, there.length}), hex(utf8Of(ucs))) << name << std::hex << code;
            const uint16_t wanted = findCode(packed.table(), ucs).code;
            const Converted back = utf8ToDbcs(packed.table(), {buffer, there.length}, buffer);
            ASSERT_EQ(back.length, wanted > 0xFF ? 2U : 1U) << name << std::hex << ucs;
            ASSERT_EQ(buffer[back.length - 1], wanted & 0xFF) << name << std::hex << ucs;
        }
    }
}

// Through the engine: its type word, its first-byte test and its meaning of "changed".
TEST(DbcsBridge, ThroughConvertBytes) {
    PackedDbcs& packed = packedDbcs("EUCJIS");
    unsigned char target[64];
    const auto convert = [&](int64_t type, const Bytes& text, uint32_t check) {
        packed.block.typeWord = type;
        uint32_t outLen = 0;
        const nlsStatus status = convertBytes(target, sizeof target, text.data(), static_cast<int32_t>(text.size()),
                                              nullptr, 0, packed.handle(), &outLen, check);
        return std::to_string(status) + ":" + hex({target, outLen});
    };
    for (const int type : {17, 81, 89}) {
        EXPECT_EQ(convert(type, {0xA4, 0xA2, 'a'}, 0), "0:E3818261");
        EXPECT_EQ(convert(type, {0xA4, 0xA2, 'a'}, 1), "-2:E3818261");
        EXPECT_EQ(convert(type, {0x80}, 0), "-3:EFBFBD");
    }
    for (const int type : {18, 50}) {
        EXPECT_EQ(convert(type, {0xE3, 0x81, 0x82, 'a'}, 0), "0:A4A261");
        EXPECT_EQ(convert(type, {'a'}, 1), "-2:61");
        EXPECT_EQ(convert(type, {0x82, 'a'}, 0), "16:");
        EXPECT_EQ(convert(type, {'a', 0x82}, 0), "-3:61A2AE");
    }
    packed.block.typeWord = 17;
}

}  // namespace
}  // namespace nls
