// The message context: an open message file and what turns its texts into UTF-8. Its address is what Java holds.
#pragma once

#include <cstddef>

#include "jni/message_helpers.h"
#include "jutil.h"
#include "nls/records.h"

struct nlsMessageContext {
    unsigned char ownOfZlm[JU_ZLM_ERROR_TEXT];  // juZlmOpen's own
    const char* zlmErrorText;                   // from juZlmOpen; may be null or empty
    unsigned char alsoOfZlm[JU_ZLM_CHARSET - JU_ZLM_ERROR_TEXT - sizeof(const char*)];
    char zlmCharset[28];           // charset of the message file, from juZlmOpen
    nlsHandle* zlmNlsHandle;       // null: none
    nlsConversion* zlmConversion;  // from zlmCharset to UTF-8
    uint32_t zlmFile;              // the open convmap.cp, 0: none
    void* zlmArena;                // the block of zlmNlsHandle, from dbut_utmalloc
    void* zlmExtraBuffer;          // the buffer that was added to it, or null
};

static_assert(sizeof(nlsMessageContext) == JU_ZLM_CONTEXT);
static_assert(offsetof(nlsMessageContext, zlmErrorText) == JU_ZLM_ERROR_TEXT);
static_assert(offsetof(nlsMessageContext, zlmCharset) == JU_ZLM_CHARSET);
static_assert(offsetof(nlsMessageContext, zlmNlsHandle) == 568 && offsetof(nlsMessageContext, zlmConversion) == 576);
static_assert(offsetof(nlsMessageContext, zlmFile) == 584 && offsetof(nlsMessageContext, zlmArena) == 592);
static_assert(offsetof(nlsMessageContext, zlmExtraBuffer) == 600);
