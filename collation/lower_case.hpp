// The lower-case forms of one locale's characters.
#pragma once

#include "collation/ascii_case.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "nls/base.h"
#include "nls/records.h"

namespace nls {

class LowerCase {
public:
    // REQUIRES: the locale has an attribute table.
    explicit LowerCase(const nlsLocale& locale)
        : table_(locale.caseTable != nullptr && Charset{*locale.attrib}.isUtf8() ? &unicodeCaseTable(*locale.caseTable)
                                                                                 : nullptr),
          attrib_(locale.attrib) {}

    // Null: no character has a form.
    const nlsUnicodeCaseStruct* table() const { return table_; }

    nlsLChar operator()(nlsLChar value) const { return table_ == nullptr ? value : formIn(*table_, value); }

    static nlsLChar formIn(const nlsUnicodeCaseStruct& table, nlsLChar value) {
        // The short forms stand for themselves: a switch for all takes as long as two of these.
        const unsigned page = casePageOf(value);
        const unsigned index = caseIndexOf(value, CaseForm::lower);
        if (value > 0xFFFF || index >= entriesOfCasePage(page))
            return caseFormOf(table.casePages, value, CaseForm::lower);
        const nlsLChar form = table.casePages[page][index];
        return form == 0 ? value : form;
    }

    bool isPlainOnAscii() const {
        return table_ != nullptr && hasPlainAsciiForms(table_->casePages, CaseForm::lower) &&
               isAsciiSingleByte(*attrib_);
    }

private:
    const nlsUnicodeCaseStruct* table_;
    const nlsAttribStruct* attrib_;
};

}  // namespace nls
