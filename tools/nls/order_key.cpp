#include "tools/nls/order_key.hpp"

#include <algorithm>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t longestKey = 32767;  // the size of a key buffer is a signed word of 16 bits
// A key is cut without a word where its buffer ends, and a character is not cut: so many bytes must have stayed free.
constexpr std::size_t spare = 8;

unsigned trailCount(const nlsAttribStruct& attrib, unsigned char byte) {
    return attrib.lengthMap[byte] & 7U;
}

}  // namespace

bool librarySortKey(const Order& order, ByteView text, bool trim, ByteBuffer& source, ByteBuffer& key) {
    constexpr unsigned char nul[] = {0};
    source.clear();
    source.append(text);
    source.append(nul);
    for (std::size_t size = std::min(text.size() * 2 + 64, longestKey);; size = longestKey) {
        uint16_t length = 0;
        unsigned char* const place = key.reserve(size);
        const nlsStatus status = nlsSortKey(order.locale(), nullptr, source.view().data(), static_cast<int16_t>(size),
                                            order.mode(), trim ? 1 : 0, place, &length);
        if (status != NLS_OK && status != NLS_BUF_SMALL) {
            throw Failure(Exit::fileTrouble,
                          order.name() + " makes no key of a text (status " + std::to_string(status) + ")");
        }
        // ICU's route tells what fails by an empty key, which no text but the empty one has.
        if (status == NLS_OK && length == 0 && order.kind() == OrderKind::icu && !order.trimmed(text).empty())
            return false;
        if (status == NLS_OK && length + spare < size) {
            key.grow(length);
            return true;
        }
        if (size == longestKey) return false;
    }
}

KeyMaker::KeyMaker(const Order& order) : order_(order) {
    judge();
}

void KeyMaker::judge() {
    if (order_.kind() == OrderKind::bytes) judgeBytes();
    if (order_.kind() == OrderKind::unicode || order_.kind() == OrderKind::icu) usable_ = true;
}

void KeyMaker::judgeBytes() {
    const unsigned char* const weights = order_.weights();
    const nlsCollStruct& collation = order_.collation();
    bool expands = false;
    for (unsigned byte = 1; byte < 256; ++byte) {
        if (weights[byte] != 0) continue;
        expands = true;
        if (trailCount(order_.attrib(), static_cast<unsigned char>(byte)) != 0) return;
    }
    const bool isBasic = collation.collKind == 1 && collation.collSubKind == 0;
    const unsigned char weightOfS = weights[unsigned{'s'}];
    if (expands && (weightOfS == 0 || order_.isBridged() || (isBasic && weightOfS != 0x53))) return;
    usable_ = true;
    if (order_.isBridged()) findPlainCharacters();
}

void KeyMaker::findPlainCharacters() {
    const nlsAttribStruct& own = order_.attrib();
    if (getSjisHandles(order_.locale()) != NLS_OK) {
        usable_ = false;
        return;
    }
    const nlsAttribStruct& sjis = *own.sjisAttrib;
    const nlsConvTable* const table = own.sjisConversion->table;
    const auto converted = [&](const unsigned char* source, int32_t length, unsigned char* target) {
        uint32_t written = 0;
        if (table == nullptr) {
            std::copy(source, source + length, target);
            return static_cast<uint32_t>(length);
        }
        const nlsStatus status = nlsConvertBytes(target, 2, source, length, table, &written);
        return status == NLS_OK ? written : 0;
    };
    for (unsigned first = 1; first < 256; ++first) {
        unsigned char source[2] = {static_cast<unsigned char>(first), 0};
        unsigned char target[2] = {};
        const unsigned trails = trailCount(own, source[0]);
        if (trails == 0) {
            plainSingles_[first] =
                converted(source, 1, target) == 1 && target[0] == first && trailCount(sjis, target[0]) == 0;
        }
        for (unsigned second = 1; trails == 1 && second < 256; ++second) {
            source[1] = static_cast<unsigned char>(second);
            const uint32_t length = own.trailMap[second] != 0 ? converted(source, 2, target) : 0;
            plainDoubles_[first << 8 | second] = length != 0 && target[0] != 0 &&
                                                 trailCount(sjis, target[0]) + 1 == length &&
                                                 (length == 1 || target[1] != 0);
        }
    }
}

bool KeyMaker::standsFor(ByteView text) const {
    if (order_.kind() == OrderKind::unicode) return order_.mode() != 0 || validUtf8(text);
    if (!order_.isBridged()) return true;
    std::size_t at = 0;
    while (at < text.size()) {
        const unsigned trails = trailCount(order_.attrib(), text[at]);
        if (trails == 0
                ? !plainSingles_[text[at]]
                : at + 1 >= text.size() || !plainDoubles_[static_cast<unsigned>(text[at] << 8 | text[at + 1])]) {
            return false;
        }
        at += trails + std::size_t{1};
    }
    return true;
}

bool KeyMaker::append(ByteView text, ByteBuffer& key) const {
    return usable_ && standsFor(text) && librarySortKey(order_, text, false, source_, key);
}

}  // namespace nls::tool
