/* Every status number. The numbers are part of the interface and never change; 14, 15, 28 and 31 are not used. */
#ifndef NLS_STATUS_H
#define NLS_STATUS_H

enum {
    /* Success, and notes that are no failures. */
    NLS_OK = 0,
    NLS_END_OF_STRING = 20,  /* the end of the string was reached; no further word; no name found */
    NLS_WORD_TRUNCATED = 29, /* a word was cut at the word limit of 184 bytes; the result is good */
    NLS_CONV_CHANGED = -2,   /* in checking mode: the conversion changes the text */
    NLS_CONV_SUBST = -3,     /* the conversion is complete, but a substitute stands for at least one character */
    NLS_PARTIAL_CHAR = -4,   /* a multi-byte character runs past the byte count or the string */

    /* Room. */
    NLS_NO_MEM = 1,    /* the arena can't serve a request, or a block or buffer is below the smallest size */
    NLS_BUF_SMALL = 2, /* a buffer of the caller is too small */

    /* The data file and what is missing from it. */
    NLS_BAD_WB_TABLE = 3,    /* no word-break table was given */
    NLS_BAD_TOC = 4,         /* a record of the table of contents can't be read, or lacks a data offset */
    NLS_BAD_MAGIC = 5,       /* the file header can't be read or its magic isn't 4242 */
    NLS_BAD_VERSION = 6,     /* the file's version isn't 4 or 5; a word-break table of unknown kind */
    NLS_NO_SJIS = 7,         /* no locale named "shift-jis" stands on the chain */
    NLS_NO_CONV_TABLE = 8,   /* no usable conversion table for a pair of charsets */
    NLS_NO_ATTRIB_TABLE = 9, /* no attribute entry for the charset */
    NLS_NO_COLL_TABLE = 10,  /* no collation table for the charset and name */
    NLS_NO_CASE_TABLE = 11,  /* no case-table entry for the charset and name */
    NLS_READ_FAILED = 21,    /* a table's data can't be read from the file in full */
    NLS_BAD_TABLE = 22,      /* a single-byte charset's table to UTF-8 can't be inverted; no usable ICU answer */
    NLS_NO_USER_SORT = 30,   /* no user sort is present */
    NLS_NO_WB_TABLE = 32,    /* the locale has no word-break table */
    NLS_ICU_LOAD = 18,       /* the ICU libraries can't be loaded */

    /* Objects and arguments. */
    NLS_BAD_PROPERTY = 12,     /* a property number that the query doesn't know */
    NLS_BAD_HANDLE = 13,       /* the handle, or the handle behind an object, is closed or none */
    NLS_BAD_ARG = 16,          /* refused input: a null pointer, a wrong length, a source cut off inside a character */
    NLS_BAD_CHAR = 17,         /* a value that is no character of the charset */
    NLS_BAD_COMPARE_MODE = 19, /* a compare mode other than 0 and 1 where a map must be chosen */
    NLS_BUSY = 23,             /* another change of the handle is under way */
    NLS_BAD_LOCALE = 24,       /* the object isn't a locale; no locale found */
    NLS_BAD_COLLATION = 25,    /* the locale has no collation, or a collation entry fails its check */
    NLS_BAD_CONVERSION = 26,   /* the object isn't a conversion; no conversion found */
    NLS_NO_ATTRIB = 27,        /* the locale has no attribute table */
    NLS_INVALID_STRING = 33    /* a string isn't valid in its encoding */
};

#endif
