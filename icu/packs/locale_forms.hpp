// Locales as the builds of old took them, and what those said of a locale that they didn't know.
//
// A collation other than a language's own was a variant of the locale, de__PHONEBOOK, and is a keyword today,
// de@collation=phonebook. Today's ICU hands over the language's standard order, or the root order, where it doesn't
// know a variant or a keyword, with no more than a hint; here that is told as what a build of old told of an unknown
// locale. Tested by tests/icu/packs_test.cpp.
#pragma once

#include <unicode/ucol.h>

namespace nls::packs {

struct LocaleText {
    char text[128];
};

// A locale too long for any ICU becomes the name of no language.
LocaleText asTold(const char* locale);

// A variant of old as a keyword; any other locale as it is.
LocaleText todaysForm(const char* locale);

// Is the collation that the locale names, if it names one, one of the language's? To be asked first: once ICU has been
// asked for a collation that it doesn't know, it tells the language's own with another status from then on.
bool knowsCollation(const char* locale);

// The status for what ICU has opened: -127 (U_USING_DEFAULT_WARNING) where the language or its variant is unknown to
// ICU, -128 (U_USING_FALLBACK_WARNING) for a known language in root order, else as ICU told.
UErrorCode toldStatus(const char* locale, const UCollator* collator, UErrorCode status);

}  // namespace nls::packs
