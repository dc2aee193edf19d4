// Published tables of a charset: what its byte sequences mean, as ICU's converters and the C library's iconv tell it.
//
// Only decoding is asked, one character at a time: encoders add fallbacks and transliterations of their own, so the way
// back is always derived from the way forth.
// Tested by tests/real/real_charsets_test.cpp.
#pragma once

#include <memory>
#include <string>

#include "core/base/views.hpp"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

class RowSource {
public:
    virtual ~RowSource() = default;
    // The code points of `bytes` as one complete text; empty where they are no text of the charset.
    virtual std::u32string decode(ByteView bytes) = 0;
};

// `library` is "icu" or "iconv", `name` a converter of that library. Fails at `place` where there is none.
std::unique_ptr<RowSource> openRowSource(const Place& place, const std::string& library, const std::string& name);

// The Unicode property Alphabetic.
bool isAlphabetic(char32_t codePoint);

}  // namespace nls::mkconvmap
