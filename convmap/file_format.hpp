// Every record of the data file convmap.cp: sizes, offsets, digits, codes. The library's reader, the compiler of the
// file and the builder of small files in the tests share this description; nobody else knows an offset.
//
// The file is a header of 16 bytes, a table of contents of 64-byte records, and data records that the contents point
// to. Three kinds of field occur:
//
//   decimal text   a fixed number of ASCII digits; leading blanks are allowed, and a non-digit ends a shorter number
//   raw bytes      single bytes taken by value, names, and 8-bit tables
//   machine words  16- and 32-bit words of the Unicode records, in the byte order of the machine (little-endian here)
//
// One number is neither: the type code of a conversion record is big-endian.
//
// A data record is read whole, so the file must hold all its bytes at the entry's offset, whatever the record's own
// size field says. Two entries may point to one record. No record is aligned.
#pragma once

#include <cstdint>

#include "core/base/decimal_field.hpp"
#include "core/base/views.hpp"

namespace nls::format {

// A stretch of a record: offset from the record's start and width, in bytes.
struct Field {
    uint32_t offset;
    uint32_t width;
};
constexpr uint32_t endOf(Field field) {
    return field.offset + field.width;
}

// The largest number that a field of decimal text holds.
constexpr uint32_t largestDecimal(Field field) {
    uint32_t largest = 0;
    for (uint32_t digit = 0; digit < field.width; ++digit) largest = largest * 10 + 9;
    return largest;
}

// The file header, at offset 0.
namespace header {
inline constexpr Field kMagic{0, 4};       // decimal text
inline constexpr Field kFirstEntry{4, 2};  // decimal text: file offset of the table of contents
inline constexpr Field kVersion{6, 2};     // decimal text
inline constexpr Field kEntryCount{8, 3};  // decimal text
inline constexpr Field kUnread{11, 5};
inline constexpr uint32_t kSize = 16;
static_assert(endOf(kUnread) == kSize);

inline constexpr int32_t kMagicNumber = 4242;
inline constexpr int32_t kOldestVersion = 4;
inline constexpr int32_t kNewestVersion = 5;
}  // namespace header

// One record of the table of contents. They follow one another with nothing between them.
namespace entry {
inline constexpr Field kName1{0, 20};   // NUL-terminated within the field
inline constexpr Field kName2{20, 20};  // the same
inline constexpr Field kOffset{40, 7};  // decimal text: file offset of the data record; 0 = none, for conversions alone
inline constexpr Field kSubKind{47, 1};  // one digit
inline constexpr Field kRawByte{48, 1};  // by value
inline constexpr Field kType{49, 1};     // one digit: an EntryType
inline constexpr Field kUnread{50, 14};
inline constexpr uint32_t kSize = 64;
static_assert(endOf(kUnread) == kSize);

inline constexpr uint32_t kLongestName = kName1.width - 1;
inline constexpr uint32_t kMostEntries = largestDecimal(header::kEntryCount);
}  // namespace entry

// What a record of the table of contents is. Any other digit is a record that nothing looks for.
enum class EntryType : uint16_t {
    conversion = 1,  // name1 to name2; raw byte: its type code, and the type word of a table built as an inverse
    attributes = 2,  // of name1; raw byte: the flags of the charset
    caseTable = 3,   // of charset name1, called name2; raw byte: kUnicodeCase or anything else
    collation = 4,   // of charset name1, called name2
};

// Raw byte of a case table of the Unicode kind.
inline constexpr unsigned char kUnicodeCase = 2;

// The four digits at the start of a data record: how many bytes of each of its slots are in use.
inline constexpr Field kSlotSize{0, 4};
inline constexpr uint32_t kSlotWidth = 512;
inline constexpr uint32_t kMapEntries = 256;  // a map by byte value fills half a slot

// Attribute table of a charset.
namespace attributes {
inline constexpr Field kAlphaMap{4, kSlotWidth};
inline constexpr Field kLengthMap{516, kSlotWidth};
inline constexpr Field kTrailMap{1028, kSlotWidth};
inline constexpr Field kUnread{1540, 12};
inline constexpr uint32_t kSize = 1552;
static_assert(endOf(kUnread) == kSize);
}  // namespace attributes

// Conversion. The slot holds 256 bytes (a byte map) or 256 machine words of 16 bits (the units of a single-byte
// charset).
namespace conversion {
inline constexpr Field kTable{4, kSlotWidth};
inline constexpr Field kTypeCode{516, 2};  // big-endian; see convmap/type_codes.hpp
inline constexpr Field kUnread{518, 10};
inline constexpr uint32_t kSize = 528;
static_assert(endOf(kUnread) == kSize);
}  // namespace conversion

// Conversion of a multi-byte charset to UTF-8. It is read twice: as a conversion for its type code, and as this. Its
// three maps have the layout of nlsUcs2Map; the arrays of a map stand elsewhere, each behind a prefix that isn't read.
namespace ucs2 {
inline constexpr Field kMaps{8, 480};
inline constexpr Field kUnread{488, 8};
inline constexpr uint32_t kMapSize = 160;
inline constexpr uint32_t kMapCount = 3;
inline constexpr uint32_t kSize = 496;
inline constexpr uint32_t kArrayPrefix = 6;  // bytes between an array's offset and its first word
static_assert(endOf(kUnread) == kSize && kMaps.width == kMapSize * kMapCount);
}  // namespace ucs2

// Collation.
namespace collation {
inline constexpr Field kExactMap{4, kSlotWidth};
inline constexpr Field kFoldMap{516, kSlotWidth};
inline constexpr Field kKind{1028, 1};     // by value
inline constexpr Field kSubKind{1029, 1};  // by value
inline constexpr Field kUnread{1030, 10};
inline constexpr uint32_t kSize = 1040;
static_assert(endOf(kUnread) == kSize);
}  // namespace collation

// Case table, byte kind.
namespace byte_case {
inline constexpr Field kUpperMap{4, kSlotWidth};
inline constexpr Field kLowerMap{516, kSlotWidth};
inline constexpr Field kUnread{1028, 12};
inline constexpr uint32_t kSize = 1040;
static_assert(endOf(kUnread) == kSize);
}  // namespace byte_case

// Case table, Unicode kind: two lists of pairs of machine words of 16 bits, ended by a pair whose first word is 0.
namespace unicode_case {
inline constexpr Field kUpperList{6, 2976};
inline constexpr Field kLowerList{2982, 2976};
inline constexpr Field kUnread{5958, 10};
inline constexpr uint32_t kSize = 5968;
inline constexpr uint32_t kMostPairs = kUpperList.width / 4 - 1;
static_assert(endOf(kUnread) == kSize && kMostPairs == 743);
}  // namespace unicode_case

// Readers of fields. REQUIRES of each: the record holds the field.
inline ByteView bytesOf(ByteView record, Field field) {
    return record.subspan(field.offset, field.width);
}
inline unsigned char byteOf(ByteView record, Field field) {
    return record[field.offset];
}
inline int32_t decimalOf(ByteView record, Field field) {
    return readDecimal(reinterpret_cast<const char*>(record.data() + field.offset), static_cast<int32_t>(field.width));
}
inline unsigned bigEndianOf(ByteView record, Field field) {
    unsigned value = 0;
    for (const unsigned char byte : bytesOf(record, field)) value = value << 8 | byte;
    return value;
}

// Writers of fields, for those who make a file. The rest of a field is not touched.
//
// Digits with leading zeros. False, and nothing written, when the value has more digits than the field.
inline bool putDecimal(ByteSpan record, Field field, uint32_t value) {
    if (value > largestDecimal(field)) return false;
    for (uint32_t place = endOf(field); place > field.offset; value /= 10)
        record[--place] = static_cast<unsigned char>('0' + value % 10);
    return true;
}
inline void putBigEndian(ByteSpan record, Field field, unsigned value) {
    for (uint32_t place = endOf(field); place > field.offset; value >>= 8)
        record[--place] = static_cast<unsigned char>(value);
}

}  // namespace nls::format
