/* Text between the forms of Unicode: UTF-8, UTF-16 and UCS4, with the constants of those forms. The transforms of
   multi-byte charsets stand in dbcs_transforms.h. An ordinary caller converts through a conversion object (convert.h);
   these are what the conversions between Unicode forms come down to.

   All six transforms have the same arguments:
     srcPos  in/out, not null: the place to read from; then the place up to which the source counts as read
     srcEnd  one past the last byte of the source
     tgtPos  in/out, not null: the place to write to; then the place behind the last byte written
     tgtEnd  one past the last byte of the room
     table   a conversion table, or null: nothing of it is looked at but the byte orders that setSwap tells
   Text ends at srcEnd alone: a NUL is a character like any other, and no NUL is added. The places may have any
   alignment. A position at or behind its end means an empty source, or a target without room. Units have 16 bits in
   UTF-16 and 32 in UCS4; a part of a unit in front of srcEnd or tgtEnd is left alone. Source and target must not
   overlap, unless the source is one single character.

   A null srcPos or tgtPos, or a null place with an end, is refused with NLS_BAD_ARG, and nothing is looked at.
   Otherwise both positions are written back whatever the result, and nothing behind *tgtPos is touched. No table is
   needed for the conversion itself, nothing is allocated, and any number of threads may call at once.

   Results:
     NLS_OK              all of the source was read
     NLS_BUF_SMALL       the target is full. *tgtPos stands behind the last whole character. The character that didn't
                         fit counts as read and is lost, so a caller that goes on from *srcPos skips it; but
                         nlsConvertUCS4toUTF16, if there was no room for even one unit, leaves it unread
     NLS_BAD_ARG         UTF-8 read: srcEnd cuts off a character, and *srcPos stands on its first byte.
                         nlsConvertUCS2toUTF8: at least one lone surrogate, written as "?"; the source was read to its
                         end
     NLS_INVALID_STRING  nlsConvertUCS4toUTF8: at least one lone surrogate, written as "?"; the source was read to its
                         end

   UTF-8 is read leniently. The first byte says how many follow (bytesFromUTF8), and no byte that follows is tested:
   overlong forms and encoded surrogates are taken, and a byte 10xxxxxx that stands first is a character of its own
   value. Where UTF-16 is read, a high surrogate with a low one behind it is one character. */
#ifndef NLS_TRANSFORMS_H
#define NLS_TRANSFORMS_H

#include "nls/dbcs_transforms.h"
#include "nls/records.h"

NLS_BEGIN_DECLS

NLS_API extern const uint32_t kMaximumUCS2;        /* 0xFFFF */
NLS_API extern const uint32_t kMaximumUTF16;       /* 0x10FFFF */
NLS_API extern const uint32_t kMaximumUCS4;        /* 0x10FFFF: a UCS4 value above it is out of range */
NLS_API extern const uint32_t halfShift;           /* 10 bits go into each half of a surrogate pair */
NLS_API extern const uint32_t halfBase;            /* 0x10000, taken off before a value is split */
NLS_API extern const uint32_t halfMask;            /* 0x3FF */
NLS_API extern const uint32_t kSurrogateHighStart; /* 0xD800 */
NLS_API extern const uint32_t kSurrogateHighEnd;   /* 0xDBFF */
NLS_API extern const uint32_t kSurrogateLowStart;  /* 0xDC00 */
NLS_API extern const uint32_t kSurrogateLowEnd;    /* 0xDFFF */

/* The trailing bytes that each first byte announces, 0 to 5; 0 for 10xxxxxx too. */
NLS_API extern const unsigned char bytesFromUTF8[256];

/* What the marks of a form add up to, by trailing bytes: ((first << 6) + second) - offsetsFromUTF8[1], and so on. */
NLS_API extern const uint32_t offsetsFromUTF8[6];

/* The mark of a first byte, by the length of the form in bytes. */
NLS_API extern const unsigned char firstByteMark[7];

/* The byte orders that a table asks for. *swapSource: 0x80 if the units of the source stand in the order opposite to
   the host's, else 0. *swapTarget: 0x200 for the units of the target, else 0. A null table asks for neither. An
   out-argument may be null. */
NLS_API void setSwap(const nlsConvTable* table, uint32_t* swapSource, uint32_t* swapTarget);

/* UTF-16 to UCS4. A lone surrogate passes as it is. NLS_OK, NLS_BUF_SMALL. Swaps on both sides. */
NLS_API nlsStatus nlsConvertUTF16toUCS4(const unsigned char** srcPos, const unsigned char* srcEnd,
                                        unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

/* UCS4 to UTF-16. Surrogates pass as they are; a value above 0x10FFFF becomes U+FFFD. NLS_OK, NLS_BUF_SMALL. Swaps on
   both sides. */
NLS_API nlsStatus nlsConvertUCS4toUTF16(const unsigned char** srcPos, const unsigned char* srcEnd,
                                        unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

/* UTF-8 to UCS4. A value above 0x10FFFF becomes U+FFFD. NLS_OK, NLS_BUF_SMALL, NLS_BAD_ARG. Swaps the target. */
NLS_API nlsStatus nlsConvertUTF8toUCS4(const unsigned char** srcPos, const unsigned char* srcEnd,
                                       unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

/* UCS4 to UTF-8. Two surrogates in a row are folded into one character, a lone one becomes "?". Values from 0x110000
   to 0x3FFFFFF are encoded in four or five bytes, higher ones become U+FFFD. NLS_OK, NLS_BUF_SMALL, NLS_INVALID_STRING.
   Swaps the source. */
NLS_API nlsStatus nlsConvertUCS4toUTF8(const unsigned char** srcPos, const unsigned char* srcEnd,
                                       unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

/* UTF-8 to UTF-16, surrogate pairs included, for UCS2 targets too. A value above 0x10FFFF becomes U+FFFD. NLS_OK,
   NLS_BUF_SMALL, NLS_BAD_ARG. Swaps the target. */
NLS_API nlsStatus nlsConvertUTF8toUCS2(const unsigned char** srcPos, const unsigned char* srcEnd,
                                       unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

/* UTF-16 to UTF-8, for UCS2 sources too. A lone surrogate becomes "?". NLS_OK, NLS_BUF_SMALL, NLS_BAD_ARG. Swaps the
   source. */
NLS_API nlsStatus nlsConvertUCS2toUTF8(const unsigned char** srcPos, const unsigned char* srcEnd,
                                       unsigned char** tgtPos, unsigned char* tgtEnd, const nlsConvTable* table);

NLS_END_DECLS

#endif
