// Sorting more lines than fit into memory: what fits is sorted and spilled to a temporary file as a run, and at the end
// the runs are merged. Equal lines keep the order in which they came.
// Tested by tests/tools/nls_sort_test.cpp.
#pragma once

#include <optional>

#include "tools/nls/line_store.hpp"
#include "tools/nls/progress.hpp"
#include "tools/nls/spill.hpp"

namespace nls::tool {

class ExternalSort {
public:
    // `memory` in bytes, for lines while they come and for buffers while runs are merged; a longer line takes its own
    // size besides.
    ExternalSort(const LineOrder& order, bool unique, std::size_t memory, std::string temporaryFolder,
                 Progress& progress);

    // REQUIRES: a line with its end.
    void add(ByteView line);
    // Hands out all lines in order.
    void finish(const LineSink& sink);

    uint64_t lineCount() const { return lineCount_; }
    uint64_t keyedCount() const { return keyedCount_; }
    std::size_t runCount() const { return runCount_; }

    // How often a text of `bytes` bytes will about be written and read again.
    static unsigned passes(uint64_t bytes, std::size_t memory);

private:
    using Runs = std::vector<SortedRun>;

    void spill();
    void merge(const SpillFile& file, const Runs& runs, const LineSink& sink);
    void mergeInGroups();

    const LineOrder& order_;
    bool unique_;
    std::size_t memory_;
    std::string folder_;
    Progress& progress_;
    std::optional<LineStore> store_;
    std::unique_ptr<SpillFile> file_;
    Runs runs_;
    ByteBuffer key_;
    uint64_t lineCount_ = 0;
    uint64_t keyedCount_ = 0;
    std::size_t runCount_ = 0;
};

}  // namespace nls::tool
