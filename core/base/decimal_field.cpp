#include "core/base/decimal_field.hpp"

namespace nls {

int32_t readDecimal(const char* text, int32_t width) {
    while (width > 0 && (*text == ' ' || *text == '\n' || *text == '\t')) {
        ++text;
        --width;
    }
    bool negative = false;
    if (width > 0 && (*text == '+' || *text == '-')) {
        negative = *text == '-';
        ++text;
        --width;
    }
    uint32_t value = 0;
    for (; width > 0 && *text >= '0' && *text <= '9'; ++text, --width)
        value = value * 10 + static_cast<uint32_t>(*text - '0');
    return static_cast<int32_t>(negative ? 0U - value : value);
}

}  // namespace nls
