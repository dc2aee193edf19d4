// Text cut into pieces that convert, and the single characters between them that don't.
//
// A piece is as long as it can be: the whole of what was read while all goes well. One that fails is halved until a
// single character is left, and behind that the pieces double again. So trouble costs a few passes over its
// neighbourhood, and text without trouble costs one.
#pragma once

#include <optional>
#include <string>

#include "tools/nls/text_charset.hpp"

namespace nls::tool {

struct Piece {
    ByteView source;
    ByteView text;    // the source as UTF-8; empty for a bad piece
    ByteView output;  // the same in the target charset
    bool good;        // else the source is one character that doesn't convert, or what looks like one
};

class Converter {
public:
    // `to` may be null: then text is only decoded. `lossless` asks that converting back gives the very same bytes.
    Converter(const TextCharset& from, const TextCharset* to, bool lossless);

    const TextCharset& from() const { return from_; }

    // The next piece at the start of `source`; none if it is empty or, unless it is the `last` of the text, ends inside
    // its first character. What the piece points at lives until the next call.
    std::optional<Piece> next(ByteView source, bool last);
    // Why the last piece isn't good.
    std::string fault() const;

private:
    enum class Outcome { good, malformed, notInSource, notInTarget, notSameBack };

    Outcome attempt(ByteView source);
    bool comesBack(ByteView source);
    Piece single(ByteView source, const Unit& unit);

    const TextCharset& from_;
    const TextCharset* to_;
    bool lossless_;
    std::size_t want_;  // bytes to try next
    Unit unit_{};       // the last single character
    Outcome outcome_ = Outcome::good;
    ByteView text_;  // of the last attempt
    ByteView output_;
    ByteBuffer textBuffer_;
    ByteBuffer outputBuffer_;
    ByteBuffer backText_;
    ByteBuffer backSource_;
};

}  // namespace nls::tool
