#include "conversion/byte_map.hpp"

namespace nls {

bool mapBytesPlain(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target) {
    unsigned char changed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char before = source[i], after = map[before];
        target[i] = after;
        changed |= static_cast<unsigned char>(before ^ after);
    }
    return changed != 0;
}

bool mapBytes(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target) {
    return mapBytesPlain(map, source, count, target);
}

}  // namespace nls
