#include "tools/nls/external_sort.hpp"

#include <algorithm>

namespace nls::tool {
namespace {

constexpr std::size_t usualBuffer = std::size_t{1} << 18;
constexpr std::size_t smallestBuffer = 4096;

// The runs that are merged at once: so many that each has a buffer that is worth reading.
std::size_t fanIn(std::size_t memory) {
    return std::clamp<std::size_t>(memory / usualBuffer, 2, 512);
}

// The readers with the one that has the next line in front: a heap. Of equal lines that of the earlier run is next.
class Merger {
public:
    Merger(const SpillFile& file, const std::vector<SortedRun>& runs, std::size_t bufferSize, const LineOrder& order)
        : order_(order) {
        for (const SortedRun& run : runs) readers_.push_back(std::make_unique<RunReader>(file, run, bufferSize, order));
        for (std::size_t i = 0; i < readers_.size(); ++i) heap_.push_back(i);
        for (std::size_t i = heap_.size(); i-- != 0;) sink(i);
    }

    bool isAtEnd() const { return heap_.empty() || readers_[heap_[0]]->isAtEnd(); }
    const SortedLine& line() const { return readers_[heap_[0]]->line(); }
    void advance() {
        readers_[heap_[0]]->advance();
        sink(0);
    }

private:
    bool isBefore(std::size_t a, std::size_t b) const {
        if (readers_[a]->isAtEnd() || readers_[b]->isAtEnd()) return readers_[b]->isAtEnd() && !readers_[a]->isAtEnd();
        const int sign = order_.compare(readers_[a]->line(), readers_[b]->line());
        return sign < 0 || (sign == 0 && a < b);
    }
    void sink(std::size_t place) {
        for (;;) {
            std::size_t child = 2 * place + 1;
            if (child >= heap_.size()) return;
            if (child + 1 < heap_.size() && isBefore(heap_[child + 1], heap_[child])) ++child;
            if (!isBefore(heap_[child], heap_[place])) return;
            std::swap(heap_[child], heap_[place]);
            place = child;
        }
    }

    const LineOrder& order_;
    std::vector<std::unique_ptr<RunReader>> readers_;
    std::vector<std::size_t> heap_;  // places in `readers_`
};

}  // namespace

ExternalSort::ExternalSort(const LineOrder& order, bool unique, std::size_t memory, std::string temporaryFolder,
                           Progress& progress)
    : order_(order),
      unique_(unique),
      memory_(memory),
      folder_(std::move(temporaryFolder)),
      progress_(progress),
      store_(memory) {}

void ExternalSort::add(ByteView line) {
    key_.clear();
    uint32_t keySize = SortedLine::noKey;
    if (order_.makeKey(line.first(line.size() - 1), key_)) {
        keySize = static_cast<uint32_t>(key_.size());
        ++keyedCount_;
    } else {
        key_.clear();
    }
    ++lineCount_;
    if (store_->add(order_, line, key_.view(), keySize)) return;
    spill();
    store_->add(order_, line, key_.view(), keySize);
}

void ExternalSort::spill() {
    if (!file_) file_ = std::make_unique<SpillFile>(folder_);
    Emitter emitter{order_, unique_, [this](const SortedLine& line) { file_->write(line); }};
    store_->drain(order_, [&](const SortedLine& line) { emitter.emit(line); });
    runs_.push_back(file_->endRun());
    ++runCount_;
}

void ExternalSort::finish(const LineSink& sink) {
    if (!file_) {
        Emitter emitter{order_, unique_, sink};
        store_->drain(order_, [&](const SortedLine& line) { emitter.emit(line); });
        return;
    }
    if (!store_->isEmpty()) spill();
    store_.reset();
    while (runs_.size() > fanIn(memory_)) mergeInGroups();
    merge(*file_, runs_, sink);
}

// Neighbouring runs together, so that their order stays.
void ExternalSort::mergeInGroups() {
    const SpillFile& from = *file_;
    auto target = std::make_unique<SpillFile>(folder_);
    Runs merged;
    for (std::size_t begin = 0; begin < runs_.size(); begin += fanIn(memory_)) {
        const std::size_t end = std::min(runs_.size(), begin + fanIn(memory_));
        merge(from,
              {runs_.begin() + static_cast<std::ptrdiff_t>(begin), runs_.begin() + static_cast<std::ptrdiff_t>(end)},
              [&](const SortedLine& line) { target->write(line); });
        merged.push_back(target->endRun());
    }
    file_ = std::move(target);
    runs_ = std::move(merged);
}

void ExternalSort::merge(const SpillFile& file, const Runs& runs, const LineSink& sink) {
    constexpr uint64_t step = 1 << 16;
    const std::size_t bufferSize = std::max(smallestBuffer, memory_ / (runs.size() + 1));
    Emitter emitter{order_, unique_, sink};
    uint64_t passed = 0;
    for (Merger merger{file, runs, bufferSize, order_}; !merger.isAtEnd(); merger.advance()) {
        passed += merger.line().size;
        emitter.emit(merger.line());
        if (passed < step) continue;
        progress_.add(passed);
        passed = 0;
    }
}

unsigned ExternalSort::passes(uint64_t bytes, std::size_t memory) {
    const uint64_t perRun = memory / 2 + 1;
    unsigned count = 0;
    for (uint64_t runs = bytes / perRun + 1; runs > 1; runs = (runs + fanIn(memory) - 1) / fanIn(memory)) ++count;
    return count;
}

}  // namespace nls::tool
