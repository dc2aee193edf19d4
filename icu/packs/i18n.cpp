// The i18n library of a pack: the functions of collation, each forwarded to the installed ICU, but for what the builds
// of old did and today's ICU doesn't: locales in their older form, unknown locales told, and a strength of 4.
#include <unicode/ucol.h>

#include "icu/packs/entry.hpp"
#include "icu/packs/held.hpp"
#include "icu/packs/locale_forms.hpp"

namespace nls::packs {
namespace {

using Collator = Held<UCollator>;

#ifdef NLS_PACK_BASE
constexpr bool kOlderForms = true;
#else
constexpr bool kOlderForms = false;
#endif

}  // namespace

extern "C" {

Collator* packOpen(const char* name, UErrorCode* status) NLS_PACK_ENTRY("ucol_open");
Collator* packOpen(const char* name, UErrorCode* status) {
    const LocaleText locale = kOlderForms ? todaysForm(name) : asTold(name);
    const bool known = knowsCollation(locale.text);
    UCollator* const collator = ucol_open(known ? locale.text : "", status);
    if (U_SUCCESS(*status)) *status = known ? toldStatus(locale.text, collator, *status) : U_USING_DEFAULT_WARNING;
    return hold(collator);
}

void packClose(Collator* collator) NLS_PACK_ENTRY("ucol_close");
void packClose(Collator* collator) {
    release(collator, ucol_close);
}

const UChar* packGetRules(const Collator* collator, int32_t* length) NLS_PACK_ENTRY("ucol_getRules");
const UChar* packGetRules(const Collator* collator, int32_t* length) {
    return ucol_getRules(Use{collator}.get(), length);
}

int32_t packGetSortKey(const Collator* collator, const UChar* text, int32_t length, uint8_t* key, int32_t size)
    NLS_PACK_ENTRY("ucol_getSortKey");
int32_t packGetSortKey(const Collator* collator, const UChar* text, int32_t length, uint8_t* key, int32_t size) {
    return ucol_getSortKey(Use{collator}.get(), text, length, key, size);
}

// A strength of 4, behind the quaternary, was one more name of it. Today's ICU would leave the strength as it is.
void packSetStrength(Collator* collator, UCollationStrength strength) NLS_PACK_ENTRY("ucol_setStrength");
void packSetStrength(Collator* collator, UCollationStrength strength) {
    constexpr int kBehindQuaternary = UCOL_QUATERNARY + 1;
    ucol_setStrength(Use{collator}.get(), int{strength} == kBehindQuaternary ? UCOL_QUATERNARY : strength);
}

UCollationResult packStrcoll(const Collator* collator, const UChar* a, int32_t lengthA, const UChar* b, int32_t lengthB)
    NLS_PACK_ENTRY("ucol_strcoll");
UCollationResult packStrcoll(const Collator* collator, const UChar* a, int32_t lengthA, const UChar* b,
                             int32_t lengthB) {
    return ucol_strcoll(Use{collator}.get(), a, lengthA, b, lengthB);
}

int32_t packCountAvailable() NLS_PACK_ENTRY("ucol_countAvailable");
int32_t packCountAvailable() {
    return ucol_countAvailable();
}

const char* packGetAvailable(int32_t index) NLS_PACK_ENTRY("ucol_getAvailable");
const char* packGetAvailable(int32_t index) {
    return ucol_getAvailable(index);
}

void packGetVersion(const Collator* collator, UVersionInfo version) NLS_PACK_ENTRY("ucol_getVersion");
void packGetVersion(const Collator* collator, UVersionInfo version) {
    ucol_getVersion(Use{collator}.get(), version);
}

#ifndef NLS_PACK_BASE
void packGetUCAVersion(const Collator* collator, UVersionInfo version) NLS_PACK_ENTRY("ucol_getUCAVersion");
void packGetUCAVersion(const Collator* collator, UVersionInfo version) {
    ucol_getUCAVersion(Use{collator}.get(), version);
}
#endif

}  // extern "C"

}  // namespace nls::packs
