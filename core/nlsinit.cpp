// Door: the handle, its arena, a thread's block, and small services for old callers.
#include <bit>

#include "core/base/arena.hpp"
#include "core/base/busy_guard.hpp"
#include "core/base/checks.hpp"
#include "core/base/decimal_field.hpp"
#include "core/base/names.hpp"
#include "core/base/object_chain.hpp"
#include "core/handle.hpp"
#include "core/tls_block.hpp"
#include "icu/collator.hpp"
#include "nls/handle.h"
#include "nls/inner.h"

namespace {

nls::ByteSpan bytesAt(void* memory, int32_t size) {
    return {static_cast<unsigned char*>(memory), static_cast<std::size_t>(size)};
}

// Null for a size below 0, and where the arena can't serve it.
void* takeFrom(const nls::Arena& arena, int32_t size, uint32_t alignment) {
    return size < 0 ? nullptr : arena.take(static_cast<uint64_t>(size), alignment);
}

}  // namespace

nlsStatus nlsInit(uint32_t fileHandle, void* block, int32_t size, nlsReadFn readFn, nlsHandle** handle) {
    if (size < NLS_SMALLEST_BLOCK) return NLS_NO_MEM;
    if (block == nullptr || readFn == nullptr || handle == nullptr) return NLS_BAD_ARG;
    const nls::OpenedHandle opened = nls::openHandle(bytesAt(block, size), readFn, fileHandle);
    if (opened.status == NLS_OK) *handle = opened.handle;
    return opened.status;
}

nlsStatus nlsClose(nlsHandle* handle) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (handle->busy != 0) return NLS_BUSY;
    const nls::BusyGuard busy{*handle};
    nls::endHandle(*handle);
    return NLS_OK;
}

nlsStatus nlsAddBuffer(nlsHandle* handle, void* buffer, int32_t size) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (handle->busy != 0) return NLS_BUSY;
    const nls::BusyGuard busy{*handle};
    if (size < NLS_SMALLEST_BUFFER) return NLS_NO_MEM;
    if (buffer == nullptr) return NLS_BAD_ARG;
    nls::addBuffer(*handle, bytesAt(buffer, size));
    return NLS_OK;
}

nlsStatus nlsGetMem(nlsHandle* handle, int32_t size, uint32_t alignment, void** memory) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (memory == nullptr) return NLS_BAD_ARG;
    void* const taken = takeFrom(nls::Arena{handle->freePtr, handle->freeBytes}, size, alignment);
    if (taken == nullptr) return NLS_NO_MEM;
    *memory = taken;
    return NLS_OK;
}

nlsStatus getBufMem(int32_t size, uint32_t alignment, unsigned char** cursor, uint32_t* remaining, void** memory) {
    void* const taken = takeFrom(nls::Arena{*cursor, *remaining}, size, alignment);
    if (taken == nullptr) return NLS_BUF_SMALL;
    *memory = taken;
    return NLS_OK;
}

nlsStatus nlsLinkHdr(nlsHandle* handle, nlsHdr* object) {
    nls::linkObject(*handle, *object);
    return NLS_OK;
}

nlsStatus nlsTlsInit(uint64_t ownerWord, void* buffer, uint32_t* size, nlsTlsBlock** block) {
    if (size == nullptr || block == nullptr) return NLS_BAD_ARG;
    const nls::TlsPlace place =
        nls::placeTlsBlock({static_cast<unsigned char*>(buffer), buffer == nullptr ? 0 : *size}, ownerWord);
    *block = place.block;
    if (place.block != nullptr) return NLS_OK;
    *size = place.bytesNeeded;
    return NLS_BUF_SMALL;
}

nlsStatus nlsTlsClose(nlsTlsBlock* block) {
    if (block != nullptr) nls::closeCollator(*block);
    return NLS_OK;
}

nlsStatus putTempVers(uint32_t version) {
    nlsTemporaryVers = version;
    return NLS_OK;
}

int32_t nlsAtoin(const char* text, int32_t width) {
    return nls::readDecimal(text, width);
}

uint32_t nlsSwapLong(const void* bytes) {
    return __builtin_bswap32(nls::loadWord<uint32_t>(bytes));
}

int32_t nlsStbcmp(const char* a, const char* b) {
    return nls::compareNames(a, b);
}

nlsStatus getTOC(nlsHandle* handle) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    return nls::readContentsInto(*handle);
}
