// Message files: opened, searched by number, closed. Nothing is kept in memory but what the context holds; a look-up
// reads the entries that a binary search asks for.
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "jutil.h"
#include "message_file.hpp"

namespace {

using jutil::MessageEntry;
using jutil::MessageHeader;

constexpr uint32_t kOpen = 0x4A5A4C4D;

// The part of a context that is juZlmOpen's.
struct ZlmContext {
    uint32_t tag;
    uint32_t file;
    uint32_t count;     // of entries
    uint32_t fileSize;  // in bytes
    const char* errorText;
    char errorRoom[516];
    char charset[28];
};
static_assert(offsetof(ZlmContext, errorText) == JU_ZLM_ERROR_TEXT && offsetof(ZlmContext, charset) == JU_ZLM_CHARSET);
static_assert(sizeof(ZlmContext) == 568);

// Exactly `size` bytes at `offset`.
bool readAt(uint32_t file, uint64_t offset, void* to, uint32_t size) {
    uint32_t got = 0;
    int32_t error = 0;
    return offset <= INT32_MAX &&
           dbut_utReadFromFile(file, static_cast<int32_t>(offset), to, size, &got, &error) == 0 && got == size;
}

// What is wrong with the file behind a header that was read, or null.
const char* faultIn(const MessageHeader& header, uint32_t file) {
    char behind = 0;
    const uint64_t entriesEnd = sizeof header + uint64_t{header.count} * sizeof(MessageEntry);
    if (std::memcmp(header.magic, jutil::kMagic, sizeof header.magic) != 0) return "isn't a zelmsgs file";
    if (header.charset[0] == '\0' || header.charset[sizeof header.charset - 1] != '\0') return "names no charset";
    if (header.fileSize < entriesEnd) return "has less room than entries";
    if (!readAt(file, uint64_t{header.fileSize} - 1, &behind, 1)) return "is cut short";
    return nullptr;
}

int32_t refuse(ZlmContext& context, const char* path, const char* fault) {
    std::snprintf(context.errorRoom, sizeof context.errorRoom, "zelmsgs file %s %s", path, fault);
    context.errorText = context.errorRoom;
    return JU_ZLM_READ;
}

int32_t openInto(ZlmContext& context, uint32_t file, const char* path) {
    MessageHeader header{};
    if (!readAt(file, 0, &header, sizeof header)) return JU_ZLM_READ;
    if (const char* const fault = faultIn(header, file)) return refuse(context, path, fault);
    context.tag = kOpen;
    context.file = file;
    context.count = header.count;
    context.fileSize = header.fileSize;
    std::memcpy(context.charset, header.charset, sizeof header.charset);
    return header.version == jutil::kVersion ? JU_ZLM_OK : JU_ZLM_WRONG_VERSION;
}

// Finds the entry of a number among those of the file: JU_ZLM_OK, JU_ZLM_NO_MESSAGE, JU_ZLM_READ.
int32_t findEntry(const ZlmContext& context, int32_t number, MessageEntry& entry) {
    uint32_t low = 0;
    for (uint32_t high = context.count; low != high;) {
        const uint32_t middle = low + (high - low) / 2;
        const uint64_t place = sizeof(MessageHeader) + uint64_t{middle} * sizeof entry;
        if (!readAt(context.file, place, &entry, sizeof entry)) return JU_ZLM_READ;
        if (entry.number == number) return JU_ZLM_OK;
        if (entry.number < number) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return JU_ZLM_NO_MESSAGE;
}

}  // namespace

int32_t juZlmMakeFilename(const char* locale, char* buffer, int32_t size) {
    constexpr const char* kName = "zelmsgs.";
    if (locale == nullptr || dbut_stlen(locale) != 3) return JU_ZLM_BAD_LOCALE;
    char directory[4096] = "";
    const int32_t found = dbut_utLookupRegistry("QRD", directory, sizeof directory);
    if (found == DBUT_VALUE_TOO_LONG) return JU_ZLM_BUFFER_SMALL;
    if (found != 0) dbut_utgetenvwithsize("QRD", directory, sizeof directory);
    if (directory[0] == '\0') return JU_ZLM_NO_DIRECTORY;
    const uint32_t length = dbut_stlen(directory) + 1 + dbut_stlen(kName) + 3;
    if (size < 0 || length >= static_cast<uint32_t>(size)) return JU_ZLM_BUFFER_SMALL;
    dbut_stncop(buffer, directory, dbut_stlen(directory));
    dbut_utfpsep(buffer);
    dbut_utfpcat(buffer, kName);
    dbut_utfpcat(buffer, locale);
    return JU_ZLM_OK;
}

int32_t juZlmOpen(void* context, const char* path) {
    auto& own = *static_cast<ZlmContext*>(context);
    own = {};
    int32_t error = 0;
    const int32_t file = dbut_utOsOpen(path, 0, -1, 0, &error);
    if (file == -1) return JU_ZLM_NO_FILE;
    const int32_t code = openInto(own, static_cast<uint32_t>(file), path);
    if (code < 0) dbut_utOsClose(static_cast<uint32_t>(file), 0);
    return code;
}

int32_t juZlmLookup(void* context, int32_t number, char* text) {
    const auto* const own = static_cast<const ZlmContext*>(context);
    if (own == nullptr || own->tag != kOpen) return JU_ZLM_BAD_CONTEXT;
    MessageEntry entry{};
    if (const int32_t code = findEntry(*own, number, entry); code != JU_ZLM_OK) return code;
    if (entry.length > jutil::kLongestMessage) return JU_ZLM_BUFFER_SMALL;
    if (uint64_t{entry.offset} + entry.length > own->fileSize || !readAt(own->file, entry.offset, text, entry.length)) {
        std::snprintf(text, JU_ZLM_TEXT, "message %d of the zelmsgs file can't be read", static_cast<int>(number));
        return JU_ZLM_READ;
    }
    text[entry.length] = '\0';
    return JU_ZLM_OK;
}

int32_t juZlmClose(void* context) {
    auto* const own = static_cast<ZlmContext*>(context);
    if (own == nullptr || own->tag != kOpen) return JU_ZLM_BAD_CONTEXT;
    own->tag = 0;
    return dbut_utOsClose(own->file, 0);
}
