// Which published converters stand for each charset of the data file, and all that they and the library tell
// differently.
#pragma once

#include <vector>

#include "tests/real/peers.hpp"

namespace nls::real {

// One converter and one charset that it is held against.
struct Pairing {
    std::string charset;
    Library library;
    std::string converter;
};

// A range of codes or of code points, and how many of them both sides give different answers for, or one of them none.
// What differs in a code isn't counted again among the code points. Each row holds for every charset that it names.
enum class Axis { codes, codePoints };

struct Difference {
    const char* charsets;  // names with a blank between
    unsigned libraries;    // a bit for each
    Axis axis;
    uint32_t first, last;
    int count;
    const char* reason;
};

const std::vector<Pairing>& pairings();
// The rows of one pairing.
std::vector<const Difference*> differencesOf(const Pairing& pairing);

// A byte of a single-byte charset that stands for no character, and is given one because each byte needs one. Byte maps
// take it for what it is.
bool isFiller(const std::string& charset, unsigned char byte);

}  // namespace nls::real
