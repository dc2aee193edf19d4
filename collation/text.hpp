// A text to compare: it ends at its NUL or at its limit, whichever comes first.
#pragma once

#include <cstdint>

namespace nls {

struct Text {
    const unsigned char* place;
    const unsigned char* limit;  // null: none

    // `length` in bytes; -1 for no limit.
    static Text of(const unsigned char* text, int32_t length) { return {text, length < 0 ? nullptr : text + length}; }

    bool atEnd() const { return place == limit || *place == 0; }
};

// What is left of a text behind the end of another one is as good as nothing if it is blanks alone. Blanks at the limit
// are the last that count.
inline bool onlyBlanksLeft(Text text) {
    while (text.place != text.limit && *text.place == ' ') ++text.place;
    return text.atEnd();
}

// -1, 0 or 1.
inline int orderOf(unsigned a, unsigned b) {
    return int{a > b} - int{a < b};
}

// One of the texts has ended.
inline int decideAtEnd(Text a, Text b) {
    if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
    return onlyBlanksLeft(a) ? 0 : 1;
}

}  // namespace nls
