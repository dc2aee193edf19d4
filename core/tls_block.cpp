#include "core/tls_block.hpp"

#include <cstring>

namespace nls {

namespace {

constexpr uint32_t kAlignment = alignof(nlsTlsBlock);
constexpr uint32_t kAnyAddress = sizeof(nlsTlsBlock) + kAlignment;  // enough wherever the memory starts

}  // namespace

TlsPlace placeTlsBlock(ByteSpan memory, uint64_t ownerWord) {
    if (memory.data() == nullptr) return {nullptr, kAnyAddress};
    const auto past = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(memory.data()) % kAlignment);
    const uint32_t pad = past == 0 ? 0 : kAlignment - past;
    if (memory.size() < pad + sizeof(nlsTlsBlock)) return {nullptr, pad + kAnyAddress};
    unsigned char* const place = memory.data() + pad;
    std::memset(place, 0, sizeof(nlsTlsBlock));
    auto* const block = reinterpret_cast<nlsTlsBlock*>(place);
    block->ownerWord = ownerWord;
    return {block, 0};
}

}  // namespace nls
