// A message file, byte by byte; docs/message-file.md is its page. Numbers are little-endian, as on the processors that
// the library runs on.
//
// A header of 48 bytes, then `count` entries of 12 bytes in ascending order of their numbers, then the texts.
#pragma once

#include <cstdint>

namespace jutil {

inline constexpr char kMagic[] = "ZELMSGS\n";  // without its NUL
inline constexpr uint32_t kVersion = 1;
inline constexpr uint32_t kLongestMessage = 512;

struct MessageHeader {
    char magic[8];
    uint32_t version;
    uint32_t count;
    char charset[28];   // closed by a NUL
    uint32_t fileSize;  // bytes of the whole file
};

struct MessageEntry {
    int32_t number;
    uint32_t offset;  // of the text, from the beginning of the file
    uint32_t length;  // in bytes; no NUL among them
};

static_assert(sizeof(MessageHeader) == 48 && sizeof(MessageEntry) == 12);

}  // namespace jutil
