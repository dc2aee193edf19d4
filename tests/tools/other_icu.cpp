// An ICU of other versions than the installed one, for LD_PRELOAD: its collators and its UCA tell what the environment
// says in NLS_OTHER_COLLATOR and NLS_OTHER_UCA, or 1. It can't convert texts of more bytes than NLS_OTHER_LONGEST says.
#include <dlfcn.h>
#include <unicode/ucnv.h>
#include <unicode/ucol.h>

#include <cstdlib>
#include <cstring>

namespace {

void tell(const char* variable, uint8_t* version) {
    const char* const value = std::getenv(variable);
    std::memset(version, 0, sizeof(UVersionInfo));
    version[0] = static_cast<uint8_t>(value != nullptr ? std::strtoul(value, nullptr, 10) : 1);
}

const char* nameOf(const char* renamed) {
    return renamed;
}
#define NLS_NAME_OF(function) nameOf(NLS_TEXT_OF(function))
#define NLS_TEXT_OF(function) #function

}  // namespace

extern "C" {

int32_t ucnv_toUChars(UConverter* converter, UChar* units, int32_t room, const char* text, int32_t size,
                      UErrorCode* status) {
    using Convert = decltype(&ucnv_toUChars);
    const char* const longest = std::getenv("NLS_OTHER_LONGEST");
    if (longest != nullptr && size > std::atoi(longest)) {
        *status = U_MEMORY_ALLOCATION_ERROR;
        return 0;
    }
    const auto convert = reinterpret_cast<Convert>(dlsym(RTLD_NEXT, NLS_NAME_OF(ucnv_toUChars)));
    return convert(converter, units, room, text, size, status);
}

void ucol_getVersion(const UCollator*, UVersionInfo version) {
    tell("NLS_OTHER_COLLATOR", version);
}

void ucol_getUCAVersion(const UCollator*, UVersionInfo version) {
    tell("NLS_OTHER_UCA", version);
}

}  // extern "C"
