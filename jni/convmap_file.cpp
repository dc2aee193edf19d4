// convmap.cp as the bridge finds, opens and reads it, through the utility library.
#include "jni/message_helpers.h"
#include "jutil.h"

namespace {

constexpr int32_t kPathSize = 4096;
constexpr const char* kFileName = "convmap.cp";

enum class Found { no, yes, tooLong };

int32_t lengthOf(const char* text) {
    return static_cast<int32_t>(dbut_stlen(text));
}

Found copyWhereItFits(char* path, int32_t size, const char* value) {
    if (lengthOf(value) >= size) return Found::tooLong;
    dbut_stncop(path, value, static_cast<uint32_t>(size - 1));
    return Found::yes;
}

Found fromRegistry(const char* name, char* path, int32_t size) {
    const int32_t result = dbut_utLookupRegistry(name, path, size);
    if (result == 0) return Found::yes;
    return result == DBUT_VALUE_TOO_LONG ? Found::tooLong : Found::no;
}

Found fromEnvironment(const char* name, char* path, int32_t size) {
    char value[kPathSize] = "";
    dbut_utgetenvwithsize(name, value, sizeof value);
    return value[0] == '\0' ? Found::no : copyWhereItFits(path, size, value);
}

// The value of a name: in the registry, else in the environment.
Found readSetting(const char* name, char* path, int32_t size) {
    const Found inRegistry = fromRegistry(name, path, size);
    return inRegistry != Found::no ? inRegistry : fromEnvironment(name, path, size);
}

}  // namespace

int32_t convMakeFilename(char* path, int32_t size) {
    Found found = readSetting("ZELCONV", path, size);
    if (found == Found::no) {
        found = readSetting("QRD", path, size);
        if (found == Found::yes) return appendFileName(path, size, kFileName);
    }
    if (found == Found::no) found = copyWhereItFits(path, size, kFileName);
    return found == Found::yes ? NLS_CONVMAP_OK : NLS_CONVMAP_BUFFER_SMALL;
}

int32_t appendFileName(char* path, int32_t size, const char* name) {
    if (lengthOf(path) + 1 >= size) return NLS_CONVMAP_BUFFER_SMALL;
    dbut_utfpsep(path);
    if (lengthOf(path) + lengthOf(name) >= size) return NLS_CONVMAP_BUFFER_SMALL;
    dbut_utfpcat(path, name);
    return NLS_CONVMAP_OK;
}

int32_t convOpenFile(uint32_t* file) {
    char path[kPathSize];
    if (const int32_t code = convMakeFilename(path, sizeof path); code != NLS_CONVMAP_OK) return code;
    int32_t errorNumber = 0;
    *file = static_cast<uint32_t>(dbut_utOsOpen(path, 0, -1, 0, &errorNumber));
    return *file == UINT32_MAX ? NLS_CONVMAP_OPEN_FAILED : NLS_CONVMAP_OK;
}

uint32_t convReadFromFile(uint32_t fileHandle, int32_t offset, void* buffer, uint32_t size) {
    uint32_t bytesRead = 0;
    int32_t errorNumber = 0;
    dbut_utReadFromFile(fileHandle, offset, buffer, size, &bytesRead, &errorNumber);
    return bytesRead;
}

int32_t convFileClose(const uint32_t* file) {
    return dbut_utOsClose(*file, 0) == -1 ? NLS_CONVMAP_CLOSE_FAILED : NLS_CONVMAP_OK;
}
