#include "conversion/sbcs_bridge.hpp"

#include <cstring>

#include "nls/status.h"

namespace nls {

namespace {

// Bytes of a form by its lead byte. A word holds four, so a lead byte that announces more counts as four.
unsigned formLength(unsigned char lead) {
    return 1U + (lead >= 0xC0) + (lead >= 0xE0) + (lead >= 0xF0);
}

uint32_t fillUp(ByteSpan target, std::size_t written) {
    if (written < target.size()) std::memset(target.data() + written, ' ', target.size() - written);
    target.back() = 0;
    return static_cast<uint32_t>(target.size());
}

}  // namespace

Converted sbcsToUtf8(const SbcsWords& words, ByteView source, ByteSpan target) {
    if (source.empty()) return {NLS_OK, 0};
    if (target.empty()) return {NLS_BUF_SMALL, 0};
    std::size_t written = 0;
    for (const unsigned char byte : source) {
        unsigned char form[4];
        storeWord(form, words.utf8[byte]);
        const unsigned length = formLength(form[0]);
        const unsigned needed = length == 1 ? 1 : length + 1;
        if (target.size() - written < needed) return {NLS_BUF_SMALL, fillUp(target, written)};
        std::memcpy(target.data() + written, form, length);
        written += length;
    }
    if (source.back() == 0 && target[written - 1] != 0) return {NLS_BUF_SMALL, fillUp(target, written)};
    return {NLS_OK, static_cast<uint32_t>(written)};
}

Converted utf8ToSbcs(const SbcsPages& pages, ByteView source, ByteSpan target) {
    ByteReader reader{source};
    ByteWriter writer{target};
    nlsStatus status = NLS_OK;
    const auto ended = [&](nlsStatus with) { return Converted{with, static_cast<uint32_t>(writer.written())}; };
    while (!reader.atEnd()) {
        const unsigned char lead = reader.peek();
        const std::size_t length = lead < 0xC0 || lead > 0xF4 ? 1 : formLength(lead);
        if (length > reader.left()) return ended(NLS_BAD_ARG);
        unsigned char byte = 0;
        if (lead < 0x80)
            byte = pages.page[0][lead];
        else if (length == 2 || length == 3)
            byte = pages.page[reader.peek(length - 2)][reader.peek(length - 1) & 0x3F];
        if (byte == 0 && lead != 0) {
            byte = '?';
            status = NLS_CONV_SUBST;
        }
        if (!writer.put(byte)) return ended(NLS_BUF_SMALL);
        reader.skip(length);
    }
    return ended(status);
}

}  // namespace nls
