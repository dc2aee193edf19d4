#include "strings/search.hpp"

#include "nls/status.h"
#include "strings/counting.hpp"
#include "strings/search_walk.hpp"
#include "strings/str_record.hpp"

namespace nls {
namespace {

Counted countWhole(const Charset& charset, ByteView text) {
    if (text.size() > INT32_MAX) return {NLS_BAD_ARG, 0};
    return text.empty() ? Counted{NLS_OK, 0} : countChars(charset, text);
}

// Of the first `length` bytes, as far as they go without a NUL.
Counted countSpan(const Charset& charset, const unsigned char* text, int32_t length) {
    if (length < 0) return {NLS_BAD_ARG, 0};
    return length == 0 ? Counted{NLS_OK, 0} : countChars(charset, {text, boundedLength(text, length)});
}

}  // namespace

Match searchForward(const Comparing& by, ByteView pattern, ByteView text, Wildcards wildcards) {
    const Charset charset{*by.locale.attrib};
    const Counted inPattern = countWhole(charset, pattern);
    if (inPattern.status != NLS_OK) return noMatch(inPattern.status);
    const Counted inText = countWhole(charset, text);
    if (inText.status != NLS_OK) return noMatch(inText.status);
    if (pattern.empty()) return {NLS_OK, true, text.size(), text.size() + 1};
    ForwardWalk walk{by, pattern.data(), inPattern.count, wildcards, text.data(), inText.count};
    const ForwardWalk::Found found = walk.next();
    if (found.place == nullptr) return noMatch(found.status);
    return {NLS_OK, true, static_cast<std::size_t>(found.place - text.data()),
            static_cast<std::size_t>(found.end - text.data())};
}

Match searchBackward(const Comparing& by, ByteView pattern, const unsigned char* text, int32_t length) {
    const Charset charset{*by.locale.attrib};
    const Counted inPattern = countWhole(charset, pattern);
    if (inPattern.status != NLS_OK) return noMatch(inPattern.status);
    const Counted inText = countSpan(charset, text, length);
    if (inText.status != NLS_OK) return noMatch(inText.status);
    const ByteView span = firstBytes(text, length);
    if (pattern.empty()) return {NLS_OK, true, span.size(), 0};
    if (span.empty()) return noMatch(NLS_END_OF_STRING);
    return walkBackward(by, pattern, inPattern.count, span, inText.count);
}

}  // namespace nls
