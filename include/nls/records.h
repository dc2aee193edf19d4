/* The records that callers and the library share. Widths, order and offsets are fixed on x86-64; the library asserts
   them (core/base/record_layout.cpp), and so does tests/abi/record_layout.c in C.

   A caller looks into nlsStr freely. Into the other records it should look only through the functions of the library;
   they stand here because databases and tools of long standing lay them out themselves. */
#ifndef NLS_RECORDS_H
#define NLS_RECORDS_H

#include "nls/base.h"

typedef struct nlsHdr nlsHdr;
typedef struct nlsHandle nlsHandle;
typedef struct nlsBufferRec nlsBufferRec;
typedef struct nlsTlsBlock nlsTlsBlock;
typedef struct nlsLocale nlsLocale;
typedef struct nlsConversion nlsConversion;
typedef struct nlsTocEntry nlsTocEntry;
typedef struct nlsAttribStruct nlsAttribStruct;
typedef struct nlsUcs2Range nlsUcs2Range;
typedef struct nlsUcs2Map nlsUcs2Map;
typedef struct nlsStr nlsStr;

/* A conversion table: a pointer behind a signed 64-bit type word, told apart by nlsConversionType. Null is a legal
   table, the identity. */
typedef struct nlsConvTable nlsConvTable;

typedef struct nlsCollStruct nlsCollStruct;
typedef struct nlsCaseStruct nlsCaseStruct;
typedef struct nlsUnicodeCaseStruct nlsUnicodeCaseStruct;
typedef struct nlsWbTable nlsWbTable;
typedef struct nlsIcuInfo nlsIcuInfo;

/* One of the builds of ICU that the library knows; told in no header. */
typedef struct nlsIcuVersion nlsIcuVersion;

/* Values of nlsHdr.typeTag. */
enum { NLS_TAG_CLOSED = 0, NLS_TAG_HANDLE = 1, NLS_TAG_LOCALE = 2, NLS_TAG_CONVERSION = 3 };

/* Head of the handle, of every locale and of every conversion: 24 bytes. */
struct nlsHdr {
    nlsHdr* next;     /*  0: next object on the chain, towards older ones; null in the handle alone, the chain's end */
    nlsHdr* prev;     /*  8: object in front, towards the newest; null at the head of the chain */
    uint16_t serial;  /* 16: 1 for the handle, else that of the older neighbour plus 1; wraps, and nobody consults it */
    uint16_t typeTag; /* 18: NLS_TAG_… */
};

/* The handle, at the start of the block that was given to nlsInit: 96 bytes. Its first arena buffer follows. */
struct nlsHandle {
    nlsHdr hdr;
    nlsHdr* chainHead;       /* 24: newest object; the handle itself when there is none */
    nlsTocEntry* toc;        /* 32: the table of contents of the file, tocCount entries */
    nlsBufferRec* bufferRec; /* 40: record of the arena buffer in use */
    nlsReadFn readFn;        /* 48 */
    unsigned char* freePtr;  /* 56: next free byte of the arena */
    uint64_t userSortHandle; /* 64: the value of a site's own sort, handed to its compare hook */
    uint32_t freeBytes;      /* 72: bytes left behind freePtr in the buffer in use */
    uint32_t fileHandle;     /* 76: first argument of every call of readFn */
    int32_t tocCount;        /* 80 */
    uint32_t busy;           /* 84: 1 while an operation that changes the handle is under way */
    uint32_t userSortOpen;   /* 88: 1 once a site's own sort has been started on this handle */
};

/* One for each arena buffer, taken from that buffer itself; a list from the newest to the oldest: 24 bytes. */
struct nlsBufferRec {
    unsigned char* base;      /*  0: start of the buffer; for the first buffer the handle */
    nlsBufferRec* prevBuffer; /*  8: null for the first */
    int32_t size;             /* 16: the caller's size of the buffer */
    uint32_t leftover;        /* 20: bytes that stay idle in it since the next buffer took over; 0 while in use */
};

/* A thread's own block, in that thread's memory, aligned to 8: 40 bytes. Every operation on a locale or a conversion
   takes one as its second argument and accepts null. */
struct nlsTlsBlock {
    uint64_t ownerWord;  /*  0: the caller's, stored and not read */
    uint64_t reserved;   /*  8: zero */
    nlsIcuInfo* icuColl; /* 16: the ICU collation for which `collator` was opened */
    uint64_t collator;   /* 24: 0 when there is none */
    int32_t icuStatus;   /* 32: last ICU error code of the opening */
};

/* A charset, a collation and a case table, bound by name: 152 bytes. */
struct nlsLocale {
    nlsHdr hdr;
    nlsHandle* owner;               /*  24 */
    nlsAttribStruct* attrib;        /*  32: always set on a finished locale */
    nlsCollStruct* coll;            /*  40: null when collationName is empty */
    nlsCaseStruct* caseTable;       /*  48: null when caseName is empty */
    unsigned char* dbCollationName; /* 56: database locales alone: the collation string, inside their block */
    char charsetName[20];           /*  64: at most 19 characters and a NUL */
    char collationName[32];         /*  84: at most 31 characters and a NUL; empty for none */
    char caseName[20];              /* 116: at most 19 characters and a NUL; empty for none */
    uint32_t dbBlockSize;  /* 136: 0 in the arena; not 0 marks a database locale, and is the size of its block */
    nlsWbTable* wordBreak; /* 144: database locales alone */
};

/* A pair of locales and the table from the charset of the first to that of the second: 48 bytes. */
struct nlsConversion {
    nlsHdr hdr;
    nlsLocale* source;   /* 24 */
    nlsLocale* target;   /* 32 */
    nlsConvTable* table; /* 40: null means identity */
};

/* One record of the table of contents: 64 bytes. */
struct nlsTocEntry {
    char name1[20];   /*  0: a charset; the source charset of a conversion */
    char name2[20];   /* 20: the target charset, the collation's or the case table's name */
    uint32_t offset;  /* 40: where the data stands, in bytes from the start of the file; 0 = none (conversions alone) */
    uint16_t subKind; /* 44 */
    int16_t rawByte;  /* 46: 0 to 255: flags of a charset, type of a conversion, kind of a case table */
    uint16_t entryType; /* 48: 1 conversion, 2 attribute table, 3 case table, 4 collation */
    void* data;         /* 56: the loaded object; null until it is loaded, and then unchanged */
};

/* What is known of a charset: 792 bytes. */
struct nlsAttribStruct {
    unsigned char alphaMap[256];   /*   0: by byte value: not 0 for a letter */
    unsigned char lengthMap[256];  /* 256: by first byte: bits 0x07 trail count, bit 0x08 one column wide */
    unsigned char trailMap[256];   /* 512: by byte value: not 0 for a byte that may stand in a trailing position */
    nlsAttribStruct* sjisAttrib;   /* 768: memo of the comparison through Shift-JIS; null until filled */
    nlsConversion* sjisConversion; /* 776: the same */
    uint32_t mapSize;              /* 784: bytes filled in each map, at most 256 */
    int32_t flags;                 /* 788: NLS_CHARSET_…; the low 16 bits count */
};

/* Bits of nlsAttribStruct.flags. */
enum {
    NLS_CHARSET_SINGLE_BYTE = 0x01,
    NLS_CHARSET_MULTI_BYTE = 0x02,
    NLS_CHARSET_VIA_SJIS = 0x04, /* compares through Shift-JIS */
    NLS_CHARSET_UTF8 = 0x08,
    NLS_CHARSET_UNITS16 = 0x10,
    NLS_CHARSET_UNITS32 = 0x40,
    NLS_CHARSET_CP936 = 0x8000 /* byte 0x80 stands for the euro sign; set by the library for the name "CP936" */
};

/* One triple of a map record: 12 bytes, three unsigned words. */
struct nlsUcs2Range {
    uint32_t rangeEnd; /* 0 ends the list */
    uint32_t rangeStart;
    uint32_t rangeDelta;
};

/* Map between the grid of a multi-byte charset and Unicode, the same in the file and in memory: 160 bytes.
   The fields and their use are told in docs/convmap-format.md. */
struct nlsUcs2Map {
    uint16_t* cjisToUcs; /*   0: array 1, by grid number */
    uint16_t* ucsRows;   /*   8: array 2, first stage of the way back */
    uint16_t* ucsCells;  /*  16: array 3, second stage of the way back */
    uint32_t reserved24;
    uint32_t cjisOffset; /*  28: file position of array 1, 2, 3 */
    uint32_t rowsOffset;
    uint32_t cellsOffset;
    nlsUcs2Range ranges[5]; /* 40: used up to the first whose rangeEnd is 0 */
    uint32_t rangesClosed;  /* 100: 0, the end of a list of five */
    uint16_t sjisZero;      /* 104 */
    uint16_t cjisBase;
    uint16_t gapAfter;
    uint16_t gapSize;
    uint16_t cjisCount; /* 112: entries of array 1 */
    uint16_t ucsMin;
    uint16_t ucsMax;
    uint16_t rowShift;
    uint16_t valueShift; /* 120 */
    uint16_t substChar;
    uint8_t leadFirst1; /* 124 */
    uint8_t leadLast1;
    uint8_t leadFirst2;
    uint8_t leadLast2;
    uint8_t trailFirst1; /* 128 */
    uint8_t trailLast1;
    uint8_t trailFirst2;
    uint8_t trailLast2;
    uint8_t trailFirst3;
    uint8_t trailLast3;
    uint16_t ucsRowCount;  /* 134: entries of array 2 */
    uint16_t ucsCellCount; /* 136: entries of array 3 */
    uint16_t reserved138;
    uint16_t colMask; /* 140 */
    uint16_t skipMask;
    uint8_t leadGap; /* 144 */
    uint8_t reserved145;
    uint8_t trailGap2;
    uint8_t trailsPerRow;
    uint8_t trailGap3; /* 148 */
    uint8_t rangesOnCjis;
    uint8_t reserved150[10];
};

/* A collation: 584 bytes. Weights are unsigned bytes, by byte value; the weight 0 marks a byte that counts as two
   letters s. Behind a collation of kind 5 lies its nlsIcuInfo, and its maps hold no weights. */
struct nlsCollStruct {
    unsigned char exactMap[256]; /*   0: for compare mode 1 */
    unsigned char foldMap[256];  /* 256: for compare mode 0 */
    nlsCollStruct* nextColl;     /* 512: the collation made before this one under the same handle; null at the first */
    uint32_t collMapSize;        /* 520: bytes filled in each map; the rest is zero */
    int32_t collKind;            /* 524: 1 byte tables, 2 user sort, 3 Unicode, 4 Thai, 5 ICU, -2 ICU that failed */
    uint32_t collSubKind;        /* 528: 0 with kind 1 marks the basic table */
    char collCharset[20];        /* 532: at most 19 characters and a NUL */
    char collName[32];           /* 552: at most 31 characters and a NUL */
};

/* The record of a collation of ICU's, directly behind its nlsCollStruct in the arena: 64 bytes. */
struct nlsIcuInfo {
    void* sharedCollator;    /*  0: for callers without a block of their thread */
    nlsIcuVersion* version;  /*  8: the build */
    const char* versionText; /* 16: its key */
    const char* icuLocale;   /* 24: the part of nameText that tells the locale */
    char nameText[32];       /* 32: the collation's name behind its first four characters, cut by a NUL in front of the
                                   locale */
};

/* A case table of bytes, of every charset but UTF-8: 516 bytes. */
struct nlsCaseStruct {
    int32_t caseMapSize;         /*   0: bytes filled in each map; the rest is zero */
    unsigned char upperMap[256]; /*   4: by byte value */
    unsigned char lowerMap[256]; /* 260: by byte value */
};

/* A case table of UTF-8, whose charset has NLS_CHARSET_UTF8; it stands where others have an nlsCaseStruct: 8024 bytes.

   The key of a character is found from its UTF-8 bytes, taken as a big-endian number; bits 8 to 15 of the key choose
   the page, bits 0 to 6 the entry of its upper-case form. That of its lower-case form stands 64 entries later, on page
   0 128. An entry is the low 16 bits of the UTF-8 number of that form; 0: there is none. Page 0 has 256 entries, others
   128. */
struct nlsUnicodeCaseStruct {
    uint32_t caseRawSize;           /*    0: always 5976, the bytes before casePages */
    uint32_t caseBuildSize;         /*    4: what the tables behind the record take, in bytes */
    unsigned char caseRaw[5968];    /*    8: the record of the data file */
    const uint16_t* casePages[256]; /* 5976: none is null; a page without entries is one that all such share */
};

/* A word-break table, as a database keeps it: wbBodySize + 62 bytes, of which these come first. */
struct nlsWbTable {
    uint8_t wbKind; /* 0: 7, 9 or 128 */
    uint8_t reserved;
    uint16_t wbBodySize;    /* 2 */
    uint16_t wbClassOffset; /* 4: where the 256 word classes stand, in bytes from the start of the table */
    uint8_t wbFlags;        /* 6 */
};

/* The caller's record of a byte buffer: 16 bytes. */
struct nlsStr {
    unsigned char* buf; /*  0: owned by the caller */
    int32_t bufSize;    /*  8: bytes available, the closing NUL among them */
    uint32_t strLength; /* 12: bytes in use, without the closing NUL */
};

#endif
