// What is told of the characters that don't convert: each as `file:line:column: byte OFFSET (0xHH...): reason`, the
// first of them in full, all of them in a count.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "tools/nls/converter.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/place.hpp"
#include "tools/nls/progress.hpp"

namespace nls::tool {

struct Problem {
    std::string file;
    Place place;
    std::string bytes;  // 0xHH...
    std::string reason;
};

class Report {
public:
    enum class Form {
        lines,   // written to the stream as the problems come
        kept,    // for `writeTo`
        counted  // neither
    };

    // At most `limit` problems are told in full; 0: all.
    Report(std::FILE* stream, uint64_t limit, Form form) : stream_(stream), limit_(limit), form_(form) {}

    // The last piece of `converter`, which isn't good. `consequence` is what became of it; may be empty.
    void add(const std::string& file, const Piece& piece, const Place& place, const Converter& converter,
             const char* consequence, Progress& progress);
    // "... and 12 more", if lines were left out.
    void finish();

    uint64_t count() const { return count_; }
    // The kept problems, as a list of objects.
    void writeTo(JsonWriter& json) const;

private:
    std::FILE* stream_;
    uint64_t limit_;
    Form form_;
    uint64_t count_ = 0;
    std::vector<Problem> kept_;
};

// "1 character", "12 characters".
std::string counted(uint64_t count, const std::string& noun);

}  // namespace nls::tool
