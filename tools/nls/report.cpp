#include "tools/nls/report.hpp"

#include "tools/nls/hex_text.hpp"

namespace nls::tool {

void Report::add(const std::string& file, const Piece& piece, const Place& place, const Converter& converter,
                 const char* consequence, Progress& progress) {
    ++count_;
    if (limit_ != 0 && count_ > limit_) return;
    told_.push_back({file, place, hexOf(piece.source), converter.fault()});
    if (quiet_) return;
    progress.hide();
    const Problem& problem = told_.back();
    std::fprintf(stream_, "%s:%llu:%llu: byte %llu (%s): %s%s%s\n", file.c_str(),
                 static_cast<unsigned long long>(place.line), static_cast<unsigned long long>(place.column),
                 static_cast<unsigned long long>(place.offset), problem.bytes.c_str(), problem.reason.c_str(),
                 *consequence == 0 ? "" : "; ", consequence);
}

void Report::finish() {
    if (quiet_ || count_ <= told_.size()) return;
    std::fprintf(stream_, "... and %llu more\n", static_cast<unsigned long long>(count_ - told_.size()));
}

void Report::writeTo(JsonWriter& json) const {
    json.open('[');
    for (const Problem& problem : told_) {
        json.open('{').member("file", std::string_view(problem.file)).member("line", problem.place.line);
        json.member("column", problem.place.column).member("offset", problem.place.offset);
        json.member("bytes", std::string_view(problem.bytes)).member("reason", std::string_view(problem.reason));
        json.close('}');
    }
    json.close(']');
}

std::string counted(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace nls::tool
