/* What a handle, a locale or a conversion offers and needs, asked by number: the charsets, collations, case tables and
   conversions of the data file, how wide a charset's characters are, how much room a conversion takes.

   All six queries share the numbers below, and each accepts its own of them. A list comes in two parts: its length as
   an integer, without a NUL, and its text, which goes into the caller's nlsStr (strings.h) and is closed by a NUL. So a
   record with a buffer of the length plus 1 holds it. Items stand in the order of the data file, "," between them, and
   nothing is loaded from the file for a list.

   The queries only read, take no lock and don't look at busy.

   Valid C11 and C++20. */
#ifndef NLS_PROPERTIES_H
#define NLS_PROPERTIES_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

enum {
    /* Lists, and their lengths in bytes. An item is, asked of a handle, "CHARSET", "CHARSET COLLATION", "CHARSET CASE"
       or "SOURCE -> TARGET". Asked of a locale, the collations and case tables are those of its charset, by name
       alone, and the conversions those from and to it.

       ICU's collations are told too, whether ICU is there or not. Of a locale whose charset is UTF-8 or has units of
       16 or 32 bits (and then the collations are those of "UTF-8"; "UCS2" has its own unless its units are of 32 bits)
       they stand behind the file's. Of a handle they stand behind the item of the file for "UTF-8", as
       "UTF-8 COLLATION", as often as there is such an item; NLS_PROP_COLLATIONS_LENGTH counts them once in any
       case. */
    NLS_PROP_CHARSETS_LENGTH = 1,    /* handle */
    NLS_PROP_CHARSETS = 2,           /* handle; text */
    NLS_PROP_COLLATIONS_LENGTH = 4,  /* handle, locale */
    NLS_PROP_CASES_LENGTH = 5,       /* handle, locale */
    NLS_PROP_CONVERSIONS_LENGTH = 6, /* handle, locale */
    NLS_PROP_COLLATIONS = 7,         /* handle, locale; text */
    NLS_PROP_CASES = 8,              /* handle, locale; text */
    NLS_PROP_CONVERSIONS = 9,        /* handle, locale; text */

    /* Memory. */
    NLS_PROP_STR_SIZE = 10,      /* handle: bytes of an nlsStr, 16 */
    NLS_PROP_ARENA_LEFT = 21,    /* handle: bytes left in the arena's current buffer */
    NLS_PROP_IMAGE_SIZE = 22,    /* locale: bytes of the image of its tables (dbcollation.h): 584 for a collation of
                                    kind 5 or less, else what nlsLocaleToDbCollation writes in its long form */
    NLS_PROP_DB_BLOCK_BASE = 23, /* handle: the fixed part of a database locale's block, 736 bytes */

    /* The charset of a locale. The questions are answered by 1 or 0. */
    NLS_PROP_CHAR_SIZE = 3,     /* most bytes of a character: 4 for UTF-8 and units of 16 and 32 bits, 2 for any other
                                   multi-byte charset, else 1 */
    NLS_PROP_MULTI_BYTE = 11,   /* is it a multi-byte charset? */
    NLS_PROP_VIA_SJIS = 12,     /* does it compare through Shift-JIS? */
    NLS_PROP_UTF8 = 13,         /* is it UTF-8? */
    NLS_PROP_UNITS16 = 14,      /* has it units of 16 bits? */
    NLS_PROP_DOUBLE_BYTE = 25,  /* is it multi-byte, and none of the Unicode forms? */
    NLS_PROP_UNITS32 = 26,      /* has it units of 32 bits? */
    NLS_PROP_CHARSET_CLASS = 27 /* 1 UTF-8, 2 any other multi-byte charset, 3 the rest */
};
enum {
    /* The names of a locale; text, empty for none. */
    NLS_PROP_CHARSET = 18,
    NLS_PROP_COLLATION = 19,
    NLS_PROP_CASE = 20,

    /* A conversion. */
    NLS_PROP_SOURCE_CHARSET = 15,      /* text */
    NLS_PROP_TARGET_CHARSET = 16,      /* text */
    NLS_PROP_GROWTH = 17,              /* largest factor by which a text grows, in bytes (getMaxExpSz) */
    NLS_PROP_CONVERTED_CHAR_SIZE = 24, /* most bytes of a character behind the conversion (getMaxConvCharSize) */
    NLS_PROP_TWO_STEP = 28             /* 1 if it needs a scratch record, else 0 */
};

/* Integers. `*value` is written with NLS_OK alone.

   Checks, in this order: the object, as everywhere; the number; `value`. Answers:
   NLS_OK
   NLS_BAD_HANDLE, NLS_BAD_LOCALE, NLS_BAD_CONVERSION
   NLS_BAD_PROPERTY   a number that this query doesn't know
   NLS_BAD_ARG        `value` is null; or a growth or size that isn't known for the conversion's type
   NLS_BAD_COLLATION  NLS_PROP_IMAGE_SIZE of a locale without a collation
   NLS_NO_ATTRIB      a locale without an attribute table, where the answer stands there */
NLS_API NLS_CHECKED nlsStatus nlsGetIntLocaleProperty(const nlsLocale* locale, uint32_t property, uint32_t* value);
NLS_API NLS_CHECKED nlsStatus nlsGetIntConversionProperty(const nlsConversion* conversion, uint32_t property,
                                                          uint32_t* value);
NLS_API NLS_CHECKED nlsStatus nlsGetIntNLSProperty(const nlsHandle* handle, uint32_t property, uint32_t* value);

/* Texts. nlsGetStrNLSProperty answers for a closed handle too, as long as its block is there.

   rec  the record that takes the text, with a buffer of its own; not null. Left alone unless the checks have passed

   Checks, in this order: the object (that of nlsGetStrNLSProperty for null alone); the number; `rec`. Answers:
   NLS_OK
   NLS_BAD_HANDLE, NLS_BAD_LOCALE, NLS_BAD_CONVERSION
   NLS_BAD_PROPERTY   a number that this query doesn't know
   NLS_BAD_ARG        `rec` is null, or has a size and no buffer
   NLS_BUF_SMALL      the text with its NUL doesn't fit: of a list the record holds the beginning, up to the part of an
                      item that didn't fit; a name leaves the record as it was
   NLS_NO_ATTRIB      the collations of a locale without an attribute table */
NLS_API NLS_CHECKED nlsStatus nlsGetStrLocaleProperty(const nlsLocale* locale, uint32_t property, nlsStr* rec);
NLS_API NLS_CHECKED nlsStatus nlsGetStrConversionProperty(const nlsConversion* conversion, uint32_t property,
                                                          nlsStr* rec);
NLS_API NLS_CHECKED nlsStatus nlsGetStrNLSProperty(const nlsHandle* handle, uint32_t property, nlsStr* rec);

NLS_END_DECLS

#endif
