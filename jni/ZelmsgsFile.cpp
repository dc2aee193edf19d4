// Message files for Java: opened, looked up, closed.
#include <new>

#include "jni/jni_text.hpp"
#include "jni/message_context.hpp"
#include "jni/message_open.hpp"
#include "jni/message_text.hpp"
#include "jni/native_methods.h"

namespace {

constexpr int32_t kPathSize = 256;

nlsMessageContext* contextAt(jlong context) {
    return reinterpret_cast<nlsMessageContext*>(context);
}

struct MessageFile {
    nlsMessageContext* context;  // null: none was made
    int32_t code;                // of the utility library
    bool noText;                 // the Java machine couldn't give a string, and has set an exception
};

// From here on the fields behind those of juZlmOpen tell what there is to give back.
void clearOwnFields(nlsMessageContext& context) {
    context.zlmNlsHandle = nullptr;
    context.zlmConversion = nullptr;
    context.zlmArena = nullptr;
    context.zlmExtraBuffer = nullptr;
    context.zlmFile = 0;
}

// Opens the file of that name, or of that locale.
MessageFile openMessageFile(JNIEnv* env, jstring fileName, jstring locale) {
    const nls::BorrowedText name{env, fileName};
    if (name.failed()) return {nullptr, 0, true};
    const nls::BorrowedText place{env, locale};
    if (place.failed()) return {nullptr, 0, true};
    char path[kPathSize];
    if (name.get() != nullptr) {
        dbut_stncop(path, name.get(), kPathSize - 1);
    } else if (const int32_t code = juZlmMakeFilename(place.get(), path, kPathSize); code != 0) {
        return {nullptr, code, false};
    }
    void* const memory = dbut_utmalloc(sizeof(nlsMessageContext));
    if (memory == nullptr) return {nullptr, 0, false};
    auto* const context = new (memory) nlsMessageContext{};
    const int32_t code = juZlmOpen(context, path);
    clearOwnFields(*context);
    return {context, code, false};
}

// Gives back all that a context holds, and the context.
void endContext(nlsMessageContext* context) {
    cleanupNls(context);
    juZlmClose(context);
    dbut_utfree(context);
}

// What Java is told of a file that isn't open.
const char* reasonOf(const MessageFile& file) {
    if (file.context == nullptr && file.code == 0) return "error allocating virtual memory";
    const bool told =
        file.context != nullptr && file.context->zlmErrorText != nullptr && file.context->zlmErrorText[0] != '\0';
    return told ? file.context->zlmErrorText : getErrorString(file.code);
}

// Shows the text of a warning through the Java class that is there for it. False: an exception is pending.
bool showWarning(JNIEnv* env, int32_t code) {
    const jclass tools = env->FindClass("com/lorvanta/halvane/common/Tools");
    if (tools == nullptr) return false;
    const jmethodID ps = env->GetStaticMethodID(tools, "ps", "(Ljava/lang/String;)V");
    if (ps == nullptr) return false;
    const jstring text = nls::newString(env, getErrorString(code));
    if (text == nullptr) return false;
    env->CallStaticVoidMethod(tools, ps, text);
    return env->ExceptionCheck() == JNI_FALSE;
}

// Throws the text of a code, if it has one.
void throwCode(JNIEnv* env, jclass exceptionClass, int32_t code) {
    if (const char* const text = getErrorString(code)) nls::throwText(env, exceptionClass, text);
}

}  // namespace

jlong Java_com_lorvanta_common_util_ZelmsgsFile_juZlmOpen(JNIEnv* env, jobject, jclass exceptionClass, jstring fileName,
                                                          jstring locale) {
    const MessageFile file = openMessageFile(env, fileName, locale);
    if (file.noText) return 0;
    if (file.context == nullptr || file.code < 0) {
        nls::throwText(env, exceptionClass, reasonOf(file));
        if (file.context != nullptr) endContext(file.context);
        return 0;
    }
    if (file.code == 0 || showWarning(env, file.code)) {
        const int32_t code = nls::openConversion(*file.context);
        if (code == NLS_CONVMAP_OK) return reinterpret_cast<jlong>(file.context);
        throwCode(env, exceptionClass, code);
    }
    endContext(file.context);
    return 0;
}

jstring Java_com_lorvanta_common_util_ZelmsgsFile_juZlmLookup(JNIEnv* env, jobject, jclass exceptionClass,
                                                              jlong context, jint number) {
    unsigned char text[JU_ZLM_TEXT];
    auto* const chars = reinterpret_cast<char*>(text);
    chars[0] = '\0';
    const int32_t code = juZlmLookup(contextAt(context), number, chars);
    chars[JU_ZLM_TEXT - 1] = '\0';  // whatever the utility library has written
    if (code != 0) {
        nls::throwText(env, exceptionClass, chars[0] != '\0' ? chars : getErrorString(code));
        return nullptr;
    }
    unsigned char utf8[nls::kUtf8Size];
    const nls::Utf8Message message = nls::convertMessage(*contextAt(context), text, utf8);
    if (message.code == NLS_CONVMAP_OK) return nls::newString(env, utf8, message.length);
    throwCode(env, exceptionClass, message.code);
    return nullptr;
}

void Java_com_lorvanta_common_util_ZelmsgsFile_juZlmClose(JNIEnv*, jobject, jclass, jlong context) {
    if (context != 0) endContext(contextAt(context));
}
