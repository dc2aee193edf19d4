// A stored collation outside of memory: the record, its image, a word-break table and a text as one run of bytes, the
// form ".nlscoll" of docs/stored-collation.md, and the ways from a locale to it and back.
//
// Reading checks the form alone: what a record says of itself, the library checks when a locale is made of it.
// Tested by tests/tools/stored_file_test.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "nls/nls.h"

namespace nls::stored {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

struct StoredCollation {
    nlsDbCollation record{};  // without pointers; dbImageSize is that of `image`
    Bytes image;
    Bytes wordBreak;               // empty for none; else 62 bytes and the number at its offset 2
    std::string text;              // without a NUL
    std::string wordBreakCharset;  // of the second locale that the word-break table is completed for; empty for none
};

// The names in the record's fields.
std::string charsetOf(const nlsDbCollation& record);
std::string collationOf(const nlsDbCollation& record);
std::string caseOf(const nlsDbCollation& record);

// The file form. REQUIRES: at most 19 bytes of `wordBreakCharset`, no NUL in it nor in `text`, less than 4 GiB in all.
Bytes toFileForm(const StoredCollation& stored);

// What stands in a file form; nothing, and `trouble` says why, where the bytes aren't one.
std::optional<StoredCollation> fromFileForm(ByteView bytes, std::string& trouble);

// The tables of a locale, by nlsLocaleToDbCollation and with its answers; format 6 and more is the long image.
// Word-break table and text stay as they are.
nlsStatus takeFrom(const nlsLocale& locale, int32_t format, StoredCollation& stored);

// Makes a database locale, by nlsDbCollationToLocale and with its answers, in `block`, which grows as needed and is the
// locale's until nlsCloseDBLocale. `wordBreakLocale` is that of `wordBreakCharset`, or null. On NLS_NO_MEM: give the
// arena a buffer and call again; for kind 5 it may also say that ICU can't be had.
nlsStatus openStored(nlsHandle* handle, const StoredCollation& stored, nlsLocale* wordBreakLocale,
                     std::vector<uint64_t>& block, nlsLocale*& locale);

// Versions of the collator and of the data of the Unicode Collation Algorithm, four numbers each, most significant
// first.
struct IcuVersions {
    unsigned char collator[4];
    unsigned char uca[4];

    bool operator==(const IcuVersions&) const = default;
    std::string text() const;  // "153.120.0.0 / 13.0.0.0"
};

// Those in an image of kind 5, which has at least its 512 bytes; also in the maps of a locale's collation.
std::optional<IcuVersions> icuVersionsOf(ByteView image);

}  // namespace nls::stored
