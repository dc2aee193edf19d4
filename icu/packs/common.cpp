// The common library of a pack: the functions of conversion, each forwarded to the installed ICU.
#include <unicode/ucnv.h>

#include "icu/packs/entry.hpp"
#include "icu/packs/held.hpp"

namespace nls::packs {
namespace {

using Converter = Held<UConverter>;

}  // namespace

extern "C" {

Converter* packOpen(const char* name, UErrorCode* status) NLS_PACK_ENTRY("ucnv_open");
Converter* packOpen(const char* name, UErrorCode* status) {
    return hold(ucnv_open(name, status));
}

void packClose(Converter* converter) NLS_PACK_ENTRY("ucnv_close");
void packClose(Converter* converter) {
    release(converter, ucnv_close);
}

void packFromUnicode(Converter* converter, char** target, const char* targetEnd, const UChar** source,
                     const UChar* sourceEnd, int32_t* offsets, UBool flush, UErrorCode* status)
    NLS_PACK_ENTRY("ucnv_fromUnicode");
void packFromUnicode(Converter* converter, char** target, const char* targetEnd, const UChar** source,
                     const UChar* sourceEnd, int32_t* offsets, UBool flush, UErrorCode* status) {
    ucnv_fromUnicode(Use{converter}.get(), target, targetEnd, source, sourceEnd, offsets, flush, status);
}

void packToUnicode(Converter* converter, UChar** target, const UChar* targetEnd, const char** source,
                   const char* sourceEnd, int32_t* offsets, UBool flush, UErrorCode* status)
    NLS_PACK_ENTRY("ucnv_toUnicode");
void packToUnicode(Converter* converter, UChar** target, const UChar* targetEnd, const char** source,
                   const char* sourceEnd, int32_t* offsets, UBool flush, UErrorCode* status) {
    ucnv_toUnicode(Use{converter}.get(), target, targetEnd, source, sourceEnd, offsets, flush, status);
}

int32_t packFromUChars(Converter* converter, char* target, int32_t size, const UChar* source, int32_t length,
                       UErrorCode* status) NLS_PACK_ENTRY("ucnv_fromUChars");
int32_t packFromUChars(Converter* converter, char* target, int32_t size, const UChar* source, int32_t length,
                       UErrorCode* status) {
    return ucnv_fromUChars(Use{converter}.get(), target, size, source, length, status);
}

int32_t packToUChars(Converter* converter, UChar* target, int32_t size, const char* source, int32_t length,
                     UErrorCode* status) NLS_PACK_ENTRY("ucnv_toUChars");
int32_t packToUChars(Converter* converter, UChar* target, int32_t size, const char* source, int32_t length,
                     UErrorCode* status) {
    return ucnv_toUChars(Use{converter}.get(), target, size, source, length, status);
}

void packReset(Converter* converter) NLS_PACK_ENTRY("ucnv_reset");
void packReset(Converter* converter) {
    ucnv_reset(Use{converter}.get());
}

void packResetFromUnicode(Converter* converter) NLS_PACK_ENTRY("ucnv_resetFromUnicode");
void packResetFromUnicode(Converter* converter) {
    ucnv_resetFromUnicode(Use{converter}.get());
}

void packResetToUnicode(Converter* converter) NLS_PACK_ENTRY("ucnv_resetToUnicode");
void packResetToUnicode(Converter* converter) {
    ucnv_resetToUnicode(Use{converter}.get());
}

int32_t packFlushCache() NLS_PACK_ENTRY("ucnv_flushCache");
int32_t packFlushCache() {
    return ucnv_flushCache();
}

}  // extern "C"

}  // namespace nls::packs
