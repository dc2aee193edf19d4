// The log of a database: a text file beside it, DATABASE.log, with one line a message:
//
//     2026-11-23T09:47:44Z 4711 ! text1 text2
//
// the time, the process, "!" for a flag of 1 or "-" for 0, and the texts that aren't null. Control characters in a text
// become blanks, so that a message is one line. A line is appended by one write, so processes may share a log.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "jutil.h"

namespace {

constexpr uint32_t kOpen = 0x4A4C4F47;

struct LogContext {
    uint32_t tag;
    int32_t file;
};
static_assert(sizeof(LogContext) <= JU_LOG_CONTEXT);

// A context as its memory has it; of a null one, one that isn't open.
LogContext contextIn(const void* memory) {
    LogContext context{};
    if (memory != nullptr) std::memcpy(&context, memory, sizeof context);
    return context;
}

std::size_t lengthOf(const char* text) {
    return text == nullptr ? 0 : std::strlen(text);
}

// Writes a blank and the text at `to`; the place behind them.
char* appendText(char* to, const char* text) {
    if (text == nullptr) return to;
    *to++ = ' ';
    for (; *text != '\0'; ++text) *to++ = static_cast<unsigned char>(*text) < 0x20 ? ' ' : *text;
    return to;
}

constexpr std::size_t kHead = 64;  // time, process and flag take fewer

std::size_t writeHead(char* to, int32_t flag) {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    const std::size_t length = std::strftime(to, kHead, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return length + static_cast<std::size_t>(std::snprintf(to + length, kHead - length, " %d %c",
                                                           static_cast<int>(getpid()), flag == 1 ? '!' : '-'));
}

}  // namespace

int32_t juLogMakeFilename(const char* database, char* buffer, int32_t size) {
    constexpr const char* kSuffix = ".log";
    const std::size_t length = std::strlen(database);
    if (length == 0 || size <= 0 || length + std::strlen(kSuffix) >= static_cast<std::size_t>(size)) return -1;
    dbut_stncop(buffer, database, static_cast<uint32_t>(length));
    dbut_utfpcat(buffer, kSuffix);
    return 0;
}

int32_t juLogOpen(void* context, const char* path, int32_t create) {
    const int file = open(path, O_WRONLY | O_APPEND | O_CLOEXEC | (create == 1 ? O_CREAT : 0), 0666);
    if (file < 0) return -1;
    const LogContext opened{kOpen, file};
    std::memcpy(context, &opened, sizeof opened);
    return 0;
}

int32_t juLogWrite(void* context, const char* text1, const char* text2, int32_t flag) {
    const LogContext log = contextIn(context);
    if (log.tag != kOpen) return -1;
    const std::size_t room = kHead + lengthOf(text1) + lengthOf(text2) + 3;  // two blanks and the end of the line
    auto* const line = room > UINT32_MAX ? nullptr : static_cast<char*>(dbut_utmalloc(static_cast<uint32_t>(room)));
    if (line == nullptr) return -1;
    char* end = appendText(appendText(line + writeHead(line, flag), text1), text2);
    *end++ = '\n';
    const ssize_t written = write(log.file, line, static_cast<std::size_t>(end - line));
    const bool whole = written == end - line;
    dbut_utfree(line);
    return whole ? 0 : -1;
}

int32_t juLogClose(void* context) {
    const LogContext log = contextIn(context);
    if (log.tag != kOpen) return -1;
    std::memset(context, 0, sizeof log);
    return close(log.file);
}
