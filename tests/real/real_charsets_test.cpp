// Every code and every code point of every charset of the data file, there and back, beside the published converters
// for it; and that what the attribute tables say of bytes fits the characters.
#include <algorithm>
#include <sstream>

#include "core/base/charset.hpp"
#include "tests/real/foretold.hpp"
#include "tests/real/known_differences.hpp"

namespace nls::real {
namespace {

std::string hex(uint32_t value) {
    std::ostringstream text;
    text << std::hex << std::uppercase;
    value == kNone ? text << "none" : text << value;
    return text.str();
}

// The rows of one pairing, with what was found of each.
class Ledger {
public:
    explicit Ledger(const Pairing& pairing) : rows_(differencesOf(pairing)), found_(rows_.size()) {}

    bool holds(Axis axis, uint32_t at) const { return find(axis, at) != rows_.size(); }
    bool enter(Axis axis, uint32_t at) {
        const std::size_t row = find(axis, at);
        if (row != rows_.size()) ++found_[row];
        return row != rows_.size();
    }
    void expectAsCounted() const {
        for (std::size_t row = 0; row < rows_.size(); ++row)
            EXPECT_EQ(found_[row], rows_[row]->count)
                << hex(rows_[row]->first) << " to " << hex(rows_[row]->last) << ", " << rows_[row]->reason;
    }

private:
    std::size_t find(Axis axis, uint32_t at) const {
        const auto is = [&](const Difference* row) { return row->axis == axis && row->first <= at && at <= row->last; };
        return static_cast<std::size_t>(std::find_if(rows_.begin(), rows_.end(), is) - rows_.begin());
    }

    std::vector<const Difference*> rows_;
    std::vector<int> found_;
};

// Differences that no row knows, in ranges, so that a new one of a thousand codes is one line.
class Unknown {
public:
    explicit Unknown(const char* axis) : axis_(axis) {}
    ~Unknown() { endRange(); }
    Unknown(const Unknown&) = delete;
    Unknown& operator=(const Unknown&) = delete;

    void add(uint32_t at, uint32_t have, uint32_t want) {
        if (count_ != 0 && at - last_ > 8) endRange();
        if (count_++ == 0) first_ = at, have_ = have, want_ = want;
        last_ = at;
    }

private:
    void endRange() {
        if (count_ != 0)
            ADD_FAILURE() << axis_ << " " << hex(first_) << " to " << hex(last_) << ", " << count_
                          << ": unknown differences; at the first have " << hex(have_) << ", the peer " << hex(want_);
        count_ = 0;
    }

    const char* axis_;
    uint32_t first_ = 0, last_ = 0, have_ = 0, want_ = 0, count_ = 0;
};

void compareCodes(const CharsetModel& charset, const Peer& peer, Ledger& known) {
    Unknown unknown("codes");
    for (uint32_t code = 0; code <= 0xFFFF; ++code) {
        const uint32_t have = charset.decode(code), want = peer.decode[code];
        if (have != want && !known.enter(Axis::codes, code)) unknown.add(code, have, want);
    }
}

// The way back of a single-byte charset finds a three-byte character by its low twelve bits alone. So all others that
// share them are lent its code.
bool isLent(const CharsetModel& charset, uint32_t codePoint, uint32_t code) {
    if (charset.isMultiByte() || codePoint < 0x800 || codePoint > 0xFFFF || code == kNone) return false;
    const uint32_t own = charset.decode(code);
    return own != codePoint && own >= 0x800 && own <= 0xFFFF && (own & 0xFFF) == (codePoint & 0xFFF);
}

// A code that is known to differ, on either side, explains its code points.
void compareCodePoints(const CharsetModel& charset, const Peer& peer, Ledger& known) {
    Unknown unknown("code points");
    for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        const uint32_t have = charset.encode(codePoint), want = peer.encode[codePoint];
        if (have == want || (want == kNone && isLent(charset, codePoint, have))) continue;
        if (known.holds(Axis::codes, have) || known.holds(Axis::codes, want)) continue;
        if (!known.enter(Axis::codePoints, codePoint)) unknown.add(codePoint, have, want);
    }
}

class BesidePeer : public testing::TestWithParam<Pairing> {};

TEST_P(BesidePeer, AgreesButForWhatIsKnown) {
    const CharsetModel& charset = CharsetModel::of(GetParam().charset);
    const Peer peer = askPeer(GetParam().library, GetParam().converter.c_str(), charset);
    Ledger known(GetParam());
    compareCodes(charset, peer, known);
    compareCodePoints(charset, peer, known);
    known.expectAsCounted();
}

INSTANTIATE_TEST_SUITE_P(All, BesidePeer, testing::ValuesIn(pairings()), [](const auto& row) {
    return identifier(row.param.charset + "_" + libraryName(row.param.library));
});

TEST(Peers, EveryCharsetHasOne) {
    for (const std::string& name : RealFile::shared().legacyCharsets()) {
        const auto is = [&](const Pairing& pairing) { return pairing.charset == name; };
        EXPECT_TRUE(std::any_of(pairings().begin(), pairings().end(), is)) << name;
    }
}

// A code comes back, or the code of the same character that was preferred does. A code point that is sent to the code
// of another is lent it; of single-byte charsets it is told above which.
TEST(Charsets, ThereAndBack) {
    for (const std::string& name : RealFile::shared().legacyCharsets()) {
        const CharsetModel& charset = CharsetModel::of(name);
        for (uint32_t code = 0; code <= 0xFFFF; ++code) {
            const uint32_t codePoint = charset.decode(code);
            if (codePoint == kNone) continue;
            const uint32_t back = charset.encode(codePoint);
            EXPECT_TRUE(back == code || (back != kNone && charset.decode(back) == codePoint)) << name << hex(code);
        }
        EXPECT_NE(charset.substitute(), kNone) << name;
    }
}

// All that can be lent is.
TEST(Charsets, CodesAreLentByLowTwelveBits) {
    for (const std::string& name : RealFile::shared().legacyCharsets()) {
        const CharsetModel& charset = CharsetModel::of(name);
        if (charset.isMultiByte()) continue;
        std::map<uint32_t, uint32_t> lenders;
        for (uint32_t code = 0; code <= 0xFF; ++code)
            if (charset.decode(code) >= 0x800) lenders[charset.decode(code) & 0xFFF] = code;
        for (uint32_t codePoint = 0x800; codePoint <= 0xFFFF; ++codePoint) {
            const auto lender = lenders.find(codePoint & 0xFFF);
            ASSERT_EQ(charset.encode(codePoint), lender == lenders.end() ? kNone : lender->second)
                << name << hex(codePoint);
        }
    }
}

Charset attributesOf(const std::string& name) {
    return Charset{*RealFile::shared().conversion(name, "UTF-16").source->attrib};
}

// How long each code is, what trails, and that no first byte counts as a letter, which would make its character one
// byte long.
TEST(Attributes, FitTheCodes) {
    for (const std::string& name : RealFile::shared().legacyCharsets()) {
        const Charset attributes = attributesOf(name);
        const CharsetModel& model = CharsetModel::of(name);
        EXPECT_EQ(attributes.isMultiByte(), model.isMultiByte()) << name;
        EXPECT_EQ(attributes.isSingleByte(), !model.isMultiByte()) << name;
        EXPECT_FALSE(attributes.isUtf8()) << name;
        EXPECT_EQ(attributes.comparesViaSjis(), name == "EUCJIS");
        EXPECT_EQ(attributes.isCp936(), name == "CP936");
        for (uint32_t code = 0x100; code <= 0xFFFF; ++code) {
            if (model.decode(code) == kNone) continue;
            ASSERT_EQ(attributes.trailCount(static_cast<unsigned char>(code >> 8)), 1U) << name << code;
            ASSERT_TRUE(attributes.mayTrail(static_cast<unsigned char>(code))) << name << code;
            ASSERT_FALSE(attributes.isLetter(static_cast<unsigned char>(code >> 8))) << name << code;
        }
        for (unsigned byte = 0; byte <= 0xFF; ++byte) {
            const bool isNarrow =
                (name == "EUCJIS" && byte == 0x8E) || (name == "ISO6937" && byte >= 0xC1 && byte <= 0xCF);
            EXPECT_EQ(attributes.oneColumn(static_cast<unsigned char>(byte)), isNarrow) << name << byte;
        }
    }
}

TEST(Attributes, LettersAreTheAlphabeticCharacters) {
    const struct {
        const char* charset;
        const char* letters;  // some bytes above 7F
        const char* others;
    } rows[] = {
        {"ISO8859-1", "\xAA\xB5\xC0\xDF\xFF", "\xA0\xD7\xF7\x80"},
        {"KOI8-R", "\xA3\xB3\xC0\xFF", "\x80\xBF"},
        {"620-2533", "\xA1\xD1\xD4\xE0\xED", "\xDF\xE7\xE8\xEE\xF0\xFB\xFC"},  // vowel signs are letters, tones aren't
        {"1256", "\xC7\xED", "\xA1\xBA\xD7"},
        {"SHIFT-JIS", "A\xA6\xDD", "\x81\xE0\xFC\x5C"},
        {"EUCJIS", "Az", "\x8E\xA1\xC0\xFE"},
        {"UTF-8", "Az", "\xC3\x80\xE0"},
        {"IBM037", "\x81\xC1", "A\x40\xF0"},
    };
    for (const auto& row : rows) {
        const Charset attributes = attributesOf(row.charset);
        for (const char* at = row.letters; *at != '\0'; ++at)
            EXPECT_TRUE(attributes.isLetter(static_cast<unsigned char>(*at))) << row.charset << at - row.letters;
        for (const char* at = row.others; *at != '\0'; ++at)
            EXPECT_FALSE(attributes.isLetter(static_cast<unsigned char>(*at))) << row.charset << at - row.others;
    }
}

}  // namespace
}  // namespace nls::real
