#include <algorithm>

#include "collation/equal_run.hpp"
#include "collation/weight_rows_avx512.hpp"
#include "strings/probes.hpp"

namespace nls {
namespace {

constexpr std::size_t kBlockBytes = 64;

struct ClassInLanes {
    __m512i value[ByteClass::kMost];
};

NLS_TARGET_AVX512 inline ClassInLanes lanesOf(const ByteClass& one) {
    ClassInLanes lanes;
    for (unsigned i = 0; i < ByteClass::kMost; ++i) lanes.value[i] = _mm512_set1_epi8(static_cast<char>(one.at(i)));
    return lanes;
}

template <unsigned Count>
NLS_TARGET_AVX512 inline __mmask64 hitsOf(const ClassInLanes& lanes, __m512i bytes, __mmask64 among = ~__mmask64{0}) {
    __mmask64 equal = _mm512_mask_cmpeq_epi8_mask(among, bytes, lanes.value[0]);
    for (unsigned i = 1; i < Count; ++i) equal |= _mm512_mask_cmpeq_epi8_mask(among, bytes, lanes.value[i]);
    return equal;
}

struct BlockHits {
    std::uint64_t hits, nul;
};

// A block of which the bytes in front of `floor` can't be read.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS BlockHits scanFirst(const Probes& probes, const unsigned char* block,
                                                             const unsigned char* floor) {
    const std::size_t distance = probes.distance;
    const ClassInLanes first = lanesOf(probes.first), second = lanesOf(probes.second);
    const auto lanesFrom = [](std::ptrdiff_t lane) {
        return lane <= 0 ? ~__mmask64{0} : lane >= std::ptrdiff_t{kBlockBytes} ? __mmask64{0} : ~__mmask64{0} << lane;
    };
    const __mmask64 own = lanesFrom(floor - block);
    const __mmask64 earlier = lanesFrom(floor - block + static_cast<std::ptrdiff_t>(distance));
    const __m512i bytes = _mm512_maskz_loadu_epi8(own, block);
    const __m512i before = _mm512_maskz_loadu_epi8(earlier, block - distance);
    __mmask64 hits = earlier & hitsOf<ByteClass::kMost>(first, before);
    if (distance != 0) hits &= hitsOf<ByteClass::kMost>(second, bytes);
    return {hits, _mm512_mask_testn_epi8_mask(own, bytes, bytes)};
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS std::uint64_t hitsAt(const ByteClass& one, const unsigned char* block) {
    return hitsOf<ByteClass::kMost>(lanesOf(one), _mm512_loadu_si512(block));
}

// Goes on to the first block with a hit or a NUL, and no farther than `last`. `block`: where to begin, and that block.
// The probes are looked for at once: a branch on each would be foretold wrong too often. Each class is filled up to
// `Values` of them.
template <unsigned Probed, unsigned Values>
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS BlockHits scanOn(const Probes& probes, const unsigned char*& block,
                                                          const unsigned char* last) {
    const ClassInLanes first = lanesOf(probes.first), second = lanesOf(probes.second), middle = lanesOf(probes.middle);
    const std::size_t distance = probes.distance, back = probes.back;
    for (const unsigned char* place = block;; place += kBlockBytes) {
        const __m512i bytes = _mm512_load_si512(place);
        __mmask64 hits = hitsOf<Values>(first, Probed == 1 ? bytes : _mm512_loadu_si512(place - distance));
        if constexpr (Probed > 1) hits = hitsOf<Values>(second, bytes, hits);
        if constexpr (Probed > 2) hits = hitsOf<Values>(middle, _mm512_loadu_si512(place - back), hits);
        const __mmask64 nul = _mm512_testn_epi8_mask(bytes, bytes);
        if ((hits | nul) == 0 && place != last) continue;
        block = place;
        return {hits, nul};
    }
}

template <unsigned Probed>
NLS_TARGET_AVX512 BlockHits scanFor(const Probes& probes, const unsigned char*& block, const unsigned char* last) {
    const unsigned values = std::max({probes.first.count(), probes.second.count(), probes.middle.count()});
    if (values <= 1) return scanOn<Probed, 1>(probes, block, last);
    if (values == 2) return scanOn<Probed, 2>(probes, block, last);
    return scanOn<Probed, ByteClass::kMost>(probes, block, last);
}

}  // namespace

NLS_TARGET_AVX512 void ProbeScan::scanAvx512() {
    while (next_ < floor_ + probes_.distance) {
        const BlockHits found = scanFirst(probes_, next_, floor_);
        if (take(found.hits, found.nul)) return;
    }
    const unsigned char* const last = lastBlock();
    BlockHits found;
    if (probes_.distance == 0)
        found = scanFor<1>(probes_, next_, last);
    else if (probes_.middle.isAny() || !middleIsWorthIt())
        found = scanFor<2>(probes_, next_, last);
    else
        found = scanFor<3>(probes_, next_, last);
    if (found.hits != 0 && !probes_.middle.isAny()) {
        found.hits &= hitsAt(probes_.middle, next_ - probes_.back);
        ++stops_;
    }
    take(found.hits, found.nul);
}

}  // namespace nls
