// The multi-byte charsets of data/charsets as the library loads them from a finished file: every array in its place,
// and each within the buffer that it was laid out for.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "convmap/conv_table.hpp"
#include "core/base/charset.hpp"
#include "nls/handle.h"
#include "nls/objects.h"
#include "tools/mkconvmap/compile.hpp"
#include "tools/mkconvmap/ucs2_mapping.hpp"
#include "tools/mkconvmap/ucs2_reader.hpp"

namespace nls::mkconvmap {
namespace {

constexpr int32_t kSmallest = NLS_SMALLEST_BUFFER;

const struct Row {
    const char* name;
    int32_t buffer;  // bytes that its tables fit into
} kRows[] = {
    {"SHIFT-JIS", kSmallest}, {"EUCJIS", kSmallest},  {"KSC5601", kSmallest},  {"GB2312", kSmallest},
    {"BIG-5", kSmallest},     {"ISO6937", kSmallest}, {"CP949", 92000},        {"CP1361", 103000},
    {"CP936", 101500},        {"CP950", 102000},      {"CP950-HKSCS", 124500},
};

// UTF-8 and the charsets above, each with its conversion to UTF-8.
const CompiledMap& compiled() {
    static const CompiledMap map = [] {
        const auto folder = std::filesystem::path{NLS_TEST_DATA}.parent_path().parent_path() / "data/charsets";
        MapSource source;
        source.charsets.push_back(readCharset(folder / "UTF-8.txt"));
        for (const Row& row : kRows) source.charsets.push_back(readCharset(folder / (std::string{row.name} + ".txt")));
        std::size_t sjis = 0, euc = 0;
        for (std::size_t at = 0; at < source.charsets.size(); ++at) {
            source.items.emplace_back(at);
            if (at != 0) source.items.emplace_back(ConversionSource{{}, 0, at});
            if (source.charsets[at].name == "SHIFT-JIS") sjis = at;
            if (source.charsets[at].viaShiftJis) euc = at;
        }
        source.items.emplace_back(ConversionSource{{}, sjis, euc, true});
        return compileMap(source);
    }();
    return map;
}

const std::vector<unsigned char>& image() {
    static const std::vector<unsigned char> bytes = compiled().file.build();
    return bytes;
}

uint32_t readImage(uint32_t, uint32_t offset, void* buffer, uint32_t length) {
    const auto& bytes = image();
    if (offset > bytes.size()) return 0;
    const auto count = std::min<std::size_t>(length, bytes.size() - offset);
    std::copy_n(bytes.data() + offset, count, static_cast<unsigned char*>(buffer));
    return static_cast<uint32_t>(count);
}

const CompiledCharset& charsetNamed(const std::string& name) {
    const auto& charsets = compiled().charsets;
    const auto is = [&name](const CompiledCharset& charset) { return charset.source.name == name; };
    return *std::find_if(charsets.begin(), charsets.end(), is);
}

// A handle whose locales stand in its block, so that an added buffer is left to the tables of one conversion.
class Loaded {
public:
    Loaded(const char* charset, int32_t bufferSize)
        : block_(new unsigned char[NLS_SMALLEST_BLOCK]),
          buffer_(new unsigned char[static_cast<std::size_t>(bufferSize)]) {
        EXPECT_EQ(nlsInit(0, block_.get(), NLS_SMALLEST_BLOCK, readImage, &handle_), NLS_OK);
        nlsLocale *from = nullptr, *to = nullptr;
        EXPECT_EQ(nlsCreateLocale(handle_, charset, NLS_NO_COLLATION, nullptr, &from), NLS_OK);
        EXPECT_EQ(nlsCreateLocale(handle_, "UTF-8", NLS_NO_COLLATION, nullptr, &to), NLS_OK);
        EXPECT_EQ(nlsAddBuffer(handle_, buffer_.get(), bufferSize), NLS_OK);
        status_ = nlsCreateConversion(handle_, from, to, &forth_);
        if (status_ == NLS_OK) status_ = nlsCreateConversion(handle_, to, from, &back_);
    }
    ~Loaded() { nlsClose(handle_); }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

    nlsStatus status() const { return status_; }
    const nlsAttribStruct& attrib() const { return *forth_->source->attrib; }
    ConvTable forth() const { return ConvTable{forth_->table}; }
    ConvTable back() const { return ConvTable{back_->table}; }

private:
    std::unique_ptr<unsigned char[]> block_, buffer_;
    nlsHandle* handle_ = nullptr;
    nlsConversion *forth_ = nullptr, *back_ = nullptr;
    nlsStatus status_ = NLS_OK;
};

PackedMaps mapsOf(const DbcsTable& table) {
    PackedMaps maps;
    for (std::size_t at = 0; at < maps.size(); ++at) {
        const nlsUcs2Map& record = table.maps[at];
        maps[at].record = record;
        if (record.cjisCount != 0) maps[at].cjisToUcs.assign(record.cjisToUcs, record.cjisToUcs + record.cjisCount);
        if (record.ucsRowCount != 0) maps[at].ucsRows.assign(record.ucsRows, record.ucsRows + record.ucsRowCount);
        if (record.ucsCellCount != 0) maps[at].ucsCells.assign(record.ucsCells, record.ucsCells + record.ucsCellCount);
    }
    return maps;
}

void expectReadsBack(const Row& row, const CompiledCharset& charset) {
    const Loaded loaded(row.name, row.buffer);
    ASSERT_EQ(loaded.status(), NLS_OK) << row.name;
    EXPECT_EQ(loaded.forth().type(), charset.multiByte->toUtf8) << row.name;
    EXPECT_EQ(loaded.back().type(), charset.multiByte->fromUtf8) << row.name;
    const CodeMapping mapping = readMapping(charset.source, readUcs2Source(charset.source));
    EXPECT_EQ(differenceOf(mapsOf(loaded.forth().dbcs()), mapping), "") << row.name;
    EXPECT_EQ(loaded.back().dbcs().maps[0].substChar, charset.multiByte->substChar) << row.name;
}

// What the attribute table says of bytes fits the codes: how long each is, what trails, and that no first byte counts
// as a letter, which would make its character one byte long.
TEST(Ucs2Load, AttributesFitTheCodes) {
    for (const Row& row : kRows) {
        const Loaded loaded(row.name, row.buffer);
        ASSERT_EQ(loaded.status(), NLS_OK) << row.name;
        const Charset attributes(loaded.attrib());
        EXPECT_TRUE(attributes.isMultiByte() && !attributes.isSingleByte() && !attributes.isUtf8()) << row.name;
        EXPECT_EQ(attributes.comparesViaSjis(), std::string{row.name} == "EUCJIS");
        EXPECT_EQ(attributes.isCp936(), std::string{row.name} == "CP936");
        for (const auto& [code, codePoint] : charsetNamed(row.name).multiByte->toUnicode) {
            const auto first = static_cast<unsigned char>(code > 0xFF ? code >> 8 : code);
            ASSERT_EQ(attributes.trailCount(first), code > 0xFF ? 1U : 0U) << row.name << " " << hexText(code, 4);
            if (code <= 0xFF) continue;
            ASSERT_TRUE(attributes.mayTrail(static_cast<unsigned char>(code))) << row.name << " " << hexText(code, 4);
            ASSERT_FALSE(attributes.isLetter(first)) << row.name << " " << hexText(code, 4);
        }
        for (unsigned byte = 0; byte <= 0xFF; ++byte) {
            const auto first = static_cast<unsigned char>(byte);
            const bool isNarrow = (std::string{row.name} == "EUCJIS" && byte == 0x8E) ||
                                  (std::string{row.name} == "ISO6937" && byte >= 0xC1 && byte <= 0xCF);
            EXPECT_EQ(attributes.oneColumn(first), isNarrow) << row.name << " " << hexText(byte, 2);
        }
    }
}

TEST(Ucs2Load, EveryCharacterReadsBackFromTheFile) {
    for (const Row& row : kRows) {
        expectReadsBack(row, charsetNamed(row.name));
        // With a buffer that is too small nothing is loaded by halves.
        const nlsStatus expected = row.buffer > kSmallest ? NLS_NO_MEM : NLS_OK;
        EXPECT_EQ(Loaded(row.name, kSmallest).status(), expected) << row.name;
    }
}

}  // namespace
}  // namespace nls::mkconvmap
