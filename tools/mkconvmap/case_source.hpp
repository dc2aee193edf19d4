// One case table as its description in data/case tells it.
//
// Forms are Unicode's simple ones, a character for a character, but for those that the description names. A description
// also tells which ranges of Unicode go into the table of UTF-8, which can't hold them all. data/README.md tells the
// language.
// Tested by tests/tools/collation_refusals_test.cpp.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "convmap/case_pages.hpp"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

struct CaseSource {
    struct Own {
        Place place;
        char32_t form;
    };

    std::string name;
    Place place;                        // of the line with the name
    std::vector<CharacterRange> taken;  // into the table of UTF-8
    std::map<char32_t, Own> upper, lower;

    const std::map<char32_t, Own>& own(CaseForm form) const { return form == CaseForm::upper ? upper : lower; }
    bool takes(char32_t character) const;
    // The character itself where it has no such form.
    char32_t formOf(char32_t character, CaseForm form) const;
};

// A description may begin with all of another's lines, which stands in the same folder.
CaseSource readCase(const std::filesystem::path& file);

}  // namespace nls::mkconvmap
