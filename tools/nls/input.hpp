// Reading text of any size in chunks, cut between characters.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tools/nls/converter.hpp"
#include "tools/nls/place.hpp"
#include "tools/nls/progress.hpp"

namespace nls::tool {

// A file to read, or the standard input for "-". Throws if it can't be opened or read.
class Input {
public:
    explicit Input(const std::string& path);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    const std::string& name() const { return name_; }
    // Whether its end is known to come: a pipe or a terminal may go on for ever.
    bool isRegular() const { return regular_; }
    // At most `room` bytes; 0 at the end.
    std::size_t read(unsigned char* place, std::size_t room);

private:
    std::string name_;
    int descriptor_;
    bool regular_;
};

// Bytes of the regular files among `paths`; 0 if one of them isn't regular, since then nobody knows.
uint64_t totalSize(const std::vector<std::string>& paths);

// Hands out a file piece by piece, with the place where each begins, until `handle` answers false. False if it did.
bool forEachPiece(Input& input, Converter& converter, Progress& progress,
                  const std::function<bool(const Piece&, const Place&)>& handle);

}  // namespace nls::tool
