// Text as SQLite hands it over: bytes that should be UTF-8, any of them, NULs among them.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "core/base/views.hpp"
#include "tools/nls/unicode_check.hpp"

namespace nls::sqlite {

using Bytes = std::vector<unsigned char>;

// A byte that belongs to no well-formed character is a character of its own, with a value behind all code points.
inline constexpr uint32_t kBrokenByte = 0x200000;

struct Character {
    ByteView bytes;
    uint32_t value;  // code point, or kBrokenByte and the byte

    bool isBroken() const { return value >= kBrokenByte; }
};

// REQUIRES: `text` isn't empty.
inline Character firstCharacter(ByteView text) {
    if (text[0] < 0x80) return {text.first(1), text[0]};
    const tool::Unit unit = tool::firstUtf8(text);
    if (!unit.fault.empty()) return {text.first(1), kBrokenByte + text[0]};
    const ByteView bytes = text.first(unit.length);
    return {bytes, tool::codePointOf(bytes)};
}

inline bool holdsNul(ByteView text) {
    return !text.empty() && std::memchr(text.data(), 0, text.size()) != nullptr;
}

// Calls visit(ByteView) for each piece between NULs: one more than there are NULs.
template <typename Visit>
void forEachPiece(ByteView text, Visit visit) {
    for (;;) {
        const void* const nul = text.empty() ? nullptr : std::memchr(text.data(), 0, text.size());
        if (nul == nullptr) return visit(text);
        const auto size = static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - text.data());
        visit(text.first(size));
        text = text.subspan(size + 1);
    }
}

inline bool isAscii(ByteView text) {
    constexpr uint64_t highBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (; at + sizeof(uint64_t) <= text.size(); at += sizeof(uint64_t)) {
        uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((word & highBits) != 0) return false;
    }
    for (; at < text.size(); ++at) {
        if (text[at] >= 0x80) return false;
    }
    return true;
}

}  // namespace nls::sqlite
