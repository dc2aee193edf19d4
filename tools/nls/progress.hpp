// A progress bar on a terminal, for work that takes longer than a second.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace nls::tool {

class Progress {
public:
    // `total` bytes to come; 0 if nobody knows. Nothing is ever shown unless `wanted` and the standard error is a
    // terminal.
    Progress(uint64_t total, bool wanted);
    ~Progress() { hide(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void add(uint64_t bytes);
    // Clears the line, so that other lines can be written.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    void draw(double seconds);

    uint64_t total_;
    uint64_t done_ = 0;
    bool wanted_;
    bool shown_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextDraw_;
};

// "1.4 GB"; decimal units, as disks and networks count.
std::string sizeText(double bytes);

}  // namespace nls::tool
