#include "tools/nls/progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace nls::tool {
namespace {

constexpr std::chrono::milliseconds quietTime{1000};
constexpr std::chrono::milliseconds drawEvery{100};
constexpr int barWidth = 24;

std::string timeText(double seconds) {
    const auto whole = static_cast<unsigned long>(std::lround(std::min(seconds, 1e6)));
    char text[32];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%lu:%02lu:%02lu", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lu:%02lu", whole / 60, whole % 60);
    }
    return text;
}

}  // namespace

std::string sizeText(double bytes) {
    constexpr const char* units[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit < 4; ++unit) bytes /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 || bytes >= 100 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

Progress::Progress(uint64_t total, bool wanted)
    : total_(total), wanted_(wanted && isatty(STDERR_FILENO) != 0), nextDraw_(start_ + quietTime) {}

void Progress::add(uint64_t bytes) {
    done_ += bytes;
    if (!wanted_) return;
    const Clock::time_point now = Clock::now();
    if (now < nextDraw_) return;
    nextDraw_ = now + drawEvery;
    draw(std::chrono::duration<double>(now - start_).count());
}

void Progress::draw(double seconds) {
    const double rate = static_cast<double>(done_) / seconds;
    std::string line = "\r";
    if (total_ != 0 && done_ <= total_) {
        const double part = static_cast<double>(done_) / static_cast<double>(total_);
        const int filled = static_cast<int>(part * barWidth);
        char percent[8];
        std::snprintf(percent, sizeof percent, "%3.0f%%", part * 100);
        line += percent;
        line += " [" + std::string(static_cast<std::size_t>(filled), '#') +
                std::string(static_cast<std::size_t>(barWidth - filled), '-') + "] ";
        line += sizeText(static_cast<double>(done_)) + " of " + sizeText(static_cast<double>(total_)) + "  " +
                sizeText(rate) + "/s  " + timeText(static_cast<double>(total_ - done_) / rate) + " left";
    } else {
        line += sizeText(static_cast<double>(done_)) + "  " + sizeText(rate) + "/s  " + timeText(seconds);
    }
    line += "\033[K";
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
    shown_ = true;
}

void Progress::hide() {
    if (!shown_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    shown_ = false;
}

}  // namespace nls::tool
