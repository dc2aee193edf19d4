// The conversions between two legacy charsets: byte maps, and the rule of Shift-JIS and EUC.
#include "tests/real/foretold.hpp"

namespace nls::real {
namespace {

// All pairs of bytes. By a byte map, a byte becomes the byte of the same character, or the question mark; in place too,
// where -2 tells that some byte changed.
TEST(LegacyPairs, AllPairsOfBytes) {
    Bytes source;
    for (unsigned pair = 0; pair <= 0xFFFF; ++pair)
        source.insert(source.end(), {static_cast<unsigned char>(pair >> 8), static_cast<unsigned char>(pair)});
    int byteMaps = 0, rules = 0;
    for (const auto& [from, to] : RealFile::shared().pairs()) {
        const Route route(from, to);
        const std::string pair = from + " to " + to;
        const bool isRule = route.type == Type::sjisToEuc || route.type == Type::eucToSjis;
        if (!isRule && route.type != Type::byteMap) continue;
        ++(isRule ? rules : byteMaps);
        const Foretold want = foretellWhole(route, source);
        forEachCpuLevel([&] {
            const Outcome have = convert(route.table, source);
            EXPECT_EQ(have.status, want.status);
            EXPECT_EQ(firstDifference(have.bytes, want.target), "") << pair;
            if (isRule) return;
            Bytes text = source;
            uint32_t count = 0;
            const auto size = static_cast<int32_t>(text.size());
            EXPECT_EQ(convertBytes(text.data(), size, text.data(), size, nullptr, 0, route.table, &count, 1),
                      NLS_CONV_CHANGED)
                << pair;
            EXPECT_EQ(firstDifference(text, want.target), "") << pair;
        });
    }
    EXPECT_EQ(byteMaps, 82);
    EXPECT_EQ(rules, 2);
}

// The rule and the tables tell the same characters: all that EUC can hold. The rows from F0 of Shift-JIS have no place
// there.
TEST(LegacyPairs, TheRuleAgreesWithTheTables) {
    const CharsetModel &sjis = CharsetModel::of("SHIFT-JIS"), &euc = CharsetModel::of("EUCJIS");
    const Route route("SHIFT-JIS", "EUCJIS"), back("EUCJIS", "SHIFT-JIS");
    int agreeing = 0, beyond = 0;
    for (uint32_t code = 0x80; code <= 0xFFFF; ++code) {
        if (sjis.decode(code) == kNone) continue;
        if (code >= 0xF000) {
            ++beyond;
            continue;
        }
        Bytes text;
        sjis.append(text, code);
        const Outcome there = convert(route.table, text);
        ASSERT_EQ(there.bytes.size(), 2U) << code;
        const uint32_t eucCode = static_cast<uint32_t>(there.bytes[0] << 8 | there.bytes[1]);
        EXPECT_EQ(euc.decode(eucCode), sjis.decode(code)) << code;
        EXPECT_EQ(convert(back.table, there.bytes).bytes, text) << code;
        ++agreeing;
    }
    EXPECT_EQ(agreeing, 7399);
    EXPECT_EQ(beyond, 2268);
}

}  // namespace
}  // namespace nls::real
