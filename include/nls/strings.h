/* Byte buffers in a record, counters of bytes, characters and screen columns, well-formed text and cuts, case, search
   and replace, LIKE, and the names of charsets. */
#ifndef NLS_STRINGS_H
#define NLS_STRINGS_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* ---- Records ----

   An nlsStr tells of a buffer of the caller; the library never allocates or frees one. `strLength` stays below
   `bufSize` and a NUL stands behind the text, except in a record of nlsSetString, for which the caller answers. All
   sizes and counts are bytes. Records and out-arguments must not be null unless a status below says otherwise. Where
   `src` and the buffer overlap, the bytes that stood in `src` before the call are copied.

   A record that breaks its own rule (a negative `bufSize`, text that fills the buffer) is refused as full, with
   NLS_BUF_SMALL (2): nothing is ever written at or behind `buf` + `bufSize`. */

/* Makes a record of an empty text: writes a NUL at `buf`, unless `bufSize` is below 1. NLS_OK; NLS_BAD_ARG (16) if
   `rec` is null, or `buf` is null and `bufSize` is not below 1. */
NLS_API nlsStatus nlsInitString(unsigned char* buf, int32_t bufSize, nlsStr* rec);

/* Makes a record of text that stands in `buf` already. The three values are stored as they are and nothing is written
   to `buf`. NLS_OK; NLS_BAD_ARG (16) if `rec` is null. */
NLS_API nlsStatus nlsSetString(unsigned char* buf, int32_t bufSize, uint32_t strLength, nlsStr* rec);

/* Appends up to `count` bytes of `src`, stopping at a NUL in it, and closes the text with a NUL. With a `count` at or
   below 0 only the NUL is written.

   NLS_OK             appended; `strLength` has grown by the bytes copied
   NLS_BAD_ARG (16)   `src` is null, or `rec` is
   NLS_BUF_SMALL (2)  fewer than `count` bytes are free besides the NUL; nothing changed. `count` is what must fit, also
                      when `src` is shorter */
NLS_API nlsStatus nlsAppendString(const unsigned char* src, int32_t count, nlsStr* rec);

/* Puts up to `count` bytes of `src`, stopping at a NUL in it, in place of the text, and closes with a NUL. With a
   `count` at or below 0 the text becomes empty.

   NLS_OK             copied; `strLength` is the number of bytes copied
   NLS_BAD_ARG (16)   `src` is null, or `rec` is
   NLS_BUF_SMALL (2)  `bufSize` is below 1, or `count` isn't below `bufSize`; nothing changed */
NLS_API nlsStatus nlsCopyString(const unsigned char* src, int32_t count, nlsStr* rec);

/* Copies the text of `from`, up to its `strLength` or a NUL, to `to`, and closes it with a NUL. The records are not
   tested for null.

   NLS_OK             copied; `to->strLength` is the number of bytes copied
   NLS_BUF_SMALL (2)  `to->bufSize` is below 1 or isn't above `from->strLength`; nothing changed */
NLS_API nlsStatus nlsCopynlsStr(const nlsStr* from, nlsStr* to);

/* The fields of a record. NLS_OK, or NLS_BAD_ARG (16) if `rec` is null; then nothing is written. */
NLS_API nlsStatus nlsGetBufOfnlsStr(const nlsStr* rec, unsigned char** buf);
NLS_API nlsStatus nlsGetBufSizeOfnlsStr(const nlsStr* rec, uint32_t* bufSize);
NLS_API nlsStatus nlsGetStrLengthOfnlsStr(const nlsStr* rec, uint32_t* strLength);

/* ---- Bytes ----

   Plain copies that know nothing of characters. No argument may be null. Overlap is treated as above. */

/* Bytes before the NUL. */
NLS_API uint32_t nlsStrlen(const unsigned char* s);

/* Copies `src` with its NUL to `dst` (source first), and returns the bytes copied without the NUL. */
NLS_API uint32_t nlsStrcpy(const unsigned char* src, unsigned char* dst);

/* Copies up to `max` bytes of `src`, stopping at a NUL, and closes `dst` with a NUL: `dst` has room for `max` + 1
   bytes. Returns the bytes copied without the NUL. With a `max` at or below 0, `dst` gets a NUL and the result is 0. */
NLS_API uint32_t nlsStrncpy(const unsigned char* src, unsigned char* dst, int32_t max);

/* ---- Counters ----

   They count in NUL-terminated text, and never look behind the NUL. `tls` may be null and is not read.

   The three counters first set their out-argument to 0, and then check in this order: the handle behind the locale
   (NLS_BAD_HANDLE, also for a null locale), the locale (NLS_BAD_LOCALE), its attribute table (NLS_NO_ATTRIB), the text
   and the count (NLS_BAD_ARG (16) for a null `s` or a negative count). The out-argument must not be null. */

/* Screen columns of the characters that begin in the first `byteLen` bytes of `s`; a character that begins there counts
   whole. A character of one byte fills one column. A longer one fills two, or one if the charset marks its first byte
   so. In UTF-8 its code point decides: one column below U+3000 and two from there on, but one in U+FE80 to U+FEFE and
   in U+FF60 to U+FFFF save U+FFDD to U+FFE7, and none for U+FEFF and the Thai vowels and marks above and below the
   line.

   NLS_OK, or NLS_BAD_ARG (16) also if `byteLen` exceeds the length of `s`. */
NLS_API nlsStatus nlsCountColumns(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t byteLen,
                                  uint32_t* columns);

/* Bytes that the first `charCount` characters of `s` occupy. With a `charCount` above the number of characters it is
   the length of `s`.

   NLS_OK
   NLS_PARTIAL_CHAR (-4)  the NUL cuts a character short; `*bytes` is that of the characters in front of it. Not
                          answered when `charCount` exceeds the length of `s` in bytes */
NLS_API nlsStatus nlsCountBytes(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t charCount,
                                uint32_t* bytes);

/* Characters in the first `byteLen` bytes of `s`, or in all of `s` if it is shorter.

   NLS_OK
   NLS_PARTIAL_CHAR (-4)  a character of a multi-byte charset runs past these bytes; `*chars` is the number of
                          characters in front of it. Also for an empty `s` with a `byteLen` above 0 in a multi-byte
                          charset */
NLS_API nlsStatus nlsCountChars(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t byteLen,
                                uint32_t* chars);

/* Copies the first `charCount` characters of `s` into `rec`, never half a character. Checks the handle behind the
   locale (NLS_BAD_HANDLE), the locale (NLS_BAD_LOCALE), `s` and `rec` (NLS_BAD_ARG); then answers as nlsCountBytes, and
   if that is NLS_OK as nlsCopyString. After any other status than NLS_OK the record is unchanged. */
NLS_API nlsStatus nlsExtract(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t charCount,
                             nlsStr* rec);

/* ---- Well-formed text, and cuts ---- */

/* Is the text at `s` well-formed in the locale's charset, and how many characters does it hold? The first checks are
   the handle behind the locale (NLS_BAD_HANDLE, also for a null locale) and the locale (NLS_BAD_LOCALE); with these
   two `*chars` is unwritten. Then come its attribute table (NLS_NO_ATTRIB (27)) and a null `s` (NLS_BAD_ARG), with
   `*chars` 0. After every other status `*chars` is the number of whole characters in front of the fault, or in all.
   `chars` must not be null; `tls` may be and is not read. The flags of the charset choose one of four ways:

   Not multi-byte. The text ends at its NUL, wherever that stands; `*chars` is its length in bytes.
     NLS_OK                  that is `byteLen`
     NLS_END_OF_STRING (20)  it is less, or more

   16-bit units, `byteLen` bytes of them. The high byte of each stands first if `bigEndian` isn't 0, else second. A pair
   of surrogates is one character.
     NLS_OK                   also for a `byteLen` at or below 0, with `*chars` 0
     NLS_END_OF_STRING (20)   a unit of zeros
     NLS_INVALID_STRING (33)  a high surrogate that no low one follows (units of zeros and the end included), or a low
                              one behind no high one
     NLS_PARTIAL_CHAR (-4)    all is well but for a last byte that makes no unit; it isn't looked at

   32-bit units, in the same way. Surrogates pass.
     NLS_OK                  also for a `byteLen` at or below 0, with `*chars` 0
     NLS_END_OF_STRING (20)  a unit of zeros
     NLS_BAD_ARG (16)        a unit above 0x10FFFF
     NLS_PARTIAL_CHAR (-4)   all is well but for one to three last bytes that make no unit

   Other multi-byte charsets, `byteLen` bytes.
     NLS_BAD_ARG (16)        in UTF-8, first of all: the first byte has the form 10xxxxxx. It is looked at even where
                             `byteLen` is at or below 0, so `s` has at least that byte
     NLS_OK                  also for a `byteLen` at or below 0, with `*chars` 0
     NLS_END_OF_STRING (20)  a NUL where a character should begin: the text ends sooner than told
     NLS_PARTIAL_CHAR (-4)   the last character announces more bytes than there are
     NLS_BAD_ARG (16)        a byte that can't trail, where a trailing byte should stand

   But for the two exceptions told, nothing at or behind `s` + `byteLen` is read. */
NLS_API nlsStatus nlsValidateString(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t byteLen,
                                    uint32_t bigEndian, uint32_t* chars);

/* Copies into `rec` the whole characters that lie in the `byteCount` bytes of `s` from byte position `start` on,
   counted from 1. A character that straddles either end of that span is left out, and so is one that the NUL of `s`
   cuts short; the span may go on behind the NUL. `*chars` is the number of characters in the span, and stands also
   where copying them fails. `chars` must not be null; `tls` may be and is not read.

   NLS_BAD_HANDLE (13)  the handle behind the locale; also for a null locale. `*chars` is unwritten
   NLS_BAD_LOCALE (24)  the same
                        From here on `*chars` is 0 until the characters have been counted
   NLS_BAD_ARG (16)     `s` or `rec` is null
   NLS_NO_ATTRIB (27)
   NLS_BAD_ARG (16)     `start` is below 1, or `start` or `byteCount` exceeds the length of `s` in bytes
   NLS_BUF_SMALL (2)    the characters and a NUL don't fit. This and all above leave `rec` unchanged
   NLS_OK               copied. Where no character lies in the span, as with a `byteCount` below 1, `rec` is empty */
NLS_API nlsStatus nlsSubstr(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s, int32_t start,
                            int32_t byteCount, uint32_t* chars, nlsStr* rec);

/* ---- Case ---- */

/* Copies the text of `from` to `to` in lower or upper case. Of `from` only `buf` is read, up to its NUL; of `to` `buf`
   and `bufSize`. `tls` may be null and is not read.

   The locale's case table decides. With a Unicode one, of a UTF-8 charset, each character is replaced by its form
   there; a form can be shorter than its character, and longer only for one of one byte. With any other table each
   byte that is a character of its own goes through the table's map, and of a longer character two bytes are copied.
   Without a table such a byte goes through the C library's table of the process's locale, and longer characters are
   copied. What has no other case is copied. A character that the NUL cuts short is the bytes in front of it; one of
   five bytes or more becomes "?" where there is a Unicode case table.

   `from` and `to` may be the same buffer as long as no form is longer than its character. Otherwise the result is
   unspecified, though nothing is written at or behind `to->buf` + `to->bufSize`.

   NLS_OK               `to->buf` holds the text and a NUL, `to->strLength` its bytes
   NLS_BAD_HANDLE (13)  the handle behind the locale; also for a null locale. Checked in this order
   NLS_BAD_LOCALE (24)
   NLS_NO_ATTRIB (27)
   NLS_BAD_ARG (16)     a record, or its `buf`, is null
   NLS_BUF_SMALL (2)    the text and its NUL don't fit. The characters that fit stand in `to->buf`, with a NUL behind
                        them if the next is one of several bytes and would have fit in part; the fields of `to` are
                        unchanged. A `bufSize` below 1 is no room: nothing is written */
NLS_API nlsStatus nlsLowerCase(const nlsLocale* locale, nlsTlsBlock* tls, const nlsStr* from, nlsStr* to);
NLS_API nlsStatus nlsUpperCase(const nlsLocale* locale, nlsTlsBlock* tls, const nlsStr* from, nlsStr* to);

/* ---- Search and replace ----

   A match is a run of characters of the text that equal those of the pattern, one by one, under the locale's collation:
   each pair is compared alone, as nlsCompareN compares it in mode `compareMode`. So a match can differ from the pattern
   in bytes. Characters begin where the charset's table of lengths says; none is ever found inside another.

   `pattern`, `replacement` and `text` end at their NUL and are only read. `tls` may be null. Text or pattern of 2 GiB
   and more is refused with NLS_BAD_ARG, unless a match stands in front of that.

   Out-arguments:
     pos    1-based position of the match's first byte in `text`; 0: there is none
     end    offset of the byte behind the match, counted from 0; the match has `end` - `pos` + 1 bytes
     found  the match's first byte, inside `text`; null: there is none
   `found` may be null, which is refused; `pos`, `end` and `replaced` must not be.

   All but nlsReplaceAll check in this order:
     NLS_BAD_HANDLE (13)    the handle behind the locale; also for a null locale. Nothing is written
     NLS_BAD_LOCALE (24)    the same
                            From here on `*pos` is 0
     NLS_BAD_ARG (16)       `pattern`, `text` or `found` is null; `*found` and `*end` are unchanged
     NLS_NO_ATTRIB (27)     `*found` is null, `*end` unchanged
     NLS_PARTIAL_CHAR (-4)  the last character of the pattern, or of the text, is cut short; `*found` and `*end` are
                            unchanged. Only in charsets marked as multi-byte
   Then characters are compared, and with the first comparison may come NLS_BAD_COLLATION (25) for a locale without a
   collation, NLS_BAD_COMPARE_MODE (19), NLS_NO_SJIS (7) or NLS_NO_CONV_TABLE (8); `*found` and `*end` are unchanged.
   Without a comparison (an empty text, one of fewer characters than the pattern) none of these comes.

   NLS_OK comes with a match, and also without one: then `*found` is null, `*pos` 0 and `*end` unchanged.

   Under a collation of byte tables, and under the order of Unicode, a search without wildcards takes time in proportion
   to the lengths of pattern and text, but for three cases: a blank that counts as two letters s, blanks as trailing
   bytes of broken multi-byte text, and backwards in text with characters of three bytes and more, unless that is
   well-formed UTF-8. There, and otherwise, the time is at most in proportion to their product. */

/* The first match in `text`. An empty `pattern` matches at the end: `*pos` and `*end` are the length of `text` plus 1,
   and `*found` is its NUL. */
NLS_API nlsStatus nlsSearchForw(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                const unsigned char* text, uint16_t compareMode, uint32_t* pos, uint32_t* end,
                                const unsigned char** found);

/* The same with wildcards: a "_" in the pattern (byte 5F, at the start of a character) stands for any one character.
   Behind a character whose first byte is `escape`, which is left out, any character stands for itself. 0 is no escape,
   and so is a number that no byte has.

   At its edges a pattern with wildcards is taken by these rules:
   - Wildcards at the start of the pattern pass over characters. Behind them the next character of the pattern is
     compared, its NUL too, and a NUL equals a NUL and a blank. So a pattern of wildcards alone is found only where the
     end of the text or a blank follows: "_" in "ab" at position 2.
   - Later wildcards need no character: they match at the end of the text as well.
   - A blank in the pattern matches the end of the text as well.
   - An escape at the end of the pattern is the pattern's NUL, which is compared. */
NLS_API nlsStatus nlsSearchForwWithEscape(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                          const unsigned char* text, uint16_t compareMode, int32_t escape,
                                          uint32_t* pos, uint32_t* end, const unsigned char** found);

/* Either of the two: nlsSearchForw for `wildcards` 0, whatever `escape` is, and nlsSearchForwWithEscape for any other
   value. */
NLS_API nlsStatus nlsSearchForwBase(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                    const unsigned char* text, uint16_t compareMode, uint16_t wildcards, int32_t escape,
                                    uint32_t* pos, uint32_t* end, const unsigned char** found);

/* The last match that ends at or in front of byte `textLen` of `text`, without wildcards. No byte from there on is
   read, and `text` needs no NUL. The walk goes back as nlsGetPrevChar does; a character that `textLen` cuts short is
   the bytes in front of it. An empty `pattern` matches at `textLen`: `*pos` is `textLen` plus 1. A NUL in the span ends
   the counting of characters: as many candidates as it has characters in front of it are tried, from `textLen` on.

   NLS_BAD_ARG (16) also for a negative `textLen`, behind the NLS_PARTIAL_CHAR of the pattern.
   NLS_END_OF_STRING (20) for a `textLen` of 0 with a pattern that isn't empty; `*found` is unchanged. */
NLS_API nlsStatus nlsSearchBack(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                const unsigned char* text, int32_t textLen, uint16_t compareMode, uint32_t* pos,
                                const unsigned char** found);

/* Puts `text` into `rec`, with `replacement` in place of the first match; the whole of `text` if there is none. An
   empty `pattern` puts `replacement` behind the text. The buffer of `rec` must not overlap the three texts. `*pos`,
   `*end` and `*found` are those of the search, whatever comes behind it.

   First everything that nlsSearchForw answers other than NLS_OK; `rec` is then unchanged. Then
   NLS_BAD_ARG (16)   `rec` is null; or `replacement` is, and there is a match: then the record is emptied as below
   NLS_BUF_SMALL (2)  the result doesn't fit. If what stands in front of the match doesn't, or there is no match, `rec`
                      is unchanged. Otherwise no half-replaced text stays: blanks are written over the bytes put there,
                      a NUL over the first, and `strLength` is 0
   NLS_OK             `rec` holds the result */
NLS_API nlsStatus nlsReplace(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                             const unsigned char* replacement, const unsigned char* text, uint16_t compareMode,
                             nlsStr* rec, uint32_t* pos, uint32_t* end, const unsigned char** found);

/* The same for all matches. Each search begins behind the last match, so matches don't overlap, and what was put in
   isn't searched. `*replaced` is the number of replacements made, also beside a failure; it is 0 before anything is
   checked.

   The statuses are those of nlsReplace, with one difference in NLS_BUF_SMALL and NLS_BAD_ARG: with a match, any failure
   to copy empties the record, blanks over what it held; so does the first, which leaves `rec` unchanged there. Without
   a match `rec` is unchanged. */
NLS_API nlsStatus nlsReplaceAll(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                const unsigned char* replacement, const unsigned char* text, uint16_t compareMode,
                                nlsStr* rec, uint32_t* replaced);
/* ---- LIKE ----

   Does `text` match `pattern` as SQL's LIKE has it, under the collation of the locale? `single`, `multi` and `escape`
   are LChars, "_", "%" and a backslash for example, of one byte or several; an `escape` of 0 is none. Both texts end at
   their NUL. `tls` may be null.

   `single` takes exactly one character, `multi` any number of them, none too. A character of the pattern that is
   neither, and each of the three behind an `escape`, is a literal: it takes the one character that is equal to it under
   `compareMode` (0 folds, 1 is exact), as nlsCompareN compares one character with one. Under an exact byte table that
   is the same character; a letter that counts as two never equals two letters.

   Some results may surprise:

     - `single`, `multi` and `escape` are known by their value and never folded; characters of the text have no meaning
       of their own. A character of five bytes or more has the value of "?". Where `escape` has the value of one of the
       others, that is no wildcard but the escape. Where `single` and `multi` are the same, it is `single`.
     - Behind a literal that takes the last character, the pattern may end or go on with one `multi` that ends it:
       "a" matches a% but not a%%.
     - A `multi` that doesn't end the pattern needs a character in front of which it can stop: the empty text matches %
       but not %%, and "a" doesn't match %%% behind a.
     - Blanks at the end count: "ab" doesn't match "ab " nor the other way round. But the end of a text equals a blank
       where the two are compared. So the empty text matches a pattern of one blank, a text of one blank matches the
       empty pattern, and "a" matches "_ ".
     - A `single` or `multi` of 0 has the value of the end of a pattern: the empty pattern then matches nothing, or
       everything.

   The result is a verdict or a status. The checks come first, in this order:

   NLS_BAD_HANDLE (13)   the handle behind the locale; also for a null locale
   NLS_BAD_LOCALE (24)
   NLS_NO_ATTRIB (27)
   NLS_BAD_ARG (16)      `pattern` or `text` is null

   Then the pattern is followed along the text, and the first thing that decides is the answer:

   1    the text matches
   0    it doesn't
   -1   an `escape` stands in front of anything but `single`, `multi` or `escape`, or at the end of the pattern
   other statuses of nlsCompareN for a literal: NLS_BAD_COLLATION (25) for a locale without a collation,
        NLS_BAD_COMPARE_MODE (19) for a mode that byte tables don't know, and what else the collation answers

   What comes behind the place that decides isn't seen, so a bad escape there isn't either. Behind the first `multi`
   only a match counts: a bad escape or a status there is no match, 0.

   The time is at most proportional to the length of `text` times that of `pattern`, and the stack doesn't grow with
   either. */
NLS_API int32_t nlsSqlLike(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t compareMode, nlsLChar escape, nlsLChar single,
                           nlsLChar multi);

/* ---- Names of charsets ---- */

/* Bytes that hold any canonical name and its NUL. */
enum { NLS_CHARSET_NAME_SIZE = 20 };

/* Writes the name of the system's charset to `name`: "ISO8859-1", whatever the system. NLS_OK, or NLS_BAD_ARG (16) if
   `name` is null. */
NLS_API nlsStatus nlsGetOSCharset(char* name);

/* Writes the canonical form of the charset name `name` to `canonical`.

   NLS_BAD_ARG (16)        `name` or `canonical` is null
   NLS_OK                  found
   NLS_END_OF_STRING (20)  no canonical name is equal to `name`; nothing written

   With a null `useLocale` names compare without regard to case (by the C library's table of the process's locale) and
   to trailing blanks, and `locale` isn't looked at. With any other `useLocale`, which is tested for null alone, they
   compare under the folding collation of `locale`: after NLS_BAD_ARG come NLS_BAD_HANDLE, NLS_BAD_LOCALE, NLS_NO_ATTRIB
   (27), NLS_BAD_COLLATION (25) for a locale without a collation, and what else nlsCompare answers. */
NLS_API nlsStatus nlsGetZelCharset(const void* useLocale, const nlsLocale* locale, const char* name, char* canonical);

NLS_END_DECLS

#endif
