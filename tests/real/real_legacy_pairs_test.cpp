// The conversions between two legacy charsets: byte maps, and the rule of Shift-JIS and EUC.
#include "tests/real/foretold.hpp"

namespace nls::real {
namespace {

std::vector<Route> routesOf(std::initializer_list<Type> types) {
    std::vector<Route> routes;
    for (const auto& [from, to] : RealFile::shared().pairs()) {
        const Route route(from, to);
        if (std::find(types.begin(), types.end(), route.type) != types.end()) routes.push_back(route);
    }
    return routes;
}

Bytes allPairsOfBytes() {
    Bytes text;
    for (unsigned pair = 0; pair <= 0xFFFF; ++pair) {
        text.push_back(static_cast<unsigned char>(pair >> 8));
        text.push_back(static_cast<unsigned char>(pair));
    }
    return text;
}

// A byte becomes the byte of the same character, or the question mark; -2 tells that some byte changed.
TEST(LegacyPairs, ByteMapsKeepEachCharacter) {
    const std::vector<Route> routes = routesOf({Type::byteMap});
    EXPECT_EQ(routes.size(), 82U);
    const Bytes source = allPairsOfBytes();
    for (const Route& route : routes) {
        const Foretold want = foretellWhole(route, source);
        forEachCpuLevel([&] {
            const Outcome have = convert(route.table, source);
            EXPECT_EQ(have.status, want.status);
            EXPECT_EQ(firstDifference(have.bytes, want.target), "") << route.from.text << " to " << route.to.text;
            // The same in place.
            Bytes text = source;
            uint32_t count = 0;
            const auto size = static_cast<int32_t>(text.size());
            const nlsStatus status =
                convertBytes(text.data(), size, text.data(), size, nullptr, 0, route.table, &count, 1);
            EXPECT_EQ(status, NLS_CONV_CHANGED) << route.from.text << " to " << route.to.text;
            EXPECT_EQ(firstDifference(text, want.target), "") << route.from.text << " to " << route.to.text;
        });
    }
}

TEST(LegacyPairs, TheRuleOnAllPairsOfBytes) {
    const std::vector<Route> routes = routesOf({Type::sjisToEuc, Type::eucToSjis});
    EXPECT_EQ(routes.size(), 2U);
    const Bytes source = allPairsOfBytes();
    for (const Route& route : routes) {
        const Foretold want = foretellWhole(route, source);
        forEachCpuLevel([&] {
            const Outcome have = convert(route.table, source);
            EXPECT_EQ(have.status, want.status);
            EXPECT_EQ(firstDifference(have.bytes, want.target), "") << route.from.text << " to " << route.to.text;
        });
    }
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
