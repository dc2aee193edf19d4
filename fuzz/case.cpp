// Any text in lower and upper case, compared by characters, and as Thai: under tables of every kind, some of them wild.
//
// The first bytes of the input choose the tables, the room and where the text is cut in two; the rest is the text.
// Source and target are blocks of just their size, so that a sanitizer sees a byte too far. Whatever the processor can
// do, the answer is one and the same; the sign of two texts is the opposite of that of the two changed about.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "core/base/cpu.hpp"
#include "nls/collation_routes.h"
#include "nls/status.h"
#include "nls/strings.h"
#include "tests/support/case_locale.hpp"

namespace {

using nls::CaseForm;
using Bytes = std::vector<unsigned char>;

void require(bool truth) {
    if (!truth) std::abort();
}

std::unique_ptr<unsigned char[]> blockOf(const Bytes& bytes) {
    auto block = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    return block;
}

const nlsLocale* localeOf(unsigned variant) {
    static nls::test::MadeCaseTable usual, wild;
    static nlsCaseStruct byteTable{};
    static nls::test::HandLocale utf8{nls::test::utf8Charset()}, odd{nls::test::oddCharset()};
    static nls::test::HandLocale sjis{nls::test::sjisCharset()}, single{nls::test::singleByteCharset()};
    static nls::test::HandLocale noTable{nls::test::eucCharset()}, wildForms{nls::test::utf8Charset()};
    static const bool made = [] {
        usual.fillFromLibrary();
        wild.fillFromLibrary();
        wild.fillWild(1, false);
        for (unsigned c = 0; c < 256; ++c)
            byteTable.lowerMap[c] = byteTable.upperMap[c] = static_cast<unsigned char>(255 - c);
        utf8.get()->caseTable = usual.get();
        wildForms.get()->caseTable = wild.get();
        for (nls::test::HandLocale* const locale : {&odd, &sjis, &single}) locale->get()->caseTable = &byteTable;
        return true;
    }();
    nls::test::HandLocale* const all[] = {&utf8, &wildForms, &odd, &sjis, &single, &noTable};
    return made ? all[variant % std::size(all)]->get() : nullptr;
}

struct Outcome {
    nlsStatus status;
    uint32_t length;
    Bytes target;

    bool operator==(const Outcome&) const = default;
};

Outcome changeCase(const nlsLocale* locale, const Bytes& text, std::size_t room, CaseForm form, bool inPlace) {
    Bytes closed = text;
    closed.push_back(0);
    if (inPlace && closed.size() < room) closed.resize(room, 0);
    const auto source = blockOf(closed), apart = blockOf(Bytes(room, 0xEE));
    unsigned char* const target = inPlace ? source.get() : apart.get();
    const nlsStr from{source.get(), 0, 0};
    nlsStr to{target, static_cast<int32_t>(room), 0};
    const nlsStatus status = (form == CaseForm::lower ? nlsLowerCase : nlsUpperCase)(locale, nullptr, &from, &to);
    require(status == NLS_OK || status == NLS_BUF_SMALL);
    require(status != NLS_OK || (to.strLength < room && target[to.strLength] == 0));
    return {status, to.strLength, Bytes(target, target + room)};
}

int compare(const nlsLocale* locale, const Bytes& a, const Bytes& b, uint16_t mode) {
    const auto first = blockOf(a), second = blockOf(b);
    uint16_t sign = 7;
    require(nlsUnicodeCompare(locale, first.get(), second.get(), nullptr, mode, static_cast<int32_t>(a.size()),
                              static_cast<int32_t>(b.size()), &sign) == NLS_OK);
    return static_cast<int16_t>(sign);
}

void thai(const Bytes& text, std::size_t room) {
    unsigned char map[256];
    for (unsigned c = 0; c < 256; ++c) map[c] = static_cast<unsigned char>(c * 37);
    Bytes closed = text;
    closed.push_back(0);
    const auto source = blockOf(closed), key = std::make_unique<unsigned char[]>(room);
    thaiSortcop(key.get(), source.get(), static_cast<int32_t>(room), map, map, 0);
    require(room == 0 || std::find(key.get(), key.get() + room, 0) != key.get() + room);
    require(thaiCompare(source.get(), source.get(), map, map, 1) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size < 4 || size > 4096) return 0;
    const nlsLocale* const locale = localeOf(data[0]);
    const CaseForm form = (data[1] & 1) != 0 ? CaseForm::lower : CaseForm::upper;
    const bool inPlace = (data[1] & 2) != 0;
    Bytes text{data + 4, data + size};
    text.erase(std::remove(text.begin(), text.end(), 0), text.end());
    const std::size_t room = data[2] < 64 ? data[2] : text.size() * (data[2] - 63U) / 64;
    const auto cut = text.begin() + static_cast<std::ptrdiff_t>(text.size() * data[3] / 256);
    const Bytes a{text.begin(), cut}, b{cut, text.end()};
    nls::limitCpuLevel(nls::CpuLevel::baseline);
    const Outcome plain = changeCase(locale, text, room, form, inPlace);
    for (const nls::CpuLevel level : {nls::CpuLevel::avx2, nls::CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        require(changeCase(locale, text, room, form, inPlace) == plain);
    }
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}})
        require(compare(locale, a, b, mode) == -compare(locale, b, a, mode));
    thai(text, room);
    return 0;
}
