/* Conversion of text through a conversion object or a bare table.

   Shared by all functions here:
   - Lengths, sizes and counts are bytes. Every conversion but that through an ICU converter goes by length: a NUL in
     the source is converted like any other byte, and no terminator is added unless the function says so.
   - A negative target or scratch size counts as 0. An empty source (length 0) gives result 0 and count 0 for every type
     of table, whatever the buffers hold or point at. A negative source length is refused with 16.
   - No text outside the given sizes is read or written. Target bytes behind the counted ones are left as they were, but
     for the overflow ending of nlsToUTF8.
   - Source and target may be the same buffer with the null table and with a byte map (type 1), and for one single
     character with every type. Otherwise they must not overlap; then the text that comes out is unspecified, and what
     is said above about reading and writing still holds. A byte map on overlapping buffers gives what a walk from the
     first byte to the last gives.
   - Tables don't change, and nothing else is kept between calls: any number of threads may convert at once.

   Results:
     0                      all converted
     NLS_CONV_CHANGED  -2   with `check` alone: all converted, and the conversion changes the text
     NLS_CONV_SUBST    -3   all converted, but a substitute stands for at least one character: "?" in a single-byte
                            charset, the charset's own substitute in a multi-byte one, U+FFFD in Unicode
     NLS_BUF_SMALL      2   the target is full
     NLS_NO_CONV_TABLE  8   ICU has no converter (tables of types 5 and 6 alone)
     NLS_BAD_ARG       16   refused input, told at each function; also a source cut off inside a character
     NLS_INVALID_STRING 33  a lone surrogate in UTF-32 on its way to UTF-8 */
#ifndef NLS_CONVERT_H
#define NLS_CONVERT_H

#include "nls/base.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

/* The type of a table: 2 for null, 1 where the type word is above 1599, else its low 16 bits without the order bits
   (0x080, 0x100, 0x200, 0x400), as a signed 16-bit number.

     1         byte map                            17, 81, 89  multi-byte charset to UTF-8
     2         none: the identity                  18, 50      UTF-8 to multi-byte charset
     3         Shift-JIS to EUC                    19, 51      single-byte charset to UTF-8
     4         EUC to Shift-JIS                    20          UTF-8 to single-byte charset
     5, 6      Unicode to ICU converter, and back  21, 22      UCS2 to UTF-8, and back
     7         two steps, each a table             23, 24      UTF-16 to UTF-8, and back
     29        multi-byte charset to UTF-16        25, 26      UTF-32 to UTF-8, and back
     30        UTF-16 to multi-byte charset        27, 28      UTF-16 to UTF-32, and back

   Any other number has no handler. */
NLS_API int32_t nlsConversionType(const nlsConvTable* table);

/* Converts `sourceLen` bytes of `source` into `target`, through `table`, which is null for the identity.

   scratch, scratchSize  the middle buffer that a two-step table (type 7) needs; null and 0 otherwise
   check                 not 0: result -2 tells that the conversion changes the text
   outLen                out: bytes written to the target; null when the caller doesn't want to know

   Order of the checks:
   1. A negative `sourceLen`; a null `source` with a length above 0; a null `target` with a size above 0:
      16, nothing written, `outLen` left alone.
   2. The null table copies what fits, as memmove does: 0, or 2 with `outLen` = `targetSize`. `check` isn't looked at.
   3. A type without handler, a block with type word 2 among them: one NUL at `target` if `targetSize` is above 0,
      result 0, `outLen` left alone. That holds for an empty source too.
   4. An empty source: 0, `outLen` 0, `target` untouched.
   5. The refusals of the type. Each gives 16, nothing is written, and `outLen` is left alone:
        3, 4, 19, 20, 51        `check`, and `target` equal to `source`
        7                       the same; no scratch buffer, or one of size 0
        18, 20, 22, 24, 26, 50  a first source byte of the form 10xxxxxx (only the first is looked at)
      The types 5 and 6 answer as nlsICUConversion tells (icu.h): the source must end in a NUL.
   6. The conversion.

   Target too small: result 2. Type 1 then writes nothing, `outLen` 0. Types 17, 81, 89: what fitted stands in the
   target, `outLen` 0. Types 19 and 51: the ending told at nlsToUTF8, `outLen` = `targetSize`. All others: what fitted
   stands in the target, `outLen` bytes.

   A cut-off character: 16, `outLen` bytes stand in the target; from Shift-JIS and EUC too. The types 17, 29, 81 and 89
   look up what is there instead. An odd last byte of UTF-16 and the last 1 to 3 bytes of UTF-32 are dropped, and count
   as no room in a target. A lone surrogate on its way to UTF-8 is written as "?", and 16 (from UTF-16) or 33 (from
   UTF-32) stands at the end.

   Two steps: the first step converts into the scratch buffer. A result of it other than 0 and -3 is the result, with
   `outLen` telling the bytes in the scratch buffer. Otherwise the second step goes from there to the target, and its
   result is the result: a substitute of the first step goes untold. Where the second step leaves `outLen` alone, it
   still tells the bytes in the scratch buffer; a first step that leaves it alone hands on an empty text. A two-step
   table inside a two-step table has no scratch buffer and gives 16.

   What -2 means, by type:
     1                    some byte came out different
     3, 4, 7, 19, 20, 51  the first `outLen` bytes of both sides differ before a NUL common to both. A source that ends
                          before them differs. Only a result 0, of type 7 also -3, turns into -2
     17, 18, 29, 30, 50, 81, 89   anything came out: both sides can't be compared (0 and -3 turn into -2)
     21 to 28             the same (0 alone turns into -2) */
NLS_API nlsStatus convertBytes(unsigned char* target, int32_t targetSize, const unsigned char* source,
                               int32_t sourceLen, unsigned char* scratch, int32_t scratchSize,
                               const nlsConvTable* table, uint32_t* outLen, uint32_t check);

/* convertBytes without scratch buffer and check: a two-step table gives 16. */
NLS_API nlsStatus nlsConvertBytes(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                  int32_t sourceLen, const nlsConvTable* table, uint32_t* outLen);

/* Converts one character. The bytes of `value` without leading zero bytes, at least one, are converted into a buffer of
   4 bytes; 1 to 4 bytes that come out are read back, first byte most significant, into `result`, and the status of the
   conversion is the status. A null `table` gives the value itself.

   Through a table from UTF-8 to UTF-32 (type 26) `result` is the code point, whatever the byte order of the table.

   16: `result` is null; the conversion counts no byte (a two-step table, a type without handler, a first byte that the
   type refuses). `result` is then left alone. */
NLS_API nlsStatus nlsConvertLong(uint32_t* result, nlsLChar value, const nlsConvTable* table);

/* How many bytes one character can take after a conversion. `targetCharSize` is the largest character of the target
   charset, and the answer for a byte map; a two-step table answers for its second step.
   16: the type has no handler or no answer (5, 6); `size` is null. `size` is then left alone. */
NLS_API nlsStatus getMaxConvCharSize(const nlsConvTable* table, uint32_t targetCharSize, uint32_t* size);

/* By what factor a text can grow at worst, in bytes; of a two-step table the product of both steps.
   16: the type, or that of a step, has no handler or no answer (25, 26, 28, 30); `factor` is null. `factor` is then
   left alone. */
NLS_API nlsStatus getMaxExpSz(const nlsConvTable* table, uint32_t* factor);

/* The following take a conversion object. `tls` isn't read and may be null. Their first checks:
     13  the handle behind the source locale, then that behind the target locale, is closed; the object is null
     26  the object isn't a conversion
     16  a record or a result pointer is null, or the `buf` of a record that is needed is
   Nothing is written then. A `strLength` of a source above 0x7FFFFFFF gives 16 too. */

/* nlsConvertLong with the table of the conversion. */
NLS_API nlsStatus nlsConvertLChar(const nlsConversion* conversion, nlsTlsBlock* tls, nlsLChar value, uint32_t* result);

/* Converts the text of `str` and the NUL behind it (`strLength` + 1 bytes) into `target`. Result and `outLen` are those
   of convertBytes. Despite the name any conversion will do. */
NLS_API nlsStatus nlsConvertToUCS2(const nlsConversion* conversion, nlsTlsBlock* tls, const nlsStr* str,
                                   int32_t targetSize, unsigned char* target, uint32_t* outLen);

/* Converts `sourceLen` bytes into `buf` and `bufSize` of `str`; `strLength` is the `outLen` of convertBytes, and stays
   what it was where that is left alone. No terminator is added. */
NLS_API nlsStatus nlsConvertFromUCS2(const nlsConversion* conversion, nlsTlsBlock* tls, const unsigned char* source,
                                     int32_t sourceLen, nlsStr* str);

/* Converts the text of `from` and the NUL behind it into `to`, and tells by -2 whether the conversion changes the text.
   `strLength` of `to` is the `outLen` of convertBytes, less 1 where the last byte counted is NUL, after every result.
   16 if `from` and `to` are the same record, and with a two-step table. */
NLS_API nlsStatus nlsConvertNLSCheck(const nlsConversion* conversion, nlsTlsBlock* tls, const nlsStr* from, nlsStr* to);

/* Converts the text of `from` into `to`, by way of the buffer of `scratchStr` where the table has two steps (`bufSize`
   bytes of it; its `strLength` isn't touched), and closes the text with a NUL as wide as the units of the target:
   2 bytes behind types 22, 24, 28 and 29, 4 behind 26 and 27, else 1; of two steps the second counts.
   `strLength` of `to` is the `outLen` of convertBytes; it doesn't count the terminator.
   16: a two-step table and a null `scratchStr`; nothing is written.
   2: also where the terminator doesn't fit behind `strLength`, in place of the result of the conversion; no byte of it
   is written then. Where it fits it is written after every other result of the conversion, failures too.
   Nothing tests whether `from` and `to` share a buffer. */
NLS_API nlsStatus nlsConvertNLS(const nlsConversion* conversion, nlsTlsBlock* tls, const nlsStr* from,
                                const nlsStr* scratchStr, nlsStr* to);

/* The two bridges of single-byte charsets, for which convertBytes is the usual way in. `table` must be of the type
   said. A null `table`, `source` (with a length above 0), `target` (with a size above 0) gives 16 with `outLen` 0.
   `outLen` may be null. A length below 1 is an empty source: 0, `outLen` 0. */

/* Types 19 and 51: word c of the table holds the UTF-8 bytes of byte c, first byte lowest. The lead byte tells their
   number, at most the four that a word holds. A form of one byte needs one byte of room; a longer one needs one byte
   more than it has, so that a terminator would still fit. The first character without room ends the conversion: the
   rest of the target becomes blanks, its last byte NUL (in any case, also where that byte was converted text), `outLen`
   = `targetSize`, result 2. The same ending follows a source whose last byte is NUL where the last byte written isn't.
   With `targetSize` below 1: 2, `outLen` 0, nothing written. */
NLS_API nlsStatus nlsToUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                            const nlsConvTable* table, uint32_t* outLen);

/* Type 20: 256 pages of byte values; 0 is "no mapping". A byte below 0x80 is looked up on page 0. C0 to DF take one
   byte more and choose the page; E0 to EF take two more, the first of which chooses the page; the low six bits of the
   last byte choose the entry. F0 to F4 take three more and have no mapping; any other byte stands alone and has none.
   No mapping: "?" and -3. NUL alone goes through page 0 whatever it holds. The form of trailing bytes isn't tested.
   16: the source ends inside a character. 2: no room for a byte. `outLen` tells what was written before. */
NLS_API nlsStatus nlsFromUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                              const nlsConvTable* table, uint32_t* outLen);

NLS_END_DECLS

#endif
