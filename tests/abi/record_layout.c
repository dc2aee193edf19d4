/* The records of the interface as a C11 compiler lays them out: size of each, offset of every field that others store.
   A record that moved doesn't compile here, whatever C++ says of it. */
#include <nls/dbcollation.h>
#include <nls/records.h>

#define SIZE(record, bytes) _Static_assert(sizeof(record) == (bytes), #record " has another size")
#define AT(record, field, bytes) _Static_assert(offsetof(record, field) == (bytes), #record "." #field " has moved")

SIZE(nlsHdr, 24);
AT(nlsHdr, next, 0);
AT(nlsHdr, prev, 8);
AT(nlsHdr, serial, 16);
AT(nlsHdr, typeTag, 18);

SIZE(nlsHandle, 96);
AT(nlsHandle, chainHead, 24);
AT(nlsHandle, toc, 32);
AT(nlsHandle, bufferRec, 40);
AT(nlsHandle, readFn, 48);
AT(nlsHandle, freePtr, 56);
AT(nlsHandle, userSortHandle, 64);
AT(nlsHandle, freeBytes, 72);
AT(nlsHandle, fileHandle, 76);
AT(nlsHandle, tocCount, 80);
AT(nlsHandle, busy, 84);
AT(nlsHandle, userSortOpen, 88);

SIZE(nlsBufferRec, 24);
AT(nlsBufferRec, base, 0);
AT(nlsBufferRec, prevBuffer, 8);
AT(nlsBufferRec, size, 16);
AT(nlsBufferRec, leftover, 20);

SIZE(nlsTlsBlock, 40);
AT(nlsTlsBlock, ownerWord, 0);
AT(nlsTlsBlock, icuColl, 16);
AT(nlsTlsBlock, collator, 24);
AT(nlsTlsBlock, icuStatus, 32);

SIZE(nlsLocale, 152);
AT(nlsLocale, owner, 24);
AT(nlsLocale, attrib, 32);
AT(nlsLocale, coll, 40);
AT(nlsLocale, caseTable, 48);
AT(nlsLocale, dbCollationName, 56);
AT(nlsLocale, charsetName, 64);
AT(nlsLocale, collationName, 84);
AT(nlsLocale, caseName, 116);
AT(nlsLocale, dbBlockSize, 136);
AT(nlsLocale, wordBreak, 144);

SIZE(nlsConversion, 48);
AT(nlsConversion, source, 24);
AT(nlsConversion, target, 32);
AT(nlsConversion, table, 40);

SIZE(nlsTocEntry, 64);
AT(nlsTocEntry, name2, 20);
AT(nlsTocEntry, offset, 40);
AT(nlsTocEntry, subKind, 44);
AT(nlsTocEntry, rawByte, 46);
AT(nlsTocEntry, entryType, 48);
AT(nlsTocEntry, data, 56);

SIZE(nlsAttribStruct, 792);
AT(nlsAttribStruct, lengthMap, 256);
AT(nlsAttribStruct, trailMap, 512);
AT(nlsAttribStruct, sjisAttrib, 768);
AT(nlsAttribStruct, sjisConversion, 776);
AT(nlsAttribStruct, mapSize, 784);
AT(nlsAttribStruct, flags, 788);

SIZE(nlsUcs2Range, 12);
SIZE(nlsUcs2Map, 160);
AT(nlsUcs2Map, ucsRows, 8);
AT(nlsUcs2Map, ucsCells, 16);
AT(nlsUcs2Map, cjisOffset, 28);
AT(nlsUcs2Map, ranges, 40);
AT(nlsUcs2Map, sjisZero, 104);
AT(nlsUcs2Map, cjisCount, 112);
AT(nlsUcs2Map, substChar, 122);
AT(nlsUcs2Map, leadFirst1, 124);
AT(nlsUcs2Map, trailFirst1, 128);
AT(nlsUcs2Map, ucsRowCount, 134);
AT(nlsUcs2Map, ucsCellCount, 136);
AT(nlsUcs2Map, colMask, 140);
AT(nlsUcs2Map, skipMask, 142);
AT(nlsUcs2Map, leadGap, 144);
AT(nlsUcs2Map, trailGap2, 146);
AT(nlsUcs2Map, trailsPerRow, 147);
AT(nlsUcs2Map, trailGap3, 148);
AT(nlsUcs2Map, rangesOnCjis, 149);

SIZE(nlsCollStruct, 584);
AT(nlsCollStruct, foldMap, 256);
AT(nlsCollStruct, nextColl, 512);
AT(nlsCollStruct, collMapSize, 520);
AT(nlsCollStruct, collKind, 524);
AT(nlsCollStruct, collSubKind, 528);
AT(nlsCollStruct, collCharset, 532);
AT(nlsCollStruct, collName, 552);

SIZE(nlsIcuInfo, 64);
AT(nlsIcuInfo, version, 8);
AT(nlsIcuInfo, versionText, 16);
AT(nlsIcuInfo, icuLocale, 24);
AT(nlsIcuInfo, nameText, 32);

SIZE(nlsCaseStruct, 516);
AT(nlsCaseStruct, upperMap, 4);
AT(nlsCaseStruct, lowerMap, 260);

SIZE(nlsUnicodeCaseStruct, 8024);
AT(nlsUnicodeCaseStruct, caseBuildSize, 4);
AT(nlsUnicodeCaseStruct, caseRaw, 8);
AT(nlsUnicodeCaseStruct, casePages, 5976);

AT(nlsWbTable, wbBodySize, 2);
AT(nlsWbTable, wbClassOffset, 4);
AT(nlsWbTable, wbFlags, 6);

SIZE(nlsDbCollation, 112);
AT(nlsDbCollation, dbCollation, 20);
AT(nlsDbCollation, dbCase, 52);
AT(nlsDbCollation, dbCollKind, 72);
AT(nlsDbCollation, dbCollSubKind, 76);
AT(nlsDbCollation, dbImageSize, 80);
AT(nlsDbCollation, dbBlockBase, 84);
AT(nlsDbCollation, dbImage, 88);
AT(nlsDbCollation, dbWordBreak, 96);
AT(nlsDbCollation, dbWordBreakLocale, 104);

SIZE(nlsStr, 16);
AT(nlsStr, buf, 0);
AT(nlsStr, bufSize, 8);
AT(nlsStr, strLength, 12);

int recordLayoutHolds; /* a translation unit is never empty */
