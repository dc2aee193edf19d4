// A temporary file of sorted runs, and reading them back.
#pragma once

#include <string>
#include <vector>

#include "tools/nls/sorted_line.hpp"

namespace nls::tool {

// Where a run stands in its file.
struct SortedRun {
    uint64_t begin, end;
};

// The file has no name, so that nothing of it is left behind however the command ends.
class SpillFile {
public:
    explicit SpillFile(const std::string& folder);
    ~SpillFile();
    SpillFile(const SpillFile&) = delete;
    SpillFile& operator=(const SpillFile&) = delete;

    void write(const SortedLine& line);
    // Ends the run that was being written.
    SortedRun endRun();
    // Bytes that were read; less than `room` at the end of the file alone.
    std::size_t read(uint64_t place, unsigned char* target, std::size_t room) const;

private:
    void flush();

    std::string name_;  // for messages
    int descriptor_;
    uint64_t size_ = 0;  // with what is still gathered
    uint64_t runBegin_ = 0;
    ByteBuffer gathered_;
};

// The lines of a run, one after the other.
class RunReader {
public:
    RunReader(const SpillFile& file, SortedRun run, std::size_t bufferSize, const LineOrder& order);

    bool isAtEnd() const { return atEnd_; }
    // REQUIRES: not at the end. It lives until the next advance.
    const SortedLine& line() const { return line_; }
    void advance();

private:
    bool have(std::size_t bytes);

    const SpillFile& file_;
    SortedRun rest_;  // what hasn't been read into the buffer
    std::size_t bufferSize_;
    const LineOrder& order_;
    ByteBuffer buffer_;
    std::size_t begin_ = 0;  // of what hasn't been handed out
    SortedLine line_{};
    bool atEnd_ = false;
};

}  // namespace nls::tool
