#include "strings/probes.hpp"

#include <emmintrin.h>

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
    bool few;

    explicit ClassInLanes(const ByteClass& one) : few(one.count() <= 2) {
        for (unsigned i = 0; i < ByteClass::kMost; ++i) value[i] = _mm_set1_epi8(static_cast<char>(one.at(i)));
    }
    __m128i hits(__m128i bytes) const {
        const __m128i equal = _mm_or_si128(_mm_cmpeq_epi8(bytes, value[0]), _mm_cmpeq_epi8(bytes, value[1]));
        if (few) return equal;
        return _mm_or_si128(equal, _mm_or_si128(_mm_cmpeq_epi8(bytes, value[2]), _mm_cmpeq_epi8(bytes, value[3])));
    }
};

struct BlockHits {
    std::uint64_t hits, nul;
};

NLS_BLOCKS_INLINE inline std::uint64_t hitsIn(const ClassInLanes& one, const unsigned char* block) {
    std::uint64_t found = 0;
    for (unsigned i = 0; i < kBlockBytes; i += kLanes)
        found |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(one.hits(loadLanes(block + i))))} << i;
    return found;
}

NLS_READS_WHOLE_BLOCKS BlockHits scanBlock(const ClassInLanes& first, const ClassInLanes& second,
                                           const ClassInLanes& middle, const unsigned char* block,
                                           const Probes& probes) {
    BlockHits found{0, 0};
    for (unsigned i = 0; i < kBlockBytes; i += kLanes) {
        const __m128i bytes = loadLanes(block + i);
        const __m128i hits = probes.distance == 0 ? first.hits(bytes)
                                                  : _mm_and_si128(second.hits(bytes),
                                                                  first.hits(loadLanes(block + i - probes.distance)));
        const auto bits = [&](__m128i lanes) {
            return std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(lanes))} << i;
        };
        found.hits |= bits(hits);
        found.nul |= bits(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
    }
    if (found.hits != 0 && !probes.middle.isAny()) found.hits &= hitsIn(middle, block - probes.back);
    return found;
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
    const ClassInLanes first{probes_.first}, second{probes_.second}, middle{probes_.middle};
    BlockHits found;
    do {
        found = scanBlock(first, second, middle, next_, probes_);
    } while (!take(found.hits, found.nul));
}

}  // namespace nls
