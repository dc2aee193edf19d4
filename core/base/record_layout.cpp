// The widths and offsets that others store or lay out themselves, held by the compiler.
#include <cstddef>

#include "nls/dbcollation.h"
#include "nls/records.h"

#define NLS_AT(record, field, offset) static_assert(offsetof(record, field) == (offset), #record "." #field)

static_assert(sizeof(nlsHdr) == 24);
NLS_AT(nlsHdr, serial, 16);
NLS_AT(nlsHdr, typeTag, 18);

static_assert(sizeof(nlsHandle) == 96);
NLS_AT(nlsHandle, chainHead, 24);
NLS_AT(nlsHandle, toc, 32);
NLS_AT(nlsHandle, bufferRec, 40);
NLS_AT(nlsHandle, readFn, 48);
NLS_AT(nlsHandle, freePtr, 56);
NLS_AT(nlsHandle, userSortHandle, 64);
NLS_AT(nlsHandle, freeBytes, 72);
NLS_AT(nlsHandle, fileHandle, 76);
NLS_AT(nlsHandle, tocCount, 80);
NLS_AT(nlsHandle, busy, 84);
NLS_AT(nlsHandle, userSortOpen, 88);

static_assert(sizeof(nlsBufferRec) == 24);
NLS_AT(nlsBufferRec, prevBuffer, 8);
NLS_AT(nlsBufferRec, size, 16);
NLS_AT(nlsBufferRec, leftover, 20);

static_assert(sizeof(nlsTlsBlock) == 40);
NLS_AT(nlsTlsBlock, icuColl, 16);
NLS_AT(nlsTlsBlock, collator, 24);
NLS_AT(nlsTlsBlock, icuStatus, 32);

static_assert(sizeof(nlsLocale) == 152);
NLS_AT(nlsLocale, owner, 24);
NLS_AT(nlsLocale, attrib, 32);
NLS_AT(nlsLocale, coll, 40);
NLS_AT(nlsLocale, caseTable, 48);
NLS_AT(nlsLocale, dbCollationName, 56);
NLS_AT(nlsLocale, charsetName, 64);
NLS_AT(nlsLocale, collationName, 84);
NLS_AT(nlsLocale, caseName, 116);
NLS_AT(nlsLocale, dbBlockSize, 136);
NLS_AT(nlsLocale, wordBreak, 144);

static_assert(sizeof(nlsConversion) == 48);
NLS_AT(nlsConversion, source, 24);
NLS_AT(nlsConversion, target, 32);
NLS_AT(nlsConversion, table, 40);

static_assert(sizeof(nlsTocEntry) == 64);
NLS_AT(nlsTocEntry, name2, 20);
NLS_AT(nlsTocEntry, offset, 40);
NLS_AT(nlsTocEntry, subKind, 44);
NLS_AT(nlsTocEntry, rawByte, 46);
NLS_AT(nlsTocEntry, entryType, 48);
NLS_AT(nlsTocEntry, data, 56);

static_assert(sizeof(nlsAttribStruct) == 792);
NLS_AT(nlsAttribStruct, lengthMap, 256);
NLS_AT(nlsAttribStruct, trailMap, 512);
NLS_AT(nlsAttribStruct, sjisAttrib, 768);
NLS_AT(nlsAttribStruct, sjisConversion, 776);
NLS_AT(nlsAttribStruct, mapSize, 784);
NLS_AT(nlsAttribStruct, flags, 788);

static_assert(sizeof(nlsUcs2Map) == 160);
NLS_AT(nlsUcs2Map, ucsRows, 8);
NLS_AT(nlsUcs2Map, ucsCells, 16);
NLS_AT(nlsUcs2Map, cjisOffset, 28);
NLS_AT(nlsUcs2Map, rowsOffset, 32);
NLS_AT(nlsUcs2Map, cellsOffset, 36);
NLS_AT(nlsUcs2Map, ranges, 40);
NLS_AT(nlsUcs2Map, sjisZero, 104);
NLS_AT(nlsUcs2Map, cjisBase, 106);
NLS_AT(nlsUcs2Map, gapAfter, 108);
NLS_AT(nlsUcs2Map, gapSize, 110);
NLS_AT(nlsUcs2Map, cjisCount, 112);
NLS_AT(nlsUcs2Map, ucsMin, 114);
NLS_AT(nlsUcs2Map, ucsMax, 116);
NLS_AT(nlsUcs2Map, rowShift, 118);
NLS_AT(nlsUcs2Map, valueShift, 120);
NLS_AT(nlsUcs2Map, substChar, 122);
NLS_AT(nlsUcs2Map, leadFirst1, 124);
NLS_AT(nlsUcs2Map, leadLast2, 127);
NLS_AT(nlsUcs2Map, trailFirst1, 128);
NLS_AT(nlsUcs2Map, trailLast3, 133);
NLS_AT(nlsUcs2Map, ucsRowCount, 134);
NLS_AT(nlsUcs2Map, ucsCellCount, 136);
NLS_AT(nlsUcs2Map, colMask, 140);
NLS_AT(nlsUcs2Map, skipMask, 142);
NLS_AT(nlsUcs2Map, leadGap, 144);
NLS_AT(nlsUcs2Map, trailGap2, 146);
NLS_AT(nlsUcs2Map, trailsPerRow, 147);
NLS_AT(nlsUcs2Map, trailGap3, 148);
NLS_AT(nlsUcs2Map, rangesOnCjis, 149);

static_assert(sizeof(nlsCollStruct) == 584);
NLS_AT(nlsCollStruct, foldMap, 256);
NLS_AT(nlsCollStruct, nextColl, 512);
NLS_AT(nlsCollStruct, collMapSize, 520);
NLS_AT(nlsCollStruct, collKind, 524);
NLS_AT(nlsCollStruct, collSubKind, 528);
NLS_AT(nlsCollStruct, collCharset, 532);
NLS_AT(nlsCollStruct, collName, 552);

static_assert(sizeof(nlsIcuInfo) == 64);
NLS_AT(nlsIcuInfo, version, 8);
NLS_AT(nlsIcuInfo, versionText, 16);
NLS_AT(nlsIcuInfo, icuLocale, 24);
NLS_AT(nlsIcuInfo, nameText, 32);

static_assert(sizeof(nlsCaseStruct) == 516);
NLS_AT(nlsCaseStruct, upperMap, 4);
NLS_AT(nlsCaseStruct, lowerMap, 260);

static_assert(sizeof(nlsUnicodeCaseStruct) == 8024);
NLS_AT(nlsUnicodeCaseStruct, caseBuildSize, 4);
NLS_AT(nlsUnicodeCaseStruct, caseRaw, 8);
NLS_AT(nlsUnicodeCaseStruct, casePages, 5976);

NLS_AT(nlsWbTable, wbBodySize, 2);
NLS_AT(nlsWbTable, wbClassOffset, 4);
NLS_AT(nlsWbTable, wbFlags, 6);

static_assert(sizeof(nlsDbCollation) == 112);
NLS_AT(nlsDbCollation, dbCollation, 20);
NLS_AT(nlsDbCollation, dbCase, 52);
NLS_AT(nlsDbCollation, dbCollKind, 72);
NLS_AT(nlsDbCollation, dbCollSubKind, 76);
NLS_AT(nlsDbCollation, dbImageSize, 80);
NLS_AT(nlsDbCollation, dbBlockBase, 84);
NLS_AT(nlsDbCollation, dbImage, 88);
NLS_AT(nlsDbCollation, dbWordBreak, 96);
NLS_AT(nlsDbCollation, dbWordBreakLocale, 104);

static_assert(sizeof(nlsStr) == 16);
NLS_AT(nlsStr, bufSize, 8);
NLS_AT(nlsStr, strLength, 12);
