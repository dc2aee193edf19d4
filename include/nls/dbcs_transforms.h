/* Transforms of multi-byte charsets: Shift-JIS and EUC by rule, the grid of a double-byte charset, its maps to and from
   Unicode, and the bridges of whole texts. An ordinary caller converts through a conversion object (convert.h); these
   are what the conversions of a multi-byte charset come down to.

   Everything here is a pure function of its arguments: nothing is allocated, and any number of threads may call at
   once. Pointers are not null unless a text says so. Texts go by length and never by a NUL. */
#ifndef NLS_DBCS_TRANSFORMS_H
#define NLS_DBCS_TRANSFORMS_H

#include "nls/records.h"

NLS_BEGIN_DECLS

/* --- Shift-JIS and EUC by rule ---------------------------------------------------------------------------------- */

/* The JIS X 0208 code of a Shift-JIS code and back. Each word holds one byte, on the way in and out; its low 8 bits
   count. The bytes are not tested: what is no such code comes out wrapped at 8 bits. */
NLS_API void sjis2jis(uint32_t* first, uint32_t* second);
NLS_API void jis2sjis(uint32_t* first, uint32_t* second);

/* Whole texts, Shift-JIS to EUC and EUC to Shift-JIS. `targetSize` and `sourceLen` count bytes. Double-byte characters
   are 81-9F and E0-EF with 40-FC behind them, and A1-FE with A1-FE behind them; half-width kana are A1-DF, in EUC
   behind 8E. A pair with another second byte goes out as it stands, and any other byte, also 80, 8F, A0 and F0-FF of
   Shift-JIS, as one byte. Source and target must not overlap, unless the source is one single character.
     NLS_OK         all of the source was converted; an empty source, too, which is not looked at
     NLS_BUF_SMALL  a character has no room, or targetSize is below 1
     NLS_BAD_ARG    the source ends inside a character, or sourceLen is negative
   *outLen: the bytes written, after each result; the character that failed has left nothing. */
NLS_API nlsStatus ccSJIS2EUCBytes(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                  int32_t sourceLen, uint32_t* outLen);
NLS_API nlsStatus ccEUC2SJISBytes(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                  int32_t sourceLen, uint32_t* outLen);

/* --- one character through a map record ------------------------------------------------------------------------- */

/* A DBCS code is a character's bytes as a 16-bit value, first byte high; a one-byte character has 0 high. A Cjis code
   is its running number in the grid of its charset. All five answer 65535 where there is no place in the grid or no
   mapping, and never read outside the record and its arrays, whatever the record holds. A grid with no columns
   (trailsPerRow 0) has no place for any code. */

/* DBCS code to Cjis code and back. */
NLS_API uint32_t nlsSjisToCjis(const nlsUcs2Map* map, uint16_t code);
NLS_API uint32_t nlsCjisToSjis(const nlsUcs2Map* map, uint16_t cjis);

/* Cjis code to code point, above 0xFFFF through the record's range triples. */
NLS_API uint32_t CjisToUnicode(const nlsUcs2Map* map, uint16_t cjis);

/* Code point to Cjis code: through rows and cells, and, from the low 16 bits of `ucs`, through the direct form of a
   third map. */
NLS_API uint32_t UnicodeToCjis(const nlsUcs2Map* map, uint32_t ucs);
NLS_API uint32_t UnicodeToDbcs(const nlsUcs2Map* map, uint32_t ucs);

/* --- whole texts ------------------------------------------------------------------------------------------------ */

/* The four bridges have the same arguments:
     target, targetSize  room in bytes; below 1 there is none
     source, sourceLen   the text, in bytes; nlsUTF16ToDbcs alone counts 16-bit units, at any address
     table               the two to and from UTF-8: a table of type 17, 18, 50, 81 or 89. The two to and from UTF-16:
                         one of type 29 or 30, whose type word tells the order of the 16-bit side
     outLen              bytes written
   A character is looked up in the third map of the table where there is one, then in the first, then in the second. A
   code that no map holds is ASCII, on CP936 the euro sign for 0x80, or else a substitute: U+FFFD in Unicode, substChar
   of the first map in the charset. Source and target must not overlap, unless the source is one single character.
     NLS_OK              all converted; an empty source, too, which is not looked at
     NLS_CONV_SUBST      all converted, and at least one substitute stands in the target
     NLS_BUF_SMALL       the target is full; what fitted stands there
     NLS_BAD_ARG         nlsUTF8ToDbcs: the source ends inside a character. All with a signed sourceLen: it is negative
     NLS_INVALID_STRING  nlsDbcsToUTF8: a map delivered a surrogate; "?" stands for it at the end of what is written
   *outLen is set after each result: the bytes written, but for nlsDbcsToUTF8, where it is 0 after the last three. */

/* A charset character that the end of the source or a NUL cuts off is looked up by the bytes that it has; the NUL is
   the next character. A character of three or four bytes is looked up by its last two, one of five to eight bytes is
   looked up as "?". */
NLS_API nlsStatus nlsDbcsToUTF8(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                int32_t sourceLen, const nlsConvTable* table, uint32_t* outLen);
NLS_API nlsStatus nlsDbcsToUTF16(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                 int32_t sourceLen, const nlsConvTable* table, uint32_t* outLen);

/* UTF-8 is read leniently: the first byte says how many follow (bytesFromUTF8), and no byte that follows is tested.
   Each byte of a two-byte code needs room of its own: with room for one, the first stands in the target and is counted.
   A code point of 0 goes out as one NUL; from UTF-16 it is looked up like any other, and so is a lone surrogate. */
NLS_API nlsStatus nlsUTF8ToDbcs(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                int32_t sourceLen, const nlsConvTable* table, uint32_t* outLen);
NLS_API nlsStatus nlsUTF16ToDbcs(unsigned char* target, int32_t targetSize, const unsigned char* source,
                                 uint32_t unitCount, const nlsConvTable* table, uint32_t* outLen);

NLS_END_DECLS

#endif
