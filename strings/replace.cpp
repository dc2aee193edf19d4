#include "strings/replace.hpp"

#include <algorithm>
#include <cstring>

#include "nls/status.h"
#include "strings/search.hpp"
#include "strings/str_record.hpp"

namespace nls {
namespace {

nlsStatus append(nlsStr& record, ByteView bytes) {
    return appendText(record, bytes.data(), static_cast<int32_t>(std::min<std::size_t>(bytes.size(), INT32_MAX)));
}

nlsStatus appendReplacement(nlsStr& record, const unsigned char* replacement) {
    return replacement == nullptr ? NLS_BAD_ARG : append(record, untilNul(replacement));
}

ByteView behind(ByteView text, const Match& match) {
    return text.subspan(std::min(match.end, text.size()));
}

// Blanks over the text, so that none of it stays behind.
void wipe(nlsStr& record) {
    const int64_t used = std::min<int64_t>(record.bufSize, record.strLength);
    if (used > 0) std::memset(record.buf, ' ', static_cast<std::size_t>(used));
    if (record.bufSize > 0) *record.buf = 0;
    record.strLength = 0;
}

}  // namespace

nlsStatus replaceMatch(nlsStr& record, ByteView text, const Match& match, const unsigned char* replacement) {
    if (!match.found) return replaceText(record, text.data(), static_cast<int64_t>(text.size()));
    if (const nlsStatus bad = replaceText(record, text.data(), static_cast<int64_t>(match.start))) return bad;
    nlsStatus status = appendReplacement(record, replacement);
    if (status == NLS_OK) status = append(record, behind(text, match));
    if (status != NLS_OK) wipe(record);
    return status;
}

Replaced replaceAll(const Comparing& by, ByteView pattern, const unsigned char* replacement, ByteView text,
                    nlsStr* record) {
    Match match = searchForward(by, pattern, text, kNoWildcards);
    if (match.status != NLS_OK) return {match.status, 0};
    if (record == nullptr) return {NLS_BAD_ARG, 0};
    if (!match.found) return {replaceText(*record, text.data(), static_cast<int64_t>(text.size())), 0};
    uint32_t count = 0;
    nlsStatus status = replaceText(*record, text.data(), static_cast<int64_t>(match.start));
    while (status == NLS_OK) {
        status = appendReplacement(*record, replacement);
        if (status != NLS_OK) break;
        ++count;
        text = behind(text, match);
        if (text.empty()) break;
        match = searchForward(by, pattern, text, kNoWildcards);
        status = match.status;
        if (status != NLS_OK) break;
        status = append(*record, match.found ? text.first(match.start) : text);
        if (!match.found) break;
    }
    if (status != NLS_OK) wipe(*record);
    return {status, count};
}

}  // namespace nls
