// Comparison and keys of byte tables step by step, as they are told: the slow twins of collation/byte_walk,
// collation/single_byte_walk and collation/byte_key.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

#include "nls/convert.h"
#include "nls/records.h"

namespace nls::reference {

struct ByteOrder {
    const unsigned char* map;
    const nlsAttribStruct* attrib;          // null: the walk that knows no longer characters
    const nlsConvTable* bridge = nullptr;   // null: none
    const nlsAttribStruct* sjis = nullptr;  // the attributes that keys of bridged text go by
};

namespace detail {

inline bool isLead(const nlsAttribStruct* attrib, unsigned char byte) {
    return attrib != nullptr && (attrib->lengthMap[byte] & 7) != 0;
}

struct Side {
    const unsigned char* cursor;
    const unsigned char* limit;
    enum { none, secondS, secondByte } mark = none;
    unsigned char pair[2] = {};

    bool ended() const { return cursor == limit || *cursor == 0; }

    unsigned char weight(const ByteOrder& order) {
        const unsigned char ofS = order.map[unsigned{'s'}];
        if (mark == secondS) {
            mark = none;
            return ofS;
        }
        if (mark == secondByte) {
            mark = none;
            return pair[1];
        }
        const unsigned char c = *cursor;
        if (order.map[c] == 0) {
            mark = secondS;
            return ofS;
        }
        if (!isLead(order.attrib, c)) return order.map[c];
        ++cursor;
        pair[0] = c;
        pair[1] = ended() ? 0 : *cursor;  // what stands at the limit isn't read
        uint32_t length = 2;
        if (order.bridge != nullptr) (void)nlsConvertBytes(pair, 2, pair, 2, order.bridge, &length);
        if (length != 1) mark = secondByte;
        return order.map[pair[0]];
    }
    void stepOn() {
        if (mark == none && !ended()) ++cursor;
    }
    bool blanksLeft() {
        while (cursor != limit && *cursor == ' ') ++cursor;
        return ended();
    }
};

}  // namespace detail

// A length of -1 is no limit.
inline int compare(const ByteOrder& order, const unsigned char* s1, int32_t len1, const unsigned char* s2,
                   int32_t len2) {
    detail::Side first{s1, len1 < 0 ? nullptr : s1 + len1}, second{s2, len2 < 0 ? nullptr : s2 + len2};
    for (;;) {
        if (first.ended()) return second.blanksLeft() ? 0 : -1;
        if (second.ended()) return first.blanksLeft() ? 0 : 1;
        const unsigned char w1 = first.weight(order), w2 = second.weight(order);
        if (w1 != w2) return w1 > w2 ? 1 : -1;
        first.stepOn();
        second.stepOn();
    }
}

// The key up to its NUL, as far as `room` bytes and a NUL go.
inline std::string key(const ByteOrder& order, bool basic, bool trim, std::string text, std::size_t room) {
    if (trim && !basic)
        while (text.ends_with(' ')) text.pop_back();
    const nlsAttribStruct* attrib = order.bridge != nullptr ? order.sjis : order.attrib;
    if (order.bridge != nullptr) {
        std::string converted(text.size() * 2 + 2, '\0');
        uint32_t length = 0;
        (void)nlsConvertBytes(reinterpret_cast<unsigned char*>(converted.data()),
                              static_cast<int32_t>(converted.size()),
                              reinterpret_cast<const unsigned char*>(text.data()), static_cast<int32_t>(text.size()),
                              order.bridge, &length);
        text = converted.substr(0, length);
    }
    std::string key;
    const std::size_t end = std::min(text.size(), text.find('\0'));
    for (std::size_t i = 0; i < end; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const unsigned char weight = order.map[c];
        if (detail::isLead(attrib, c)) {
            key.push_back(static_cast<char>(weight));
            if (++i < end) key.push_back(text[i]);
        } else {
            key.append(weight == 0 ? 2 : 1, static_cast<char>(weight != 0 ? weight
                                                              : basic     ? 0x53
                                                                          : order.map[unsigned{'s'}]));
        }
    }
    key.resize(std::min(key.size(), room));
    key.resize(std::min(key.size(), key.find('\0')));
    if (trim && basic)
        while (key.ends_with(' ')) key.pop_back();
    return key;
}

}  // namespace nls::reference
