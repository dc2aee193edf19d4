// Memory of a conversion table: a type word and, behind it, the block that the type wants.
#pragma once

#include "convmap/conv_table.hpp"
#include "core/base/arena.hpp"

namespace nls {

// A table with `size` bytes of zeros behind the type word; null where the arena can't serve it.
inline nlsConvTable* makeTable(const Arena& arena, int64_t typeWord, uint64_t size) {
    auto* const word = static_cast<int64_t*>(arena.take(sizeof typeWord + size, alignof(int64_t)));
    if (word == nullptr) return nullptr;
    *word = typeWord;
    return reinterpret_cast<nlsConvTable*>(word + 1);
}

inline nlsConvTable* makeTable(const Arena& arena, int64_t typeWord, const void* block, uint64_t size) {
    nlsConvTable* const table = makeTable(arena, typeWord, size);
    if (table != nullptr && size != 0) std::memcpy(table, block, size);
    return table;
}

}  // namespace nls
