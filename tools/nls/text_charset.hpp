// A charset as the commands see it: where its characters end, which of them are sound, and its way to and from UTF-8.
//
// The library converts leniently: what has no counterpart becomes a substitute, malformed UTF-8 passes, and a table
// that holds no byte for a character may still answer with the byte of another one. Here each step says whether every
// character of a piece of text came through as itself.
#pragma once

#include <bitset>
#include <string>

#include "tools/nls/byte_buffer.hpp"
#include "tools/nls/place.hpp"
#include "tools/nls/session.hpp"
#include "tools/nls/unicode_check.hpp"

namespace nls::tool {

class TextCharset {
public:
    enum class Form { utf8, units16, units32, singleByte, multiByte };

    enum class Tables { required, ifAny };

    // Finds the charset and its tables to and from UTF-8. Throws for an unknown name, and for a charset without tables
    // that are required. Of one without them no more is known than its name, its form and that it holds ASCII.
    TextCharset(Session& session, const std::string& name, Tables tables = Tables::required);

    const std::string& name() const { return name_; }
    Form form() const { return form_; }
    bool hasTables() const { return hasTables_; }
    bool isUtf8() const { return form_ == Form::utf8; }
    bool isLegacy() const { return form_ == Form::singleByte || form_ == Form::multiByte; }
    const nlsLocale* locale() const { return locale_; }
    LineEnds lineEnds() const { return LineEnds{isEbcdic_}; }

    // The last place at or before `at` where a character begins. REQUIRES: the text begins with a character.
    std::size_t boundary(ByteView text, std::size_t at) const;
    // The first character of a text that isn't empty, by its form; whether the charset holds it, `decode` tells.
    Unit first(ByteView text) const;

    // Appends `piece` as UTF-8. False, with anything appended, if it isn't all characters of the charset.
    bool decode(ByteView piece, ByteBuffer& text) const;
    // Appends valid UTF-8 in this charset. False, with anything appended, if a character has no counterpart.
    bool encode(ByteView text, ByteBuffer& piece) const;
    // What stands for a character that the charset lacks.
    ByteView substitute() const { return substitute_.view(); }

private:
    bool findTables(Session& session);
    void findUndefinedBytes();
    bool reads(unsigned char byte, ByteView text) const;
    void findSubstitute();
    bool isWellFormed(ByteView piece) const;
    bool hasSoundUnits(ByteView piece) const;
    bool decodeLeniently(ByteView piece, ByteBuffer& text) const;

    std::string name_;
    const nlsLocale* locale_;
    const nlsConvTable* toUtf8_ = nullptr;
    const nlsConvTable* fromUtf8_ = nullptr;
    Form form_;
    bool hasTables_ = true;
    bool isEbcdic_ = false;
    bool swapped_ = false;        // units in the order opposite to this machine's
    unsigned longestTrail_ = 0;   // largest trail count
    std::bitset<256> undefined_;  // single-byte: bytes without a character
    ByteBuffer substitute_;
    mutable ByteBuffer again_;  // a piece on its way back
};

// The character of a byte that is one alone, as UTF-8; empty if it has none.
inline std::string characterOf(const TextCharset& charset, unsigned value) {
    const auto byte = static_cast<unsigned char>(value);
    ByteBuffer text;
    if (!charset.decode({&byte, 1}, text)) return {};
    return {reinterpret_cast<const char*>(text.view().data()), text.size()};
}

}  // namespace nls::tool
