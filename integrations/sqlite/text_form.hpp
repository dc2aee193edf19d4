// A text of SQLite's in the charset of an order: what the library compares, searches and makes keys of.
//
// The text is cut at its NULs into pieces, since the library's texts end there. Each piece is converted from UTF-8. A
// character that the charset lacks, and a byte that is no UTF-8, becomes the charset's substitute, and its value is
// kept beside. A text so taken apart is told again by its pieces and its kept values, so that an order over these is
// one order over all texts (order.hpp).
#pragma once

#include <optional>

#include "integrations/sqlite/utf8_text.hpp"
#include "nls/nls.h"

namespace nls::sqlite {

// Set in the value of a character that became the substitute.
inline constexpr uint32_t kLacked = 0x80000000;

// A text taken apart. Its buffers are used again.
struct TextForm {
    struct Piece {
        std::size_t begin, size;
    };
    struct Value {
        std::size_t character;  // its number in the text, from 0, NULs counted
        uint32_t value;         // with kLacked; a plain code point where the text has the substitute itself
    };

    Bytes bytes;  // each piece closed by a NUL
    std::vector<Piece> pieces;
    std::vector<Value> values;  // empty where nothing is lacked

    ByteView piece(std::size_t number) const {
        return ByteView{bytes}.subspan(pieces[number].begin, pieces[number].size);
    }
    bool lacks() const { return !values.empty(); }
    // The value of a character that the charset lacks.
    std::optional<uint32_t> lackedAt(std::size_t character) const;
};

// From UTF-8 to the charset of a locale.
class TextFormer {
public:
    // `conversion` is null where the charset is UTF-8. REQUIRES otherwise: canForm(*conversion).
    explicit TextFormer(const nlsConversion* conversion);

    // Whether the conversion tells what it replaces, and needs no middle buffer.
    static bool canForm(const nlsConversion& conversion);

    // Whether the bytes of a text without NUL are its form as they stand.
    bool isPlain(ByteView text) const {
        return table_ == nullptr ? tool::validUtf8(text) : asciiIsItself_ && isAscii(text);
    }
    void form(ByteView text, TextForm& into) const;

private:
    bool convertWhole(ByteView piece, TextForm& into) const;
    void convertEach(ByteView piece, std::size_t firstNumber, TextForm& into) const;
    bool convertOne(const Character& character, Bytes& into) const;

    const nlsConvTable* table_;
    Bytes substitute_;
    bool asciiIsItself_ = true;
};

}  // namespace nls::sqlite
