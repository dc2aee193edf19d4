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

// Blanks over the text, so that none of it stays behind.
void wipe(nlsStr& record) {
    const int64_t used = std::min<int64_t>(record.bufSize, record.strLength);
    if (used > 0) std::memset(record.buf, ' ', static_cast<std::size_t>(used));
    if (record.bufSize > 0) *record.buf = 0;
    record.strLength = 0;
}

// The result as far as it has come.
struct Progress {
    nlsStr* record;
    const unsigned char* replacement;
    const unsigned char* rest;  // behind the last match
    Replaced done;
};

nlsStatus replaceNext(Progress& progress, const Span& match) {
    if (progress.record == nullptr) return NLS_BAD_ARG;
    const ByteView before{progress.rest, match.start};
    const bool first = progress.done.count == 0;
    const nlsStatus bad = first ? replaceText(*progress.record, before.data(), static_cast<int64_t>(before.size()))
                                : append(*progress.record, before);
    return bad != NLS_OK ? bad : appendReplacement(*progress.record, progress.replacement);
}

GoOn takeMatch(void* context, const Span& match) {
    Progress& progress = *static_cast<Progress*>(context);
    progress.done.status = replaceNext(progress, match);
    if (progress.done.status != NLS_OK) {
        if (progress.record != nullptr) wipe(*progress.record);
        return GoOn::stop;
    }
    ++progress.done.count;
    progress.rest = match.end;
    return *match.end == 0 ? GoOn::stop : GoOn::behindMatch;
}

nlsStatus replaceWhole(nlsStr& record, ByteView text) {
    return replaceText(record, text.data(), static_cast<int64_t>(text.size()));
}

}  // namespace

nlsStatus replaceMatch(nlsStr& record, const unsigned char* text, const Span& match, const unsigned char* replacement) {
    if (match.start == nullptr) return replaceWhole(record, untilNul(text));
    if (const nlsStatus bad = replaceWhole(record, {text, match.start})) return bad;
    nlsStatus status = appendReplacement(record, replacement);
    if (status == NLS_OK) status = append(record, untilNul(match.end));
    if (status != NLS_OK) wipe(record);
    return status;
}

Replaced replaceAll(const Comparing& by, ByteView pattern, const unsigned char* replacement, const unsigned char* text,
                    nlsStr* record) {
    Progress progress{record, replacement, text, {NLS_OK, 0}};
    const nlsStatus searched = searchForEach(by, pattern, text, kNoWildcards, {takeMatch, &progress});
    if (searched != NLS_OK) return {searched, 0};  // with the first comparison or before it
    if (progress.done.status != NLS_OK) return progress.done;
    if (record == nullptr) return {NLS_BAD_ARG, 0};
    if (progress.done.count == 0) return {replaceWhole(*record, untilNul(text)), 0};
    progress.done.status = append(*record, untilNul(progress.rest));
    if (progress.done.status != NLS_OK) wipe(*record);
    return progress.done;
}

}  // namespace nls
