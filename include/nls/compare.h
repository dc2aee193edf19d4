/* Which of two texts sorts first under a locale, keys that sort the same way, and the words of a text.

   What the order is, the locale's collation tells, by its kind:

     1   byte tables: the first pair of weights that differ decides. A byte of weight 0 counts as two letters s; a
         character of several bytes goes by the weight of its first byte and then by its second byte as it is
     2   a site's own sort (usersort.h)
     3   Unicode: the order of code points, lower-cased by the locale's case table in mode 0
     4   Thai: the order of letter clusters
     5   ICU, through a collator (icu.h): texts are UTF-8

   Any other number goes as 1. A charset marked NLS_CHARSET_VIA_SJIS compares as its text converted to Shift-JIS would.
   Blanks (0x20) at the end of a text never count, unless a site's own sort says otherwise.

   `compareMode`: 1 compares exactly, 0 folds (case, and what else the collation's maps fold). Kinds 1 and its like
   refuse any other value with NLS_BAD_COMPARE_MODE, 3 and 4 take it for 1, and a site's own sort is handed it as it is.
   For kind 5, 0 and 1 take the strength that the collation tells, and 4 to 8 tell it.

   Shared by all: texts end at their NUL. Nothing is allocated and nothing kept but the memo of getSjisHandles, so that
   any number of threads may call at once. `tls` may be null; kind 5 alone reads it. A caller's text is never written
   to, with one exception: kind 2, told at nlsCompareN and nlsSortKey.

   Kind 5 differs: a limited text counts in full, NULs included; a text of more than 2000 bytes takes memory for the
   length of the call; and each thread needs a `tls` of its own, since a collator belongs to one thread at a time.

   Valid C11 and C++20. */
#ifndef NLS_COMPARE_H
#define NLS_COMPARE_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* The version of the orders below. It rises with any change by which two texts, or their keys, come to stand otherwise
   under the same tables: what was sorted before must then be sorted again. */
enum { NLS_ORDER_VERSION = 1 };

/* ---- Comparison ---- */

/* Values of `*result`: a word of 16 bits. */
enum { NLS_SORTS_BEFORE = 65535, NLS_SORTS_EQUAL = 0, NLS_SORTS_AFTER = 1 };

/* Compares two NUL-terminated texts. `*result` tells where `s1` sorts: 1 after `s2`, 65535 before it, 0 beside it (kind
   2: the low 16 bits of what the site's sort answers). It is written with NLS_OK alone, but for kind 5 as nlsIcuCompare
   tells: set it before the call.

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
   for kind 5 what nlsIcuCompare answers. `*result` is written as nlsCompare tells. */
NLS_API nlsStatus locCompare(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                             const unsigned char* s2, const nlsAttribStruct* attrib, const nlsCollStruct* coll,
                             uint16_t compareMode, int32_t len1, int32_t len2, uint16_t* result);

/* Finds the locale "shift-jis" and the conversion to it among the objects of the locale's handle, and keeps them in the
   locale's attribute table (`sjisAttrib`, `sjisConversion`), where the next call finds them. Both were made with the
   locale. Any number of threads may get here at once: they store the same.
   NLS_OK; NLS_NO_SJIS (7) no such locale; NLS_NO_CONV_TABLE (8) no such conversion. A null locale, or one without a
   handle or an attribute table, answers NLS_NO_SJIS. */
NLS_API nlsStatus getSjisHandles(const nlsLocale* locale);

/* ---- Sort keys ---- */

/* Writes the sort key of `src`: bytes closed by a NUL, whose order as unsigned bytes up to that NUL is the order of the
   texts. It holds weights alone, nothing in front of them and nothing behind.

   src       NUL-terminated. Kind 2 with `trim`: a text of 4096 bytes or more in front of the blanks at its end has the
             first of these overwritten for the length of the call; it must be writable then, and not in use by another
             thread
   keySize   bytes at `key`, the NUL among them; 0 or less is refused
   options   the `compareMode`, and two bits for ICU: 0x2000 and 0x4000
   trim      not 0: blanks at the end of the text don't count. Keys of texts that may end in blanks agree with the
             comparison only so. The basic table (kind 1, second kind 0) keeps the blanks and then drops the bytes 0x20
             from the end of its key
   keyLen    receives the bytes of the key without its NUL, with NLS_OK and with NLS_BUF_SMALL of a site's sort

   Byte tables: for each character its weight, and the second byte of a character of several bytes as it is; for a byte
   of weight 0 twice the weight of "s", on the basic table twice 0x53. A key that has no room is cut, and nothing tells.
   Kind 5: ICU's own key; 0x4000 asks for the primary strength, 0x2000 changes nothing. Whatever fails leaves an empty
   key with NLS_OK, a text of 400 units of UTF-16 or more among it.

   Two keys sort as nlsCompare tells if both were made in its mode with `trim`, and weren't cut, with these exceptions:
   a byte of weight 0 that is also the first byte of a longer character (it ends the key); the basic table where "s"
   doesn't weigh 0x53, or where anything but the blank weighs 0x20; a byte that weighs less than the blank, against a
   blank at the end of the other text; a blank that stands as the second byte of a character at the end of a text; a
   character cut off by the end of a text that goes through Shift-JIS; kind 3 in mode 0 where a text isn't well-formed
   UTF-8, or where the locale has no Unicode case table: the comparison then folds nothing, and the key is what
   nlsLowerCase makes of the text.

   In this order: NLS_BAD_HANDLE, NLS_BAD_LOCALE, NLS_NO_ATTRIB, NLS_BAD_COLLATION, NLS_BAD_ARG (a null `src`, `key` or
   `keyLen`) as in nlsCompare; then what getSortKey answers; NLS_BUF_SMALL (2) if a site's sort filled the buffer and
   wrote no NUL. */
NLS_API nlsStatus nlsSortKey(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* src, int16_t keySize,
                             uint16_t options, uint16_t trim, unsigned char* key, uint16_t* keyLen);

/* The same without the length. In this order: NLS_NO_ATTRIB (27) the object isn't a locale or has no attribute table;
   NLS_BAD_COLLATION (25); NLS_BAD_ARG; NLS_BUF_SMALL (2) `keySize` is 0 or less, or kind 3 has no room for the whole
   key; NLS_NO_SJIS (7), NLS_NO_CONV_TABLE (8) as getSjisHandles tells, 8 also for a conversion that can't be used here;
   NLS_BAD_COMPARE_MODE (19). After a failure nothing stands at `key`, but for what kind 3 and a conversion that can't
   be used leave there. */
NLS_API nlsStatus getSortKey(const nlsLocale* locale, nlsTlsBlock* tls, unsigned char* key, const unsigned char* src,
                             int16_t keySize, uint16_t options, uint16_t trim);

/* ---- Words ---- */

/* Tells whether the words of nlsGetNextWord must still be sorted by the locale: `*needed` is 1 then, and 0 where they
   are sort keys already.

   NLS_NO_WB_TABLE (32) the locale is null or has no word-break table; also one whose head is all zero, the place of a
   table that the database didn't have. NLS_BAD_VERSION (6) a kind other than 7, 9 and 128 in a charset that isn't
   UTF-8. NLS_BAD_ARG (16) `needed` is null. Written with NLS_OK alone. */
NLS_API nlsStatus nlsIsSortNeeded(const nlsLocale* locale, nlsTlsBlock* tls, uint32_t* needed);

/* Cuts the next word out of a text, and moves `*cursor` behind it. Where the table's kind is 8 or more, or the charset
   is UTF-8, `buffer` receives the sort key of the word, made with `options` and without `trim`; else the word itself.

   cursor      in/out: the place in a NUL-terminated text
   bufferSize  bytes at `buffer`, the NUL among them; nothing is written behind
   wordLen     receives the bytes that stand in `buffer` without the NUL; 0 without a word; with NLS_BUF_SMALL, and
               where no key can be made, the bytes of the word

   NLS_OK; NLS_WORD_TRUNCATED (29) the word has more than 184 bytes and is cut there, all else is as with NLS_OK.
   In this order: NLS_NO_WB_TABLE (32) as in nlsIsSortNeeded; NLS_NO_ATTRIB (27); NLS_BAD_ARG (16) a null pointer;
   NLS_END_OF_STRING (20) no word is left, the cursor stays; NLS_BUF_SMALL (2) `bufferSize` isn't above the bytes of
   the word, the cursor stays; what getSortKey answers, the cursor has moved. */
NLS_API nlsStatus nlsGetNextWord(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char** cursor,
                                 uint16_t options, unsigned char* buffer, int32_t bufferSize, uint32_t* wordLen);

/* Cuts the first word out of `text`, and copies it with a NUL to `dest`, which has 188 bytes. The answer is the place
   where the text goes on, or all bits set if there is no word.

   wordLen       receives the bytes of the word, at most 184
   table         the word-break table; classes that would stand behind its end count as 0
   truncated     set to 1 where the word loses bytes, and left alone otherwise
   breakOptions  1: characters of two bytes are words of their own; 2: characters of four bytes are

   Classes of bytes: 1 ends a word. 2 letters, 3 digits, 4 others: the word. 5 to 7 join what stands before to a letter
   (5, 7) or a digit (6, 7) directly behind, and open a word there; else they end the word in front of them and are
   dropped. 9: first byte of two, taken with the next. 10: the character of three bytes is a word of its own. 11: first
   byte of four under option 2, else as 9. All others are left out, and the word goes on. */
NLS_API const unsigned char* nextword(const unsigned char* text, uint32_t* wordLen, unsigned char* dest,
                                      const nlsWbTable* table, uint32_t* truncated, uint32_t breakOptions);

NLS_END_DECLS

#endif
