/* Characters of a locale's charset: where one ends and the next begins, what it is, where one stands in a text, and
   where a text begins and ends without the members of a trim set.

   A character is its first byte and as many trailing bytes as the charset's table tells for that first byte, 0 to 7.
   A NUL is never part of a character: where one stands in place of a trailing byte, the string ends there and its last
   character is cut short. Cut-short characters are no error here.

   All places are byte pointers into the caller's NUL-terminated text. Nothing is allocated and nothing kept, so that
   any number of threads may call at once. `tls` may be null; stepping and classes don't read it.

   Every function with a locale checks, first of all and in this order: the handle behind the locale (NLS_BAD_HANDLE,
   also for a null locale), the locale itself (NLS_BAD_LOCALE). After these two no out-argument has been written. */
#ifndef NLS_CHARS_H
#define NLS_CHARS_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* Steps over the character at `p`. `*next` becomes the place behind it; the step never goes past the NUL, however many
   trailing bytes the first byte announces (1 to 7): it ends on the NUL.

   NLS_OK                  a further character stands at `*next`
   NLS_END_OF_STRING (20)  `*next` is the terminator: the step was made and nothing follows, or `p` was the terminator
                           and `*next` is `p`
   NLS_BAD_ARG (16)        `p` or `next` is null; nothing written
   NLS_NO_ATTRIB (27)      the locale has no attribute table; `*next` is null */
NLS_API nlsStatus nlsGetNextChar(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* p,
                                 const unsigned char** next);

/* Steps back from `p` to the first byte of the character in front of it. `start` is the start of the text; bytes in
   front of it are not looked at, and no NUL is looked for. In UTF-8 the step goes over every byte of the form 10xxxxxx,
   however many there are; elsewhere places are judged as nlsFirstByte does.

   NLS_OK                  `*prev` is the place reached, which may be `start`
   NLS_END_OF_STRING (20)  `p` is `start`; `*prev` is `start`
   NLS_BAD_ARG (16)        `p`, `start` or `prev` is null; nothing written
   NLS_NO_ATTRIB (27)      the locale has no attribute table; `*prev` is null

   For a `p` in front of `start` the answer is the byte in front of `p`, and nothing is read. */
NLS_API nlsStatus nlsGetPrevChar(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* p,
                                 const unsigned char* start, const unsigned char** prev);

/* Reads the character at `*pp` as an LChar and moves `*pp` behind it. A character cut short by the NUL gives the bytes
   that are there (0x81 and the NUL give 0x81). A character of five bytes or more, also a cut-short one, gives "?" (63),
   and `*pp` moves behind it, but never past the NUL.

   NLS_OK                  a further character stands at `*pp`
   NLS_END_OF_STRING (20)  `*pp` is the terminator; `*lchar` is valid, and 0 when `*pp` stood on the terminator before
   NLS_NO_ATTRIB (27)      the locale has no attribute table; `*lchar` is 0
   NLS_BAD_ARG (16)        `*pp` is null; nothing written

   `pp` and `lchar` must not be null. */
NLS_API nlsStatus nlsCharToLChar(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char** pp, nlsLChar* lchar);

/* Writes the character `lchar` at `*pp`, moves `*pp` behind it and stores the number of bytes in `*byteCount`. The
   caller has room for 3 bytes; no NUL is written behind them.

   Below 256 the one byte is written as it is, save that UTF-8 refuses 0x80 to 0xFF. From 256 on the value must lie in
   0x100 to 0xFFFE or 0xE08080 to 0xEFBFC0, the charset must be multi-byte or UTF-8, the first byte must announce
   exactly the other bytes, and these must be fit to trail.

   NLS_OK              written
   NLS_BAD_CHAR (17)   no character of the charset; `*pp` hasn't moved. If the value lay in range and the charset was
                       fit for it, its bytes stand in the target all the same. `*byteCount` is 0, or the number of
                       those bytes if the trailing bytes alone were at fault
   NLS_NO_ATTRIB (27)  the locale has no attribute table; `*byteCount` is 0
   NLS_BAD_ARG (16)    `*pp` is null; `*byteCount` is 0

   `pp` and `byteCount` must not be null. */
NLS_API nlsStatus nlsLCharToChar(const nlsLocale* locale, nlsTlsBlock* tls, nlsLChar lchar, unsigned char** pp,
                                 uint16_t* byteCount);

/* Results of nlsGetCharProperty besides NLS_OK; they are classes, not statuses. */
enum { NLS_CHAR_WORD = -1, NLS_CHAR_DIGIT = -2 };

/* Tells what the character at `p` is, by its first byte. `unread` may be anything.

   NLS_CHAR_WORD (-1)   a letter, or the first byte of a longer character; `*value` is its length in bytes. A byte that
                        the charset marks as a letter has length 1, even if it announces trailing bytes
   NLS_CHAR_DIGIT (-2)  a digit "0" to "9"; `*value` is 0 to 9
   NLS_OK               any other single byte, the terminator too; `*value` is the byte
   NLS_NO_ATTRIB (27)   the locale has no attribute table; nothing written
   NLS_BAD_ARG (16)     `p` is null; nothing written

   `value` must not be null. */
NLS_API nlsStatus nlsGetCharProperty(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* p,
                                     const void* unread, uint32_t* value);

/* 1 when `p` is the first byte of a character in the text that begins at `start`, else 0. Meant for charsets of one and
   two bytes: in a run of bytes that could all be first bytes they pair off from the left, so an odd run in front of `p`
   makes `p` a trailing byte. Only bytes from `start` up to `p`, without `p` itself, are looked at.

   1 also if `attrib` is null, or `p` is `start` or lies in front of it. */
NLS_API uint32_t nlsFirstByte(const nlsAttribStruct* attrib, const unsigned char* p, const unsigned char* start);

/* ---- Find and trim ----

   A character matches another where the collation of the locale takes the two for equal under `compareMode` (1 exact, 0
   folded), each compared alone as nlsCompareN does, so it may differ in its bytes. A blank equals an empty text.

   A place is told twice: as a pointer, and in `*pos` as a byte position in `str`, counted from 1; 0 and a null pointer
   say that there is none. `tls` goes to the comparison and may be null. `pos` must not be null.

   After the checks of handle and locale `*pos` is 0, and stays 0 with every status but NLS_OK:

   NLS_OK                     the answer stands in `*pos` and `*found`, also where nothing was found
   NLS_BAD_ARG (16)           `found`, `str` or, of the find functions, `lcharPtr` is null. Of the find functions
                              `*found` is null where `found` isn't; the trim functions leave it unwritten
   NLS_NO_ATTRIB (27)         the locale has no attribute table; `*found` is null
   NLS_BAD_COLLATION (25), NLS_BAD_COMPARE_MODE (19) and what else nlsCompareN answers
                              once a character is compared, so not for an empty text; `*found` is unwritten unless told
                              otherwise

   Nothing is written into a text, under a site's own sort neither. */

/* The first character of `str`, up to its NUL, that matches `*lcharPtr`. For the LChar 0 that is the terminator. Of an
   LChar the bytes count from the first that isn't 0 up to the next that is: 0x410000 asks for "A". */
NLS_API nlsStatus nlsFindCharForw(const nlsLocale* locale, nlsTlsBlock* tls, const nlsLChar* lcharPtr,
                                  const unsigned char* str, uint16_t compareMode, uint32_t* pos,
                                  const unsigned char** found);

/* The last such character that begins in the first `len` bytes of `str`, which may hold NULs: each is an empty text to
   the comparison. The walk back goes as nlsGetPrevChar does. Text behind these bytes counts in two cases alone: a
   character that `len` cuts short is compared whole, up to the NUL at most, so `str` has one there; and for the LChar 0
   the answer is the terminator of `str`, wherever it stands. A `len` below 0 counts as 0: there is no character.

   Beside a status of nlsCompareN `*found` is the character that could not be compared. */
NLS_API nlsStatus nlsFindCharBack(const nlsLocale* locale, nlsTlsBlock* tls, const nlsLChar* lcharPtr,
                                  const unsigned char* str, int32_t len, uint16_t compareMode, uint32_t* pos,
                                  const unsigned char** found);

/* The first character of `str`, up to its NUL, that matches none of the NUL-terminated `trimSet`; the terminator if all
   do. A null `trimSet` is the set of the blank alone. A character of five bytes or more is looked for as "?", as
   nlsCharToLChar reads it. */
NLS_API nlsStatus nlsFindLtrimPtrForw(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* trimSet,
                                      const unsigned char* str, uint16_t compareMode, uint32_t* pos,
                                      const unsigned char** found);

/* The place behind the last character of the first `len` bytes of `str` that isn't found in `trimSet`, so that `*pos` -
   1 is the length of the trimmed text; `str` and 1 if nothing stays, and for a `len` at or below 0. A null `trimSet` is
   the set of the blank alone. `tls` isn't read.

   The walk back goes as nlsGetPrevChar does, and what it goes over in one step is looked for in `trimSet` as
   nlsSearchForw does, the step's bytes alone being the pattern. Where text isn't well-formed a step can go over several
   characters, and these are looked for together. A NUL ends the pattern; one at its start makes it empty, and an empty
   pattern is found, so NULs at the end of the text are trimmed. Nothing at or behind `str` + `len` is read.

   NLS_PARTIAL_CHAR (-4)      a step went over a character that lacks trailing bytes, in front of its end or of a NUL,
                              or `trimSet` ends in one; `*found` is unwritten */
NLS_API nlsStatus nlsFindRtrimPtrBack(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* trimSet,
                                      const unsigned char* str, int32_t len, uint16_t compareMode, uint32_t* pos,
                                      const unsigned char** found);

NLS_END_DECLS

#endif
