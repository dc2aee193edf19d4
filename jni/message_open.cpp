#include "jni/message_open.hpp"

#include "nls/handle.h"
#include "nls/objects.h"

namespace nls {

namespace {

uint32_t readConvmap(uint32_t fileHandle, uint32_t offset, void* buffer, uint32_t length) {
    return convReadFromFile(fileHandle, static_cast<int32_t>(offset), buffer, length);
}

int32_t openHandle(nlsMessageContext& context) {
    void* const block = dbut_utmalloc(kArenaSize);
    if (block == nullptr) return NLS_CONVMAP_NO_MEMORY;
    nlsHandle* handle = nullptr;
    if (nlsInit(context.zlmFile, block, kArenaSize, readConvmap, &handle) != NLS_OK) {
        dbut_utfree(block);
        return NLS_CONVMAP_NO_CONVERSION;
    }
    context.zlmArena = block;
    context.zlmNlsHandle = handle;
    return NLS_CONVMAP_OK;
}

// Gives a short arena its extra buffer, once for each context.
int32_t addExtraBuffer(nlsMessageContext& context) {
    if (context.zlmExtraBuffer != nullptr) return kFailedSilently;
    context.zlmExtraBuffer = dbut_utmalloc(kExtraBufferSize);
    if (context.zlmExtraBuffer == nullptr) return NLS_CONVMAP_NO_MEMORY;
    const nlsStatus status = nlsAddBuffer(context.zlmNlsHandle, context.zlmExtraBuffer, kExtraBufferSize);
    return status == NLS_OK ? NLS_CONVMAP_OK : kFailedSilently;
}

// The code of each status of a step; one that isn't listed fails silently.
int32_t codeOfTarget(nlsStatus status) {
    return status == NLS_OK ? NLS_CONVMAP_OK : kFailedSilently;
}

int32_t codeOfSource(nlsStatus status) {
    switch (status) {
        case NLS_OK:
            return NLS_CONVMAP_OK;
        case NLS_NO_ATTRIB_TABLE:
            return NLS_CONVMAP_BAD_CHARSET;
        case NLS_NO_COLL_TABLE:
            return NLS_CONVMAP_BAD_COLLATION;
        case NLS_NO_CASE_TABLE:
            return NLS_CONVMAP_BAD_CASE_TABLE;
        default:
            return kFailedSilently;
    }
}

int32_t codeOfConversion(nlsStatus status) {
    if (status == NLS_OK) return NLS_CONVMAP_OK;
    return status == NLS_BAD_HANDLE ? NLS_CONVMAP_CODEPAGE : kFailedSilently;
}

// Calls `step`, again with more memory where the arena is short, and turns its status into a code.
template <typename Step>
int32_t withRoom(nlsMessageContext& context, int32_t (*codeOf)(nlsStatus), Step step) {
    nlsStatus status = step();
    while (status == NLS_NO_MEM) {
        if (const int32_t code = addExtraBuffer(context); code != NLS_CONVMAP_OK) return code;
        status = step();
    }
    return codeOf(status);
}

int32_t makeObjects(nlsMessageContext& context) {
    nlsLocale* target = nullptr;
    nlsLocale* source = nullptr;
    int32_t code = withRoom(context, codeOfTarget,
                            [&] { return nlsCreateLocale(context.zlmNlsHandle, "UTF-8", nullptr, nullptr, &target); });
    if (code != NLS_CONVMAP_OK) return code;
    char charset[sizeof context.zlmCharset + 1];  // closed, whatever juZlmOpen has left there
    dbut_stncop(charset, context.zlmCharset, sizeof context.zlmCharset);
    code = withRoom(context, codeOfSource,
                    [&] { return nlsCreateLocale(context.zlmNlsHandle, charset, NLS_NO_COLLATION, nullptr, &source); });
    if (code != NLS_CONVMAP_OK) return code;
    return withRoom(context, codeOfConversion,
                    [&] { return nlsCreateConversion(context.zlmNlsHandle, source, target, &context.zlmConversion); });
}

}  // namespace

int32_t openConversion(nlsMessageContext& context) {
    uint32_t file = 0;
    if (convOpenFile(&file) != NLS_CONVMAP_OK) return NLS_CONVMAP_OPEN_FAILED;
    context.zlmFile = file;
    const int32_t code = openHandle(context);
    return code == NLS_CONVMAP_OK ? makeObjects(context) : code;
}

}  // namespace nls

void cleanupNls(nlsMessageContext* context) {
    if (context->zlmNlsHandle != nullptr) nlsClose(context->zlmNlsHandle);
    context->zlmNlsHandle = nullptr;
    if (context->zlmFile != 0) convFileClose(&context->zlmFile);
    context->zlmFile = 0;
    if (context->zlmArena != nullptr) dbut_utfree(context->zlmArena);
    context->zlmArena = nullptr;
    if (context->zlmExtraBuffer != nullptr) dbut_utfree(context->zlmExtraBuffer);
    context->zlmExtraBuffer = nullptr;
}
