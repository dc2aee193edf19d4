// The record of a case table: two maps of bytes, or for UTF-8 two lists of pairs.
//
// The lists hold 743 pairs each, and the look-up knows neither every character nor every form: see
// convmap/case_pages.hpp. What is left out is told with its reason.
// Tested by tests/real/real_case_test.cpp and tests/tools/collation_refusals_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/mkconvmap/case_source.hpp"
#include "tools/mkconvmap/conv_writer.hpp"
#include "tools/mkconvmap/data_record.hpp"

namespace nls::mkconvmap {

using ByteTable = std::array<uint8_t, 256>;

// Each byte's form; the byte itself where the charset has no single byte for the form, and where it begins a longer
// character. Fails where the description names a form of its own that the charset lacks.
ByteTable byteCase(const CaseSource& table, const CompiledCharset& charset, CaseForm form);

struct CaseRecord {
    uint8_t rawByte = 0;  // the kind
    DataRecord record;
    std::vector<std::string> remarks;  // lines for the listing: what a list holds, what is left out and why
};

CaseRecord caseRecord(const CaseSource& table, const CompiledCharset& charset);

}  // namespace nls::mkconvmap
