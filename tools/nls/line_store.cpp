#include "tools/nls/line_store.hpp"

#include <algorithm>

#include "tools/nls/merge_sort.hpp"

namespace nls::tool {
namespace {

std::size_t roundedUp(std::size_t size) {
    return (size + sizeof(SortedLine) - 1) / sizeof(SortedLine) * sizeof(SortedLine);
}

}  // namespace

void Emitter::emit(const SortedLine& line) {
    if (unique_) {
        if (kept_.size != 0 && order_.compare(kept_, line) == 0) return;
        keptBytes_.clear();
        keptBytes_.append({line.bytes, line.storedSize()});
        kept_ = line;
        kept_.bytes = keptBytes_.view().data();
    }
    sink_(line);
}

// Memory that isn't used yet is only asked for, so a small input takes little.
LineStore::LineStore(std::size_t capacity) : capacity_(roundedUp(capacity)), block_(new unsigned char[capacity_]) {}

// With one more line of `bytes`: the texts, their table, and half of it again for the sorting.
std::size_t LineStore::needed(std::size_t bytes) const {
    const std::size_t lines = count_ + 1;
    return roundedUp(textEnd_ + bytes) + (lines + lines / 2) * sizeof(SortedLine);
}

bool LineStore::add(const LineOrder& order, ByteView line, ByteView key, uint32_t keySize) {
    const std::size_t bytes = line.size() + key.size();
    if (needed(bytes) > capacity_) {
        if (count_ != 0) return false;
        capacity_ = needed(bytes);
        block_.reset(new unsigned char[capacity_]);
    }
    unsigned char* const place = block_.get() + textEnd_;
    std::copy(line.begin(), line.end(), place);
    std::copy(key.begin(), key.end(), place + line.size());
    textEnd_ += bytes;
    ++count_;
    new (table()) SortedLine(order.lineAt(place, static_cast<uint32_t>(line.size()), keySize));
    return true;
}

void LineStore::drain(const LineOrder& order, const LineSink& sink) {
    SortedLine* const lines = table();
    std::reverse(lines, lines + count_);  // the newest stands first
    auto* const scratch = reinterpret_cast<SortedLine*>(block_.get() + roundedUp(textEnd_));
    mergeSort(lines, count_, scratch, [&](const SortedLine& a, const SortedLine& b) { return order.compare(a, b); });
    std::for_each(lines, lines + count_, sink);
    textEnd_ = 0;
    count_ = 0;
}

}  // namespace nls::tool
