/* Characters of a locale's charset: where one ends and the next begins, and what it is.

   A character is its first byte and as many trailing bytes as the charset's table tells for that first byte, 0 to 7.
   A NUL is never part of a character: where one stands in place of a trailing byte, the string ends there and its last
   character is cut short. Cut-short characters are no error here.

   All places are byte pointers into the caller's NUL-terminated text. Nothing is allocated and nothing kept, so that
   any number of threads may call at once. `tls` may be null and is not read.

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

NLS_END_DECLS

#endif
