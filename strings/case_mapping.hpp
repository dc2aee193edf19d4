// Text in lower or upper case, by the tables of a locale:
//
//   no case table           each byte that is a character by the C library's table of the process's locale
//   a case table of bytes   each byte that is a character through a map of 256; of a longer one two bytes are copied
//   a case table of UTF-8   each character by its form in the pages of convmap/case_pages.hpp, which may be shorter
//
// Other characters are copied. Tested by tests/strings/case_mapping_test.cpp.
#pragma once

#include "convmap/case_pages.hpp"
#include "core/base/views.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

struct CaseMapped {
    nlsStatus status;  // NLS_OK or NLS_BUF_SMALL
    uint32_t length;   // bytes written, without the NUL; nothing with NLS_BUF_SMALL
};

// Writes `text`, which holds no NUL, and a NUL behind it. A character that the end of the text cuts short is the bytes
// in front of it. With NLS_BUF_SMALL the characters that fit are written, and a NUL where a longer one found some room
// but not enough. `target` may be the bytes of `text`: a character is read before its form is written.
//
// REQUIRES: the locale has an attribute table.
CaseMapped mapCase(const nlsLocale& locale, ByteView text, ByteSpan target, CaseForm form);

}  // namespace nls
