// Lines in a block of memory of a fixed size, and their sorting.
#pragma once

#include <functional>
#include <memory>

#include "tools/nls/sorted_line.hpp"

namespace nls::tool {

using LineSink = std::function<void(const SortedLine&)>;

// Hands lines on in order, and of lines that are equal the first alone if that is wanted.
class Emitter {
public:
    Emitter(const LineOrder& order, bool unique, LineSink sink)
        : order_(order), unique_(unique), sink_(std::move(sink)) {}

    void emit(const SortedLine& line);

private:
    const LineOrder& order_;
    bool unique_;
    LineSink sink_;
    ByteBuffer keptBytes_;  // of the line handed on last
    SortedLine kept_{};
};

// The block: lines grow from its start upwards, what is known of them from its end downwards, and between them lies the
// room that sorting takes.
class LineStore {
public:
    explicit LineStore(std::size_t capacity);

    // False if the line doesn't fit. A first line always fits: the block grows for it. `keySize` may be noKey.
    bool add(const LineOrder& order, ByteView line, ByteView key, uint32_t keySize);
    bool isEmpty() const { return count_ == 0; }
    // Hands out all lines in order, equal ones as they came, and is empty then.
    void drain(const LineOrder& order, const LineSink& sink);

private:
    SortedLine* table() const { return reinterpret_cast<SortedLine*>(block_.get() + capacity_) - count_; }
    std::size_t needed(std::size_t bytes) const;

    std::size_t capacity_;  // a multiple of the size of a SortedLine
    std::unique_ptr<unsigned char[]> block_;
    std::size_t textEnd_ = 0;
    std::size_t count_ = 0;
};

}  // namespace nls::tool
