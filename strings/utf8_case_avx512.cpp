#include "strings/utf8_case.hpp"
#include "strings/utf8_case_block_avx512.hpp"

namespace nls {
namespace {

// Maps what it can at the front of `size` bytes, 1 to 64, and returns how many they are.
NLS_TARGET_AVX512 inline unsigned mapInto(Rows& rows, CaseForm form, const unsigned char* source, unsigned size,
                                          unsigned char* target) {
    const Mapped mapped = mapBlock(rows, form, source, _mm512_maskz_loadu_epi8(_bzhi_u64(~0ULL, size), source), size);
    _mm512_mask_storeu_epi8(target, _bzhi_u64(~0ULL, mapped.whole), mapped.bytes);
    return mapped.whole;
}

}  // namespace

NLS_TARGET_AVX512 bool hasUsualUtf8CaseAvx512(const nlsAttribStruct& attrib, const nlsUnicodeCaseStruct& table,
                                              CaseForm form) {
    return hasUsualUtf8Case(attrib, table, form);
}

NLS_TARGET_AVX512 std::size_t mapUtf8CaseAvx512(const uint16_t* const (&pages)[kCasePages], CaseForm form,
                                                const unsigned char* source, std::size_t count, unsigned char* target) {
    Rows rows{pages, form};
    constexpr unsigned kLongestCut = 3;  // bytes of a character that the end of a block cuts short
    std::size_t done = 0;
    while (done != count) {
        const unsigned size = count - done < kCaseBlock ? static_cast<unsigned>(count - done) : kCaseBlock;
        const unsigned mapped = mapInto(rows, form, source + done, size, target + done);
        done += mapped;
        if (mapped == 0 || mapped + kLongestCut < size) break;
    }
    return done;
}

}  // namespace nls
