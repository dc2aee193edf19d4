// Text, paths and the environment.
#include <cstdlib>
#include <cstring>

#include "jutil.h"

uint32_t dbut_stlen(const char* text) {
    return static_cast<uint32_t>(std::strlen(text));
}

uint32_t dbut_stncop(char* target, const char* source, uint32_t limit) {
    const std::size_t length = strnlen(source, limit);
    std::memmove(target, source, length);
    target[length] = '\0';
    return static_cast<uint32_t>(length);
}

void dbut_utgetenvwithsize(const char* name, char* buffer, int32_t size) {
    const char* const value = std::getenv(name);
    if (value != nullptr && size > 0) dbut_stncop(buffer, value, static_cast<uint32_t>(size - 1));
}

void dbut_utfpsep(char* path) {
    dbut_utfpcat(path, "/");
}

void dbut_utfpcat(char* path, const char* name) {
    std::memcpy(path + std::strlen(path), name, std::strlen(name) + 1);
}
