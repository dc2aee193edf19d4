#include "conversion/conv_type.hpp"

#include <array>

namespace nls {

namespace {

constexpr ConvTypeRow kRows[] = {
    // type, character, growth, terminator
    {ConvType::byteMap, kOfTargetCharset, 1, 1, true},
    {ConvType::identity, 1, 1, 1, true},
    {ConvType::sjisToEuc, 2, 2, 1, true},
    {ConvType::eucToSjis, 2, 1, 1, true},
    {ConvType::unicodeToIcu, kNoAnswer, 4, 1, true},
    {ConvType::icuToUnicode, kNoAnswer, 4, 1, true},
    {ConvType::twoStep, kNoAnswer, kNoAnswer, 1, true},
    {ConvType::dbcsToUtf8, 3, 3, 1, true},
    {ConvType::utf8ToDbcs, 2, 2, 1, true},
    {ConvType::sbcsToUtf8, 3, 3, 1, true},
    {ConvType::utf8ToSbcs, 1, 1, 1, true},
    {ConvType::ucs2ToUtf8, 4, 2, 1, true},
    {ConvType::utf8ToUcs2, 2, 2, 2, true},
    {ConvType::utf16ToUtf8, 4, 2, 1, true},
    {ConvType::utf8ToUtf16, 4, 2, 2, true},
    {ConvType::ucs4ToUtf8, 4, kNoAnswer, 1, true},
    {ConvType::utf8ToUcs4, 4, kNoAnswer, 4, true},
    {ConvType::utf16ToUcs4, 4, 2, 4, true},
    {ConvType::ucs4ToUtf16, 4, kNoAnswer, 2, true},
    {ConvType::dbcsToUtf16, 4, 2, 2, true},
    {ConvType::utf16ToDbcs, 2, kNoAnswer, 1, true},
    {ConvType::utf8ToDbcsShort, 2, 1, 1, true},
    {ConvType::sbcsToUtf8Short, 2, 2, 1, true},
    {ConvType::dbcsToUtf8Long, 4, 3, 1, true},
    {ConvType::dbcsToUtf8Longest, 4, 4, 1, true},
};

constexpr std::size_t kTypeLimit = 90;

// The rows by type number.
constexpr auto kByNumber = [] {
    std::array<ConvTypeRow, kTypeLimit> rows{};
    for (ConvTypeRow& row : rows) row = {ConvType{}, kNoAnswer, kNoAnswer, 1, false};
    for (const ConvTypeRow& row : kRows) rows[static_cast<std::size_t>(row.type)] = row;
    return rows;
}();
static_assert(kByNumber[19].charSize == 3 && kByNumber[28].terminator == 2 && !kByNumber[8].known);

}  // namespace

const ConvTypeRow& rowOf(ConvType type) {
    const auto number = static_cast<uint32_t>(type);
    return number < kTypeLimit ? kByNumber[number] : kByNumber[0];
}

std::optional<uint32_t> largestCharacter(ConvTable table, uint32_t targetCharSize) {
    while (table.type() == ConvType::twoStep) table = table.secondStep();
    const uint8_t size = rowOf(table.type()).charSize;
    if (size == kNoAnswer) return std::nullopt;
    return size == kOfTargetCharset ? targetCharSize : size;
}

std::optional<uint32_t> largestGrowth(ConvTable table) {
    if (table.type() != ConvType::twoStep) {
        const uint8_t growth = rowOf(table.type()).growth;
        return growth == kNoAnswer ? std::nullopt : std::optional<uint32_t>{growth};
    }
    const std::optional<uint32_t> first = largestGrowth(table.firstStep()), second = largestGrowth(table.secondStep());
    return first && second ? std::optional<uint32_t>{*first * *second} : std::nullopt;
}

}  // namespace nls
