// What the number of a conversion type means.
#pragma once

#include <string>

namespace nls::tool {

// By the number that nlsConversionType gives.
inline std::string typeName(int type) {
    switch (type) {
        case 1:
            return "byte map";
        case 2:
            return "identity";
        case 3:
            return "Shift-JIS to EUC by rule";
        case 4:
            return "EUC to Shift-JIS by rule";
        case 5:
            return "Unicode to a charset of ICU";
        case 6:
            return "a charset of ICU to Unicode";
        case 7:
            return "two steps";
        case 17:
        case 81:
        case 89:
            return "multi-byte charset to UTF-8";
        case 18:
        case 50:
            return "UTF-8 to multi-byte charset";
        case 19:
        case 51:
            return "single-byte charset to UTF-8";
        case 20:
            return "UTF-8 to single-byte charset";
        case 21:
            return "UCS2 to UTF-8";
        case 22:
            return "UTF-8 to UCS2";
        case 23:
            return "UTF-16 to UTF-8";
        case 24:
            return "UTF-8 to UTF-16";
        case 25:
            return "UTF-32 to UTF-8";
        case 26:
            return "UTF-8 to UTF-32";
        case 27:
            return "UTF-16 to UTF-32";
        case 28:
            return "UTF-32 to UTF-16";
        case 29:
            return "multi-byte charset to UTF-16";
        case 30:
            return "UTF-16 to multi-byte charset";
        default:
            return "unknown";
    }
}

}  // namespace nls::tool
