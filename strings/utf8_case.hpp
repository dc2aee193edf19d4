// Wide ways of case in UTF-8: blocks whose characters all keep their length.
// Tested by tests/strings/case_mapping_test.cpp.
#pragma once

#include <cstddef>

#include "convmap/case_pages.hpp"

namespace nls {

// ASCII from the front in whole blocks; the bytes done. The case of A to Z is the only one.
inline constexpr std::size_t kAsciiBlock = 16;
std::size_t mapAsciiCase(CaseForm form, const unsigned char* source, std::size_t count, unsigned char* target);

// Whether the blocks below can be told by the bytes alone: each byte from which UTF-8 counts has its usual length here,
// and ASCII its usual forms.
bool hasUsualUtf8CaseAvx512(const nlsAttribStruct& attrib, const nlsUnicodeCaseStruct& table, CaseForm form);

// Whole characters from the front of `count` bytes; the bytes done. It stops in front of anything that isn't regular
// UTF-8, of a form that is longer or shorter than its character, and of a character that the end cuts short.
std::size_t mapUtf8CaseAvx512(const uint16_t* const (&pages)[kCasePages], CaseForm form, const unsigned char* source,
                              std::size_t count, unsigned char* target);

}  // namespace nls
