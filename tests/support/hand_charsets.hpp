// Attribute tables made by hand, locales on them, and all short strings over an alphabet.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "nls/records.h"

namespace nls::test {

inline void fill(unsigned char (&map)[256], unsigned first, unsigned last, unsigned char value) {
    std::memset(map + first, value, last - first + 1);
}

inline nlsAttribStruct singleByteCharset() {
    nlsAttribStruct attrib{};
    attrib.mapSize = 256;
    attrib.flags = NLS_CHARSET_SINGLE_BYTE;
    fill(attrib.alphaMap, 'A', 'Z', 1);
    fill(attrib.alphaMap, 'a', 'z', 1);
    return attrib;
}

inline nlsAttribStruct utf8Charset() {
    nlsAttribStruct attrib = singleByteCharset();
    attrib.flags = NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UTF8;
    fill(attrib.lengthMap, 0xC0, 0xDF, 1);
    fill(attrib.lengthMap, 0xE0, 0xEF, 2);
    fill(attrib.lengthMap, 0xF0, 0xF7, 3);
    fill(attrib.lengthMap, 0xF8, 0xFB, 4);
    fill(attrib.lengthMap, 0xFC, 0xFF, 5);
    fill(attrib.trailMap, 0x80, 0xBF, 1);
    return attrib;
}

inline nlsAttribStruct sjisCharset() {
    nlsAttribStruct attrib = singleByteCharset();
    attrib.flags = NLS_CHARSET_MULTI_BYTE;
    fill(attrib.lengthMap, 0x81, 0x9F, 1);
    fill(attrib.lengthMap, 0xE0, 0xFC, 1);
    fill(attrib.trailMap, 0x40, 0x7E, 1);
    fill(attrib.trailMap, 0x80, 0xFC, 1);
    return attrib;
}

inline nlsAttribStruct eucCharset() {
    nlsAttribStruct attrib = singleByteCharset();
    attrib.flags = NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_VIA_SJIS;
    fill(attrib.lengthMap, 0xA1, 0xFE, 1);
    attrib.lengthMap[0x8E] = 0x09;  // kana: two bytes in one column
    attrib.lengthMap[0x8F] = 2;
    fill(attrib.trailMap, 0xA1, 0xFE, 1);
    return attrib;
}

// What no charset has: long trail counts, on the NUL and on ASCII too, and marks beside them.
inline nlsAttribStruct oddCharset() {
    nlsAttribStruct attrib{};
    attrib.flags = NLS_CHARSET_MULTI_BYTE;
    for (unsigned byte = 0; byte < 256; ++byte) {
        attrib.lengthMap[byte] = static_cast<unsigned char>(byte & 7U);
        attrib.trailMap[byte] = (byte & 0x10U) != 0;
        attrib.alphaMap[byte] = (byte & 0x20U) != 0;
    }
    return attrib;
}

struct NamedCharset {
    const char* name;
    nlsAttribStruct attrib;
};
inline std::vector<NamedCharset> handCharsets() {
    return {{"single", singleByteCharset()},
            {"utf8", utf8Charset()},
            {"sjis", sjisCharset()},
            {"euc", eucCharset()},
            {"odd", oddCharset()}};
}

// A locale on a table, without a data file.
class HandLocale {
public:
    explicit HandLocale(const nlsAttribStruct& attrib) : attrib_(attrib) {
        handle_.hdr.typeTag = NLS_TAG_HANDLE;
        locale_.hdr.typeTag = NLS_TAG_LOCALE;
        locale_.owner = &handle_;
        locale_.attrib = &attrib_;
    }
    HandLocale(const HandLocale&) = delete;
    HandLocale& operator=(const HandLocale&) = delete;

    nlsLocale* get() { return &locale_; }
    nlsHandle& handle() { return handle_; }
    const nlsAttribStruct& attrib() const { return attrib_; }

private:
    nlsHandle handle_{};
    nlsLocale locale_{};
    nlsAttribStruct attrib_;
};

// Calls `visit` with every string of at most `length` bytes over `alphabet`.
inline void forAllStrings(const std::string& alphabet, std::size_t length,
                          const std::function<void(const std::string&)>& visit, const std::string& start = {}) {
    visit(start);
    if (start.size() == length) return;
    for (const char byte : alphabet) forAllStrings(alphabet, length, visit, start + byte);
}

// Bytes at the edges of every rule of the hand-made charsets.
inline const std::string edgeBytes{"\x01\x2C\x37\x41\x7F\x80\x81\x8E\x8F\xA1\xBF\xC3\xE0\xEF\xF0\xF9\xFF", 17};

inline const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace nls::test
