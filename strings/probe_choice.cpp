#include "strings/probe_choice.hpp"

#include <emmintrin.h>

namespace nls {
namespace {

// The bytes that have an entry, by blocks of the map.
ByteClass bytesOfEntry(WeightMap weights, unsigned char entry) {
    constexpr unsigned kLanes = 16, kBytes = 256;
    const __m128i wanted = _mm_set1_epi8(static_cast<char>(entry));
    ByteClass found = ByteClass::none();
    for (unsigned base = 0; base < kBytes; base += kLanes) {
        const __m128i entries = _mm_loadu_si128(reinterpret_cast<const __m128i*>(weights.entries() + base));
        auto equal = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(entries, wanted)));
        for (; equal != 0; equal &= equal - 1)
            found.add(static_cast<unsigned char>(base + static_cast<unsigned>(__builtin_ctz(equal))));
    }
    return found;
}

ByteClass only(unsigned char byte) {
    ByteClass one = ByteClass::none();
    one.add(byte);
    return one;
}

// The last bytes of the first character, of the last one and of one about halfway between; without those that have too
// many values.
template <typename Rule, typename LastByte>
Probes atBothEnds(const Rule& rule, ByteView pattern, LastByte lastByteOf) {
    const unsigned char *const start = pattern.data(), *const end = start + pattern.size();
    const unsigned char *const second = rule.next(start), *const half = second + (end - second) / 2;
    const unsigned char *last = nullptr, *middle = nullptr;
    for (const unsigned char* p = second; p != end; p = rule.next(p)) {
        last = p;
        if (p < half) middle = p;
    }
    Probes probes{lastByteOf(start), ByteClass::any(), 0, ByteClass::any(), 0};
    if (last != nullptr) probes.addSecond(lastByteOf(last), static_cast<std::size_t>(end - second));
    if (middle != nullptr && middle != last)
        probes.addMiddle(lastByteOf(middle), static_cast<std::size_t>(rule.next(middle) - second));
    return probes;
}

// The characters that fold to one.
struct Variants {
    ByteClass lastBytes;
    std::size_t length;  // 0: not all the same
};

// REQUIRES: a multiple of eight entries.
bool holds(const uint16_t* entries, unsigned count, uint16_t wanted) {
    constexpr unsigned kEntries = 8;
    const __m128i lanes = _mm_set1_epi16(static_cast<short>(wanted));
    __m128i any = _mm_setzero_si128();
    for (unsigned i = 0; i < count; i += kEntries)
        any = _mm_or_si128(any, _mm_cmpeq_epi16(lanes, _mm_loadu_si128(reinterpret_cast<const __m128i*>(entries + i))));
    return _mm_movemask_epi8(any) != 0;
}

// Broken characters can land on any page, with bit 7 of the last byte either way.
Variants variantsOf(const FoldRule& rule, const unsigned char* place) {
    const nlsLChar lower = rule.lowerForm(rule.read(place));
    if (lower == rule.lowerForm('?')) return {ByteClass::any(), 0};  // characters of five bytes and more
    constexpr unsigned kLowBits = 0x7F, kHighBit = 0x80;
    Variants found{ByteClass::none(), static_cast<std::size_t>(rule.next(place) - place)};
    found.lastBytes.add(static_cast<unsigned char>(lower));
    found.lastBytes.add(static_cast<unsigned char>(rule.read(place)));
    const bool isShort = caseTopOf(lower) == 0;
    if (isShort && (lower < 0x100 ? 1U : 2U) != found.length) found.length = 0;
    const auto entry = static_cast<uint16_t>(lower);
    if (rule.table() == nullptr) return found;
    const auto& pages = rule.table()->casePages;
    for (unsigned page = 0; page < kCasePages; ++page) {
        if (pages[page] == kNoCasePage) continue;
        const unsigned half = entriesOfCasePage(page) / 2;
        if (!holds(pages[page] + half, half, entry)) continue;
        for (unsigned i = 0; i < half; ++i) {
            if (pages[page][half + i] != entry) continue;
            found.lastBytes.add(static_cast<unsigned char>(i & kLowBits));
            found.lastBytes.add(static_cast<unsigned char>((i & kLowBits) | kHighBit));
            if (isShort && (page == 0 ? 1U : 2U) != found.length) found.length = 0;
        }
    }
    return found;
}

}  // namespace

Probes probesOf(const ByteRule& rule, ByteView pattern) {
    return atBothEnds(rule, pattern, [&](const unsigned char* place) {
        return bytesOfEntry(rule.weights(), rule.weights().entry(*place));
    });
}

Probes probesOf(const PairRule& rule, ByteView pattern) {
    return atBothEnds(rule, pattern, [&](const unsigned char* place) {
        const bool single = rule.next(place) == place + 1;
        return single ? bytesOfEntry(rule.weights(), rule.weights().entry(*place)) : only(place[1]);
    });
}

Probes probesOf(const ExactRule& rule, ByteView pattern) {
    return atBothEnds(rule, pattern, [&](const unsigned char* place) { return only(rule.next(place)[-1]); });
}

Probes probesOf(const FoldRule& rule, ByteView pattern) {
    constexpr unsigned kFarthest = 3;  // looking for forms takes time
    const unsigned char *const end = pattern.data() + pattern.size(), *place = rule.next(pattern.data());
    Probes probes{variantsOf(rule, pattern.data()).lastBytes, ByteClass::any(), 0, ByteClass::any(), 0};
    if (probes.first.isAny()) return probes;
    std::size_t distance = 0;
    for (unsigned i = 0; i < kFarthest && place != end; ++i, place = rule.next(place)) {
        const Variants variants = variantsOf(rule, place);
        if (variants.length == 0) break;
        distance += variants.length;
        probes.addSecond(variants.lastBytes, distance);
    }
    return probes;
}

}  // namespace nls
