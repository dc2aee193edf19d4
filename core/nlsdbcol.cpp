// Door: what a database keeps of a collation, and what it brings to its locale.
#include <algorithm>

#include "core/base/busy_guard.hpp"
#include "core/base/checks.hpp"
#include "core/db_block.hpp"
#include "core/db_collation_read.hpp"
#include "core/db_collation_write.hpp"
#include "core/word_break_table.hpp"
#include "nls/dbcollation.h"
#include "nls/inner.h"

static_assert(NLS_LAST_SHORT_FORMAT == nls::kLastShortFormat);

namespace {

bool isAligned(const void* block) {
    return (reinterpret_cast<uintptr_t>(block) & 7) == 0;
}

}  // namespace

nlsStatus nlsLocaleToDbCollation(const nlsLocale* locale, int32_t format, uint32_t imageRoom, nlsDbCollation* rec) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (rec == nullptr || rec->dbImage == nullptr) return NLS_BAD_ARG;
    if (locale->coll == nullptr) return NLS_BAD_COLLATION;
    if (format > nls::kLastShortFormat && locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (imageRoom < nls::storedSizes(*locale, format).image) return NLS_BUF_SMALL;
    nls::writeStored(*locale, format, *rec);
    return NLS_OK;
}

nlsStatus nlsDbCollationToLocale(nlsHandle* handle, const nlsDbCollation* rec, const unsigned char* dbCollationName,
                                 uint32_t* size, void* block, nlsLocale** locale) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (rec == nullptr || dbCollationName == nullptr || size == nullptr) return NLS_BAD_ARG;
    if (rec->dbImage == nullptr && rec->dbCollKind > nls::kLastKindByFile) return NLS_BAD_ARG;
    if (handle->busy != 0) return NLS_BUSY;
    const nls::BusyGuard busy{*handle};
    const nls::ByteView text = nls::untilNul(dbCollationName);
    const nls::BlockNeeded needed = nls::blockNeeded(*rec, text.size());
    if (needed.status != NLS_OK) return needed.status;
    if (needed.size > *size) {
        *size = static_cast<uint32_t>(std::min<uint64_t>(needed.size, UINT32_MAX));
        return NLS_BUF_SMALL;
    }
    if (rec->dbImage == nullptr || block == nullptr || locale == nullptr || !isAligned(block)) return NLS_BAD_ARG;
    const nls::ByteSpan room{static_cast<unsigned char*>(block), *size};
    if (const nlsStatus bad = nls::openStored(*handle, *rec, text, room)) return bad;
    *locale = static_cast<nlsLocale*>(block);
    return NLS_OK;
}

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
