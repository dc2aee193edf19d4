// Slow twin of the order of characters' own values: character by character, without a skip.
#pragma once

#include <string>

#include "tests/reference/case.hpp"

namespace nls::test {

// `pages` null: bytes are compared. The texts are what counts of them: up to the limit, or the NUL.
inline int slowUnicodeCompare(const nlsAttribStruct& attrib, const uint16_t* const (*pages)[256], bool folds,
                              const std::string& a, const std::string& b) {
    const auto isBlank = [](const std::string& text, std::size_t from) {
        return text.find_first_not_of(' ', from) == std::string::npos;
    };
    const auto read = [&](const std::string& text, std::size_t pos) {
        if (folds) return slowLChar(attrib, text, pos);
        return SlowLChar{static_cast<unsigned char>(text[pos]), 1};
    };
    for (std::size_t i = 0, j = 0;;) {
        if (i == a.size()) return isBlank(b, j) ? 0 : -1;
        if (j == b.size()) return isBlank(a, i) ? 0 : 1;
        const SlowLChar first = read(a, i), second = read(b, j);
        i += first.length, j += second.length;
        if (first.value == second.value) continue;
        const uint32_t x = pages == nullptr || !folds ? first.value : slowForm(*pages, first.value, true);
        const uint32_t y = pages == nullptr || !folds ? second.value : slowForm(*pages, second.value, true);
        if (x != y) return x < y ? -1 : 1;
    }
}

}  // namespace nls::test
