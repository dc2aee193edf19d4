/* ICU, loaded while the process runs when something asks for it: exported for the library's own modules and for callers
   of long standing. New code names a collation "ICU-…" or "ICU_48-…" when it makes a locale (objects.h), and compares
   as with any other.

   Two private builds stand side by side. "ICU-" asks for the base build, "ICU_48-" for the newer one; conversion always
   goes through the base build, so the newer one needs its files as well. A file's path is the value of the environment
   variable BINPATHX, or of QRD where BINPATHX isn't set, or nothing, and then the name that the build's row tells (such
   as /lib/libicuuc-vkn.so). There is one attempt for each file. A path of more than 302 bytes is a failed load, and a
   process that runs with more rights than its caller looks at neither variable. Nothing is loaded before it is needed,
   a failed load is tried again by the next request, and what is loaded stays for the life of the process.

   No function here takes a lock. Collators and converters are ICU's, and belong to one thread at a time. Rows of
   builds, records and maps are those of a collation of kind 5; they must not be null unless said. Statuses of ICU are
   ICU's own: 0, below 0 for warnings, above 0 for errors. Units are those of UTF-16. */
#ifndef NLS_ICU_H
#define NLS_ICU_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* ---- Loading ---- */

/* Opens a shared library for good. Null, with `*status` 18 (NLS_ICU_LOAD) and `*errorText` the reason, if it can't be
   had; beside a library both are left alone. */
NLS_API void* nlsLoadLibrary(const char* path, uint32_t* status, const char** errorText);

/* The address of a symbol of such a library; null if it has none of that name. */
NLS_API void* nlsGetProcAddress(void* library, const char* name);

/* Position, from 1, of the item of a comma-separated list in which `word` first occurs, be it as a part of the item; 0
   if it doesn't occur. An empty word is found in the first item. */
NLS_API uint32_t lookup(const char* word, const char* list);

/* What nlsInit does for ICU: nothing is loaded. `handle` isn't read. Always NLS_OK. */
NLS_API nlsStatus nlsIcuInit(nlsHandle* handle);

/* The names of all collations of both builds, comma-separated: a constant of the library, the same whether ICU can be
   loaded or not, and null before the first nlsInit of the process. `*length` becomes its length in bytes, without the
   NUL. */
NLS_API const char* nlsICUCollationList(uint32_t* length);

/* ---- Collation ---- */

/* Makes `info` the record of a collation from the collation's name, and both maps of `coll` refer to it.

   NLS_OK                  a name of 32 bytes or more behind that doesn't fit the record: it is that of a locale which
                           nlsIcuGetCollData refuses
   NLS_NO_COLL_TABLE (10)  the name doesn't begin with "ICU-" or "ICU_", or its key is the start of no build's */
NLS_API nlsStatus nlsIcuFillInfo(nlsCollStruct* coll, nlsIcuInfo* info, const char* name);

/* Opens the collator of a collation that nlsIcuFillInfo has made, and writes versions, locale and strength words into
   both maps. `name` is the part of the collation's name that tells the locale; of more than 15 bytes the map keeps the
   first 15. Strength words that stand in the maps stay. `handle` isn't read.

   NLS_OK
   NLS_NO_MEM (1)  the collation has no record; ICU can't be loaded; ICU refuses the locale, or knows nothing of it */
NLS_API nlsStatus nlsIcuGetCollData(nlsHandle* handle, const char* name, nlsCollStruct* coll);

/* The locale as ICU is given it: `name`, with "collation=" put behind its "@" for a build that spells it so, and empty
   for "UCA" and "DUCET".

   NLS_OK             `dst` holds the locale and a NUL
   NLS_BUF_SMALL (2)  it doesn't fit `dstSize` bytes, with one more to spare where a keyword is put in; nothing
   written */
NLS_API nlsStatus nlsIcuGetIcuFromZel(const nlsIcuInfo* info, const char* name, char* dst, int32_t dstSize);

/* The collator for a call: that of the thread's block, opened on first use for the collation `info`; without a block
   the one that all callers share. A block holds one collator: once it has it, it answers with it for every collation,
   also for one of the other build.

   NLS_OK
   NLS_NO_COLL_TABLE (10)  the thread's own can't be opened; `*collator` is the shared one, and the block's `icuStatus`
                           tells ICU's error, or 18 if ICU can't be loaded */
NLS_API nlsStatus nlsIcuGetTlsCollator(nlsIcuInfo* info, nlsTlsBlock* tls, void** collator);

/* Closes the collator of a block, if it holds one; the block can then serve another collation. Always 0. The collation
   for which it was opened must still be there. */
NLS_API nlsStatus nlsIcuTlsClose(nlsTlsBlock* tls);

/* Opens a collator by a locale as ICU spells it, and loads the build if that hasn't been done. Null, and why in
   `*status`: 18 (NLS_ICU_LOAD), an error of ICU's, or -127 where ICU knows nothing of the locale and offers the root
   order. For an empty locale, "en" and what begins with "en_" the root order is right. `*status` is 0 beside a
   collator. */
NLS_API void* UL_ucol_open(nlsIcuVersion* row, const char* locale, int32_t* status);

/* These three do nothing for a build that isn't loaded for collation. `strength` is ICU's number. The comparison
   answers 1, 0, -1, or -2 for a failure; the key its length as ICU tells it, its NUL counted, or 0. */
NLS_API void UL_ucol_setStrength(const nlsIcuVersion* row, void* collator, int32_t strength);
NLS_API int32_t UL_ucol_strcoll(const nlsIcuVersion* row, void* collator, const uint16_t* s1, int32_t len1,
                                const uint16_t* s2, int32_t len2);
NLS_API int32_t UL_ucol_getSortKey(const nlsIcuVersion* row, void* collator, const uint16_t* text, int32_t length,
                                   unsigned char* key, int32_t keySize);

/* Compares two texts of UTF-8 by the collation whose map is given. A length of -1 (or any below 0) is up to the NUL;
   any other counts in full, NULs included. Blanks at the ends don't count, and a text without anything else is the
   empty one. Modes 0 and 1 take the strength that the map tells, 4 to 8 tell it: primary, secondary, tertiary,
   quaternary, and 4.

   NLS_OK              `*result` is 1, 0 or 65535 (-1), as that of nlsCompare. It is NOT written where the mode has no
                       strength (2, 3, above 8, or a word in the map that is none), and where ICU can't convert a text:
                       set it before the call
   NLS_BAD_TABLE (22)  the map has no record; or ICU gave no answer, and then `*result` is 65534
   NLS_NO_COLL_TABLE (10)  as nlsIcuGetTlsCollator
   NLS_BAD_ARG (16)    ICU has no converter of UTF-8
   NLS_BUF_SMALL (2)   no memory for a text of more than 2000 bytes

   Each call opens and closes a converter of its own, and sets the collator's strength. */
NLS_API nlsStatus nlsIcuCompare(const unsigned char* s1, const unsigned char* s2, nlsTlsBlock* tls,
                                const unsigned char* map, uint16_t compareMode, int32_t len1, int32_t len2,
                                uint16_t* result);

/* Makes ICU's sort key of a NUL-terminated text of UTF-8, closed by a NUL. Whatever fails leaves an empty key: a text
   of 400 units or more, one without bytes, a mode without a strength. A key that doesn't fit is cut. `options` is the
   compare mode, whose bit 0x2000 doesn't count; `primaryOnly` not 0 asks for the primary strength instead. Nothing is
   written with a `keySize` below 1. */
NLS_API void nlsIcuSortKey(unsigned char* key, const unsigned char* text, nlsTlsBlock* tls, int16_t keySize,
                           const unsigned char* map, uint16_t options, uint32_t primaryOnly);

/* ---- Conversion ---- */

/* Opens a converter of the base build under a name that ICU resolves, and loads the build if that hasn't been done.
   Null, and why in `*status`: 18 (NLS_ICU_LOAD) or ICU's error. `*status` is 0 beside a converter. */
NLS_API void* UL_ucnv_open(const char* name, uint32_t* status);

/* The converter for a conversion table. It is never closed. NLS_OK; NLS_NO_CONV_TABLE (8), and nothing is written. */
NLS_API nlsStatus ccGetICUConvPtr(const char* name, void** converter);

/* Converts by a table of type 5 (Unicode to a charset) or 6 (back). The source is read up to its NUL, a unit of 16 bits
   for UTF-16: it must have one. `sourceLen` sizes the work: units for a source in UTF-16, else bytes. Where one side is
   UTF-8, the text in UTF-16 stands in the tail of the target on its way, so the target must hold more than twice
   `sourceLen` and 2 bytes. What ICU can't express becomes ICU's substitute, and isn't told.

   A source in UTF-16 of the other byte order is swapped in place and swapped back, and one of more than 1000 units at
   an odd address is moved onto the first byte of its terminator and back: nobody else may read it meanwhile. At an odd
   address `targetSize` counts one less.

   NLS_OK                 `*outLen` is the bytes written, without a terminator
   NLS_BUF_SMALL (2)      no room for the way by UTF-16; or the output would run into that part of it that hasn't been
                          read. `*outLen` isn't written
   NLS_NO_CONV_TABLE (8)  ICU has no converter of UTF-8; `*outLen` isn't written
   NLS_BAD_ARG (16)       the table is of another type; the UTF-8 begins inside a character; ICU reports anything,
                          warnings included: also that the output fills the target to the last byte. `*outLen` is what
                          ICU tells, or isn't written

   The converter belongs to the table: two threads mustn't convert by one table at once. */
NLS_API nlsStatus nlsICUConversion(unsigned char* target, uint32_t targetSize, const unsigned char* source,
                                   uint32_t sourceLen, const nlsConvTable* table, uint32_t* outLen);

NLS_END_DECLS

#endif
