// One walk by trail counts, which takes 64 bytes at once where the charset's table and the text allow it: whole blocks
// of ASCII, and in UTF-8 whole blocks of plain characters. The table is looked through first, since any table is legal;
// that costs as much as some ten characters, so text of less than a block goes character by character.
#include "strings/counting.hpp"

#include <algorithm>

#include "nls/status.h"
#include "strings/str_record.hpp"
#include "strings/stride.hpp"

namespace nls {
namespace {

// Counts characters from a place on, up to a limit of them or the end of the text.
class CharWalk {
public:
    CharWalk(const Charset& charset, ByteView text)
        : charset_(charset), stride_(strideOf(charset, text.size())), pos_(text.data()), end_(pos_ + text.size()) {}

    // NLS_OK at the limit or the end, NLS_PARTIAL_CHAR in front of a character that runs past the end.
    nlsStatus run(uint32_t limit) {
        if (stride_ == Stride::byte) return takeBytes(limit);
        while (pos_ != end_ && chars_ != limit) {
            if (stride_ != Stride::character && takeNextBlock(limit)) continue;
            const unsigned char* const pause = pos_ + std::min<std::size_t>(left(), blockSize);
            while (pos_ < pause && chars_ != limit) {
                if (!takeChar()) return NLS_PARTIAL_CHAR;
            }
        }
        return NLS_OK;
    }
    uint32_t chars() const { return chars_; }
    const unsigned char* place() const { return pos_; }

private:
    std::size_t left() const { return static_cast<std::size_t>(end_ - pos_); }

    nlsStatus takeBytes(uint32_t limit) {
        const std::size_t count = std::min<std::size_t>(left(), limit);
        pos_ += count;
        chars_ += static_cast<uint32_t>(count);
        return NLS_OK;
    }
    bool takeChar() {
        const std::size_t length = charset_.trailCount(*pos_) + std::size_t{1};
        if (length > left()) return false;
        pos_ += length;
        ++chars_;
        return true;
    }
    // False, and nothing taken, for a block that isn't plain or holds more characters than the limit allows.
    bool takeNextBlock(uint32_t limit) {
        if (left() >= blockSize) return takeBlock(blockAt(stride_, ByteBlock{pos_}), limit);
        return takeBlock(lastBlock(stride_, ByteBlock::padded(pos_, left()), left()), limit);
    }
    bool takeBlock(const Utf8Block& block, uint32_t limit) {
        if (!block.plain) return false;
        const unsigned chars = bitCount(block.starts);
        if (chars > limit - chars_) return false;
        pos_ += block.bytes;
        chars_ += chars;
        return true;
    }

    Charset charset_;
    Stride stride_;
    const unsigned char* pos_;
    const unsigned char* end_;
    uint32_t chars_ = 0;
};

// Columns of U+F000 to U+FFFF by the second and third byte: the byte-order mark none; half-width and Arabic forms one.
uint32_t columnsAfterEf(unsigned b1, unsigned b2) {
    if (b1 <= 0xB9) return 2;
    switch (b1) {
        case 0xBB:
            return b2 == 0xBF ? 0 : 1;
        case 0xBC:
            return b2 >= 0x80 && b2 <= 0xBF ? 2 : 1;
        case 0xBD:
            return b2 >= 0x80 && b2 <= 0x9F ? 2 : 1;
        case 0xBF:
            return b2 >= 0x9D && b2 <= 0xA7 ? 2 : 1;
        default:
            return 1;
    }
}

// Columns of U+0800 to U+0FFF: the Thai vowels and marks above and below the line fill none.
uint32_t columnsAfterE0(unsigned b1, unsigned b2) {
    if (b1 == 0xB8) return b2 == 0xB1 || (b2 >= 0xB4 && b2 <= 0xBA) ? 0 : 1;
    if (b1 == 0xB9) return b2 >= 0x87 && b2 <= 0x8E ? 0 : 1;
    return 1;
}

// Columns of a UTF-8 character of more than one byte; a NUL in it is the last byte looked at.
uint32_t utf8Columns(const unsigned char* place) {
    const unsigned b0 = place[0];
    if (b0 != 0xEF && b0 != 0xE0) return b0 > 0xE2 ? 2 : 1;
    const unsigned b1 = place[1];
    const unsigned b2 = b1 != 0 ? place[2] : 0;
    return b0 == 0xEF ? columnsAfterEf(b1, b2) : columnsAfterE0(b1, b2);
}

uint32_t columnsOf(const Charset& charset, const unsigned char* place) {
    if (charset.trailCount(*place) == 0) return 1;
    if (charset.isUtf8()) return utf8Columns(place);
    return charset.oneColumn(*place) ? 1 : 2;
}

// Columns of a plain block: one a character, one more from E3 on; the characters of E0 and EF are looked at one by one.
uint32_t blockColumns(const Utf8Block& block, const ByteBlock& bytes, const unsigned char* place) {
    const uint64_t wide = block.starts & bytes.high() & ~bytes.highBelow(0xE3);
    const uint64_t special = block.starts & (bytes.equal(0xE0) | bytes.equal(0xEF));
    uint32_t columns = bitCount(block.starts & ~special) + bitCount(wide & ~special);
    for (uint64_t rest = special; rest != 0; rest &= rest - 1) columns += utf8Columns(place + __builtin_ctzll(rest));
    return columns;
}

}  // namespace

Counted countChars(const Charset& charset, ByteView text) {
    if (!charset.isMultiByte()) return {NLS_OK, static_cast<uint32_t>(text.size())};
    if (text.empty()) return {NLS_PARTIAL_CHAR, 0};
    CharWalk walk{charset, text};
    const nlsStatus status = walk.run(UINT32_MAX);
    return {status, walk.chars()};
}

Counted countBytes(const Charset& charset, const unsigned char* text, int32_t charCount) {
    if (charCount < 1) return {NLS_OK, 0};
    // A character takes at most eight bytes, so the text matters no farther than that.
    const std::size_t length = boundedLength(text, int64_t{charCount} * 8);
    const auto limit = static_cast<uint32_t>(charCount);
    if (limit > length) return {NLS_OK, static_cast<uint32_t>(length)};
    CharWalk walk{charset, ByteView{text, length}};
    const nlsStatus status = walk.run(limit);
    return {status, static_cast<uint32_t>(walk.place() - text)};
}

WholeCharacters wholeCharacters(const Charset& charset, ByteView text) {
    CharWalk walk{charset, text};
    (void)walk.run(UINT32_MAX);
    return {walk.chars(), static_cast<std::size_t>(walk.place() - text.data())};
}

uint32_t countColumns(const Charset& charset, ByteView span) {
    const Stride stride = strideOf(charset, span.size());
    if (stride == Stride::byte) return static_cast<uint32_t>(span.size());
    uint32_t columns = 0;
    std::size_t pos = 0;
    while (pos < span.size()) {
        const unsigned char* const place = span.data() + pos;
        if (stride != Stride::character && span.size() - pos >= blockSize) {
            const ByteBlock bytes{place};
            const Utf8Block block = blockAt(stride, bytes);
            if (block.plain) {
                columns += blockColumns(block, bytes, place);
                pos += block.bytes;
                continue;
            }
        }
        const std::size_t pause = std::min(span.size(), pos + blockSize);
        for (; pos < pause; pos += charset.trailCount(span[pos]) + std::size_t{1}) {
            columns += columnsOf(charset, span.data() + pos);
        }
    }
    return columns;
}

}  // namespace nls
