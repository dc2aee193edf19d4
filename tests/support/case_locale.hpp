// Locales with a case table, made by hand.
#pragma once

#include <array>
#include <clocale>
#include <cstring>
#include <cwctype>
#include <memory>
#include <random>
#include <string>

#include "convmap/case_pages.hpp"
#include "nls/records.h"
#include "tests/support/hand_charsets.hpp"

namespace nls::test {

// The UTF-8 bytes of a code point of the BMP.
inline std::string utf8Of(char32_t c) {
    const auto trail = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (c < 0x80) return {static_cast<char>(c)};
    if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), trail(c)};
    return {static_cast<char>(0xE0 | c >> 12), trail(c >> 6), trail(c)};
}
inline uint32_t numberOf(const std::string& bytes) {
    uint32_t number = 0;
    for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

// A form that a table can hold: the two differ in the last two bytes at most.
inline bool canHold(uint32_t number, uint32_t form) {
    const uint32_t top = number & 0xFF0000;
    return top == (form & 0xFF0000) && (top == 0 || top == 0xE10000 || top == 0xE20000 || top == 0xEF0000);
}

// The case of the C library's Unicode locale.
class LibraryCase {
public:
    LibraryCase() = default;
    LibraryCase(const LibraryCase&) = delete;
    LibraryCase& operator=(const LibraryCase&) = delete;
    ~LibraryCase() { freelocale(locale_); }

    char32_t operator()(char32_t c, CaseForm form) const {
        const auto wide = static_cast<wint_t>(c);
        return form == CaseForm::lower ? towlower_l(wide, locale_) : towupper_l(wide, locale_);
    }

private:
    locale_t locale_ = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
};

// A Unicode case table, with a page for every row that has a form and the shared empty page for all others.
class MadeCaseTable {
public:
    MadeCaseTable() {
        for (auto& page : table_.casePages) page = kNoCasePage;
    }
    MadeCaseTable(const MadeCaseTable&) = delete;
    MadeCaseTable& operator=(const MadeCaseTable&) = delete;

    // By the numbers of the characters. REQUIRES: canHold.
    void set(uint32_t number, CaseForm form, uint32_t to) {
        const uint32_t top = number & 0xFF0000;
        const uint32_t key = number - (top == 0xE10000   ? 0xE17F80
                                       : top == 0xE20000 ? 0xE23F80
                                       : top == 0xEF0000 ? 0xEEFF80
                                                         : 0);
        const uint32_t row = key >> 8 & 0xFF, half = row == 0 ? 128 : 64;
        page(row)[(key & 0x7F) + (form == CaseForm::lower ? half : 0)] = static_cast<uint16_t>(to);
    }
    void fillFromLibrary() {
        const LibraryCase library;
        for (char32_t c = 1; c < 0xFFFE; ++c) {
            for (const CaseForm form : {CaseForm::upper, CaseForm::lower}) {
                const char32_t to = library(c, form);
                if (to != c && to <= 0xFFFF && canHold(numberOf(utf8Of(c)), numberOf(utf8Of(to))))
                    set(numberOf(utf8Of(c)), form, numberOf(utf8Of(to)));
            }
        }
    }
    // Any entries anywhere, most of them empty; page 0 too unless it is to stay as it is.
    void fillWild(unsigned seed, bool asciiToo) {
        std::mt19937 random{seed};
        for (unsigned row = asciiToo ? 0 : 1; row < 256; ++row) {
            if (random() % 3 == 0) continue;
            for (unsigned i = 0; i < (row == 0 ? 256U : 128U); ++i)
                if (random() % 3 == 0)
                    page(row)[i] = static_cast<uint16_t>(random() % 8 == 0 ? random() % 256 : random());
        }
    }

    nlsCaseStruct* get() { return reinterpret_cast<nlsCaseStruct*>(&table_); }
    const uint16_t* const (&pages() const)[256] { return table_.casePages; }

private:
    std::array<uint16_t, 256>& page(uint32_t row) {
        if (own_[row] == nullptr) {
            own_[row] = std::make_unique<std::array<uint16_t, 256>>();
            own_[row]->fill(0);
            table_.casePages[row] = own_[row]->data();
        }
        return *own_[row];
    }

    nlsUnicodeCaseStruct table_{};
    std::array<std::unique_ptr<std::array<uint16_t, 256>>, 256> own_;
};

// The pieces that blocks of UTF-8 must tell apart: with and without case, of every length, and broken ones.
inline std::string randomUtf8(std::mt19937& random, std::size_t length, unsigned kind) {
    static const std::string whole[] = {"a",
                                        "B",
                                        " ",
                                        "z",
                                        "Z",
                                        "[",
                                        "@",
                                        "\xC3\x89",
                                        "\xC3\xA9",
                                        "\xD0\x90",
                                        "\xD0\xAF",
                                        "\xD1\x8F",
                                        "\xD1\xA0",
                                        "\xC2\xA0",
                                        "\xC4\xB0",
                                        "\xCE\xA3",
                                        "\xE3\x81\x82",
                                        "\xEF\xBC\xA1",
                                        "\xEF\xBD\x81",
                                        "\xEF\xBC\x8C",
                                        "\xE1\xBA\xA0",
                                        "\xE2\x80\x94",
                                        "\xE2\x84\xAA",
                                        "\xE2\x93\x90",
                                        "\xF0\x9F\x98\x80",
                                        "\xE1\x82\xA0"};
    static const std::string broken[] = {"\xC3",      "\xE1\xBA", "\xE1", "\xF0\x9F", "\x80", "\xC1",    "\xF9\x80",
                                         "\xE1 \xA0", "\xD0x",    "\xFF", "\xEF\xBC", "\xBF", "\xC0\x80"};
    std::string text;
    while (text.size() < length) {
        const unsigned draw = static_cast<unsigned>(random() % 100);
        if (kind == 0 || draw < 20)
            text += whole[random() % 7];
        else if (kind == 2 && draw < 40)
            text += broken[random() % std::size(broken)];
        else if (kind == 3 && draw < 50)
            text += static_cast<char>(1 + random() % 255);
        else
            text += whole[random() % std::size(whole)];
    }
    return text;
}

}  // namespace nls::test
