// Where in a text can a match stand? Bytes of it are looked for at their distances, in blocks: each may have a few
// values. What is found is a superset of the matches.
//
// The end of the text is found on the way: blocks of 64 bytes are read where 64 divides their address, so that the last
// of them reaches behind the NUL but not into another page. Tested by tests/strings/search_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nls {

// A few byte values, or all of them.
class ByteClass {
public:
    static constexpr unsigned kMost = 4;

    static ByteClass any() { return ByteClass{}; }
    static ByteClass none() {
        ByteClass made;
        made.isAny_ = false;
        return made;
    }
    // Becomes all values where they are too many.
    void add(unsigned char value) {
        if (isAny_ || has(value)) return;
        if (count_ == kMost)
            isAny_ = true;
        else
            values_[count_++] = value;
    }

    bool isAny() const { return isAny_; }
    unsigned count() const { return count_; }
    // The values, the first of them repeated to fill all places.
    unsigned char at(unsigned i) const { return values_[i < count_ ? i : 0]; }
    bool has(unsigned char value) const {
        bool found = isAny_;
        for (unsigned i = 0; i < count_; ++i) found |= values_[i] == value;
        return found;
    }

private:
    bool isAny_ = true;
    unsigned char values_[kMost] = {};
    unsigned count_ = 0;
};

// `first` is that of the last byte of the match's first character, `second` stands `distance` bytes behind it, and
// `middle` `back` bytes in front of `second`. With a distance of 0 there is `first` alone; where that is any, there is
// nothing to look for.
struct Probes {
    ByteClass first, second;
    std::size_t distance;
    ByteClass middle;
    std::size_t back;

    // A class of all values is left out. REQUIRES: `from` bytes behind the first, and behind those added before.
    void addSecond(const ByteClass& added, std::size_t from) {
        if (added.isAny()) return;
        middle = second;
        back = from - distance;
        second = added;
        distance = from;
    }
    // The same in front of the second, if there is one.
    void addMiddle(const ByteClass& added, std::size_t from) {
        if (distance == 0) return addSecond(added, from);
        middle = added;
        back = distance - from;
    }
};

// Goes through the places of a text at which the first byte may stand.
class ProbeScan {
public:
    // `end` of the text; null: at its NUL. REQUIRES: the first class isn't any, and the second only without a distance.
    ProbeScan(const Probes& probes, const unsigned char* text, const unsigned char* end) : probes_(probes), end_(end) {
        moveTo(text);
    }

    // Leaves out what comes in front of `place`, if that saves anything.
    void skipTo(const unsigned char* place) {
        if (next_ != nullptr && place >= next_) moveTo(place);
    }
    // Null: no more.
    const unsigned char* next() {
        if (hits_ == 0 && !refill()) return nullptr;
        const unsigned char* const place = block_ + __builtin_ctzll(hits_) - probes_.distance;
        hits_ &= hits_ - 1;
        return place;
    }
    // Of the text; null while it isn't known.
    const unsigned char* end() const { return end_; }

private:
    static constexpr std::size_t kBlock = 64;

    void moveTo(const unsigned char* place) {
        floor_ = place;
        next_ = place == end_ ? nullptr : place - reinterpret_cast<std::uintptr_t>(place) % kBlock;
        hits_ = 0;
    }
    // Null while the end isn't known.
    const unsigned char* lastBlock() const {
        return end_ == nullptr ? nullptr : end_ - 1 - reinterpret_cast<std::uintptr_t>(end_ - 1) % kBlock;
    }
    // Have the outer two been found so often that the middle one should be looked for with them?
    bool middleIsWorthIt() const {
        constexpr std::ptrdiff_t kPatience = 8, kSeldom = 32 * kBlock;
        return stops_ > kPatience + (next_ - floor_) / kSeldom;
    }
    bool refill();
    void scanPlain();
    void scanAvx512();
    // What the next block has come to, hits and NULs by their bits. True: there is no use in going on for now.
    bool take(std::uint64_t hits, std::uint64_t nul);

    Probes probes_;
    const unsigned char* end_;
    const unsigned char* floor_ = nullptr;  // no byte in front of it counts, and none is known to be readable
    const unsigned char* block_ = nullptr;
    const unsigned char* next_ = nullptr;  // block to go on with; null: the text has ended
    std::uint64_t hits_ = 0;               // of second bytes, in the block
    std::ptrdiff_t stops_ = 0;             // blocks with a hit of the outer two
};

}  // namespace nls
