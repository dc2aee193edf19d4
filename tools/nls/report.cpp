#include "tools/nls/report.hpp"

#include "tools/nls/hex_text.hpp"

namespace nls::tool {

void Report::add(const std::string& file, const Piece& piece, const Place& place, const Converter& converter,
                 const char* consequence, Progress& progress) {
    ++count_;
    if (form_ == Form::counted || (limit_ != 0 && count_ > limit_)) return;
    const Problem problem{file, place, hexOf(piece.source), converter.fault()};
    if (form_ == Form::kept) {
        kept_.push_back(problem);
        return;
    }
    progress.hide();
    std::fprintf(stream_, "%s:%llu:%llu: byte %llu (%s): %s%s%s\n", file.c_str(),
                 static_cast<unsigned long long>(place.line), static_cast<unsigned long long>(place.column),
                 static_cast<unsigned long long>(place.offset), problem.bytes.c_str(), problem.reason.c_str(),
                 *consequence == 0 ? "" : "; ", consequence);
}

void Report::finish() {
    if (form_ != Form::lines || limit_ == 0 || count_ <= limit_) return;
    std::fprintf(stream_, "... and %llu more\n", static_cast<unsigned long long>(count_ - limit_));
}

void Report::writeTo(JsonWriter& json) const {
    json.open('[');
    for (const Problem& problem : kept_) {
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
