#include "core/base/names.hpp"

#include <ctype.h>

#include <cstdint>
#include <cstring>

namespace nls {

namespace {

// The table's entry for the byte taken as a signed value, cut to its low byte. A Turkish locale maps "i" to a dotted
// capital that doesn't fit a byte of UTF-8, and leaves it alone; in an 8-bit Turkish locale "i" and "I" are two
// letters.
signed char upperCase(const int32_t* table, char byte) {
    return static_cast<signed char>(table[static_cast<signed char>(byte)]);
}

bool onlyBlanks(const char* rest) {
    while (*rest == ' ') ++rest;
    return *rest == '\0';
}

}  // namespace

int compareNames(const char* a, const char* b) {
    const int32_t* const table = *__ctype_toupper_loc();
    while (upperCase(table, *a) == upperCase(table, *b)) {
        if (*a == '\0') return 0;
        ++a;
        ++b;
    }
    if (*a == '\0') return onlyBlanks(b) ? 0 : -1;
    if (*b == '\0') return onlyBlanks(a) ? 0 : 1;
    return upperCase(table, *b) < upperCase(table, *a) ? 1 : -1;
}

bool beginsWith(const char* name, const char* prefix) {
    const int32_t* const table = *__ctype_toupper_loc();
    for (; *prefix != '\0'; ++name, ++prefix)
        if (upperCase(table, *name) != upperCase(table, *prefix)) return false;
    return true;
}

void copyName(char* target, std::size_t room, const char* name) {
    const std::size_t length = strnlen(name, room - 1);
    std::memcpy(target, name, length);
    target[length] = '\0';
}

}  // namespace nls
