#include "core/base/arena.hpp"

namespace nls {

namespace {

uint32_t bytesToNextMultiple(const void* place, uint32_t alignment) {
    if (alignment <= 1) return 0;
    const uint32_t past = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(place)) % alignment;
    return past == 0 ? 0 : alignment - past;
}

}  // namespace

void* Arena::take(uint64_t size, uint32_t alignment) const {
    const uint32_t pad = bytesToNextMultiple(*next_, alignment);
    if (pad > *left_ || size > *left_ - pad) return nullptr;
    const uint32_t taken = pad + static_cast<uint32_t>(size);
    void* const memory = *next_ + pad;
    *next_ += taken;
    *left_ -= taken;
    return memory;
}

}  // namespace nls
