#include "strings/str_record.hpp"

#include <cstring>

#include "nls/status.h"

namespace nls {

std::size_t boundedLength(const unsigned char* text, int64_t count) {
    if (count < 1) return 0;
    return strnlen(reinterpret_cast<const char*>(text), static_cast<std::size_t>(count));
}

uint32_t copyClosed(const unsigned char* source, int64_t count, unsigned char* target) {
    const std::size_t length = boundedLength(source, count);
    if (length != 0) std::memmove(target, source, length);  // of no bytes, a source may be null
    target[length] = 0;
    return static_cast<uint32_t>(length);
}

nlsStatus appendText(nlsStr& record, const unsigned char* source, int32_t count) {
    const int64_t room = int64_t{record.bufSize} - int64_t{record.strLength} - 1;
    if (room < 0 || room < count) return NLS_BUF_SMALL;
    record.strLength += copyClosed(source, count, record.buf + record.strLength);
    return NLS_OK;
}

nlsStatus replaceText(nlsStr& record, const unsigned char* source, int64_t count) {
    if (record.bufSize < 1 || count >= record.bufSize) return NLS_BUF_SMALL;
    record.strLength = copyClosed(source, count, record.buf);
    return NLS_OK;
}

}  // namespace nls
