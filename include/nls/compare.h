/* Which of two texts sorts first under a locale, keys that sort the same way, and the words of a text.

   What the order is, the locale's collation tells, by its kind:

     1   byte tables: the first pair of weights that differ decides. A byte of weight 0 counts as two letters s; a
         character of several bytes goes by the weight of its first byte and then by its second byte as it is
     2   a site's own sort (usersort.h)
     3   Unicode: the order of code points, lower-cased by the locale's case table in mode 0
     4   Thai: the order of letter clusters
     5   ICU: answers NLS_BAD_COLLATION as long as no ICU is bound

   Any other number goes as 1. A charset marked NLS_CHARSET_VIA_SJIS compares as its text converted to Shift-JIS would.
   Blanks (0x20) at the end of a text never count, unless a site's own sort says otherwise.

   `compareMode`: 1 compares exactly, 0 folds (case, and what else the collation's maps fold). Kinds 1 and its like refuse
   any other value with NLS_BAD_COMPARE_MODE, 3 and 4 take it for 1, and a site's own sort is handed it as it is.

   Shared by all: texts end at their NUL. Nothing is allocated and nothing kept but the memo of getSjisHandles, so that any
   number of threads may call at once. `tls` may be null; it is not read. A caller's text is never written to, with one
   exception: kind 2, told at nlsCompareN and nlsSortKey.

   Valid C11 and C++20. */
#ifndef NLS_COMPARE_H
#define NLS_COMPARE_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* ---- Comparison ---- */

/* Values of `*result`: a word of 16 bits. */
enum { NLS_SORTS_BEFORE = 65535, NLS_SORTS_EQUAL = 0, NLS_SORTS_AFTER = 1 };

/* Compares two NUL-terminated texts. `*result` tells where `s1` sorts: 1 after `s2`, 65535 before it, 0 beside it (kind
   2: the low 16 bits of what the site's sort answers). It is written with NLS_OK alone.

   In this order: NLS_BAD_HANDLE (13) the handle behind the locale, also for a null locale; NLS_BAD_LOCALE (24) the
   locale; NLS_NO_ATTRIB (27) it has no attribute table; NLS_BAD_COLLATION (25) it has no collation; NLS_BAD_ARG (16)
   `s1`, `s2` or `result` is null; then what locCompare answers. */
NLS_API nlsStatus nlsCompare(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                             const unsigned char* s2, uint16_t compareMode, uint16_t* result);

/* Compares two texts that end at their limit, `len1` and `len2` bytes, or at a NUL before it. Nothing at or behind the
   limit is read. The handle isn't looked at, and an object that isn't a locale answers NLS_NO_ATTRIB (27), as does one
   without an attribute table; then NLS_BAD_COLLATION (25) and NLS_BAD_ARG (16) as in nlsCompare.

   With a single-byte charset and a collation of kind 1 a negative length is an empty text; else -1 is no limit.

   Kind 2: the site's sort sees NUL-terminated texts. A limited text of 4096 bytes or more, with no NUL in it, gets its
   NUL at the limit for the length of the call: it must be writable up to and with that byte, and not in use by another
   thread. A shorter one is copied. */
NLS_API nlsStatus nlsCompareN(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                              const unsigned char* s2, int32_t len1, int32_t len2, uint16_t compareMode,
                              uint16_t* result);

/* What both come down to, without the checks: `attrib` and `coll` are those of the locale. A length of -1 is no limit,
   for every kind. NLS_OK; NLS_BAD_COMPARE_MODE (19); NLS_NO_SJIS (7) and NLS_NO_CONV_TABLE (8) as getSjisHandles tells;
   NLS_BAD_COLLATION (25) for kind 5. `*result` is written with NLS_OK alone. */
NLS_API nlsStatus locCompare(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                             const unsigned char* s2, const nlsAttribStruct* attrib, const nlsCollStruct* coll,
                             uint16_t compareMode, int32_t len1, int32_t len2, uint16_t* result);

/* Finds the locale "shift-jis" and the conversion to it among the objects of the locale's handle, and keeps them in the
   locale's attribute table (`sjisAttrib`, `sjisConversion`), where the next call finds them. Both were made with the
   locale. Any number of threads may get here at once: they store the same.
   NLS_OK; NLS_NO_SJIS (7) no such locale; NLS_NO_CONV_TABLE (8) no such conversion. A null locale, or one without a
   handle or an attribute table, answers NLS_NO_SJIS. */
NLS_API nlsStatus getSjisHandles(const nlsLocale* locale);

NLS_END_DECLS

#endif
