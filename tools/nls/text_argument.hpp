// A text of the command line in the charset of the files.
#pragma once

#include <string>

#include "tools/nls/failure.hpp"
#include "tools/nls/text_charset.hpp"

namespace nls::tool {

inline ByteView bytesOf(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// `text` is UTF-8, or with `raw` bytes of the charset. Throws with `refusal` where it isn't valid UTF-8 or the charset
// lacks a character of it.
inline ByteBuffer textArgument(const TextCharset& charset, const std::string& text, bool raw, Exit refusal) {
    ByteBuffer bytes;
    if (raw) {
        bytes.append(bytesOf(text));
    } else if (!validUtf8(bytesOf(text))) {
        throw Failure(refusal, "\"" + text + "\" is not valid UTF-8; --raw takes bytes as they are");
    } else if (!text.empty() && !charset.encode(bytesOf(text), bytes)) {
        throw Failure(refusal, charset.name() + " lacks a character of \"" + text + "\"");
    }
    return bytes;
}

}  // namespace nls::tool
