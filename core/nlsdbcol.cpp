// Door: what a database brings to its locale.
#include "core/base/checks.hpp"
#include "core/word_break_table.hpp"
#include "nls/inner.h"

nlsStatus getWbTable(nlsLocale* locale, const void* wbData, uint32_t length, nlsLocale* target) {
    if (wbData == nullptr) return NLS_BAD_WB_TABLE;
    if (target != nullptr) {
        if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
        if (const nlsStatus bad = nls::checkLocale(target)) return bad;
    }
    if (locale == nullptr || locale->wordBreak == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    return nls::completeWordBreakTable(*locale, {static_cast<const unsigned char*>(wbData), length}, target);
}
