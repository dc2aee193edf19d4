// Views on bytes: a pointer and its end travel together from the door inwards.
//
// ByteView reads, ByteSpan writes. ByteReader and ByteWriter are cursors that know their room: the writer answers
// "full" instead of overrunning, so that room is checked in one place. Tested by tests/core/base_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace nls {

using ByteView = std::span<const unsigned char>;
using ByteSpan = std::span<unsigned char>;

// A view of `count` bytes as the interface counts them: signed, and nothing for a count below 1.
inline ByteView firstBytes(const unsigned char* start, int32_t count) {
    return count > 0 ? ByteView{start, static_cast<std::size_t>(count)} : ByteView{};
}
inline ByteSpan firstBytes(unsigned char* start, int32_t count) {
    return count > 0 ? ByteSpan{start, static_cast<std::size_t>(count)} : ByteSpan{};
}

// The bytes before the NUL.
inline ByteView untilNul(const unsigned char* text) {
    return {text, std::strlen(reinterpret_cast<const char*>(text))};
}

class ByteReader {
public:
    explicit ByteReader(ByteView bytes) : pos_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    bool atEnd() const { return pos_ == end_; }
    std::size_t left() const { return static_cast<std::size_t>(end_ - pos_); }
    const unsigned char* place() const { return pos_; }

    // REQUIRES: offset < left(), and count <= left().
    unsigned char peek(std::size_t offset = 0) const { return pos_[offset]; }
    unsigned char next() { return *pos_++; }
    void skip(std::size_t count) { pos_ += count; }

private:
    const unsigned char* pos_;
    const unsigned char* end_;
};

class ByteWriter {
public:
    explicit ByteWriter(ByteSpan room) : start_(room.data()), pos_(start_), end_(start_ + room.size()) {}

    std::size_t room() const { return static_cast<std::size_t>(end_ - pos_); }
    std::size_t written() const { return static_cast<std::size_t>(pos_ - start_); }
    unsigned char* place() const { return pos_; }

    // False, and nothing written, when the room is used up.
    bool put(unsigned char byte) {
        if (pos_ == end_) return false;
        *pos_++ = byte;
        return true;
    }
    bool put(const unsigned char* bytes, std::size_t count) {
        if (count > room()) return false;
        std::memcpy(pos_, bytes, count);
        pos_ += count;
        return true;
    }
    // REQUIRES: count <= room(), and those bytes have been written through place().
    void advance(std::size_t count) { pos_ += count; }

private:
    unsigned char* start_;
    unsigned char* pos_;
    unsigned char* end_;
};

// Words at any address, in the byte order of the machine.
template <typename Word>
inline Word loadWord(const void* place) {
    Word word;
    std::memcpy(&word, place, sizeof word);
    return word;
}
template <typename Word>
inline void storeWord(void* place, Word word) {
    std::memcpy(place, &word, sizeof word);
}

}  // namespace nls
