// Sizes: every source length up to 64 at every place in 32 bytes, every size of target and scratch from none to enough,
// all ending at a page that faults; longer texts of any size; text with damage. Each call is foretold to the last byte
// of the target, at each level of the processor.
#include <cstring>
#include <deque>
#include <iomanip>
#include <random>
#include <sstream>

#include "tests/real/foretold.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls::real {
namespace {

constexpr std::size_t kLongest = 1024;

// Where the source begins, and what room there is.
struct Call {
    ByteView source;
    std::size_t shift;  // bytes between the end of the source and the faulting page
    std::size_t targetSize, scratchSize;
};

// The calls of one route, foretold once and then made at each level of the processor, since asking for it takes longer
// than a call.
class Calls {
public:
    explicit Calls(const Route& route)
        : route_(route), source_(kLongest + 64), target_(kLongest * 4 + 64), scratch_(kLongest * 4 + 64) {}

    void add(const Call& call) {
        foretold_.emplace_back(call, foretell(route_, call.source, call.targetSize, call.scratchSize));
    }
    void expectAll() {
        forEachCpuLevel([this] {
            for (const auto& [call, want] : foretold_) expect(call, want);
        });
    }

private:
    void expect(const Call& call, const Foretold& want) {
        unsigned char* const source = source_.atEnd(call.source.size() + call.shift);
        if (!call.source.empty()) std::memcpy(source, call.source.data(), call.source.size());
        unsigned char* const target = target_.atEnd(call.targetSize);
        std::memset(target, kFill, call.targetSize);
        uint32_t count = kUntouched;
        const nlsStatus status = convertBytes(
            target, static_cast<int32_t>(call.targetSize), source, static_cast<int32_t>(call.source.size()),
            scratch_.atEnd(call.scratchSize), static_cast<int32_t>(call.scratchSize), route_.table, &count, 0);
        const bool isSame = want.certain == 0 || std::memcmp(target, want.target.data(), want.certain) == 0;
        if (status == want.status && count == want.count && isSame) return;
        ADD_FAILURE() << route_.from.text << " to " << route_.to.text << ", source of " << call.source.size()
                      << " bytes, " << call.shift << " before the page, target of " << call.targetSize
                      << ", scratch of " << call.scratchSize << ": status " << status << " for " << want.status
                      << ", count " << count << " for " << want.count << "; "
                      << want.differenceOf({target, call.targetSize}) << "; source " << hexOf(call.source);
    }
    static std::string hexOf(ByteView bytes) {
        std::ostringstream text;
        text << std::hex << std::setfill('0');
        for (const unsigned char byte : bytes) text << std::setw(2) << unsigned{byte};
        return text.str();
    }

    const Route& route_;
    std::vector<std::pair<Call, Foretold>> foretold_;
    test::GuardedBuffer source_, target_, scratch_;
};

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t bound) {
    return random() % bound;
}

// A piece of real text, from anywhere.
Bytes pieceOf(const std::string& charset, std::size_t size, Random& random) {
    const Bytes& text = realText(charset);
    const std::size_t at = below(random, text.size() - size);
    const auto start = text.begin() + static_cast<std::ptrdiff_t>(at);
    return {start, start + static_cast<std::ptrdiff_t>(size)};
}

// Bytes changed, lost and added, here and there.
Bytes damaged(Bytes text, Random& random) {
    for (std::size_t wounds = 1 + text.size() / 24; wounds > 0 && text.size() > 2; --wounds) {
        const std::size_t at = below(random, text.size());
        const auto place = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto byte = static_cast<unsigned char>(below(random, 5) == 0 ? 0 : random());
        switch (below(random, 3)) {
            case 0:
                text[at] = byte;
                break;
            case 1:
                text.erase(place);
                break;
            default:
                text.insert(place, byte);
        }
    }
    return text;
}

// Every length, every size.
void sweepSizes(const Route& route, ByteView text) {
    Calls calls(route);
    for (std::size_t length = 0; length <= 64; ++length) {
        const ByteView source = text.first(length);
        const std::size_t enough = foretellWhole(route, source).target.size() + 2, ample = length * 4 + 8;
        for (std::size_t size = 0; size <= enough; ++size) calls.add({source, 0, size, ample});
        if (route.type != Type::twoSteps || length % 8 != 0) continue;
        for (std::size_t size = 0; size <= ample; ++size) calls.add({source, 0, enough, size});
    }
    calls.expectAll();
}

// Every length, every place.
void sweepPlaces(const Route& route, ByteView text) {
    Calls calls(route);
    for (std::size_t length = 1; length <= 64; ++length) {
        const ByteView source = text.first(length);
        const std::size_t enough = foretellWhole(route, source).target.size() + length % 2;
        for (std::size_t shift = 1; shift < 32; ++shift) calls.add({source, shift, enough, length * 4 + 8});
    }
    calls.expectAll();
}

struct Pair {
    const char* from;
    const char* to;
};

// One or two for each type of table and each way that it is laid out.
constexpr Pair kRepresentatives[] = {
    {"1252", "1252"},         {"1252", "IBM850"},          {"SHIFT-JIS", "EUCJIS"},  {"EUCJIS", "SHIFT-JIS"},
    {"ISO8859-1", "UTF-8"},   {"IBM500", "UTF-8"},         {"1252", "UTF-8"},        {"620-2533", "UTF-8"},
    {"UTF-8", "ISO8859-1"},   {"UTF-8", "IBM500"},         {"UTF-8", "KOI8-R"},      {"UTF-8", "620-2533"},
    {"SHIFT-JIS", "UTF-8"},   {"CP949", "UTF-8"},          {"CP936", "UTF-8"},       {"CP950-HKSCS", "UTF-8"},
    {"ISO6937", "UTF-8"},     {"UTF-8", "SHIFT-JIS"},      {"UTF-8", "CP949"},       {"UTF-8", "CP936"},
    {"UTF-8", "CP950-HKSCS"}, {"UTF-8", "ISO6937"},        {"EUCJIS", "UTF-16LE"},   {"CP950-HKSCS", "UTF-16BE"},
    {"UTF-16LE", "EUCJIS"},   {"UTF-16BE", "CP950-HKSCS"}, {"UTF-8", "UTF-16LE"},    {"UTF-8", "UTF-16BE"},
    {"UTF-16LE", "UTF-8"},    {"UTF-16BE", "UTF-8"},       {"UTF-8", "UTF-32LE"},    {"UTF-8", "UTF-32BE"},
    {"UTF-32LE", "UTF-8"},    {"UTF-32BE", "UTF-8"},       {"UTF-16LE", "UTF-32BE"}, {"UTF-16BE", "UTF-32LE"},
    {"UTF-32LE", "UTF-16BE"}, {"UTF-32BE", "UTF-16LE"},    {"KOI8-R", "UTF-16BE"},   {"UTF-16LE", "1252"},
    {"CP1361", "UTF-32LE"},   {"UTF-32BE", "GB2312"},      {"UCS2", "UTF-16BE"},     {"UTF-8", "UTF-8"},
};

std::string pairName(const testing::TestParamInfo<Pair>& row) {
    return identifier(std::string{row.param.from} + "_to_" + row.param.to);
}

class Sweep : public testing::TestWithParam<Pair> {};

TEST_P(Sweep, EveryLengthSizeAndPlace) {
    const Route route(GetParam().from, GetParam().to);
    Random random(1);
    for (int text = 0; text < 2; ++text) {
        sweepSizes(route, pieceOf(GetParam().from, 64, random));
        sweepPlaces(route, pieceOf(GetParam().from, 64, random));
    }
    sweepSizes(route, damaged(pieceOf(GetParam().from, 80, random), random));
}

INSTANTIATE_TEST_SUITE_P(All, Sweep, testing::ValuesIn(kRepresentatives), pairName);

// Every conversion of the file, and every one to and from a form of Unicode that takes two steps.
class AnyText : public testing::TestWithParam<std::string> {};

TEST_P(AnyText, OfAnySize) {
    RealFile& file = RealFile::shared();
    Random random(2);
    for (const Name& to : file.charsets()) {
        if (file.find(GetParam(), to.text) == nullptr) continue;
        const Route route(GetParam(), to.text);
        std::deque<Bytes> texts;
        Calls calls(route);
        for (int round = 0; round < 40; ++round) {
            const std::size_t longest = round < 25 ? 200 : kLongest - 64;
            Bytes& text = texts.emplace_back(pieceOf(GetParam(), 1 + below(random, longest), random));
            if (round % 2 == 1) text = damaged(std::move(text), random);
            const std::size_t ample = text.size() * 4 + 8;
            const std::size_t enough = foretellWhole(route, text).target.size() + 1;
            const std::size_t size = round % 3 == 0 ? below(random, enough) : round % 3 == 1 ? enough : ample;
            calls.add({text, below(random, 64), size, ample});
        }
        calls.expectAll();
    }
}

INSTANTIATE_TEST_SUITE_P(All, AnyText, testing::ValuesIn([] {
                             std::vector<std::string> names;
                             for (const Name& name : RealFile::shared().charsets()) names.push_back(name.text);
                             return names;
                         }()),
                         [](const auto& row) { return identifier(row.param); });

}  // namespace
}  // namespace nls::real
