// What stands in the two maps of a collation of ICU's, in place of weights: a pointer to its record, versions, the
// locale, and the strength that the compare mode asks for. Databases store it.
#pragma once

#include <cstring>

#include "nls/records.h"

namespace nls {

class IcuImage {
public:
    static constexpr std::size_t kSize = 256, kLocale = 16, kStrength = 208;

    explicit IcuImage(unsigned char* map) : map_(map) {}

    nlsIcuInfo* info() const { return infoOf(map_); }
    static nlsIcuInfo* infoOf(const unsigned char* map) {
        nlsIcuInfo* info;
        std::memcpy(&info, map, sizeof info);
        return info;
    }
    void setInfo(nlsIcuInfo* info) { std::memcpy(map_, &info, sizeof info); }

    unsigned char (&collatorVersion())[4] { return field<4>(16); }
    unsigned char (&ucaVersion())[4] { return field<4>(20); }
    void clearReserved() { std::memset(map_ + 24, 0, 4); }
    char (&locale())[kLocale] { return reinterpret_cast<char(&)[kLocale]>(map_[32]); }

    // One of the strength words; its NUL may be missing in an image from elsewhere.
    char (&strengthWord())[kStrength] { return reinterpret_cast<char(&)[kStrength]>(map_[48]); }
    static const char* strengthWordOf(const unsigned char* map) { return reinterpret_cast<const char*>(map + 48); }

private:
    template <std::size_t Size>
    unsigned char (&field(std::size_t offset))[Size] {
        return reinterpret_cast<unsigned char(&)[Size]>(map_[offset]);
    }

    unsigned char* map_;
};

}  // namespace nls
