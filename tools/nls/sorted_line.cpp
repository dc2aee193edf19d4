#include "tools/nls/sorted_line.hpp"

#include <algorithm>

namespace nls::tool {
namespace {

// Big-endian, with zeros behind a short key: numbers of this sort as the bytes do.
uint64_t startOf(ByteView key) {
    uint64_t start = 0;
    for (std::size_t i = 0; i < 8; ++i) start = start << 8 | (i < key.size() ? key[i] : 0U);
    return start;
}

int compareKeys(const SortedLine& a, const SortedLine& b) {
    if (a.keyStart != b.keyStart) return a.keyStart < b.keyStart ? -1 : 1;
    const int sign = std::memcmp(a.key().data(), b.key().data(), std::min(a.keySize, b.keySize));
    if (sign != 0) return sign < 0 ? -1 : 1;
    return (a.keySize > b.keySize ? 1 : 0) - (a.keySize < b.keySize ? 1 : 0);
}

}  // namespace

// The keys of the ranges stand one behind the other, each closed by a NUL, which is lower than any byte of a key.
bool LineOrder::makeKey(ByteView text, ByteBuffer& key) const {
    if (keyMaker_ == nullptr) return false;
    constexpr unsigned char nul[] = {0};
    for (std::size_t range = 0; range < cutter_.rangeCount(); ++range) {
        if (!keyMaker_->append(order_.trimmed(cutter_.cut(text, range)), key)) return false;
        key.append(nul);
    }
    return true;
}

SortedLine LineOrder::lineAt(const unsigned char* bytes, uint32_t size, uint32_t keySize) const {
    SortedLine line{bytes, size, keySize, 0, 0, 0};
    line.keyStart = startOf(line.key());
    const ByteView field = order_.trimmed(cutter_.cut(line.text(), 0));
    if (!field.empty()) line.fieldBegin = static_cast<uint32_t>(field.data() - bytes);
    line.fieldSize = static_cast<uint32_t>(field.size());
    return line;
}

int LineOrder::forwards(const SortedLine& a, const SortedLine& b) const {
    if (a.keySize != SortedLine::noKey && b.keySize != SortedLine::noKey) return compareKeys(a, b);
    return byFields(a, b);
}

int LineOrder::byFields(const SortedLine& a, const SortedLine& b) const {
    int sign = order_.compare(a.field(), b.field());
    for (std::size_t range = 1; sign == 0 && range < cutter_.rangeCount(); ++range) {
        sign =
            order_.compare(order_.trimmed(cutter_.cut(a.text(), range)), order_.trimmed(cutter_.cut(b.text(), range)));
    }
    return sign;
}

}  // namespace nls::tool
