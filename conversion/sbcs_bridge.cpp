#include "conversion/sbcs_bridge.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "conversion/sbcs_walk.hpp"
#include "core/base/cpu.hpp"
#include "nls/status.h"

namespace nls {

namespace {

uint32_t lengthOf(const BridgeWalk& walk, ByteSpan target) {
    return static_cast<uint32_t>(walk.target - target.data());
}

// 16 bytes of ASCII at a time, up to the first block that has another byte.
void copyAscii(BridgeWalk& walk) {
    while (walk.left() >= 16 && walk.room() >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(walk.source));
        if (_mm_movemask_epi8(bytes) != 0) return;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(walk.target), bytes);
        walk.source += 16;
        walk.target += 16;
    }
}

// --- To UTF-8 ---

bool keepsAscii(const SbcsWords& words) {
    uint32_t differences = 0;
    for (uint32_t c = 0; c < 128; ++c) differences |= words.utf8[c] ^ c;
    return differences == 0;
}

// Whole words, of which the length of the form counts. What a word has behind it lies within the next three forms, or
// within the overflow ending.
void writeWords(const SbcsWords& words, BridgeWalk& walk, std::size_t count) {
    while (count != 0 && walk.left() >= 4 && walk.room() >= 5) {
        const std::size_t fitting = std::min({count, walk.left() - 3, (walk.room() - 1) / 4});
        const unsigned char* const end = walk.source + fitting;
        unsigned char* target = walk.target;
        for (const unsigned char* source = walk.source; source != end; ++source) {
            const uint32_t word = words.utf8[*source];
            storeWord(target, word);
            target += kFormLength[word & 0xFF];
        }
        walk.source = end;
        walk.target = target;
        count -= fitting;
    }
}

void toUtf8Baseline(const SbcsWords& words, BridgeWalk& walk) {
    if (walk.left() >= 64 && keepsAscii(words)) {
        while (walk.left() >= 16 + 4 && walk.room() >= 16 * 4 + 5) {
            copyAscii(walk);
            writeWords(words, walk, 16);
        }
    }
    writeWords(words, walk, walk.left());
}

// Form by form, each with its own test for room. Stops at the first that has none.
void writeForms(const SbcsWords& words, BridgeWalk& walk) {
    unsigned char* target = walk.target;
    for (; walk.source != walk.sourceEnd; ++walk.source) {
        const uint32_t word = words.utf8[*walk.source];
        const unsigned length = kFormLength[word & 0xFF];
        if (walk.targetEnd - target < (length == 1 ? 1 : static_cast<int>(length) + 1)) break;
        *target++ = static_cast<unsigned char>(word);
        if (length > 1) *target++ = static_cast<unsigned char>(word >> 8);
        if (length > 2) *target++ = static_cast<unsigned char>(word >> 16);
        if (length > 3) *target++ = static_cast<unsigned char>(word >> 24);
    }
    walk.target = target;
}

// Blanks up to the end, which is a NUL.
Converted overflowEnding(BridgeWalk& walk, ByteSpan target) {
    if (walk.room() != 0) std::memset(walk.target, ' ', walk.room());
    target.back() = 0;
    return {NLS_BUF_SMALL, static_cast<uint32_t>(target.size())};
}

// --- From UTF-8 ---

bool keepsAscii(const SbcsPages& pages) {
    unsigned differences = 0;
    for (unsigned c = 0; c < 128; ++c) differences |= pages.page[0][c] ^ c;
    return differences == 0;
}

// A character of UTF-8 and its entry: 0 where it has no mapping.
struct Mapped {
    unsigned char entry;
    unsigned length;
};

// Tests instead of a table of lengths: the processor guesses them, and starts on the next character at once.
inline Mapped characterAt(const SbcsPages& pages, const unsigned char* place, std::size_t left) {
    const unsigned char lead = place[0];
    if (lead < 0x80) return {pages.page[0][lead], 1};
    if (lead < 0xC0 || lead > 0xF4) return {0, 1};
    if (lead >= 0xF0) return {0, 4};
    const unsigned length = lead < 0xE0 ? 2 : 3;
    if (length > left) return {0, length};
    return {pages.page[place[length - 2]][place[length - 1] & 0x3F], length};
}

// Character by character, until `stretch` bytes of source are through, or its end.
nlsStatus fromUtf8Plain(const SbcsPages& pages, BridgeWalk& walk, std::size_t stretch) {
    BridgeWalk at = walk;
    const unsigned char* const stretchEnd = at.source + std::min(stretch, at.left());
    nlsStatus status = NLS_OK;
    while (at.source < stretchEnd) {
        const Mapped character = characterAt(pages, at.source, at.left());
        const bool none = character.entry == 0 && *at.source != 0;
        if (character.length > at.left()) status = NLS_BAD_ARG;
        if (status == NLS_OK && none) at.substituted = true;
        if (status == NLS_OK && at.room() == 0) status = NLS_BUF_SMALL;
        if (status != NLS_OK) break;
        *at.target++ = none ? '?' : character.entry;
        at.source += character.length;
    }
    walk = at;
    return status;
}

// Blocks until one is odd, or text or room run short.
void fromUtf8Wide(CpuLevel level, const SbcsPages& pages, BridgeWalk& walk) {
    if (level >= CpuLevel::avx512)
        fromUtf8Avx512(pages, walk);
    else if (level >= CpuLevel::avx2 && walk.left() >= 128)
        fromUtf8Avx2(pages, walk);
}

nlsStatus fromUtf8Baseline(const SbcsPages& pages, BridgeWalk& walk) {
    const bool ascii = walk.left() >= 64 && keepsAscii(pages);
    while (walk.source != walk.sourceEnd) {
        if (ascii) copyAscii(walk);
        if (const nlsStatus status = fromUtf8Plain(pages, walk, ascii ? 16 : walk.left())) return status;
    }
    return NLS_OK;
}

nlsStatus fromUtf8(const SbcsPages& pages, BridgeWalk& walk) {
    const CpuLevel level = cpuLevel();
    if (level == CpuLevel::baseline) return fromUtf8Baseline(pages, walk);
    for (;;) {
        fromUtf8Wide(level, pages, walk);
        if (walk.source == walk.sourceEnd) return NLS_OK;
        if (const nlsStatus status = fromUtf8Plain(pages, walk, 64)) return status;
    }
}

}  // namespace

// Below these sizes, taking a table apart for wide look-ups takes longer than the walk by words.
constexpr std::size_t kWorthPlanes = 48, kWorthRows = 160;

Converted sbcsToUtf8(const SbcsWords& words, ByteView source, ByteSpan target) {
    if (source.empty()) return {NLS_OK, 0};
    if (target.empty()) return {NLS_BUF_SMALL, 0};
    const bool endsWithNul = source.back() == 0;  // before a character that is converted in place is overwritten
    BridgeWalk walk{source.data(), source.data() + source.size(), target.data(), target.data() + target.size()};
    const CpuLevel level = cpuLevel();
    if (level >= CpuLevel::avx512 && source.size() >= kWorthPlanes)
        toUtf8Avx512(words, walk);
    else if (level >= CpuLevel::avx2 && source.size() >= kWorthRows)
        toUtf8Avx2(words, walk);
    toUtf8Baseline(words, walk);
    writeForms(words, walk);
    if (walk.source != walk.sourceEnd) return overflowEnding(walk, target);
    if (endsWithNul && walk.target[-1] != 0) return overflowEnding(walk, target);
    return {NLS_OK, lengthOf(walk, target)};
}

Converted utf8ToSbcs(const SbcsPages& pages, ByteView source, ByteSpan target) {
    BridgeWalk walk{source.data(), source.data() + source.size(), target.data(), target.data() + target.size()};
    const nlsStatus status = fromUtf8(pages, walk);
    if (status != NLS_OK) return {status, lengthOf(walk, target)};
    return {walk.substituted ? NLS_CONV_SUBST : NLS_OK, lengthOf(walk, target)};
}

}  // namespace nls
