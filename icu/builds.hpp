// The two builds of ICU that the library knows: their files, the suffix of their symbols, what they can do.
//
// They are private packagings, side by side in an installation. Another packaging is told by the NLS_ICU_… settings of
// CMake, and nowhere else. Tested by tests/icu/loader_test.cpp.
#pragma once

#include <cstdint>

#include "icu/entry_points.hpp"

// In front of namespaces, since a pointer to a row stands in a public record.
struct nlsIcuVersion {
    const char* versionKey;        // what stands between "ICU_" and "-" in the names of its collations
    const char* entrySuffix;       // behind every name of a function
    int32_t loadLevel;             // an IcuLevel; read and written by the loader's functions
    uint32_t capabilities;         // bits of IcuCapability
    const char* const* libraries;  // three files: data, common, i18n
    nls::nlsIcuFuncs* entryPoints;
    const char* collationNames;
};

namespace nls {

enum IcuCapability : uint32_t {
    kKeywordLocales = 1,  // a locale's collation is a keyword: de@collation=phonebook
    kHasUcaVersion = 2,
};

enum IcuLibrary : unsigned { kDataLibrary, kCommonLibrary, kI18nLibrary };

inline constexpr unsigned kIcuBuilds = 2;
extern nlsIcuVersion icuarray[kIcuBuilds];
inline nlsIcuVersion& baseBuild() {
    return icuarray[0];
}

// The row of a key, which must be whole; the empty key is the base row's. Null if no row has it.
nlsIcuVersion* UL_get_icuver(const char* key);

}  // namespace nls
