// What a charset's bytes mean, told from its description alone: the plain other side of every comparison with the
// library. Used by read_back.cpp, and tested with it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/mkconvmap/conv_writer.hpp"

namespace nls::mkconvmap {

class CharsetModel {
public:
    // `charset` has to outlive the model.
    explicit CharsetModel(const CompiledCharset& charset);

    const CharsetSource& source() const { return charset_->source; }

    // The text of each character that is to be tried: all bytes and double bytes of a legacy charset, mapped or not; of
    // a form of Unicode the whole BMP without surrogates, plane 2 if `withPlane2`, and the edges of the other planes.
    std::vector<std::string> probes(bool withPlane2) const;

    // One character; none where the charset has no such character. A filler counts as the character that it stands for.
    std::optional<char32_t> decode(const std::string& bytes) const;
    std::optional<std::string> encode(char32_t character) const;

    // What the library writes where a character has no counterpart: U+FFFD in Unicode, "?" as a byte in single-byte
    // charsets, and the charset's own substitute in the others.
    std::string substitute() const;

private:
    std::string textOfCode(uint16_t code) const;
    std::string units(char32_t character) const;

    const CompiledCharset* charset_;
    std::map<std::string, char32_t> forth_;  // legacy charsets
    std::map<char32_t, std::string> back_;
};

// "E2 82 AC"
std::string bytesText(const std::string& bytes);

}  // namespace nls::mkconvmap
