// Published converters beside the library: ICU's, and the C library's iconv. Each is asked for one character at a time,
// strictly: what it has no exact mapping for is kNone.
#pragma once

#include <string>
#include <vector>

#include "tests/real/charset_model.hpp"

namespace nls::real {

enum class Library { icu, iconv };

const char* libraryName(Library library);

// The codes of a charset as a converter knows them.
struct Peer {
    std::vector<uint32_t> decode;  // code point by code, as in CharsetModel, for the codes of that model
    std::vector<uint32_t> encode;  // code by code point, all of them; surrogates have none
};

Peer askPeer(Library library, const char* converter, const CharsetModel& charset);

// The character of a single byte.
uint32_t decodeByPeer(Library library, const char* converter, unsigned char byte);

// A whole text from one charset to another, without loss on the way.
Bytes convertByPeer(Library library, const char* from, const char* to, ByteView text);

}  // namespace nls::real
