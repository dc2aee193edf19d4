#include "core/handle.hpp"

#include <algorithm>

#include "collation/user_sort.hpp"
#include "convmap/load_context.hpp"
#include "core/base/arena.hpp"
#include "core/base/busy_guard.hpp"
#include "icu/control.hpp"

namespace nls {

namespace {

// Clears `buffer` and has the arena take from its bytes behind the first `skipped`.
void takeFrom(nlsHandle& handle, ByteSpan buffer, std::size_t skipped) {
    const ByteSpan rest = buffer.subspan(skipped);
    std::ranges::fill(rest, static_cast<unsigned char>(0));
    handle.freePtr = rest.data();
    handle.freeBytes = static_cast<uint32_t>(rest.size());
}

// The head of the list of collations, which a HandleBlock has behind its first buffer's record.
void makeCollationList(nlsHandle& handle) {
    Arena{handle.freePtr, handle.freeBytes}.make<nlsCollStruct*>();
}

void recordBuffer(nlsHandle& handle, ByteSpan buffer) {
    auto* const record = Arena{handle.freePtr, handle.freeBytes}.make<nlsBufferRec>();
    record->base = buffer.data();
    record->prevBuffer = handle.bufferRec;
    record->size = static_cast<int32_t>(buffer.size());
    handle.bufferRec = record;
}

}  // namespace

OpenedHandle openHandle(ByteSpan block, nlsReadFn readFn, uint32_t fileHandle) {
    auto& handle = *reinterpret_cast<nlsHandle*>(block.data());
    std::ranges::fill(block.first(sizeof handle), static_cast<unsigned char>(0));
    handle.chainHead = &handle.hdr;
    handle.hdr.typeTag = NLS_TAG_HANDLE;
    handle.hdr.serial = 1;
    takeFrom(handle, block, sizeof handle);
    recordBuffer(handle, block);
    makeCollationList(handle);
    handle.readFn = readFn;
    handle.fileHandle = fileHandle;
    const BusyGuard busy{handle};
    startIcuControl();
    return {readContentsInto(handle), &handle};
}

nlsStatus readContentsInto(nlsHandle& handle) {
    const LoadContext context = loadContextOf(handle);
    const ReadContents read = readContents(context.arena, context.file);
    if (read.status != NLS_OK) return read.status;
    handle.toc = read.entries.data();
    handle.tocCount = static_cast<int32_t>(read.entries.size());
    return NLS_OK;
}

void addBuffer(nlsHandle& handle, ByteSpan buffer) {
    handle.bufferRec->leftover = handle.freeBytes;
    takeFrom(handle, buffer, 0);
    recordBuffer(handle, buffer);
}

void endHandle(nlsHandle& handle) {
    closeUserSort(handle);
    handle.hdr.typeTag = NLS_TAG_CLOSED;
}

}  // namespace nls
