// A line on its way through a sort: its bytes, what of them decides, and its sort key if it has one.
#pragma once

#include <memory>

#include "tools/nls/order.hpp"
#include "tools/nls/order_key.hpp"
#include "tools/nls/sort_fields.hpp"

namespace nls::tool {

// The bytes stand in memory of the sort: the line with its end, and directly behind it the key.
struct SortedLine {
    const unsigned char* bytes;
    uint32_t size;        // with the line's end
    uint32_t keySize;     // `noKey` for none
    uint64_t keyStart;    // the first eight bytes of the key as a number, for a quick look
    uint32_t fieldBegin;  // of the first range, without the blanks that don't count
    uint32_t fieldSize;

    static constexpr uint32_t noKey = UINT32_MAX;

    ByteView line() const { return {bytes, size}; }
    ByteView text() const { return {bytes, size - 1}; }
    ByteView field() const { return {bytes + fieldBegin, fieldSize}; }
    ByteView key() const { return {bytes + size, keySize == noKey ? 0 : keySize}; }
    std::size_t storedSize() const { return size + key().size(); }
};

// How two lines stand to each other.
class LineOrder {
public:
    // With `keyMaker` keys decide between lines that both have one. It may be null.
    LineOrder(const Order& order, const FieldCutter& cutter, bool reverse, const KeyMaker* keyMaker)
        : order_(order), cutter_(cutter), reverse_(reverse), keyMaker_(keyMaker) {}

    // The key of a line, to be stored behind it. False where it has none.
    bool makeKey(ByteView text, ByteBuffer& key) const;
    // A line as it is stored.
    SortedLine lineAt(const unsigned char* bytes, uint32_t size, uint32_t keySize) const;

    int compare(const SortedLine& a, const SortedLine& b) const { return reverse_ ? forwards(b, a) : forwards(a, b); }

private:
    int forwards(const SortedLine& a, const SortedLine& b) const;
    int byFields(const SortedLine& a, const SortedLine& b) const;

    const Order& order_;
    const FieldCutter& cutter_;
    bool reverse_;
    const KeyMaker* keyMaker_;
};

}  // namespace nls::tool
