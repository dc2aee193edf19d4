// The data library of a pack. The installed ICU has its data, so there is nothing here but what it was built for.
#include <unicode/uvernum.h>

#include "icu/packs/entry.hpp"

extern "C" {

const char* packedIcu() NLS_PACK_ENTRY("nls_packed_icu");
const char* packedIcu() {
    return U_ICU_VERSION;
}

}  // extern "C"
