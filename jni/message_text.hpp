// One message of an open file, converted to UTF-8.
#pragma once

#include "jni/message_context.hpp"

namespace nls {

inline constexpr int32_t kMessageCapacity = 512;  // bytes of a message's text
inline constexpr int32_t kUtf8Size = 737;         // bytes of its UTF-8, with the NUL

struct Utf8Message {
    int32_t code;     // NLS_CONVMAP_OK, or why there is no text
    uint32_t length;  // bytes of the text, any NUL in it among them
};

// Converts the NUL-terminated `text` into `utf8`, a buffer of kUtf8Size bytes.
Utf8Message convertMessage(const nlsMessageContext& context, unsigned char* text, unsigned char* utf8);

}  // namespace nls
