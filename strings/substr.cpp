#include "strings/substr.hpp"

#include <algorithm>

#include "chars/stepping.hpp"
#include "nls/status.h"
#include "strings/counting.hpp"
#include "strings/str_record.hpp"

namespace nls {
namespace {

bool beginsCharacter(const Charset& charset, const unsigned char* place, const unsigned char* text) {
    return charset.isUtf8() ? (*place & 0xC0U) != 0x80U : isFirstByte(charset, place, text);
}

}  // namespace

Cut cutCharacters(const Charset& charset, const unsigned char* text, int32_t start, int32_t byteCount) {
    // The text matters as far as the span reaches, and that is as far as either number.
    const int64_t before = int64_t{start} - 1;
    const auto length = static_cast<int64_t>(boundedLength(text, before + std::max(byteCount, 1)));
    if (start < 1 || start > length || byteCount > length) return {NLS_BAD_ARG, {}, 0};
    const unsigned char* place = text + before;
    const unsigned char* const end = text + std::clamp(before + byteCount, before, length);
    while (place != end && !beginsCharacter(charset, place, text)) ++place;
    const ByteView span{place, end};
    const WholeCharacters whole = wholeCharacters(charset, span);
    return {NLS_OK, span.first(whole.bytes), whole.chars};
}

}  // namespace nls
