// The eleven multi-byte charsets as they are described in data/charsets: their figures, and each code and each code
// point beside two published converters.
#include <gtest/gtest.h>
#include <iconv.h>
#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <cctype>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>

#include "tools/mkconvmap/multi_byte.hpp"
#include "tools/mkconvmap/ucs2_mapping.hpp"
#include "tools/mkconvmap/ucs2_pack.hpp"
#include "tools/mkconvmap/ucs2_reader.hpp"

namespace nls::mkconvmap {
namespace {

CharsetSource readNamed(const std::string& name) {
    const std::filesystem::path tests = std::filesystem::path{NLS_TEST_DATA}.parent_path();
    return readCharset(tests.parent_path() / "data/charsets" / (name + ".txt"));
}

using Sizes = std::array<std::size_t, 3>;  // entries of cjisToUcs, ucsRows, ucsCells

Sizes sizesOf(const PackedMap& map) {
    return {map.cjisToUcs.size(), map.ucsRows.size(), map.ucsCells.size()};
}

// The layouts were chosen for look-ups that are short and for buffers that are small; a figure that changes is a change
// of a source or of a layout, and both want a look. The library needs 992 bytes for two copies of the record besides.
TEST(Ucs2Charsets, HaveTheirFigures) {
    const struct {
        const char* name;
        std::size_t codes, back;
        Sizes third, first, second;
        std::size_t bytes;
        ConvType toUtf8, fromUtf8;
        bool fitsSmallestBuffer;
    } rows[] = {
        {"SHIFT-JIS",
         9667,
         9279,
         {11105, 0, 20897},
         {0, 1790, 2612},
         {133, 10, 65},
         73224,
         ConvType{17},
         ConvType{18},
         true},
        {"EUCJIS", 7399, 7397, {8743, 0, 20897}, {0, 1012, 795}, {0, 0, 0}, 62894, ConvType{17}, ConvType{18}, true},
        {"KSC5601", 8227, 8228, {8743, 0, 11172}, {0, 6558, 8283}, {0, 0, 0}, 69512, ConvType{17}, ConvType{50}, true},
        {"GB2312", 7445, 7447, {8179, 0, 20897}, {0, 746, 729}, {0, 0, 0}, 61102, ConvType{17}, ConvType{50}, true},
        {"BIG-5", 13911, 13901, {13974, 0, 20902}, {0, 1169, 907}, {0, 0, 0}, 73904, ConvType{17}, ConvType{50}, true},
        {"CP949",
         17236,
         17236,
         {13249, 0, 11172},
         {0, 7217, 8475},
         {5077, 0, 0},
         90380,
         ConvType{17},
         ConvType{50},
         false},
        {"CP1361",
         17049,
         17050,
         {14976, 0, 11172},
         {0, 6558, 11490},
         {6393, 0, 0},
         101178,
         ConvType{17},
         ConvType{50},
         false},
        {"CP936",
         23940,
         23940,
         {23941, 0, 20902},
         {0, 1848, 3248},
         {0, 0, 0},
         99878,
         ConvType{17},
         ConvType{50},
         false},
        {"CP950",
         19720,
         19710,
         {19783, 0, 20902},
         {0, 2621, 6807},
         {0, 0, 0},
         100226,
         ConvType{17},
         ConvType{50},
         false},
        {"CP950-HKSCS",
         18459,
         18451,
         {18841, 0, 20992},
         {0, 1475, 2731},
         {11147, 1998, 4170},
         122708,
         ConvType{81},
         ConvType{50},
         false},
        {"ISO6937", 238, 238, {0, 0, 0}, {3452, 95, 245}, {0, 0, 0}, 7584, ConvType{17}, ConvType{50}, true},
    };
    constexpr std::size_t smallestBuffer = 76000, recordCopies = 992, objects = 64;
    for (const auto& row : rows) {
        const CharsetSource charset = readNamed(row.name);
        const Ucs2Source source = readUcs2Source(charset);
        const CodeMapping mapping = readMapping(charset, source);
        const PackedMaps maps = packMaps(source, mapping);
        EXPECT_EQ(mapping.forth.size(), row.codes) << row.name;
        EXPECT_EQ(mapping.back.size(), row.back) << row.name;
        EXPECT_EQ(sizesOf(maps[2]), row.third) << row.name;
        EXPECT_EQ(sizesOf(maps[0]), row.first) << row.name;
        EXPECT_EQ(sizesOf(maps[1]), row.second) << row.name;
        EXPECT_EQ(arrayBytes(maps), row.bytes) << row.name;
        EXPECT_EQ(arrayBytes(maps) + recordCopies + objects <= smallestBuffer, row.fitsSmallestBuffer) << row.name;
        const MultiByteTables tables = packMultiByte(charset);
        EXPECT_EQ(tables.toUtf8, row.toUtf8) << row.name;
        EXPECT_EQ(tables.fromUtf8, row.fromUtf8) << row.name;
    }
}

// A published converter, asked for one character at a time. No answer is 0.
struct Peer {
    std::function<uint32_t(ByteView)> decode;
    std::function<uint32_t(uint32_t)> encode;
};

uint32_t codeOfBytes(const char* bytes, std::size_t count) {
    uint32_t code = 0;
    for (std::size_t at = 0; at < count; ++at) code = code << 8 | static_cast<unsigned char>(bytes[at]);
    return count <= 2 ? code : 0;
}

std::string iconvOnce(iconv_t converter, std::string bytes) {
    char target[64];
    char *source = bytes.data(), *to = target;
    std::size_t left = bytes.size(), room = sizeof target;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &source, &left, &to, &room) == static_cast<std::size_t>(-1)) return {};
    iconv(converter, nullptr, nullptr, &to, &room);
    return {target, sizeof target - room};
}

Peer iconvPeer(const char* name) {
    const std::shared_ptr<void> decoder(iconv_open("UTF-32LE", name), iconv_close);
    const std::shared_ptr<void> encoder(iconv_open(name, "UTF-32LE"), iconv_close);
    const auto decode = [decoder](ByteView bytes) {
        const std::string text = iconvOnce(decoder.get(), {bytes.begin(), bytes.end()});
        uint32_t codePoint = 0;
        if (text.size() == sizeof codePoint) std::memcpy(&codePoint, text.data(), sizeof codePoint);
        return codePoint;
    };
    const auto encode = [encoder](uint32_t codePoint) {
        std::string text(sizeof codePoint, '\0');
        std::memcpy(text.data(), &codePoint, sizeof codePoint);
        const std::string bytes = iconvOnce(encoder.get(), text);
        return codeOfBytes(bytes.data(), bytes.size());
    };
    return {decode, encode};
}

Peer icuPeer(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    const std::shared_ptr<UConverter> converter(ucnv_open(name, &error), ucnv_close);
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFallback(converter.get(), false);
    EXPECT_TRUE(U_SUCCESS(error)) << name;
    const auto decode = [converter](ByteView bytes) -> uint32_t {
        UErrorCode status = U_ZERO_ERROR;
        UChar units[8];
        const auto* source = reinterpret_cast<const char*>(bytes.data());
        const int32_t count =
            ucnv_toUChars(converter.get(), units, 8, source, static_cast<int32_t>(bytes.size()), &status);
        if (U_FAILURE(status) || count == 0 || count != (U16_IS_LEAD(units[0]) ? 2 : 1)) return 0;
        return count == 1 ? units[0] : static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(units[0], units[1]));
    };
    const auto encode = [converter](uint32_t codePoint) -> uint32_t {
        UErrorCode status = U_ZERO_ERROR;
        UChar units[2];
        int32_t length = 0;
        U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(codePoint));
        char bytes[8];
        const int32_t count = ucnv_fromUChars(converter.get(), bytes, sizeof bytes, units, length, &status);
        return U_FAILURE(status) ? 0 : codeOfBytes(bytes, static_cast<std::size_t>(count));
    };
    return {decode, encode};
}

struct Known {
    uint32_t first, last;
    const char* reason;
};

// Differences, each of which has to lie in a known range, while each known range has to hold one.
class Differences {
public:
    explicit Differences(const std::vector<Known>& known) : known_(known), seen_(known.size()) {}

    bool isKnown(uint32_t at) {
        bool found = false;
        for (std::size_t index = 0; index < known_.size(); ++index) {
            if (at < known_[index].first || at > known_[index].last) continue;
            seen_[index] = found = true;
        }
        return found;
    }
    void expectAllSeen() const {
        for (std::size_t index = 0; index < known_.size(); ++index) {
            EXPECT_TRUE(seen_[index]) << hexText(known_[index].first, 4) << ": no " << known_[index].reason;
        }
    }

private:
    const std::vector<Known>& known_;
    std::vector<bool> seen_;
};

std::string text(uint32_t at, uint32_t have, uint32_t want) {
    return hexText(at, 4) + ": " + hexText(have, 4) + ", the peer has " + hexText(want, 4);
}

void compareCodes(const CharsetSource& charset, const CodeMapping& mapping, const Peer& peer, Differences& codes) {
    for (uint32_t code = 0x80; code <= 0xFFFF; ++code) {
        const unsigned first = code > 0xFF ? code >> 8 : code;
        const bool isWhole = (charset.lengths[first] & 0x07U) == (code > 0xFF ? 1U : 0U);
        if (!isWhole || (code & 0xFF) == 0 || first < 0x80) continue;
        const uint8_t bytes[2] = {static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)};
        const uint32_t want = peer.decode(code > 0xFF ? ByteView{bytes} : ByteView{bytes + 1, 1});
        const auto found = mapping.forth.find(static_cast<Code>(code));
        const uint32_t have = found == mapping.forth.end() ? 0 : found->second;
        if (have == want) continue;
        EXPECT_TRUE(codes.isKnown(code)) << "code " << text(code, have, want);
    }
}

// A difference is known by the code that either side gives as well.
void compareCodePoints(const CodeMapping& mapping, const Peer& peer, Differences& codes, Differences& codePoints) {
    for (uint32_t codePoint = 0x80; codePoint < 0x30000; ++codePoint) {
        if (codePoint == 0xD800) codePoint = 0xE000;
        if (codePoint == 0x10000) codePoint = 0x20000;
        const uint32_t want = peer.encode(codePoint);
        const auto found = mapping.back.find(codePoint);
        const uint32_t have = found == mapping.back.end() ? 0 : found->second;
        if (have == want) continue;
        const bool isKnown = codePoints.isKnown(codePoint) || codes.isKnown(have) || codes.isKnown(want);
        EXPECT_TRUE(isKnown) << "code point " << text(codePoint, have, want);
    }
}

struct Comparison {
    const char* name;
    const char* library;
    const char* converter;
    std::vector<Known> codes, codePoints;
};
void PrintTo(const Comparison& comparison, std::ostream* stream) {
    *stream << comparison.name << " beside " << comparison.converter;
}

class Ucs2Peers : public testing::TestWithParam<Comparison> {};

TEST_P(Ucs2Peers, AgreeButForWhatIsKnown) {
    const Comparison& param = GetParam();
    const Peer peer = std::string{param.library} == "icu" ? icuPeer(param.converter) : iconvPeer(param.converter);
    const CharsetSource charset = readNamed(param.name);
    const CodeMapping mapping = readMapping(charset, readUcs2Source(charset));
    Differences codes(param.codes), codePoints(param.codePoints);
    compareCodes(charset, mapping, peer, codes);
    compareCodePoints(mapping, peer, codes, codePoints);
    codes.expectAllSeen();
    codePoints.expectAllSeen();
}

const Known kControls{0x80, 0x9F, "C1 controls at their own bytes"};
const Known kFirstControl{0x80, 0x80, "C1 control at 80"};
const Known kLastByte{0xFF, 0xFF, "private-use character at FF"};

const Comparison kComparisons[] = {
    {"SHIFT-JIS", "iconv", "CP932", {}, {{0xA6, 0xA6, "way back for the broken bar"}}},
    {"SHIFT-JIS",
     "icu",
     "ibm-943_P15A-2003",
     {},
     {{0xA2, 0xAC, "one-way entries"},
      {0x2014, 0x203E, "one-way entries"},
      {0x2212, 0x2212, "one-way entries"},
      {0x301C, 0x301C, "one-way entries"},
      {0xF86F, 0xF86F, "private-use alternative of the numero sign"}}},
    {"EUCJIS",
     "iconv",
     "EUC-JP-MS",
     {kControls, {0xF5A1, 0xFEFE, "user area, where the rule puts the IBM extensions"}},
     {{0x80, 0x9F, "C1 controls"},
      {0xA5, 0xA5, "yen sign as 5C"},
      {0xA6, 0xA6, "JIS X 0212"},
      {0x203E, 0x203E, "overline as 7E"},
      {0xE000, 0xE757, "user area"}}},
    {"KSC5601", "iconv", "EUC-KR", {kControls}, {}},
    {"KSC5601",
     "icu",
     "ibm-970_P110_P110-2006_U2",
     {kControls,
      {0xA2E6, 0xA2E8, "no euro, registered sign and postal mark"},
      {0xC9A1, 0xC9FE, "user area"},
      {0xFEA1, 0xFEFE, "user area"}},
     {{0x20A9, 0x20A9, "one-way entry"}}},
    {"BIG-5", "iconv", "BIG5", {kFirstControl}, {}},
    {"BIG-5",
     "icu",
     "windows-950-2000",
     {kFirstControl, kLastByte},
     {{0x2550, 0x256A, "four signs that stand twice"}, {0xE000, 0xF6B0, "user area"}}},
    {"GB2312", "iconv", "EUC-CN", {}, {{0xB7, 0xB7, "one-way entry"}, {0x2014, 0x2014, "one-way entry"}}},
    {"GB2312",
     "icu",
     "ibm-1383_P110-1999",
     {kControls,
      {0xA2A1, 0xA2FE, "private use and small numerals"},
      {0xA3A7, 0xA3A7, "acute accent for the full-width apostrophe"},
      {0xA4F4, 0xAFFE, "private use"},
      {0xD7FA, 0xD7FE, "private use"},
      {0xF8A1, 0xFEFE, "private use and extensions"}},
     {{0xB7, 0xB7, "one-way entry"}, {0x2014, 0x2014, "one-way entry"}}},
    {"CP949", "iconv", "UHC", {{0xC9A1, 0xC9FE, "user area"}, {0xFEA1, 0xFEFE, "user area"}}, {}},
    {"CP949", "icu", "windows-949-2000", {kFirstControl, kLastByte}, {}},
    {"CP1361", "iconv", "JOHAB", {}, {{0x20A9, 0x20A9, "won sign as 5C"}}},
    {"CP950",
     "iconv",
     "BIG5",
     {kFirstControl, {0x8140, 0xA0FE, "user area"}, {0xFA40, 0xFEFE, "user area"}},
     {{0x2550, 0x256A, "four signs that stand twice"}}},
    {"CP950", "icu", "windows-950-2000", {kFirstControl, kLastByte}, {}},
    {"CP950-HKSCS", "iconv", "BIG5-HKSCS", {kFirstControl}, {}},
    // ICU's table is of 2004, has private-use characters where the supplement of 2008 has none, and keeps Big5's signs.
    {"CP950-HKSCS",
     "icu",
     "ibm-1375_P100-2008",
     {{0x8140, 0x86FE, "user area"},
      {0x8740, 0x8DFE, "additions since"},
      {0x8E40, 0xA0FE, "user area and compatibility points"},
      {0xA145, 0xA247, "Big5's signs"},
      {0xA2CC, 0xA2CE, "numerals that stand twice"},
      {0xA3E1, 0xA3E1, "euro"},
      {0xC6A1, 0xC8FE, "additions since"},
      {0xF9E9, 0xF9FE, "signs that stand twice"},
      {0xFA40, 0xFEFE, "compatibility points"}},
     {}},
    {"CP936",
     "iconv",
     "GBK",
     {{0x80, 0x80, "euro, which the library knows without a map"},
      {0xA140, 0xA9FE, "user area and private use"},
      {0xAAA1, 0xAFFE, "user area"},
      {0xD7FA, 0xD7FE, "private use"},
      {0xF8A1, 0xFEFE, "user area and private use"}},
     {}},
    {"CP936", "icu", "windows-936-2000", {{0x80, 0x80, "euro, which the library knows without a map"}, kLastByte}, {}},
    {"ISO6937", "iconv", "ISO_6937", {kControls}, {}},
};

INSTANTIATE_TEST_SUITE_P(All, Ucs2Peers, testing::ValuesIn(kComparisons), [](const auto& row) {
    std::string name;
    for (const char c : std::string{row.param.name} + "_" + row.param.converter) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
});

}  // namespace
}  // namespace nls::mkconvmap
