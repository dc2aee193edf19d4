// What each character of a charset is, learnt from the library one character at a time. real_charsets_test.cpp holds it
// beside published converters; everything else is then foretold from it.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "tests/real/data_file.hpp"

namespace nls::real {

// No character, no code.
inline constexpr uint32_t kNone = 0xFFFFFFFF;

class CharsetModel {
public:
    static const CharsetModel& of(const std::string& name);

    const std::string& name() const { return name_; }
    bool isMultiByte() const { return isMultiByte_; }
    // What stands for a character without a mapping, as a code.
    uint32_t substitute() const { return substitute_; }

    // How many bytes follow a first byte.
    unsigned trails(unsigned char first) const { return trails_[first]; }
    // Of a code: one byte, or two with the first one high. A first byte without its trail is a code of its own.
    uint32_t decode(uint32_t code) const { return decode_[code]; }
    // Of a code point, surrogates too.
    uint32_t encode(uint32_t codePoint) const { return codePoint < kCodePoints ? encode_[codePoint] : kNone; }
    // The code that means the code point, not one that is lent to it.
    uint32_t exactCode(uint32_t codePoint) const;
    void append(Bytes& text, uint32_t code) const;

private:
    // No charset reaches beyond the second plane; real_forms_test.cpp proves it.
    static constexpr uint32_t kCodePoints = 0x30000;

    explicit CharsetModel(const Name& name);
    void learnCodes();
    void learnCodePoints();
    bool isEmptyPlane(uint32_t firstCodePoint) const;

    std::string name_;
    bool isMultiByte_;
    uint32_t substitute_ = kNone;
    std::array<unsigned char, 256> trails_{};
    std::vector<uint32_t> decode_, encode_;
};

// A UTF-8 text of one character; kNone for any other.
uint32_t onlyCodePoint(ByteView utf8);

}  // namespace nls::real
