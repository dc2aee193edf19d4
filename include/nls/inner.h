/* Exported for the library's own modules and for callers of long standing. New code has no use for these functions: the
   create calls of objects.h do what the loaders here do, with the handle marked busy.

   The loaders read from the data file into the arena, each table once; they answer NLS_BAD_HANDLE for a handle that
   isn't open. The names are NUL-terminated and not null, and compare as objects.h tells. Out-arguments are not null.

   Valid C11 and C++20. */
#ifndef NLS_INNER_H
#define NLS_INNER_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* Takes memory from a buffer that the caller keeps the books of, as nlsGetMem does from the arena.

   size       in bytes; below 0 answers NLS_BUF_SMALL
   alignment  the address becomes a multiple of it; 1 (or 0) for any address
   cursor     in/out: the next free byte of the buffer
   remaining  in/out: bytes left behind it
   memory     receives the address; it is not cleared here

   NLS_OK; NLS_BUF_SMALL (not enough left; nothing is changed). */
NLS_API NLS_CHECKED nlsStatus getBufMem(int32_t size, uint32_t alignment, unsigned char** cursor, uint32_t* remaining,
                                        void** memory);

/* Puts an object at the head of the chain of a handle, and gives it the next serial. The object's `prev` must be null
   already, and its typeTag is set by the caller afterwards. Always NLS_OK. */
NLS_API nlsStatus nlsLinkHdr(nlsHandle* handle, nlsHdr* object);

/* Stores `version` in nlsTemporaryVers. Always NLS_OK. */
NLS_API nlsStatus putTempVers(uint32_t version);

/* Reads a decimal number from at most `width` characters, which need no NUL: blanks, tabs and line feeds first, one
   sign, then digits up to the first non-digit. 0 without a digit, or with a width below 1. Wraps at 32 bits. */
NLS_API int32_t nlsAtoin(const char* text, int32_t width);

/* The unsigned number whose four bytes in memory are `bytes` in reverse order. Any address. */
NLS_API uint32_t nlsSwapLong(const void* bytes);

/* Compares two names: -1, 0 or 1. Case is folded by the C library's table for the process's locale, and blanks at the
   end of either name don't count. Bytes from 0x80 on sort before ASCII. */
NLS_API int32_t nlsStbcmp(const char* a, const char* b);

/* Reads header and contents of the data file into the handle, as nlsInit does. On a failure the handle keeps the
   contents that it had. NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_BAD_TOC; NLS_BAD_MAGIC; NLS_BAD_VERSION. */
NLS_API NLS_CHECKED nlsStatus getTOC(nlsHandle* handle);

/* The attribute table of a charset. `attrib` is written on success, and also with NLS_READ_FAILED, when it shows memory
   that isn't filled. NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_ATTRIB_TABLE; NLS_READ_FAILED. */
NLS_API NLS_CHECKED nlsStatus nlsGetAttribStructPtr(nlsHandle* handle, const char* charset, nlsAttribStruct** attrib);

/* The conversion table between two charsets; null, with NLS_OK, is the identity. Bit 0 of `options` refuses a plain
   byte map that the file doesn't mark; the other bits are 0. `table` is written on success alone.
   NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_CONV_TABLE; NLS_READ_FAILED. */
NLS_API NLS_CHECKED nlsStatus nlsGetConvTablePtr(nlsHandle* handle, const char* from, const char* to, uint32_t options,
                                                 nlsConvTable** table);

/* A table that goes through a middle charset, where `from` or `to` begins with "UTF-8", "UCS2", "UTF-16" or "UTF-32".
   Each call makes a new one. Not 0 in `refuse` makes it answer NLS_NO_MEM (1) at once. NLS_OK; NLS_BAD_HANDLE; 1 for
   every other failure: no such pair, no way, no memory. `table` is written on success alone. */
NLS_API NLS_CHECKED nlsStatus get2StepConvTablePtr(nlsHandle* handle, const char* from, const char* to, uint32_t refuse,
                                                   nlsConvTable** table);

/* Installs a copy of `body`, `length` bytes, as the table from `from` to `to`, in place of one that may be there. Its
   type is the raw byte of the entry of that pair, and the body must be what that type wants: nothing is checked.
   NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_CONV_TABLE (no entry). */
NLS_API NLS_CHECKED nlsStatus insertInverseStruct(nlsHandle* handle, const char* from, const char* to, const void* body,
                                                  uint32_t length);

/* Reads the three map records of a multi-byte charset as they stand in the file, 480 bytes, from the entry of `charset`
   to `other`. `maps` may lie at any address, and is written on success alone.
   NLS_OK; NLS_BAD_HANDLE; NLS_NO_CONV_TABLE (no entry, or one without data); NLS_READ_FAILED. */
NLS_API NLS_CHECKED nlsStatus readUCS2Data(nlsHandle* handle, const char* charset, const char* other, void* maps);

/* The tables of a multi-byte charset, both ways, built from its map records. `type` is 17, 81 or 89 where `from` is the
   charset, and 18 or 50 where `to` is it. `table` receives the table from `from` to `to`; the way back is installed in
   its entry. With a failure `table` is left alone or shows an unfinished table.
   NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM (also: no attribute table for the charset); NLS_NO_CONV_TABLE (another `type`, no
   entry with data, no entry for the way back, or one whose raw byte is none of the types above); NLS_READ_FAILED. */
NLS_API NLS_CHECKED nlsStatus getUCS2Data(nlsHandle* handle, const char* from, const char* to, int64_t type,
                                          nlsConvTable** table);

/* The tables of a single-byte charset to and from UTF-8, built from 256 UTF-16 units, one for each byte value, at any
   address. `type` is 19 or 51. `table` receives the table from `from` to `to`; the way back is installed in its entry.
   With a failure `table` is left alone or shows an unfinished table.
   NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM (also: no entry for the way back, or one whose raw byte isn't 20); NLS_BAD_TABLE
   (another `type`, or two byte values that can't be told apart on the way back). */
NLS_API NLS_CHECKED nlsStatus computeUtf8TableData(nlsHandle* handle, const char* from, const char* to, int64_t type,
                                                   const uint16_t* units, nlsConvTable** table);

/* The collation of a charset. `attrib` is the attribute table of `charset`: where the file has no such collation and
   the table says NLS_CHARSET_SINGLE_BYTE, it is derived as convCollTable tells, anew by each call. Null stands for a
   charset without that bit. A name that begins with "ICU-" or "ICU_" is never looked for in the file. `coll` is
   written on success alone. Each collation that is made becomes the newest of the handle: its nextColl is the one made
   before it. NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_COLL_TABLE; NLS_READ_FAILED; NLS_BAD_COLLATION (a record of
   kind 3 without its two marks, one of kind 5, or a site's own sort that doesn't open). */
NLS_API NLS_CHECKED nlsStatus nlsGetCollStructPtr(nlsHandle* handle, const nlsAttribStruct* attrib, const char* charset,
                                                  const char* collationName, nlsCollStruct** coll);

/* A new collation for a single-byte charset: the weights of the first charset in the file that has a collation of this
   name and a plain byte map to `charset`, moved through that map. It isn't linked by nextColl. `coll` is written on
   success alone. NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_COLL_TABLE (no such charset, or its collation or the map
   can't be had). */
NLS_API NLS_CHECKED nlsStatus convCollTable(nlsHandle* handle, const char* charset, const char* collationName,
                                            nlsCollStruct** coll);

/* Moves the 256 weights of `map` to the bytes that a byte map gives for their own; of several weights for one byte
   that of the highest source byte counts, and a byte that nothing maps to keeps its own. Null in `map`, or a table of
   another type (null among them), does nothing. */
NLS_API void utMungeCollation(unsigned char* map, const nlsConvTable* table);

/* The case table of a charset; of a charset with NLS_CHARSET_UTF8 it is an nlsUnicodeCaseStruct. `caseTable` is
   written on success alone. NLS_OK; NLS_BAD_HANDLE; NLS_NO_MEM; NLS_NO_CASE_TABLE (also: a table of bytes for a
   charset with that flag); NLS_READ_FAILED. */
NLS_API NLS_CHECKED nlsStatus getCaseStructPtr(nlsHandle* handle, const char* charset, const char* caseName,
                                               nlsCaseStruct** caseTable);

/* Builds a Unicode case table from a record of the data file.

   handle     where pages come from when `cursor` is null; not read otherwise
   record     5968 bytes at any address; may be caseTable->caseRaw
   caseTable  written on success alone
   cursor     null, or a buffer of `remaining` bytes for the pages, which holds anything; at most caseBuildSize - 2056
              bytes of it are used, and caseTable points into it

   NLS_OK; NLS_BAD_HANDLE (with a null cursor); NLS_NO_MEM (the arena is used up); NLS_BUF_SMALL (the buffer is). */
NLS_API NLS_CHECKED nlsStatus computeUCCaseTableData(nlsHandle* handle, const void* record,
                                                     nlsUnicodeCaseStruct* caseTable, unsigned char* cursor,
                                                     uint32_t remaining);

/* Copies a database's word-break table, `length` bytes at any address, to where the locale's wordBreak points, which
   has room for it, and completes the copy: each of its 256 word classes that is 0 becomes

     2    a letter: of the locale's charset, or, where wbKind is 8 or less and the charset isn't UTF-8, of `target`'s
     3    a digit, 0x30 to 0x39, that is no letter
     8+n  the first byte of a character with n bytes behind it, and 11 any other byte that lengthMap marks with 0x08.
          These two go before the others, in charsets of several bytes alone that are UTF-8 or whose wbKind is 9
     1    any other byte

   Classes whose place lies behind the end of the copy aren't there, nor are those in its first six bytes, which stay as
   they are; a copy shorter than 8 bytes is left as it is.

   target  null, or a locale that text is converted to: the conversion is made; where wbKind is 9 and the conversion is
           by a byte map, each class also goes to the byte that its own becomes

   Bits of wbFlags that are set: 0x02 the charset has NLS_CHARSET_UTF8; with a target, 0x04 the locale's charset is
   called "utf-8", else 0x08 the target's is, in mode 0 of the locale's collation. With one of these two bits no class
   moves.

   NLS_OK; NLS_BAD_WB_TABLE (no `wbData`; nothing is touched). With a target, NLS_BAD_HANDLE and NLS_BAD_LOCALE of
   either locale, and what nlsCreateConversion answers: nothing is copied. NLS_BAD_ARG (no `locale`, or no room behind
   it); NLS_NO_ATTRIB. With a target, after the completion, NLS_BAD_COLLATION and what else nlsCompare answers. */
NLS_API NLS_CHECKED nlsStatus getWbTable(nlsLocale* locale, const void* wbData, uint32_t length, nlsLocale* target);

NLS_END_DECLS

#endif
