// Any text through any table: tables of every type, real ones and such that are made in memory, some of them
// wild.
//
// The first bytes of the input choose the table, the sizes and the manner; the rest is the text. Source, target and
// middle buffer are blocks of just their size, so that a sanitizer sees a byte too far. Whatever the processor can
// do, the answer must be one and the same; and what the answer says must be true: a count within the target, a NUL
// where one is promised.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "core/base/cpu.hpp"
#include "core/base/views.hpp"
#include "nls/convert.h"
#include "nls/status.h"
#include "tests/support/made_tables.hpp"
#include "tests/support/real_dbcs.hpp"

namespace {

using nls::test::MadeCharset;
using nls::test::MadeTable;
using Bytes = std::vector<unsigned char>;

constexpr uint32_t kUnset = 0xDEADBEEF;

void require(bool truth) {
    if (!truth) std::abort();
}

// Bytes of the input, one after the other; zeros behind its end.
class Input {
public:
    Input(const unsigned char* data, std::size_t size) : pos_(data), end_(data + size) {}
    unsigned byte() { return pos_ == end_ ? 0 : *pos_++; }
    Bytes rest() const { return {pos_, end_}; }

private:
    const unsigned char* pos_;
    const unsigned char* end_;
};

// A little generator, so that a table needs one byte of input and not a thousand.
class Noise {
public:
    explicit Noise(unsigned seed) : state_(seed * 2654435761U + 1) {}
    unsigned operator()() { return (state_ = state_ * 1664525U + 1013904223U) >> 8; }

private:
    uint32_t state_;
};

const nls::test::RealDbcs& dbcs(unsigned which) {
    static const char* const kNames[] = {"SHIFT-JIS", "CP936", "BIG-5", "CP950-HKSCS"};
    return nls::test::RealDbcs::of(kNames[which % 4]);
}

// The table that an input chooses, and all that it stands on.
class ChosenTable {
public:
    explicit ChosenTable(Input& input) : variant_(input.byte()) { table_ = choose(input.byte() % 128, input); }
    const nlsConvTable* get() const { return table_; }

private:
    const nlsConvTable* keep(MadeTable made) {
        kept_.push_back(std::make_unique<MadeTable>(std::move(made)));
        return *kept_.back();
    }

    const nlsConvTable* choose(unsigned type, Input& input) {
        const unsigned order = (variant_ & 1 ? 0x080U : 0U) | (variant_ & 2 ? 0x200U : 0U);
        switch (type) {
            case 1:
                return keep(MadeTable::byteMap(map()));
            case 7:
                return steps(input);
            case 17:
            case 18:
            case 50:
            case 81:
            case 89:
                return keep(MadeTable::of(type, multiByte()));
            case 19:
            case 51:
                return keep(MadeTable::of(type, words()));
            case 20:
                return pages();
            case 21:
            case 22:
            case 23:
            case 24:
            case 25:
            case 26:
            case 27:
            case 28:
                return keep(MadeTable{type | order});
            case 29:
            case 30: {
                const nlsConvTable* const inner = keep(MadeTable::of(17, multiByte()));
                return keep(MadeTable::of(type | order, inner));
            }
            default:
                return type == 2 ? nullptr : keep(MadeTable{type, 64});
        }
    }

    const nlsConvTable* steps(Input& input) {
        if (++depth_ > 3) return nullptr;
        const nlsConvTable* const first = choose(input.byte() % 128, input);
        const nlsConvTable* const second = choose(input.byte() % 128, input);
        return keep(MadeTable::twoStep(first, second));
    }

    std::array<unsigned char, 256> map() {
        Noise noise{variant_};
        auto map = nls::test::identityMap();
        for (unsigned c = variant_ % 2 == 0 ? 0 : 128; c < 256; ++c) map[c] = static_cast<unsigned char>(noise());
        return map;
    }

    static nls::test::Units units(unsigned which) {
        switch (which % 4) {
            case 0:
                return nls::test::latinUnits();
            case 1:
                return nls::test::cyrillicUnits();
            case 2:
                return nls::test::thaiUnits();
            default:
                return nls::test::scrambledUnits();
        }
    }

    nls::SbcsWords words() {
        nls::SbcsWords words = MadeCharset{units(variant_)}.words();
        Noise noise{variant_};
        if (variant_ >= 64)
            for (unsigned changes = noise() % 300; changes != 0; --changes)
                words.utf8[noise() % 256] = noise() << 8 | noise() % 256;
        return words;
    }

    const nlsConvTable* pages() {
        charsets_.push_back(std::make_unique<MadeCharset>(units(variant_)));
        MadeCharset& charset = *charsets_.back();
        Noise noise{variant_};
        if (variant_ >= 64)
            for (unsigned changes = noise() % 3000; changes != 0; --changes)
                charset.page(noise() % 256)[noise() % 64] = static_cast<unsigned char>(noise());
        return charset.fromUtf8();
    }

    // A real charset; or one whose parameters, between the range list and the end of the record, are noise. The counts
    // stay true: they are what the arrays have.
    nls::DbcsTable multiByte() {
        nls::DbcsTable table = dbcs(variant_).table();
        if (variant_ < 128) return table;
        Noise noise{variant_};
        for (nlsUcs2Map& map : table.maps) {
            const nlsUcs2Map real = map;
            auto* const fields = reinterpret_cast<unsigned char*>(&map);
            for (unsigned changes = noise() % 12; changes != 0; --changes)
                fields[40 + noise() % 110] = static_cast<unsigned char>(noise());
            map.cjisCount = real.cjisCount;
            map.ucsRowCount = real.ucsRowCount;
            map.ucsCellCount = real.ucsCellCount;
        }
        return table;
    }

    unsigned variant_, depth_ = 0;
    const nlsConvTable* table_ = nullptr;
    std::vector<std::unique_ptr<MadeTable>> kept_;
    std::vector<std::unique_ptr<MadeCharset>> charsets_;
};

struct Outcome {
    nlsStatus status;
    uint32_t length;
    Bytes target;

    bool operator==(const Outcome&) const = default;
};

struct Call {
    const nlsConvTable* table;
    Bytes source;
    std::size_t room, scratchRoom;
    bool check;
};

Outcome run(const Call& call) {
    const auto block = [](std::size_t size) { return std::make_unique<unsigned char[]>(size); };  // of just this size
    const auto source = block(call.source.size()), target = block(call.room), scratch = block(call.scratchRoom);
    std::copy(call.source.begin(), call.source.end(), source.get());
    std::fill_n(target.get(), call.room, static_cast<unsigned char>(0xEE));
    Outcome outcome{0, kUnset, {}};
    outcome.status = convertBytes(
        target.get(), static_cast<int32_t>(call.room), source.get(), static_cast<int32_t>(call.source.size()),
        scratch.get(), static_cast<int32_t>(call.scratchRoom), call.table, &outcome.length, call.check ? 1 : 0);
    outcome.target.assign(target.get(), target.get() + call.room);
    return outcome;
}

void checkClaims(const Call& call, const Outcome& outcome) {
    static constexpr nlsStatus kKnown[] = {
        NLS_OK, NLS_BUF_SMALL, NLS_BAD_ARG, NLS_INVALID_STRING, NLS_NO_CONV_TABLE, NLS_CONV_CHANGED, NLS_CONV_SUBST};
    require(std::find(std::begin(kKnown), std::end(kKnown), outcome.status) != std::end(kKnown));
    require(call.check || outcome.status != NLS_CONV_CHANGED);
    const int32_t type = nlsConversionType(call.table);
    if (outcome.length == kUnset || type == 7) return;
    require(outcome.length <= call.room);
    if ((type == 19 || type == 51) && outcome.status == NLS_BUF_SMALL && call.room != 0)
        require(outcome.target.back() == 0);
    uint32_t growth = 0;
    if (outcome.status == NLS_OK && getMaxExpSz(call.table, &growth) == NLS_OK && type < 19)
        require(outcome.length <= std::size_t{growth} * call.source.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Input input{data, size};
    const ChosenTable table{input};
    Call call{table.get(), {}, 0, 0, (input.byte() & 1) != 0};
    const unsigned room = input.byte(), scratch = input.byte();
    call.source = input.rest();
    if (call.source.size() > 4096) call.source.resize(4096);
    // The size of the target: small numbers as they are, others as a share of what the text may need.
    call.room = room < 64 ? room : call.source.size() * (room - 63) / 32;
    call.scratchRoom = scratch < 64 ? scratch : call.source.size() * (scratch - 63) / 32;
    nls::limitCpuLevel(nls::CpuLevel::baseline);
    const Outcome plain = run(call);
    checkClaims(call, plain);
    for (const nls::CpuLevel level : {nls::CpuLevel::avx2, nls::CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        require(run(call) == plain);
    }
    uint32_t character = 0;
    if (call.source.size() >= 4) nlsConvertLong(&character, nls::loadWord<uint32_t>(call.source.data()), call.table);
    return 0;
}
