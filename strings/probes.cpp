#include "strings/probes.hpp"

#include <emmintrin.h>

#include <algorithm>

#include "collation/equal_run.hpp"
#include "core/base/cpu.hpp"

namespace nls {
namespace {

constexpr std::size_t kLanes = 16, kBlockBytes = 64;

NLS_BLOCKS_INLINE inline __m128i loadLanes(const unsigned char* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}

struct ClassInLanes {
    __m128i value[ByteClass::kMost];

    explicit ClassInLanes(const ByteClass& one) {
        for (unsigned i = 0; i < ByteClass::kMost; ++i) value[i] = _mm_set1_epi8(static_cast<char>(one.at(i)));
    }
};

template <unsigned Values>
__m128i hitsOf(const ClassInLanes& lanes, __m128i bytes) {
    __m128i equal = _mm_cmpeq_epi8(bytes, lanes.value[0]);
    for (unsigned i = 1; i < Values; ++i) equal = _mm_or_si128(equal, _mm_cmpeq_epi8(bytes, lanes.value[i]));
    return equal;
}

struct BlockHits {
    std::uint64_t hits, nul;
};

// Goes on to the first block with a hit or a NUL, and no farther than `last`. `block`: where to begin, and that block.
// Each class is filled up to `Values` of them.
template <unsigned Probed, unsigned Values>
NLS_READS_WHOLE_BLOCKS BlockHits scanOn(const Probes& probes, const unsigned char*& block, const unsigned char* last) {
    constexpr unsigned kParts = kBlockBytes / kLanes;
    const ClassInLanes first{probes.first}, second{probes.second}, middle{probes.middle};
    const std::size_t distance = probes.distance, back = probes.back;
    const __m128i zero = _mm_setzero_si128();
    for (const unsigned char* place = block;; place += kBlockBytes) {
        __m128i hits[kParts], bytes[kParts];
        for (unsigned i = 0; i < kParts; ++i) {
            const unsigned char* const part = place + i * kLanes;
            bytes[i] = loadLanes(part);
            hits[i] = hitsOf<Values>(first, Probed == 1 ? bytes[i] : loadLanes(part - distance));
            if constexpr (Probed > 1) hits[i] = _mm_and_si128(hits[i], hitsOf<Values>(second, bytes[i]));
            if constexpr (Probed > 2) hits[i] = _mm_and_si128(hits[i], hitsOf<Values>(middle, loadLanes(part - back)));
        }
        const __m128i any = _mm_or_si128(_mm_or_si128(hits[0], hits[1]), _mm_or_si128(hits[2], hits[3]));
        const __m128i least = _mm_min_epu8(_mm_min_epu8(bytes[0], bytes[1]), _mm_min_epu8(bytes[2], bytes[3]));
        if (_mm_movemask_epi8(_mm_or_si128(any, _mm_cmpeq_epi8(least, zero))) == 0 && place != last) continue;
        block = place;
        BlockHits found{0, 0};
        for (unsigned i = 0; i < kParts; ++i) {
            const auto bits = [&](__m128i lanes) {
                return std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(lanes))} << i * kLanes;
            };
            found.hits |= bits(hits[i]);
            found.nul |= bits(_mm_cmpeq_epi8(bytes[i], zero));
        }
        return found;
    }
}

template <unsigned Probed>
BlockHits scanFor(const Probes& probes, const unsigned char*& block, const unsigned char* last) {
    const unsigned values = std::max({probes.first.count(), probes.second.count(), probes.middle.count()});
    if (values <= 1) return scanOn<Probed, 1>(probes, block, last);
    if (values == 2) return scanOn<Probed, 2>(probes, block, last);
    return scanOn<Probed, ByteClass::kMost>(probes, block, last);
}

}  // namespace

bool ProbeScan::take(std::uint64_t hits, std::uint64_t nul) {
    block_ = next_;
    next_ += kBlock;
    if (end_ == nullptr && nul != 0) end_ = block_ + __builtin_ctzll(nul);
    if (end_ != nullptr && end_ - block_ <= static_cast<std::ptrdiff_t>(kBlock)) {
        next_ = nullptr;
        const auto left = static_cast<std::size_t>(end_ - block_);
        if (left < kBlock) hits &= (std::uint64_t{1} << left) - 1;
    }
    hits_ = hits;
    return hits != 0 || next_ == nullptr;
}

bool ProbeScan::refill() {
    while (hits_ == 0 && next_ != nullptr) {
        if (cpuLevel() >= CpuLevel::avx512)
            scanAvx512();
        else
            scanPlain();
    }
    return hits_ != 0;
}

NLS_READS_WHOLE_BLOCKS void ProbeScan::scanPlain() {
    // The first blocks by bytes: in front of the floor nothing may be read.
    while (next_ < floor_ + probes_.distance) {
        BlockHits found{0, 0};
        for (unsigned i = next_ < floor_ ? static_cast<unsigned>(floor_ - next_) : 0; i < kBlock; ++i) {
            const unsigned char* const place = next_ + i;
            if (place == end_ || *place == 0) {
                found.nul = std::uint64_t{1} << i;
                break;
            }
            const bool inside = place - floor_ >= static_cast<std::ptrdiff_t>(probes_.distance);
            const bool hit = inside && probes_.first.has(place[-static_cast<std::ptrdiff_t>(probes_.distance)]) &&
                             probes_.second.has(*place);
            found.hits |= std::uint64_t{hit} << i;
        }
        if (take(found.hits, found.nul)) return;
    }
    const unsigned char* const last = lastBlock();
    BlockHits found;
    if (probes_.distance == 0)
        found = scanFor<1>(probes_, next_, last);
    else if (probes_.middle.isAny())
        found = scanFor<2>(probes_, next_, last);
    else
        found = scanFor<3>(probes_, next_, last);
    take(found.hits, found.nul);
}

}  // namespace nls
