#include "conversion/dbcs_search.hpp"

namespace nls {

namespace {

// One map's answer, kNoMapping if it doesn't hold the character.
uint32_t unicodeIn(const nlsUcs2Map& map, uint16_t code) {
    const uint32_t cjis = gridNumber(map, code);
    return cjis == kNoMapping ? kNoMapping : unicodeAt(map, static_cast<uint16_t>(cjis));
}

uint32_t codeIn(const nlsUcs2Map& map, uint32_t cjis) {
    return cjis == kNoMapping ? kNoMapping : gridCode(map, static_cast<uint16_t>(cjis));
}

bool hasCp936Euro(const DbcsTable& table) {
    return table.attrib != nullptr && Charset{*table.attrib}.isCp936();
}

}  // namespace

uint32_t mappedUnicode(const DbcsTable& table, uint16_t code) {
    const auto& [first, second, third] = table.maps;
    if (hasThirdMap(table)) {
        if (const uint32_t ucs = unicodeIn(third, code); ucs != kNoMapping) return ucs;
    }
    if (const uint32_t ucs = unicodeIn(first, code); ucs != kNoMapping) return ucs;
    return unicodeIn(second, code);
}

uint32_t mappedCode(const DbcsTable& table, uint32_t ucs) {
    const auto& [first, second, third] = table.maps;
    if (hasThirdMap(table) && ucs <= kLastBmpValue) {
        const uint32_t code = codeIn(third, cjisDirect(third, static_cast<uint16_t>(ucs)));
        if (code != kNoMapping) return code;
    }
    if (const uint32_t code = codeIn(first, cjisInRows(first, ucs)); code != kNoMapping) return code;
    return codeIn(second, cjisInRows(second, ucs));
}

FoundUnicode findUnicode(const DbcsTable& table, uint16_t code) {
    if (code == 0) return {0, false};
    if (const uint32_t ucs = mappedUnicode(table, code); ucs != kNoMapping) return {ucs, ucs == kReplacementCharacter};
    if (code < 0x80) return {code, false};
    if (code == kCp936Euro && hasCp936Euro(table)) return {kEuroSign, false};
    return {kReplacementCharacter, true};
}

FoundCode findCode(const DbcsTable& table, uint32_t ucs) {
    if (const uint32_t code = mappedCode(table, ucs); code != kNoMapping) return {static_cast<uint16_t>(code), false};
    if (ucs < 0x80) return {static_cast<uint16_t>(ucs), false};
    if (ucs == kEuroSign && hasCp936Euro(table)) return {kCp936Euro, false};
    return {table.maps[0].substChar, true};
}

}  // namespace nls
