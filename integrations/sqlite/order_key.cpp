#include "integrations/sqlite/order_key.hpp"

#include <algorithm>
#include <stdexcept>

namespace nls::sqlite {
namespace {

constexpr std::size_t longestKey = 32767;  // the size of a key buffer is a signed word of 16 bits
constexpr std::size_t spare = 8;           // a key is cut at its end without a word: so much must stay free

[[noreturn]] void refuse(const Order& order, const std::string& why) {
    throw std::runtime_error(order.name() + " " + why + "; sort with COLLATE instead");
}

// Where a byte stands for two letters s, keys follow the comparison only if that byte begins no longer character, and
// on the basic table only if "s" weighs as it does by itself.
bool expandsSafely(const Order& order) {
    const nlsCollStruct& collation = *order.locale()->coll;
    const unsigned char* const weights = order.mode() == Mode::exact ? collation.exactMap : collation.foldMap;
    const unsigned char weightOfS = weights[unsigned{'s'}];
    const bool isBasic = collation.collKind == 1 && collation.collSubKind == 0;
    for (unsigned byte = 1; byte < 256; ++byte) {
        if (weights[byte] != 0) continue;
        if ((order.locale()->attrib->lengthMap[byte] & 7U) != 0) return false;
        if (weightOfS == 0 || (isBasic && weightOfS != 0x53)) return false;
    }
    return true;
}

void judge(const Order& order) {
    if (order.kind() == kUnicodeOrder || order.kind() == kThaiOrder || order.kind() == kIcuOrder) return;
    if (order.kind() == kSiteSort) refuse(order, "is a sort of the site's own, whose keys are unknown");
    if ((order.locale()->attrib->flags & NLS_CHARSET_VIA_SJIS) != 0) {
        refuse(order, "compares through Shift-JIS and has no keys of all texts");
    }
    if (!expandsSafely(order)) refuse(order, "has letters that count as two and no keys for them");
}

void appendThai(const Order& order, Bytes& piece, Bytes& key) {
    const nlsCollStruct& collation = *order.locale()->coll;
    const unsigned char* const map = order.mode() == Mode::exact ? collation.exactMap : collation.foldMap;
    for (const unsigned char* cursor = piece.data(); *cursor != 0;) {
        const uint32_t rank = GetLetterClusterRank(map, &cursor);
        key.push_back(1);
        for (int shift = 24; shift >= 0; shift -= 8) key.push_back(static_cast<unsigned char>(rank >> shift));
    }
}

void appendPiece(Order& order, ByteView text, Bytes& key) {
    const ByteView trimmed = order.trimmed(text);
    if (trimmed.empty()) return;
    Bytes piece(trimmed.begin(), trimmed.end());
    piece.push_back(0);
    if (order.kind() == kThaiOrder) return appendThai(order, piece, key);
    for (std::size_t size = std::min(trimmed.size() * 2 + 64, longestKey);; size = longestKey) {
        const std::size_t begin = key.size();
        key.resize(begin + size);
        uint16_t length = 0;
        const nlsStatus status = nlsSortKey(order.locale(), order.tls(), piece.data(), static_cast<int16_t>(size),
                                            order.modeNumber(), 0, key.data() + begin, &length);
        if (status != NLS_OK && status != NLS_BUF_SMALL) {
            refuse(order, "makes no key (status " + std::to_string(status) + ")");
        }
        // ICU's route tells what fails by an empty key.
        if (status == NLS_OK && length == 0 && order.kind() == kIcuOrder) refuse(order, "has no key of so long a text");
        const bool fits = status == NLS_OK && length + spare < size;
        key.resize(begin + (fits ? length : 0));
        if (fits) return;
        if (size == longestKey) refuse(order, "has no key of so long a text");
    }
}

}  // namespace

Bytes keyOf(Order& order, ByteView text) {
    judge(order);
    const TextForm& form = order.form(text);
    Bytes key;
    for (std::size_t number = 0; number < form.pieces.size(); ++number) {
        if (number != 0) key.insert(key.end(), {0, 1});
        appendPiece(order, form.piece(number), key);
    }
    if (!form.lacks()) return key;
    key.insert(key.end(), {0, 0});
    for (const TextForm::Value& value : form.values) {
        for (int shift = 24; shift >= 0; shift -= 8) key.push_back(static_cast<unsigned char>(value.value >> shift));
    }
    return key;
}

}  // namespace nls::sqlite
