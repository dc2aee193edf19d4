// Any pattern in any text under any hand-made locale: searched forwards, with wildcards and backwards, and replaced.
//
// The first bytes of the input choose the locale, the mode, the escape, the lengths and the room for the result; the
// rest is pattern, replacement and text. Whatever the processor can do, each answer must be that of the slow twin.
// Texts and records stand directly in front of a page that faults.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/base/cpu.hpp"
#include "tests/reference/search.hpp"  // the slow twin that each answer must be that of
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/search_locales.hpp"

namespace {

using nls::CpuLevel;
using nls::reference::Found;
using nls::test::GuardedBuffer;
using nls::test::SearchLocale;

constexpr std::size_t kHead = 7, kLongest = 4096;

void require(bool truth) {
    if (!truth) std::abort();
}

struct Case {
    const nlsLocale* locale;
    uint16_t mode;
    int32_t escape;
    const unsigned char *pattern, *replacement, *text;
    int32_t span;      // of the text, in bytes
    std::size_t room;  // of the record
};

Found started() {
    static const unsigned char nowhere = 0;
    return {NLS_OK, 77, Found::unwritten, &nowhere, true};
}
bool same(Found ours, Found want) {
    if (ours.found == started().found) ours.found = nullptr, ours.foundWritten = false;
    return ours == want;
}

void search(const Case& c) {
    const nls::reference::Search model{c.locale, c.mode};
    Found found = started();
    found.status = nlsSearchForw(c.locale, nullptr, c.pattern, c.text, c.mode, &found.pos, &found.end, &found.found);
    require(same(found, model.forward(c.pattern, c.text, false, 0)));
    found = started();
    found.status = nlsSearchForwWithEscape(c.locale, nullptr, c.pattern, c.text, c.mode, c.escape, &found.pos,
                                           &found.end, &found.found);
    require(same(found, model.forward(c.pattern, c.text, true, c.escape)));
    found = started();
    found.status = nlsSearchBack(c.locale, nullptr, c.pattern, c.text, c.span, c.mode, &found.pos, &found.found);
    require(same(found, model.backward(c.pattern, c.text, c.span)));
}

// The record holds text before the call; both must leave the same bytes behind.
template <typename Call>
std::string filled(const Case& c, Call call) {
    static GuardedBuffer buffers{kLongest};
    unsigned char* const buffer = buffers.atEnd(c.room);
    std::memset(buffer, 'o', c.room);
    buffer[c.room / 2] = 0;
    nlsStr rec{buffer, static_cast<int32_t>(c.room), static_cast<uint32_t>(c.room / 2)};
    const std::string answer = call(rec);
    return answer + " " + std::to_string(rec.strLength) + std::string(reinterpret_cast<char*>(buffer), c.room);
}

void replace(const Case& c) {
    const nls::reference::Search model{c.locale, c.mode};
    const auto text = [](int32_t status, uint32_t number) {
        return std::to_string(status) + " " + std::to_string(number);
    };
    const std::string one = filled(c, [&](nlsStr& rec) {
        uint32_t pos = 0, end = 0;
        const unsigned char* found = nullptr;
        const nlsStatus status =
            nlsReplace(c.locale, nullptr, c.pattern, c.replacement, c.text, c.mode, &rec, &pos, &end, &found);
        return text(status, pos);
    });
    require(one == filled(c, [&](nlsStr& rec) {
                const Found found = model.replace(c.pattern, c.replacement, c.text, rec);
                return text(found.status, found.pos);
            }));
    const std::string all = filled(c, [&](nlsStr& rec) {
        uint32_t replaced = 0;
        const nlsStatus status =
            nlsReplaceAll(c.locale, nullptr, c.pattern, c.replacement, c.text, c.mode, &rec, &replaced);
        return text(status, replaced);
    });
    require(all == filled(c, [&](nlsStr& rec) {
                uint32_t replaced = 0;
                const nlsStatus status = model.replaceAll(c.pattern, c.replacement, c.text, rec, replaced);
                return text(status, replaced);
            }));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const std::vector<SearchLocale> locales = nls::test::searchLocales();
    static GuardedBuffer patterns{kLongest + 1}, replacements{kLongest + 1}, texts{kLongest + 1};
    if (size < kHead || size > kLongest) return 0;
    std::string all{reinterpret_cast<const char*>(data) + kHead, size - kHead};
    for (char& byte : all)
        if (byte == 0) byte = 'a';
    const std::size_t patternEnd = data[3] * all.size() / 255;
    const std::size_t textStart = patternEnd + data[4] % 16 * (all.size() - patternEnd) / 64;
    const std::string pattern = all.substr(0, patternEnd), text = all.substr(textStart),
                      replacement = all.substr(patternEnd, textStart - patternEnd);
    const Case c{locales[data[0] % locales.size()].get(),
                 static_cast<uint16_t>(data[1] % 3),
                 data[2],
                 patterns.atEnd(pattern.c_str(), pattern.size() + 1),
                 replacements.atEnd(replacement.c_str(), replacement.size() + 1),
                 texts.atEnd(text.c_str(), text.size() + 1),
                 static_cast<int32_t>(data[5] * text.size() / 255),
                 1 + data[6] * (text.size() + 64) / 200};
    for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        search(c);
        replace(c);
    }
    return 0;
}
