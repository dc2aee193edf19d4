#include "integrations/sqlite/text_form.hpp"

#include <algorithm>

namespace nls::sqlite {
namespace {

constexpr std::size_t largestCharacter = 8;  // bytes, in any charset
constexpr std::size_t largestGrowth = 4;     // bytes of the charset for a byte of UTF-8; none needs more than 2
constexpr std::size_t longestRun = std::size_t{1} << 20;
constexpr unsigned char replacement[] = {0xEF, 0xBF, 0xBD};

// The beginning of a text, whole characters. REQUIRES: well-formed UTF-8.
ByteView firstRun(ByteView text) {
    if (text.size() <= longestRun) return text;
    std::size_t size = longestRun;
    while ((text[size] & 0xC0U) == 0x80) --size;
    return text.first(size);
}

}  // namespace

std::optional<uint32_t> TextForm::lackedAt(std::size_t character) const {
    const auto found = std::lower_bound(values.begin(), values.end(), character,
                                        [](const Value& value, std::size_t at) { return value.character < at; });
    if (found == values.end() || found->character != character || (found->value & kLacked) == 0) return std::nullopt;
    return found->value;
}

bool TextFormer::canForm(const nlsConversion& conversion) {
    constexpr int32_t toMultiByte = 18, toMultiByteStraight = 50, toSingleByte = 20;
    const int32_t type = nlsConversionType(conversion.table);
    return type == toMultiByte || type == toMultiByteStraight || type == toSingleByte;
}

TextFormer::TextFormer(const nlsConversion* conversion) : table_(conversion == nullptr ? nullptr : conversion->table) {
    if (table_ == nullptr) {
        substitute_.assign(std::begin(replacement), std::end(replacement));
        return;
    }
    if (convertOne({replacement, kLacked}, substitute_) || substitute_.empty()) substitute_.assign(1, '?');
    for (unsigned char byte = 1; byte < 0x80; ++byte) {
        Bytes one;
        asciiIsItself_ = asciiIsItself_ && convertOne({{&byte, 1}, byte}, one) && one == Bytes{byte};
    }
}

// False where the charset lacks the character; a substitute may stand behind `into` then.
bool TextFormer::convertOne(const Character& character, Bytes& into) const {
    if (character.isBroken()) return false;
    if (table_ == nullptr) {
        into.insert(into.end(), character.bytes.begin(), character.bytes.end());
        return true;
    }
    unsigned char target[largestCharacter];
    uint32_t length = 0;
    const nlsStatus status = nlsConvertBytes(target, sizeof target, character.bytes.data(),
                                             static_cast<int32_t>(character.bytes.size()), table_, &length);
    if (status != NLS_OK && status != NLS_CONV_SUBST) return false;
    into.insert(into.end(), target, target + length);
    // A NUL would end the text.
    return status == NLS_OK && length != 0 && std::find(target, target + length, 0) == target + length;
}

// In runs, since the library counts in 32 bits.
bool TextFormer::convertWhole(ByteView piece, TextForm& into) const {
    if (!tool::validUtf8(piece)) return false;
    if (table_ == nullptr) {
        into.bytes.insert(into.bytes.end(), piece.begin(), piece.end());
        return true;
    }
    while (!piece.empty()) {
        const ByteView run = firstRun(piece);
        const std::size_t begin = into.bytes.size(), room = run.size() * largestGrowth + largestCharacter;
        into.bytes.resize(begin + room);
        uint32_t length = 0;
        const nlsStatus status = nlsConvertBytes(into.bytes.data() + begin, static_cast<int32_t>(room), run.data(),
                                                 static_cast<int32_t>(run.size()), table_, &length);
        const bool isWhole = status == NLS_OK && !holdsNul(ByteView{into.bytes}.subspan(begin, length));
        into.bytes.resize(begin + (isWhole ? length : 0));
        if (!isWhole) return false;
        piece = piece.subspan(run.size());
    }
    return true;
}

void TextFormer::convertEach(ByteView piece, std::size_t firstNumber, TextForm& into) const {
    for (std::size_t number = firstNumber; !piece.empty(); ++number) {
        const Character character = firstCharacter(piece);
        const std::size_t begin = into.bytes.size();
        const bool isThere = convertOne(character, into.bytes);
        if (!isThere) {
            into.bytes.resize(begin);
            into.bytes.insert(into.bytes.end(), substitute_.begin(), substitute_.end());
        }
        const bool looksLacked = std::equal(into.bytes.begin() + static_cast<std::ptrdiff_t>(begin), into.bytes.end(),
                                            substitute_.begin(), substitute_.end());
        if (looksLacked) into.values.push_back({number, character.value | (isThere ? 0 : kLacked)});
        piece = piece.subspan(character.bytes.size());
    }
}

// Most texts lack nothing. As soon as a piece does, the text is begun again, since the substitute in earlier pieces
// counts too.
void TextFormer::form(ByteView text, TextForm& into) const {
    const auto take = [&](const auto& convert) {
        into.bytes.clear();
        into.pieces.clear();
        into.values.clear();
        forEachPiece(text, [&](ByteView piece) {
            const std::size_t begin = into.bytes.size();
            convert(piece);
            into.pieces.push_back({begin, into.bytes.size() - begin});
            into.bytes.push_back(0);
        });
    };
    bool isWhole = true;
    take([&](ByteView piece) { isWhole = isWhole && convertWhole(piece, into); });
    if (isWhole) return;
    std::size_t number = 0;
    take([&](ByteView piece) {
        convertEach(piece, number, into);
        for (; !piece.empty(); piece = piece.subspan(firstCharacter(piece).bytes.size())) ++number;
        ++number;  // the NUL
    });
    const bool lacks = std::any_of(into.values.begin(), into.values.end(),
                                   [](const TextForm::Value& value) { return (value.value & kLacked) != 0; });
    if (!lacks) into.values.clear();
}

}  // namespace nls::sqlite
