/* Locales and conversions: made by name, on demand, and shared. Asking again for the same names gives the same object,
   and a table once read from the data file serves every object that names it. Objects live as long as their handle and
   have no free operation; only a database locale leaves, through nlsCloseDBLocale.

   Names of charsets, collations and case tables are NUL-terminated text. They compare without regard to case and to
   blanks at their end, by the upper-casing table of the C library for the process's locale (setlocale). Under a Turkish
   locale "i" and "I" are different letters there: ask for such names in the spelling of the data file.

   Valid C11 and C++20. */
#ifndef NLS_OBJECTS_H
#define NLS_OBJECTS_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* As the `collation` of nlsCreateLocale and findLocale: no collation at all. */
#ifdef __cplusplus
#define NLS_NO_COLLATION (reinterpret_cast<const char*>(static_cast<intptr_t>(-1)))
#else
#define NLS_NO_COLLATION ((const char*)(intptr_t)-1)
#endif

/* Finds or makes the locale of a charset, a collation and a case table.

   charset    1 to 19 characters. Not null
   collation  NLS_NO_COLLATION: none. Null: the collation "basic". Empty text: the locale with "basic" if it was made
              before, else a new locale without a collation. Any other text: that name, of which 31 characters are kept
              (a longer one is not found again by its full name). The "basic" of a charset suits most uses
   caseName   of which 19 characters are kept; null or empty: no case table
   locale     receives the locale. Not null. Written on success, and also where the locale was made but one of its
              companions (below) was not; else left alone

   A charset that compares through Shift-JIS brings companions: the locale "shift-jis" with the same collation and case
   table, and the conversion to it. If they can't be made their status is returned; the locale itself stands all the
   same, and the next call for it answers NLS_OK.

   Checks, in this order: handle, null pointers, then the search, which answers even while the handle is busy, then
   busy, then memory, charset, collation, case table, companions. Answers:
   NLS_OK
   NLS_BAD_HANDLE
   NLS_BAD_ARG          `charset` or `locale` is null
   NLS_BUSY
   NLS_NO_MEM           add a buffer and call again
   NLS_NO_ATTRIB_TABLE  the data file doesn't know the charset
   NLS_NO_COLL_TABLE    nor the collation for it
   NLS_NO_CASE_TABLE    nor the case table for it
   NLS_READ_FAILED      the file ends inside a record, or a read failed; a later call reads again
   NLS_BAD_COLLATION    the collation's record is unsound, or it is a site's own and doesn't open (usersort.h)
   NLS_NO_CONV_TABLE    a companion: no conversion to Shift-JIS */
NLS_API NLS_CHECKED nlsStatus nlsCreateLocale(nlsHandle* handle, const char* charset, const char* collation,
                                              const char* caseName, nlsLocale** locale);

/* Finds a locale that was made before; arguments as for nlsCreateLocale. Database locales are found too. It doesn't
   look at the handle's tag nor at busy. NLS_OK; NLS_BAD_ARG (`handle`, `charset` or `locale` is null); NLS_BAD_LOCALE
   (none; `locale` is left alone). */
NLS_API NLS_CHECKED nlsStatus findLocale(const nlsHandle* handle, const char* charset, const char* collation,
                                         const char* caseName, nlsLocale** locale);

/* Finds or makes the conversion from the charset of one locale to that of another. Locales that differ only in
   collation or case table share one conversion. The same charset on both sides, and the charset "undefined" on either,
   make the identity, which copies bytes.

   handle      of both locales, which must be locales of this handle
   conversion  receives the conversion, on success alone. Not null

   A conversion that is made for a database locale keeps a copy of what it needs of it: charset name, attribute table
   and handle, in a locale record of its own, which stands on no chain. So the conversion stays good when the database
   locale is closed and its block is gone, and a later call for the same charsets goes on finding it.

   Checks, in this order: the handle behind `source`, `source`, the same of `target`, `handle`, null, then the search,
   which answers even while the handle is busy, then busy, then memory and table. Answers:
   NLS_OK
   NLS_BAD_HANDLE
   NLS_BAD_LOCALE
   NLS_BAD_ARG        `conversion` is null
   NLS_BUSY
   NLS_NO_MEM         add a buffer and call again. If it comes back with a fresh buffer that is large enough, the data
                      file lacks the way back or the attribute table of a charset
   NLS_NO_CONV_TABLE  the data file has no usable table for the pair, and no way through a Unicode charset. Also where
                      the arena is used up on a way through a middle charset, or by a table that has to be made
                      together with the one of the opposite direction (UTF-8 to a single-byte charset)
   NLS_READ_FAILED    the file ends inside a record, or a read failed; a later call reads again */
NLS_API NLS_CHECKED nlsStatus nlsCreateConversion(nlsHandle* handle, nlsLocale* source, nlsLocale* target,
                                                  nlsConversion** conversion);

/* Finds a conversion that was made before, by the charset names of the two locales. It looks at no tags.
   NLS_OK; NLS_BAD_ARG (a null pointer); NLS_BAD_CONVERSION (none; `conversion` is left alone). */
NLS_API NLS_CHECKED nlsStatus findConversion(const nlsHandle* handle, const nlsLocale* source, const nlsLocale* target,
                                             nlsConversion** conversion);

/* Takes a database locale out of use, so that its block goes back to the caller. Afterwards every operation on it
   answers NLS_BAD_LOCALE. Conversions that were made for it stay good.

   block, size  receive the block and its size in bytes. Null and 0 for a locale that isn't a database's: such a one
                isn't closed, and stays valid. Left alone on failure and where the locale is on no chain. Not null

   Checks, in this order: the handle behind it, the locale, null pointers, whether it is a database's, busy.
   NLS_OK; NLS_BAD_HANDLE; NLS_BAD_LOCALE; NLS_BAD_ARG (`block` or `size` is null); NLS_BUSY. */
NLS_API nlsStatus nlsCloseDBLocale(nlsLocale* locale, void** block, uint32_t* size);

NLS_END_DECLS

#endif
