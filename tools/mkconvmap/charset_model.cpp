#include "tools/mkconvmap/charset_model.hpp"

namespace nls::mkconvmap {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;

char byteOf(char32_t value) {
    return static_cast<char>(static_cast<unsigned char>(value & 0xFF));
}

bool isSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

std::string utf8(char32_t value) {
    if (value < 0x80) return {byteOf(value)};
    if (value < 0x800) return {byteOf(0xC0 | value >> 6), byteOf(0x80 | (value & 0x3F))};
    if (value < kFirstSupplementary) {
        return {byteOf(0xE0 | value >> 12), byteOf(0x80 | (value >> 6 & 0x3F)), byteOf(0x80 | (value & 0x3F))};
    }
    return {byteOf(0xF0 | value >> 18), byteOf(0x80 | (value >> 12 & 0x3F)), byteOf(0x80 | (value >> 6 & 0x3F)),
            byteOf(0x80 | (value & 0x3F))};
}

// A unit of `width` bytes. The host's order is little-endian.
std::string unitBytes(char32_t value, int width, UnitOrder order) {
    std::string bytes;
    for (int byte = 0; byte < width; ++byte) {
        const int shift = 8 * (order == UnitOrder::big ? width - 1 - byte : byte);
        bytes.push_back(byteOf(value >> shift));
    }
    return bytes;
}

std::string utf16(char32_t value, UnitOrder order) {
    if (value < kFirstSupplementary) return unitBytes(value, 2, order);
    const char32_t rest = value - kFirstSupplementary;
    return unitBytes(0xD800 + (rest >> 10), 2, order) + unitBytes(0xDC00 + (rest & 0x3FF), 2, order);
}

void addRange(std::vector<char32_t>& characters, char32_t first, char32_t last) {
    for (char32_t value = first; value <= last; ++value) {
        if (!isSurrogate(value)) characters.push_back(value);
    }
}

std::vector<char32_t> triedCharacters(bool withPlane2) {
    std::vector<char32_t> characters;
    addRange(characters, 0, 0xFFFF);
    if (withPlane2) addRange(characters, 0x20000, 0x2FFFF);
    for (char32_t plane = 1; plane <= 0x10; ++plane) {
        if (withPlane2 && plane == 2) continue;
        addRange(characters, plane << 16, (plane << 16) + 2);
        addRange(characters, (plane << 16) + 0xFFFD, (plane << 16) + 0xFFFF);
    }
    return characters;
}

// The character whose text is to be decoded, read back from a form of Unicode by trying nothing but its own rules.
char32_t fromUtf8(const std::string& bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    if (bytes.size() == 1) return first;
    char32_t value = first & (0x7FU >> bytes.size());
    for (std::size_t at = 1; at < bytes.size(); ++at)
        value = value << 6 | (static_cast<unsigned char>(bytes[at]) & 0x3F);
    return value;
}

char32_t unitValue(const std::string& bytes, std::size_t start, std::size_t width, UnitOrder order) {
    char32_t value = 0;
    for (std::size_t byte = 0; byte < width; ++byte) {
        const std::size_t at = start + (order == UnitOrder::big ? byte : width - 1 - byte);
        value = value << 8 | static_cast<unsigned char>(bytes[at]);
    }
    return value;
}

char32_t fromUtf16(const std::string& bytes, UnitOrder order) {
    const char32_t high = unitValue(bytes, 0, 2, order);
    if (bytes.size() == 2) return high;
    return kFirstSupplementary + ((high & 0x3FF) << 10) + (unitValue(bytes, 2, 2, order) & 0x3FF);
}

}  // namespace

CharsetModel::CharsetModel(const CompiledCharset& charset) : charset_(&charset) {
    if (charset.source.isSingleByte()) {
        for (uint32_t byte = 0; byte < 256; ++byte) {
            forth_[std::string(1, byteOf(byte))] = charset.source.units[byte];
            back_[charset.source.units[byte]] = std::string(1, byteOf(byte));
        }
    }
    if (charset.multiByte) {
        for (const auto& [code, character] : charset.multiByte->toUnicode) forth_[textOfCode(code)] = character;
        for (const auto& [character, code] : charset.multiByte->fromUnicode) back_[character] = textOfCode(code);
    }
}

std::vector<std::string> CharsetModel::probes(bool withPlane2) const {
    std::vector<std::string> texts;
    if (source().isUnicode()) {
        for (const char32_t character : triedCharacters(withPlane2)) texts.push_back(units(character));
        return texts;
    }
    for (uint32_t first = 0; first < 256; ++first) {
        const unsigned trailCount = source().lengths[first] & 0x07U;
        if (trailCount == 0) texts.emplace_back(1, byteOf(first));
        if (trailCount != 1) continue;
        for (uint32_t trail = 1; trail < 256; ++trail) texts.push_back({byteOf(first), byteOf(trail)});
    }
    return texts;
}

std::optional<char32_t> CharsetModel::decode(const std::string& bytes) const {
    switch (source().kind) {
        case CharsetKind::utf8:
            return fromUtf8(bytes);
        case CharsetKind::ucs2:
        case CharsetKind::utf16:
            return fromUtf16(bytes, source().order);
        case CharsetKind::utf32:
            return unitValue(bytes, 0, 4, source().order);
        default:
            break;
    }
    const auto found = forth_.find(bytes);
    return found == forth_.end() ? std::nullopt : std::optional{found->second};
}

std::optional<std::string> CharsetModel::encode(char32_t character) const {
    if (source().isUnicode()) return units(character);
    const auto found = back_.find(character);
    return found == back_.end() ? std::nullopt : std::optional{found->second};
}

std::string CharsetModel::substitute() const {
    if (source().isUnicode()) return units(kReplacement);
    return charset_->multiByte ? textOfCode(charset_->multiByte->substChar) : "?";
}

std::string CharsetModel::textOfCode(uint16_t code) const {
    if (code <= 0xFF) return {byteOf(code)};
    return {byteOf(code >> 8U), byteOf(code)};
}

std::string CharsetModel::units(char32_t character) const {
    if (source().kind == CharsetKind::utf8) return utf8(character);
    if (source().kind == CharsetKind::utf32) return unitBytes(character, 4, source().order);
    return utf16(character, source().order);
}

std::string bytesText(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) text += (text.empty() ? "" : " ") + hexText(static_cast<unsigned char>(byte), 2);
    return text;
}

}  // namespace nls::mkconvmap
