/* A collation that a database keeps with its data: a record and an image of the tables, written from a locale and made
   into a locale again, so that the order outlives the data file.

   The record and the image are stored as they are; docs/stored-collation.md has their bytes, and a form for files. The
   image has two forms. The short one, 512 bytes, is exactMap and foldMap of the collation. The long one is the
   collation's record, the attribute table's, and what the case table has in front of its pages. A collation of a kind
   above 5 comes back from the long form alone, with all three; of a kind up to 5 only the maps come back, and attribute
   and case table are those of the data file.

   A database locale is one made from such a record. It lives in a block of the caller's until nlsCloseDBLocale
   (objects.h) gives the block back, and serves like any other meanwhile. It is found by its names, also by
   nlsCreateLocale. Each call makes another, whatever stands on the chain. A thread's block (nlsTlsBlock) that compared
   by a collation of ICU's is closed before the block of its locale goes.

   Valid C11 and C++20. */
#ifndef NLS_DBCOLLATION_H
#define NLS_DBCOLLATION_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* The record: 112 bytes. A name that is shorter than its field is followed by NULs; one of the full width has none,
   and a locale made from it has the name without its last character. */
typedef struct nlsDbCollation {
    char dbCharset[20];      /*   0 */
    char dbCollation[32];    /*  20: empty for none */
    char dbCase[20];         /*  52: empty for none */
    int32_t dbCollKind;      /*  72: collKind of the collation */
    uint32_t dbCollSubKind;  /*  76: collSubKind of the collation */
    uint32_t dbImageSize;    /*  80: bytes of the image */
    uint32_t dbBlockBase;    /*  84: bytes that the tables take in a block, before words and text; not read */
    unsigned char* dbImage;  /*  88: the image; set by the caller in both directions */
    const void* dbWordBreak; /*  96: a word-break table of wbBodySize + 62 bytes, or null. Read alone */
    nlsLocale*
        dbWordBreakLocale; /* 104: the `target` that getWbTable completes it for (inner.h), or null. Read alone */
} nlsDbCollation;

/* A `format` up to this asks for the short form of the image, one above it for the long form. */
enum { NLS_LAST_SHORT_FORMAT = 5 };

/* Writes the tables of a locale to a record and its image.

   format     6 or more: the long form, which a collation of a kind above 5 needs; else the short form. The sizes:

                 format     of the locale                dbImageSize          dbBlockBase
                 up to 5    anything                     512                  736
                 6, …       no case table                1376                 1528
                 6, …       a case table of bytes        1892                 2044
                 6, …       a case table of UTF-8        7352                 7504 + its caseBuildSize

   imageRoom  bytes at rec->dbImage
   rec        its dbImage is not null; dbImage, dbWordBreak and dbWordBreakLocale are left as they are

   Pointers don't get into an image: the places of nextColl, sjisAttrib, sjisConversion, and of ICU's record in a
   collation of kind 5 are written as zeros.

   Checks, in this order: the handle behind the locale, the locale, null pointers, collation, attribute table, room.
   NLS_OK; NLS_BAD_HANDLE; NLS_BAD_LOCALE; NLS_BAD_ARG; NLS_BAD_COLLATION (the locale has none); NLS_NO_ATTRIB (of the
   long form); NLS_BUF_SMALL (`imageRoom`). Nothing is written then. */
NLS_API NLS_CHECKED nlsStatus nlsLocaleToDbCollation(const nlsLocale* locale, int32_t format, uint32_t imageRoom,
                                                     nlsDbCollation* rec);

/* Makes a database locale from a record, in the caller's block.

   rec              what it points to is only read during the call, and may hold anything: whatever leads outside of it
                    is refused
   dbCollationName  a text that the locale carries, NUL-terminated; it comes to stand at the very end of the block,
                    where the locale's dbCollationName points
   size             in/out: bytes of the block. With too few of them, 0 for instance, `*size` becomes what is needed,
                    and nothing else happens: a kind below 5 takes 737 bytes, the length of the text, and the
                    word-break table's (318 where there is none)
   block            aligned to 8, cleared or not; lent to the locale until it is closed. May be null with too small a
                    `*size`
   locale           receives the locale, on success alone; its address is that of the block

   A collation of a kind above 5 has its attribute and case table in the block. Of one up to 5 they are those of the
   data file: the locale of the charset without a collation and with the case table "basic" is made, and stays. A
   charset that compares through Shift-JIS brings companions, as with nlsCreateLocale. Kind 2 opens the site's own
   sort, kind 5 ICU: the versions in its image become those of the ICU that is loaded, its strength words stay, and the
   collator that callers without a block of their thread share stays open for the life of the process.

   The word-break table stands in the block behind the collation; of a kind above 5 behind the case table and its
   pages, at a multiple of 8 where the block has room for that. It is completed as getWbTable tells. Without one its
   place is filled with zeros, and the operations on words answer NLS_NO_WB_TABLE.

   Checks, in this order: handle, null pointers, busy, the sizes in a long image, the size of the block, the rest of the
   pointers and the alignment, image, charset and case table, kind, companions, word-break table. Answers:
   NLS_OK
   NLS_BAD_HANDLE
   NLS_BAD_ARG          a null pointer, or a block that isn't aligned
   NLS_BUSY
   NLS_BUF_SMALL        see `size`
   NLS_BAD_COLLATION    the image is shorter than its kind needs, or a size in it leads outside; kind 3 without its two
                        marks; kind 5 inside an image of a kind above 5
   NLS_NO_COLL_TABLE    a name that asks for no build of ICU; of kind 5, one so long that the text reaches into what is
                        kept of it; a site's own sort that doesn't open; a companion's collation
   NLS_NO_MEM           ICU can't be loaded or refuses the locale; or the arena is used up: add a buffer, call again
   and what nlsCreateLocale answers for the charset and for companions, and getWbTable for the table. After a failure
   the block is the caller's as before; what was made in the arena stays there. */
NLS_API NLS_CHECKED nlsStatus nlsDbCollationToLocale(nlsHandle* handle, const nlsDbCollation* rec,
                                                     const unsigned char* dbCollationName, uint32_t* size, void* block,
                                                     nlsLocale** locale);

NLS_END_DECLS

#endif
