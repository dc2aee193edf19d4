// The log of a database: strings of Java's for the log functions of the utility library, failures as exceptions.
#include <cstring>

#include "jni/jni_text.hpp"
#include "jni/native_methods.h"
#include "jutil.h"

namespace {

constexpr int32_t kPathSize = 256;

// The context behind a long of Java's.
void* contextAt(jlong context) {
    return reinterpret_cast<void*>(context);
}

// Appends `text` to the text in `buffer`, cut to fit.
void appendCut(char (&buffer)[kPathSize], const char* text) {
    const uint32_t used = dbut_stlen(buffer);
    dbut_stncop(buffer + used, text, kPathSize - 1 - used);
}

// Takes a character away that the cut left without its last bytes. The name comes from Java and is well-formed.
void dropCutCharacter(char (&buffer)[kPathSize]) {
    std::size_t lead = std::strlen(buffer);
    const std::size_t end = lead;
    while (lead != 0 && (static_cast<unsigned char>(buffer[lead - 1]) & 0xC0) == 0x80) --lead;
    if (lead == 0) return;
    const auto first = static_cast<unsigned char>(buffer[lead - 1]);
    const std::size_t wanted = first < 0xC0 ? 1 : first < 0xE0 ? 2 : 3;
    if (end - (lead - 1) < wanted) buffer[lead - 1] = '\0';
}

void writeFailure(char (&buffer)[kPathSize], bool create, const char* database) {
    buffer[0] = '\0';
    appendCut(buffer, create ? "error creating log file for database " : "error opening log file for database ");
    appendCut(buffer, database);
    appendCut(buffer, "\n");
    dropCutCharacter(buffer);
}

struct Opened {
    void* context;
    bool failed;  // the text of the failure stands in the buffer
};

// Opens or makes the log. The buffer serves for its path, and then for the text of a failure.
Opened openLog(const char* database, bool create, char (&buffer)[kPathSize]) {
    void* context = nullptr;
    if (juLogMakeFilename(database, buffer, kPathSize) == 0) {
        context = dbut_utmalloc(JU_LOG_CONTEXT);
        if (context == nullptr) return {nullptr, false};
        if (juLogOpen(context, buffer, create ? 1 : 0) == 0) return {context, false};
    }
    if (context != nullptr) dbut_utfree(context);
    writeFailure(buffer, create, database);
    return {nullptr, true};
}

enum class Written { yes, no, noText };

Written writeTexts(JNIEnv* env, void* context, jstring text1, jstring text2, bool flag) {
    const nls::BorrowedText first{env, text1};
    if (first.failed()) return Written::noText;
    const nls::BorrowedText second{env, text2};
    if (second.failed()) return Written::noText;
    return juLogWrite(context, first.get(), second.get(), flag ? 1 : 0) == 0 ? Written::yes : Written::no;
}

}  // namespace

jlong Java_com_lorvanta_common_util_ZellogFile_juLogOpen(JNIEnv* env, jobject, jclass exceptionClass, jstring database,
                                                         jboolean create) {
    if (database == nullptr) {
        nls::throwText(env, exceptionClass, "database name must be specified");
        return 0;
    }
    char buffer[kPathSize];
    Opened opened{};
    {
        const nls::BorrowedText name{env, database};
        if (name.failed()) return 0;
        opened = openLog(name.get(), create == 1, buffer);
    }
    if (opened.failed) nls::throwText(env, exceptionClass, buffer);
    return reinterpret_cast<jlong>(opened.context);
}

void Java_com_lorvanta_common_util_ZellogFile_juLogWrite(JNIEnv* env, jobject, jclass exceptionClass, jlong context,
                                                         jstring text1, jstring text2, jboolean flag) {
    if (writeTexts(env, contextAt(context), text1, text2, flag == 1) == Written::no)
        nls::throwText(env, exceptionClass, "error writing to database log file");
}

void Java_com_lorvanta_common_util_ZellogFile_juLogClose(JNIEnv*, jobject, jclass, jlong context) {
    juLogClose(contextAt(context));
    if (context != 0) dbut_utfree(contextAt(context));
}
