// The registry: a plain text file, named by the environment variable JUTIL_REGISTRY, with lines "NAME = value". Blanks
// around name and value don't count; of lines with one name the first counts. A line that begins with "#" is a comment,
// since no name that is asked for does. The file is read afresh for every look-up. No such file, no names.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "jutil.h"

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Cuts the blanks off both ends of the text between two places, and closes it.
char* trimmed(char* begin, char* end) {
    while (begin != end && isBlank(*begin)) ++begin;
    while (end != begin && isBlank(end[-1])) --end;
    *end = '\0';
    return begin;
}

// The value, inside the line, if the line is that of the name; else null. The line is cut up.
const char* valueIn(char* line, const char* name) {
    char* const sign = std::strchr(line, '=');
    if (sign == nullptr) return nullptr;
    char* const value = trimmed(sign + 1, sign + std::strlen(sign));
    return std::strcmp(trimmed(line, sign), name) == 0 ? value : nullptr;
}

int32_t handOut(const char* value, char* buffer, int32_t size) {
    if (size <= 0 || std::strlen(value) >= static_cast<std::size_t>(size)) return DBUT_VALUE_TOO_LONG;
    dbut_stncop(buffer, value, static_cast<uint32_t>(size - 1));
    return 0;
}

}  // namespace

int32_t dbut_utLookupRegistry(const char* name, char* buffer, int32_t size) {
    const char* const path = std::getenv("JUTIL_REGISTRY");
    std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "re");
    if (file == nullptr) return DBUT_NO_SUCH_NAME;
    char* line = nullptr;
    std::size_t room = 0;
    int32_t result = DBUT_NO_SUCH_NAME;
    while (result == DBUT_NO_SUCH_NAME && getline(&line, &room, file) >= 0) {
        if (const char* const value = valueIn(line, name)) result = handOut(value, buffer, size);
    }
    std::free(line);
    std::fclose(file);
    return result;
}
