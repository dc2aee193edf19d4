// The three meanings of "did the text change".
//
// A byte map knows while it maps. Where both sides are bytes of a charset, the output is compared to the source as C
// strings are. Where a side is in units of Unicode, nothing can be compared, and any output counts as a change.
// Tested by tests/conversion/engine_test.cpp.
#pragma once

#include <algorithm>
#include <cstring>

#include "core/base/views.hpp"

namespace nls {

// Whether `output` differs from the source over its length, before a NUL that both have at one place. A source that
// ends before the output differs from it there.
inline bool differsAsString(ByteView output, ByteView source) {
    const std::size_t common = std::min(output.size(), source.size());
    if (common == 0) return !output.empty();
    const auto* const left = reinterpret_cast<const char*>(output.data());
    const auto* const right = reinterpret_cast<const char*>(source.data());
    if (std::strncmp(left, right, common) != 0) return true;
    return output.size() > common && std::memchr(right, 0, common) == nullptr;
}

}  // namespace nls
