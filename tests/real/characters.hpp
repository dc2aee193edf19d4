// A text of any charset taken apart into characters, leniently, as the conversions read it.
#pragma once

#include "tests/real/charset_model.hpp"

namespace nls::real {

enum class Reading {
    byCharacter,
    byPages,  // UTF-8 as the ways to single-byte charsets look at it
    byUnit,   // no pair of surrogates is folded
};

struct Characters {
    std::vector<uint32_t> values;        // code points; kNone for a character without one
    std::vector<std::size_t> places{0};  // between the characters
    nlsStatus end = NLS_OK;              // 16 where the text ends inside a character

    void add(uint32_t value, std::size_t place) {
        values.push_back(value);
        places.push_back(place);
    }
};

Characters readCharacters(const Name& charset, ByteView text, Reading reading);

}  // namespace nls::real
