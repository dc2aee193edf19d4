// An ICU of other versions than the installed one, for LD_PRELOAD: its collators and its UCA tell what the environment
// says in NLS_OTHER_COLLATOR and NLS_OTHER_UCA, or 1.
#include <unicode/ucol.h>

#include <cstdlib>
#include <cstring>

namespace {

void tell(const char* variable, uint8_t* version) {
    const char* const value = std::getenv(variable);
    std::memset(version, 0, sizeof(UVersionInfo));
    version[0] = static_cast<uint8_t>(value != nullptr ? std::strtoul(value, nullptr, 10) : 1);
}

}  // namespace

extern "C" {

void ucol_getVersion(const UCollator*, UVersionInfo version) {
    tell("NLS_OTHER_COLLATOR", version);
}

void ucol_getUCAVersion(const UCollator*, UVersionInfo version) {
    tell("NLS_OTHER_UCA", version);
}

}  // extern "C"
