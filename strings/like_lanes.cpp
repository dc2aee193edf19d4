// As strings/like_lanes_avx512.cpp does it, on a copy of the text and 16 bytes at once; weights and forms are looked up
// one by one.
#include "strings/like_lanes.hpp"

#include "strings/like_follow.hpp"
#include "strings/short_keys.hpp"

namespace nls {
namespace {

using like::Characters;

// One behind the other, and then the NUL.
Characters charactersOf(const ShortText& text) {
    const std::uint64_t all = firstBits(text.length);
    return {text.length, text.starts | (all + 1), all & ~text.starts};
}

// Bytes that are characters of regular UTF-8.
bool readUtf8(const Charset& charset, ShortText& text) {
    const ByteBlock block{text.bytes};
    const Utf8Block shape = readUtf8Block(block);
    text.starts = firstBits(text.length) & shape.starts;
    return shape.plain && charset.hasSingleByteAscii() && (block.high() == 0 || hasUsualLengths(charset));
}

}  // namespace

LikeAnswer matchPairsPlain(const Charset& charset, WeightMap weights, const LikeSigns& signs,
                           const unsigned char* pattern, const unsigned char* text) {
    ShortText copy;
    copyShort(text, copy);
    if (!copy.isWhole()) return LikeAnswer::unknown;
    const ByteBlock bytes{copy.bytes};
    if (!WeightKeys{charset, weights}.make(copy)) return LikeAnswer::unknown;
    const like::Pairs<ByteBlock> pairs{charactersOf(copy), charset, weights, bytes, ByteBlock{copy.bytes}, copy.longer};
    if ((bytes.equal(' ') & pairs.characters.trails) != 0) return LikeAnswer::unknown;  // may end a character
    return like::follow(pairs, charset, signs, pattern);
}

LikeAnswer matchUtf8Plain(const Charset& charset, const nlsUnicodeCaseStruct* table, const LikeSigns& signs,
                          const unsigned char* pattern, const unsigned char* text) {
    ShortText copy;
    copyShort(text, copy);
    if (!copy.isWhole()) return LikeAnswer::unknown;
    const bool hasKeys =
        table == nullptr ? readUtf8(charset, copy) : LowerFormKeys{charset.attrib(), table->casePages}.make(copy);
    if (!hasKeys) return LikeAnswer::unknown;
    const like::Utf8<ByteBlock> utf8{charactersOf(copy), charset, table, ByteBlock{copy.bytes}};
    return like::follow(utf8, charset, signs, pattern);
}

}  // namespace nls
