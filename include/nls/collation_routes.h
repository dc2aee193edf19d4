/* What comparison and sort keys come down to for two kinds of collations: Thai (kind 4), and characters by their own
   values (kind 3). An ordinary caller compares through a locale; these are for callers of long standing, and for those
   who have no locale.

   Texts are NUL-terminated bytes. A weight map is 256 bytes, one weight for each byte value: a collation has `foldMap`
   for the mode 0 and `exactMap` for any other. A sign is 1 where the first text sorts after the second, 0 where they
   are equal, -1 where it sorts before it; blanks (0x20) at the end of a text don't count. Nothing is allocated,
   nothing kept, and no text written to. Pointers must not be null unless it says so.

   Valid C11 and C++20. */
#ifndef NLS_COLLATION_ROUTES_H
#define NLS_COLLATION_ROUTES_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* ---- Thai text of one byte a character ---- */

/* The rank of the cluster at `*cursor`, and moves `*cursor` behind it. A cluster is at most one leading vowel, one
   base, one vowel above or below and one tone. Bits 24 to 31: weight of the base, or of the byte that stands alone; 16
   to 23: of the leading vowel; 8 to 15: of the vowel; 0 to 7: of the tone, 2 where there is none, 0 for a byte that
   stands alone. On the NUL it is 2, and the cursor stays. */
NLS_API uint32_t GetLetterClusterRank(const unsigned char* map, const unsigned char** cursor);

/* The sign of two texts, by the ranks of their clusters. */
NLS_API int32_t thaiCompare(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                            const unsigned char* exactMap, uint16_t compareMode);

/* Writes the sort key of `src`, with its NUL, to at most `keySize` bytes at `key`. A longer key is cut. With a
   `keySize` below 1 nothing is written. Keys of the same map order as thaiCompare does, as long as every vowel and tone
   has a base; blanks at the end are part of the key. */
NLS_API void thaiSortcop(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                         const unsigned char* exactMap, uint16_t compareMode);

/* One step of a key: the vowel above or below, or the tone, at `*srcCursor` joins the last byte of the key, or stands
   behind a marker 0x80 where that is taken or no base stands in front. Both cursors move.

   keyCursor  in/out: the byte to write next; a byte of the key stands in front of it, unless the mark opens the text or
              follows a byte that stands alone
   srcCursor  in/out
   keyEnd     the byte for the NUL, which isn't written to. With `*keyCursor` at or behind it nothing is done
   srcStart   the start of the text

   Where the mark and its marker have no room, the marker alone is written; the cursor in the text then stays, but for a
   mark without a base, which is given up. Of any other byte nothing is done. */
NLS_API void buildComposableUnit(const unsigned char* map, unsigned char** keyCursor, const unsigned char** srcCursor,
                                 unsigned char* keyEnd, const unsigned char* srcStart);

/* ---- Characters by their own values ---- */

/* `*result` becomes the sign of two texts: 1, 0, or 65535 for -1. With a `compareMode` of 0 characters are folded to
   lower case by the locale's Unicode case table, if it has one; otherwise their bytes are compared as they are. `map`
   is not read.

   A length is the bytes of a text that count, unless a NUL comes first; below 0: up to the NUL. Nothing at or behind
   that limit is read: a character which it cuts short is the bytes in front of it, as at a NUL.

   Always NLS_OK. The locale is not checked; without an attribute table, or null, the bytes are compared. */
NLS_API nlsStatus nlsUnicodeCompare(const nlsLocale* locale, const unsigned char* s1, const unsigned char* s2,
                                    const unsigned char* map, uint16_t compareMode, int32_t len1, int32_t len2,
                                    uint16_t* result);

/* The sign of two texts by their unsigned bytes. Lengths as above. */
NLS_API int32_t loccmp(const unsigned char* s1, const unsigned char* s2, int32_t len1, int32_t len2);

/* Writes the sort key of `src` and its NUL to `key`: with the mode 1 the text itself, with the mode 0 the text in lower
   case. Blanks at the end are part of it. `map` is not read. In this order:

   NLS_BUF_SMALL (2)          `keySize` is below 1; nothing written
   NLS_OK                     `src` is empty: so is the key, whatever the mode
   NLS_BUF_SMALL              `src` has `keySize` bytes or more; nothing written
   NLS_OK                     mode 1
   NLS_BAD_COMPARE_MODE (19)  another mode than 0; nothing written
   NLS_BAD_HANDLE, NLS_BAD_LOCALE, NLS_NO_ATTRIB   checks of the locale; the key is empty
   NLS_BUF_SMALL              the text grows in lower case, and doesn't fit; what fits is written
   NLS_OK                     mode 0 */
NLS_API nlsStatus nlsUnicodeSort(const nlsLocale* locale, unsigned char* key, const unsigned char* src, int16_t keySize,
                                 const unsigned char* map, uint16_t mode);

NLS_END_DECLS

#endif
