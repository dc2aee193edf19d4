// From an open message file to the conversion of its texts: convmap.cp, an arena, a handle, two locales, a conversion.
#pragma once

#include "jni/message_context.hpp"

namespace nls {

// Bytes of the arena, and of the buffer that is added once if the arena is short.
inline constexpr int32_t kArenaSize = 131072;
inline constexpr int32_t kExtraBufferSize = 80000;

// A code without a text: something failed that Java isn't told more about.
inline constexpr int32_t kFailedSilently = 0;

// NLS_CONVMAP_OK: the context has all that a look-up needs. Else a code, and the context holds whatever was taken.
int32_t openConversion(nlsMessageContext& context);

}  // namespace nls
