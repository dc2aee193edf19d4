// Any two texts under any hand-made collation: comparison, keys and words.
//
// The first bytes of the input choose the collation, the mode, the limits and the room for the key; the rest is the two
// texts. Whatever the processor can do, each answer must be that of the slow twin. Texts and keys stand directly in
// front of a page that faults. The same bytes are also a word-break table and a text to be cut.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/base/cpu.hpp"
#include "nls/compare.h"
#include "nls/status.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

using nls::CpuLevel;
using nls::test::GuardedBuffer;
using nls::test::HandRoute;

constexpr std::size_t kLongest = 4096;

void require(bool truth) {
    if (!truth) std::abort();
}

struct Case {
    const HandRoute& route;
    uint16_t mode;
    bool basic, trim;
    std::size_t cutA, cutB, room;
    std::string a, b;
};

void compareTexts(const Case& c) {
    static GuardedBuffer first{kLongest + 1}, second{kLongest + 1};
    const unsigned char* a = first.atEnd(c.a.c_str(), c.a.size() + 1);
    const unsigned char* b = second.atEnd(c.b.c_str(), c.b.size() + 1);
    uint16_t result = 77;
    require(nlsCompare(c.route.get(), nullptr, a, b, c.mode, &result) == NLS_OK);
    require(static_cast<int16_t>(result) == nls::reference::compare(c.route.order(c.mode), a, -1, b, -1));
    a = first.atEnd(c.a.data(), c.cutA);
    b = second.atEnd(c.b.data(), c.cutB);
    const auto lenA = static_cast<int32_t>(c.cutA), lenB = static_cast<int32_t>(c.cutB);
    require(nlsCompareN(c.route.get(), nullptr, a, b, lenA, lenB, c.mode, &result) == NLS_OK);
    require(static_cast<int16_t>(result) ==
            nls::reference::compare(c.route.order(c.mode, c.route.singleByte()), a, lenA, b, lenB));
}

void makeKey(const Case& c) {
    static GuardedBuffer keys{4 * kLongest};
    unsigned char* const key = keys.atEnd(c.room + 1);
    const std::string text = c.a.c_str();
    uint16_t length = 0;
    require(nlsSortKey(c.route.get(), nullptr, nls::test::bytesOf(text), static_cast<int16_t>(c.room + 1), c.mode,
                       c.trim, key, &length) == NLS_OK);
    const std::string want = nls::reference::key(c.route.order(c.mode), c.basic, c.trim, text, c.room);
    require(want.size() == length && std::memcmp(key, want.c_str(), want.size() + 1) == 0);
}

void cutWords(const std::string& bytes, uint32_t options) {
    static GuardedBuffer tables{kLongest + 64};
    if (bytes.size() < 8) return;
    nlsWbTable head;
    std::memcpy(&head, bytes.data(), sizeof head);
    head.wbBodySize = static_cast<uint16_t>(head.wbBodySize % 400);
    std::vector<unsigned char> table(head.wbBodySize + std::size_t{62});
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<unsigned char>(bytes[i % bytes.size()]) % 14;
    std::memcpy(table.data(), &head, sizeof head);
    const auto* const wbTable = reinterpret_cast<const nlsWbTable*>(tables.atEnd(table.data(), table.size()));
    const std::string text = bytes.c_str();
    const unsigned char *place = nls::test::bytesOf(text), *const end = place + text.size();
    for (;;) {
        unsigned char word[188];
        uint32_t length = 0, truncated = 0;
        const unsigned char* const next = nextword(place, &length, word, wbTable, &truncated, options);
        require(length <= 184 && word[length] == 0);
        if (length == 0) return;
        require(next > place && next <= end);
        place = next;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const std::vector<HandRoute> routes = nls::test::handRoutes();
    if (size < 6 || size > kLongest) return 0;
    const std::string texts{reinterpret_cast<const char*>(data) + 6, size - 6};
    const std::size_t middle = data[3] * texts.size() / 255;
    Case c{routes[data[0] % routes.size()],
           static_cast<uint16_t>(data[1] & 1),
           (data[1] & 2) != 0,
           (data[1] & 4) != 0,
           0,
           0,
           data[4] * std::size_t{4},
           texts.substr(0, middle),
           texts.substr(middle)};
    if ((data[1] & 8) != 0) c.b = c.a.substr(0, data[2]) + c.b;  // a common beginning
    c.cutA = data[2] * c.a.size() / 255;
    c.cutB = data[5] * c.b.size() / 255;
    c.route.locale->coll().collSubKind = c.basic ? 0 : 1;
    for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        compareTexts(c);
        makeKey(c);
    }
    cutWords(texts, data[1] >> 4);
    return 0;
}
