// Every charset to and from every form of Unicode: all code points, and all sequences of two bytes, in texts so long
// that each wide path is taken and left again. What is to come out is told one character at a time. And the conversions
// between two legacy charsets: byte maps, and the rule of Shift-JIS and EUC.
#include "tests/real/foretold.hpp"
#include "tests/real/peers.hpp"

namespace nls::real {
namespace {

// No pair of surrogates comes about by chance: the low ones stand in front of the high ones.
std::vector<uint32_t> planeOf(uint32_t plane) {
    std::vector<uint32_t> values;
    const auto add = [&](uint32_t first, uint32_t last) {
        for (uint32_t value = first; value <= last; ++value) values.push_back(plane << 16 | value);
    };
    add(0, 0xD7FF);
    add(0xDC00, 0xDFFF);
    add(0xD800, 0xDBFF);
    add(0xE000, 0xFFFF);
    return values;
}

bool isSurrogate(uint32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

Bytes textOf(const std::vector<uint32_t>& values, const Name& form, bool withSurrogates) {
    Bytes text;
    for (const uint32_t value : values)
        if (withSurrogates || !isSurrogate(value)) append(text, value, form);
    return text;
}

Bytes pairsOfBytes(unsigned lowestFirst) {
    Bytes text;
    for (unsigned first = lowestFirst; first <= 0xFF; ++first)
        for (unsigned second = 0; second <= 0xFF; ++second) {
            text.push_back(static_cast<unsigned char>(first));
            text.push_back(static_cast<unsigned char>(second));
        }
    return text;
}

bool isDirect(const Route& route) {
    return route.type != Type::twoSteps;
}

// A way of two steps takes no path that isn't one of its steps', so it isn't driven at each level again.
void expectAsForetold(const Route& route, ByteView source) {
    const Foretold want = foretellWhole(route, source);
    const auto compare = [&] {
        const Outcome have = convert(route.table, source);
        EXPECT_EQ(have.status, want.status) << route.from.text << " to " << route.to.text;
        EXPECT_EQ(have.count, want.count) << route.from.text << " to " << route.to.text;
        EXPECT_EQ(firstDifference(have.bytes, want.target), "") << route.from.text << " to " << route.to.text;
    };
    isDirect(route) ? forEachCpuLevel(compare) : compare();
}

class EveryForm : public testing::TestWithParam<std::string> {};

TEST_P(EveryForm, FromTheCharset) {
    const Bytes pairs = pairsOfBytes(0), somePairs = pairsOfBytes(0xF0);
    for (const std::string& form : RealFile::shared().unicodeForms()) {
        const Route route(GetParam(), form);
        expectAsForetold(route, isDirect(route) ? pairs : somePairs);
    }
}

TEST_P(EveryForm, ToTheCharset) {
    for (const std::string& form : RealFile::shared().unicodeForms()) {
        const Route route(form, GetParam());
        expectAsForetold(route, textOf(planeOf(0), route.from, true));
        // A lone surrogate ends a way of two steps at the first.
        if (!isDirect(route)) expectAsForetold(route, textOf(planeOf(0), route.from, false));
        if (isDirect(route)) expectAsForetold(route, textOf(planeOf(2), route.from, true));
    }
}

// CharsetModel takes them for empty.
TEST_P(EveryForm, NothingInTheOtherPlanes) {
    const nlsConvTable* const table = RealFile::shared().table("UTF-8", GetParam());
    const CharsetModel& charset = CharsetModel::of(GetParam());
    for (uint32_t plane = 1; plane <= 16; plane += plane == 1 ? 2 : 1) {
        Bytes want;
        for (unsigned at = 0; at <= 0xFFFF; ++at) charset.append(want, charset.substitute());
        const Outcome have = convert(table, textOf(planeOf(plane), RealFile::shared().charset("UTF-8"), true));
        EXPECT_EQ(have.status, NLS_CONV_SUBST);
        EXPECT_EQ(firstDifference(have.bytes, want), "");
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryForm, testing::ValuesIn(RealFile::shared().legacyCharsets()),
                         [](const auto& row) { return identifier(row.param); });

class FormToForm : public testing::TestWithParam<std::string> {};

TEST_P(FormToForm, EveryCodePoint) {
    for (const std::string& to : RealFile::shared().unicodeForms()) {
        const Route route(GetParam(), to);
        for (uint32_t plane = 0; plane <= 16; ++plane)
            if (isDirect(route) || plane <= 1) expectAsForetold(route, textOf(planeOf(plane), route.from, true));
        expectAsForetold(route, textOf(planeOf(0), route.from, false));
    }
}

// Names of the forms that say the order of the bytes, which converters would else mark in the text.
const char* peerName(const Name& form) {
    if (form.family == Family::utf8) return "UTF-8";
    const bool isLittle = form.swapped == (std::endian::native == std::endian::big);
    if (form.family == Family::units16) return isLittle ? "UTF-16LE" : "UTF-16BE";
    return isLittle ? "UTF-32LE" : "UTF-32BE";
}

TEST_P(FormToForm, AsPublishedConverters) {
    for (const std::string& to : RealFile::shared().unicodeForms()) {
        const Route route(GetParam(), to);
        if (!isDirect(route)) continue;
        for (uint32_t plane = 0; plane <= 16; ++plane) {
            const Bytes text = textOf(planeOf(plane), route.from, false);
            const Outcome have = convert(route.table, text);
            EXPECT_EQ(have.status, NLS_OK) << to;
            for (const Library library : {Library::icu, Library::iconv}) {
                const Bytes want = convertByPeer(library, peerName(route.from), peerName(route.to), text);
                EXPECT_EQ(firstDifference(have.bytes, want), "") << to << ", " << libraryName(library);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, FormToForm, testing::ValuesIn(RealFile::shared().unicodeForms()),
                         [](const auto& row) { return identifier(row.param); });

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
