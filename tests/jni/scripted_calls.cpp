// The functions below the bridge as the script wants them: called for real first, then answered for. The linker puts
// these in place of those (--wrap).
#include <algorithm>
#include <cstring>

#include "jutil.h"
#include "nls/nls.h"
#include "tests/jni/scripted_machine.hpp"

using nls::test::script;

#define SCRIPTED(type, name, parameters, arguments)                              \
    type __real_##name parameters;                                               \
    type __wrap_##name parameters {                                              \
        return static_cast<type>(script.answer(#name, __real_##name arguments)); \
    }

extern "C" {

SCRIPTED(nlsStatus, nlsInit, (uint32_t f, void* b, int32_t s, nlsReadFn r, nlsHandle** h), (f, b, s, r, h))
SCRIPTED(nlsStatus, nlsAddBuffer, (nlsHandle * h, void* b, int32_t s), (h, b, s))
SCRIPTED(nlsStatus, nlsCreateLocale, (nlsHandle * h, const char* n, const char* c, const char* k, nlsLocale** l),
         (h, n, c, k, l))
SCRIPTED(nlsStatus, nlsCreateConversion, (nlsHandle * h, nlsLocale* s, nlsLocale* t, nlsConversion** c), (h, s, t, c))
SCRIPTED(nlsStatus, nlsGetIntConversionProperty, (const nlsConversion* c, uint32_t p, uint32_t* v), (c, p, v))
SCRIPTED(nlsStatus, nlsSetString, (unsigned char* b, int32_t s, uint32_t n, nlsStr* r), (b, s, n, r))
SCRIPTED(nlsStatus, nlsInitString, (unsigned char* b, int32_t s, nlsStr* r), (b, s, r))
SCRIPTED(nlsStatus, nlsConvertNLS,
         (const nlsConversion* c, nlsTlsBlock* b, const nlsStr* f, const nlsStr* m, nlsStr* t), (c, b, f, m, t))
SCRIPTED(int32_t, dbut_utLookupRegistry, (const char* n, char* b, int32_t s), (n, b, s))
SCRIPTED(int32_t, juZlmMakeFilename, (const char* l, char* b, int32_t s), (l, b, s))

int32_t __real_juZlmOpen(void* context, const char* path);
int32_t __wrap_juZlmOpen(void* context, const char* path) {
    const int32_t own = __real_juZlmOpen(context, path);
    const char* const text = script.utilityText.c_str();
    if (!script.answers["juZlmOpen"].empty())
        memcpy(static_cast<char*>(context) + JU_ZLM_ERROR_TEXT, &text, sizeof text);
    return script.answer("juZlmOpen", own);
}

int32_t __real_juZlmLookup(void* context, int32_t number, char* text);
int32_t __wrap_juZlmLookup(void* context, int32_t number, char* text) {
    EXPECT_STREQ(text, "");
    const int32_t own = __real_juZlmLookup(context, number, text);
    if (!script.answers["juZlmLookup"].empty())
        memcpy(text, script.utilityText.c_str(), std::min<std::size_t>(script.utilityText.size() + 1, JU_ZLM_TEXT));
    return script.answer("juZlmLookup", own);
}

void* __real_dbut_utmalloc(uint32_t size);
void* __wrap_dbut_utmalloc(uint32_t size) {
    if (script.failsNow()) return nullptr;
    ++script.blocks;
    return __real_dbut_utmalloc(size);
}
void __real_dbut_utfree(void* memory);
void __wrap_dbut_utfree(void* memory) {
    if (memory != nullptr) --script.blocks;
    __real_dbut_utfree(memory);
}

int32_t __real_dbut_utOsOpen(const char* path, int32_t mode, int32_t attributes, int32_t share, int32_t* error);
int32_t __wrap_dbut_utOsOpen(const char* path, int32_t mode, int32_t attributes, int32_t share, int32_t* error) {
    const int32_t file = script.failsNow() ? -1 : __real_dbut_utOsOpen(path, mode, attributes, share, error);
    script.files += file != -1;
    return file;
}
int32_t __real_dbut_utOsClose(uint32_t file, int32_t flags);
int32_t __wrap_dbut_utOsClose(uint32_t file, int32_t flags) {
    --script.files;
    return __real_dbut_utOsClose(file, flags);
}
int32_t __real_dbut_utReadFromFile(uint32_t file, int32_t at, void* to, uint32_t size, uint32_t* read, int32_t* error);
int32_t __wrap_dbut_utReadFromFile(uint32_t file, int32_t at, void* to, uint32_t size, uint32_t* read, int32_t* error) {
    if (!script.failsNow()) return __real_dbut_utReadFromFile(file, at, to, size, read, error);
    *read = 0;
    return -1;
}

int32_t __wrap_juLogOpen(void*, const char* path, int32_t create) {
    script.log.push_back("open " + std::string(path) + " " + std::to_string(create));
    return script.answer("juLogOpen", 0);
}
int32_t __wrap_juLogWrite(void*, const char* text1, const char* text2, int32_t flag) {
    const auto told = [](const char* text) { return text == nullptr ? std::string("null") : std::string(text); };
    script.log.push_back(told(text1) + " " + told(text2) + " " + std::to_string(flag));
    return script.answer("juLogWrite", 0);
}
int32_t __wrap_juLogClose(void* context) {
    script.log.push_back(context == nullptr ? "close null" : "close");
    return 0;
}

}  // extern "C"
