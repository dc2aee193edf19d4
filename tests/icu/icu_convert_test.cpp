// Conversion through ICU, on all four ways, beside ICU called directly: every size of target in front of a page that
// faults, odd addresses, swapped units; and never a wrong text where the output meets the text on its way.
#include "icu/icu_convert.hpp"

#include <algorithm>

#include "icu/converter.hpp"
#include "nls/convert.h"
#include "nls/icu.h"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/peer.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/made_tables.hpp"

namespace nls {
namespace {

constexpr int64_t kToCharset = 5, kFromCharset = 6;
constexpr int64_t kSwappedSource = 0x080, kSwappedTarget = 0x200, kUtf8Source = 0x180, kUtf8Target = 0x600;

// With states, of one to four bytes a character, and one that makes three bytes and more of a unit.
const char* const kCharsets[] = {"ISO-8859-5", "Shift_JIS", "GB18030", "ISO-2022-JP",
                                 "UTF-7",      "SCSU",      "BOCU-1",  "UTF-16"};
bool hasStates(std::string_view charset) {
    constexpr std::string_view all[] = {"ISO-2022-JP", "UTF-7", "SCSU", "BOCU-1", "UTF-16"};
    return std::ranges::find(all, charset) != std::end(all);
}
// Inside a text: ICU reads up to a NUL, so it can't be a source.
bool hasNuls(std::string_view charset) {
    return charset == "SCSU" || charset == "UTF-16";
}

std::vector<std::u16string> texts() {
    std::vector<std::u16string> texts = {u"",
                                         u"A",
                                         u"Hello",
                                         u"Дом",
                                         u"日本語とABC",
                                         u"Aé€日\xD840\xDC00x",
                                         u"\xD840",
                                         u"\xDC00z",
                                         u"日\xD840",
                                         u"aaaaaaaaaaaa日日日日日日日日日日日日",
                                         u"日日日日日日日日日日日日aaaaaaaaaaaa",
                                         u"\xFEFF"
                                         u"a\xFFFD"};
    for (unsigned i = 0; i < 12; ++i) texts.back() += u"€a\xD83D\xDE00";
    return texts;
}

class Tables {
public:
    explicit Tables(const char* charset) : converter_(openConverter(charset).converter) {
        EXPECT_NE(converter_, nullptr) << charset;
    }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;
    ~Tables() { convFuncs().ucnv_close(converter_); }

    test::MadeTable of(int64_t typeWord) const { return test::MadeTable::of(typeWord, IcuTable{converter_}); }

private:
    IcuConverter* converter_;
};

std::string bytesOfUnits(std::u16string_view text, bool swap) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char pair[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
        bytes += pair[swap ? 1 : 0];
        bytes += pair[swap ? 0 : 1];
    }
    return bytes;
}

struct Answer {
    nlsStatus status;
    uint32_t length;
    std::string text;

    bool operator==(const Answer&) const = default;
    friend std::ostream& operator<<(std::ostream& to, const Answer& answer) {
        return to << "status " << answer.status << ", length " << answer.length << ", "
                  << testing::PrintToString(answer.text);
    }
};
constexpr uint32_t kUntold = 0x55555555;

// Bytes behind a page that faults, and in front of one; at an odd or even address.
class Source {
public:
    Source(std::string_view bytes, bool odd) : buffer_(bytes.size() + 1), bytes_(bytes) {
        place_ = buffer_.atEnd(bytes.data(), bytes.size());
        if ((reinterpret_cast<uintptr_t>(place_) & 1) != (odd ? 1 : 0)) {
            --place_;
            std::memcpy(place_, bytes.data(), bytes.size());
        }
    }
    const unsigned char* place() const { return place_; }
    bool isUntouched() const { return std::memcmp(place_, bytes_.data(), bytes_.size()) == 0; }

private:
    test::GuardedBuffer buffer_;
    std::string bytes_;
    unsigned char* place_;
};

// Into a target that ends at the page that faults.
Answer convertInto(test::GuardedBuffer& target, std::size_t size, const nlsConvTable* table, const Source& source,
                   std::size_t sourceLength) {
    unsigned char* const place = target.atEnd(size);
    std::memset(place, 0xEE, size);
    Answer answer{NLS_OK, kUntold, {}};
    answer.status = nlsICUConversion(place, static_cast<uint32_t>(size), source.place(),
                                     static_cast<uint32_t>(sourceLength), table, &answer.length);
    EXPECT_TRUE(source.isUntouched());
    if (answer.status == NLS_OK) answer.text.assign(place, place + answer.length);
    return answer;
}

// ICU wants room for a terminator, and tells the length all the same.
Answer filledBy(const std::string& text, std::size_t room) {
    const auto length = static_cast<uint32_t>(text.size());
    return text.size() < room ? Answer{NLS_OK, length, text} : Answer{NLS_BAD_ARG, length, {}};
}

TEST(IcuConvert, FromUnits) {
    for (const char* const charset : kCharsets) {
        const Tables tables{charset};
        for (const std::u16string& text : texts()) {
            const std::string expected = test::peer::Converter{charset}.encode(text);
            test::GuardedBuffer target{expected.size() + 8};
            for (unsigned form = 0; form < 4; ++form) {
                const bool swap = (form & 1) != 0, odd = (form & 2) != 0;
                const auto table = tables.of(kToCharset | (swap ? kSwappedSource : 0));
                const Source source{bytesOfUnits(text + u'\0', swap), odd};
                for (std::size_t size = 0; size < expected.size() + 4; ++size)
                    ASSERT_EQ(convertInto(target, size, table, source, text.size()),
                              filledBy(expected, odd && size != 0 ? size - 1 : size))
                        << charset << " size " << size << " form " << form;
            }
        }
    }
}

TEST(IcuConvert, LongTextsAtOddAddresses) {
    std::u16string text;
    for (unsigned i = 0; i < 2600; ++i) text += i % 7 == 3 ? u"\xD840\xDC00" : i % 2 != 0 ? u"日" : u"a";
    for (const char* const charset : kCharsets) {
        const Tables tables{charset};
        for (std::size_t cut = 0; cut < 8; ++cut) {
            const std::u16string part = text.substr(cut);
            const Source source{bytesOfUnits(part + u'\0', true), true};
            test::GuardedBuffer target{part.size() * 8};
            const Answer all =
                convertInto(target, part.size() * 8, tables.of(kToCharset | kSwappedSource), source, part.size());
            ASSERT_EQ(all.status, NLS_OK);
            ASSERT_EQ(all.text, test::peer::Converter{charset}.encode(part)) << charset;
            for (const std::size_t size : {all.length, all.length + 1, all.length + 2})
                EXPECT_EQ(convertInto(target, size, tables.of(kToCharset | kSwappedSource), source, part.size()),
                          filledBy(all.text, size - 1));
        }
    }
}

// What the way through the tail of the target comes to. `sizes`: bytes written behind each unit read.
Answer throughPivot(std::size_t sourceLength, std::size_t units, const std::string& expected,
                    const std::vector<std::size_t>& sizes, std::size_t targetSize, bool lengthToldIfFull) {
    if (targetSize <= 2 * sourceLength + 2) return {NLS_BUF_SMALL, kUntold, {}};
    // The target ends at an even address; the pivot begins at one.
    std::size_t free = targetSize - 2 * sourceLength - 2;
    if ((targetSize - free) % 2 != 0) --free;
    for (std::size_t k = 0; k < units; ++k)
        if (sizes[k] > free + 2 * (k + 1)) return {NLS_BUF_SMALL, kUntold, {}};
    const Answer answer = filledBy(expected, targetSize);
    return answer.status == NLS_OK || lengthToldIfFull ? answer : Answer{answer.status, kUntold, {}};
}

TEST(IcuConvert, FromUtf8) {
    for (const char* const charset : kCharsets) {
        const Tables tables{charset};
        const auto table = tables.of(kToCharset | kUtf8Source);
        const test::peer::Converter peer{charset}, utf8{"UTF-8"};
        for (const std::u16string& text : texts()) {
            const std::string bytes = utf8.encode(text);
            const std::u16string units = utf8.decode(bytes);  // without lone surrogates
            const std::string expected = peer.encode(units);
            const std::size_t most = 2 * bytes.size() + 8 + expected.size();
            test::GuardedBuffer target{most};
            const Source source{bytes + '\0', false};
            for (std::size_t size = 0; size < most; ++size) {
                const Answer got = convertInto(target, size, table, source, bytes.size());
                const Answer want =
                    throughPivot(bytes.size(), units.size(), expected, peer.bytesAfterUnits(units), size, true);
                if (hasStates(charset) && got.status == NLS_BUF_SMALL) {  // it may be over-careful, but not for long
                    ASSERT_LT(size, 2 * bytes.size() + 3 + expected.size() + 16);
                    continue;
                }
                ASSERT_EQ(got, want) << charset << " size " << size;
            }
        }
        const Source inside{std::string_view{"\x80"
                                             "abc\0",
                                             5},
                            false};
        test::GuardedBuffer target{64};
        EXPECT_EQ(convertInto(target, 64, table, inside, 4).status, NLS_BAD_ARG);
        EXPECT_EQ(convertInto(target, 0, table, inside, 4).status, NLS_BAD_ARG);
    }
}

TEST(IcuConvert, ToUnits) {
    for (const char* const charset : kCharsets) {
        if (hasNuls(charset)) continue;
        const Tables tables{charset};
        const test::peer::Converter peer{charset};
        for (const std::u16string& text : texts()) {
            const std::string bytes = peer.encode(text);
            const std::u16string units = peer.decode(bytes);
            const Source source{bytes + '\0', false};
            test::GuardedBuffer target{2 * units.size() + 16};
            for (const bool swap : {false, true}) {
                const auto table = tables.of(kFromCharset | (swap ? kSwappedTarget : 0));
                const std::string expected = bytesOfUnits(units, swap);
                // The end of the target is even, so that every second size begins at an odd address.
                for (std::size_t size = 0; size < expected.size() + 6; ++size) {
                    const std::size_t room = size / 2 - (size % 2 != 0 && size / 2 * 2 == size ? 1 : 0);
                    Answer want{NLS_BAD_ARG, kUntold, {}};
                    if (units.size() < room) want = {NLS_OK, static_cast<uint32_t>(expected.size()), expected};
                    ASSERT_EQ(convertInto(target, size, table, source, bytes.size()), want)
                        << charset << " size " << size;
                }
            }
        }
    }
}

TEST(IcuConvert, ToUtf8) {
    for (const char* const charset : kCharsets) {
        if (hasNuls(charset)) continue;
        const Tables tables{charset};
        const auto table = tables.of(kFromCharset | kUtf8Target);
        const test::peer::Converter peer{charset}, utf8{"UTF-8"};
        for (const std::u16string& text : texts()) {
            const std::string bytes = peer.encode(text);
            const std::u16string units = peer.decode(bytes);
            const std::string expected = utf8.encode(units);
            const std::size_t most = 3 * bytes.size() + 16;
            test::GuardedBuffer target{most};
            const Source source{bytes + '\0', false};
            for (std::size_t size = 0; size < most; ++size)
                ASSERT_EQ(convertInto(target, size, table, source, bytes.size()),
                          throughPivot(bytes.size(), units.size(), expected, utf8.bytesAfterUnits(units), size, false))
                    << charset << " size " << size;
        }
    }
}

TEST(IcuConvert, EndsAtTheNul) {
    using namespace std::string_view_literals;
    const Tables tables{"ISO-8859-5"};
    test::GuardedBuffer target{64};
    const Answer ab{NLS_OK, 2, "ab"};
    for (const bool odd : {false, true}) {
        for (const bool swap : {false, true})
            EXPECT_EQ(convertInto(target, 64, tables.of(kToCharset | (swap ? kSwappedSource : 0)),
                                  Source{bytesOfUnits(u"ab\0cd\0"sv, swap), odd}, 5),
                      ab);
        EXPECT_EQ(convertInto(target, 64, tables.of(kToCharset | kUtf8Source), Source{"ab\0cd\0"sv, odd}, 5), ab);
        EXPECT_EQ(convertInto(target, 64, tables.of(kFromCharset | kUtf8Target), Source{"ab\0cd\0"sv, odd}, 5), ab);
        EXPECT_EQ(convertInto(target, 64, tables.of(kFromCharset), Source{"ab\0cd\0"sv, odd}, 5),
                  (Answer{NLS_OK, 4, std::string{"a\0b\0"sv}}));
    }
}

TEST(IcuConvert, RefusesOtherTables) {
    unsigned char target[8];
    uint32_t length = kUntold;
    for (const int64_t word : {1, 7, 23})
        EXPECT_EQ(nlsICUConversion(target, 8, test::bytesOf("a"), 1, test::MadeTable{word, 256}, &length), NLS_BAD_ARG);
    EXPECT_EQ(nlsICUConversion(target, 8, test::bytesOf("a"), 1, nullptr, &length), NLS_BAD_ARG);
    EXPECT_EQ(length, kUntold);
}

// Converters that write ahead of what they have read: a header, or sixteen bytes that are taken back where one of them
// has no unit. What can't be had is refused; no other text is, whatever stands in it.
TEST(IcuConvert, FromUtf8NeverWrongWhereIcuWritesAhead) {
    const std::u16string plain(40, u'a'), russian(40, u'Д'), french = u"déjà vu" + plain, fifteen(15, u'日');
    const struct {
        const char* charset;
        std::u16string text;
        std::size_t least;  // room in front of the pivot
    } rows[] = {{"ISO-8859-1", plain, 0},     {"ISO-8859-1", french, 0},          {"ISO-8859-1", fifteen, 0},
                {"ISO-8859-1", russian, 16},  {"ISO-8859-1", fifteen + u'a', 16}, {"US-ASCII", plain, 0},
                {"US-ASCII", french, 16},     {"ISO-8859-1", plain + u'日', 0},   {"windows-1251", russian, 0},
                {"windows-1252", russian, 0}, {"ISO-2022-KR", plain, 4},          {"ISO-2022-KR", u"a", 4}};
    for (const auto& row : rows) {
        const Tables tables{row.charset};
        const std::string bytes = test::peer::Converter{"UTF-8"}.encode(row.text);
        const std::string expected = test::peer::Converter{row.charset}.encode(row.text);
        const Source source{bytes + '\0', false};
        test::GuardedBuffer target{2 * bytes.size() + 32};
        for (std::size_t room = 0; room < 30; room += 2) {  // the pivot begins at an even address, as the target ends
            const std::size_t size = 2 * bytes.size() + 2 + std::max<std::size_t>(room, 1);
            const Answer want = room >= row.least ? Answer{NLS_OK, static_cast<uint32_t>(expected.size()), expected}
                                                  : Answer{NLS_BUF_SMALL, kUntold, {}};
            EXPECT_EQ(convertInto(target, size, tables.of(kToCharset | kUtf8Source), source, bytes.size()), want)
                << row.charset << " " << bytes << " with " << room;
        }
    }
}

// The text between the steps gets the NUL that ICU wants, in the room that is left: no more of it than that.
TEST(IcuConvert, AsTheSecondOfTwoSteps) {
    const Tables tables{"ISO-8859-5"};
    const struct {
        int64_t typeWord;
        std::string source, target;
        std::size_t nul;
    } rows[] = {{kToCharset, bytesOfUnits(u"ab", false), "ab", 2},
                {kToCharset | kUtf8Source, "ab", "ab", 1},
                {kFromCharset, "ab", bytesOfUnits(u"ab", false), 1},
                {kFromCharset | kUtf8Target, "ab", "ab", 1}};
    for (const auto& row : rows) {
        const auto second = tables.of(row.typeWord), steps = test::MadeTable::twoStep(nullptr, second);
        for (std::size_t spare = 0; spare < 4; ++spare) {
            test::GuardedBuffer scratch{8};
            const std::size_t size = row.source.size() + spare;
            unsigned char* const middle = scratch.atEnd(size);
            std::memset(middle, 0xEE, size);
            unsigned char target[64];
            uint32_t length = kUntold;
            const nlsStatus status =
                convertBytes(target, sizeof target, test::bytesOf(row.source), static_cast<int32_t>(row.source.size()),
                             middle, static_cast<int32_t>(size), steps, &length, 0);
            EXPECT_EQ(status, spare < row.nul ? NLS_BUF_SMALL : NLS_OK) << row.typeWord << " spare " << spare;
            EXPECT_EQ(length, status == NLS_OK ? row.target.size() : row.source.size());
            if (status != NLS_OK) continue;
            EXPECT_EQ((std::string{target, target + length}), row.target);
        }
    }
}

// A data file that names charsets of ICU's.
class Named : public testing::Test {
protected:
    static test::Bytes file() {
        test::ConvmapBuilder builder;
        builder.attributes("UTF-8", test::utf8()).attributes("windows-1251", test::singleByte());
        builder.attributes("Shift_JIS", test::doubleByte(NLS_CHARSET_MULTI_BYTE))
            .attributes("no-such", test::singleByte());
        for (const char* const charset : {"windows-1251", "Shift_JIS", "no-such"})
            builder.bare("UTF-8", charset, 176).bare(charset, "UTF-8", 177);
        return builder.build();
    }

    test::OpenHandle open{file()};
};

TEST_F(Named, ConvertsAsTheFileSays) {
    const test::peer::Converter peer{"windows-1251"};
    const std::string text = "Дом и сад", there = peer.encode(test::peer::unitsOf(text));
    const struct {
        const char *from, *to;
        std::string source, target;
    } rows[] = {{"UTF-8", "windows-1251", text, there},
                {"windows-1251", "UTF-8", there, text},
                {"UTF-8", "Shift_JIS", "日本", "\x93\xFA\x96\x7B"},
                {"Shift_JIS", "UTF-8", "\x93\xFA\x96\x7B", "日本"}};
    for (const auto& row : rows) {
        nlsConversion* const conversion = open.conversion(row.from, row.to);
        ASSERT_NE(conversion, nullptr) << row.from << " " << row.to;
        for (const uint32_t check : {0U, 1U}) {
            unsigned char target[200];
            uint32_t length = 0;
            const nlsStatus status =
                convertBytes(target, sizeof target, test::bytesOf(row.source), static_cast<int32_t>(row.source.size()),
                             nullptr, 0, conversion->table, &length, check);
            EXPECT_EQ(status, check != 0 ? NLS_CONV_CHANGED : NLS_OK) << row.from << " " << row.to;
            EXPECT_EQ((std::string{target, target + length}), row.target);
        }
    }
}

TEST_F(Named, ACharsetThatIcuDoesntKnowHasNoTable) {
    for (unsigned i = 0; i < 2; ++i) {
        nlsConversion* conversion = nullptr;
        EXPECT_EQ(nlsCreateConversion(open.handle, open.locale("UTF-8"), open.locale("no-such"), &conversion),
                  NLS_NO_CONV_TABLE);
        EXPECT_EQ(nlsCreateConversion(open.handle, open.locale("no-such"), open.locale("UTF-8"), &conversion),
                  NLS_NO_CONV_TABLE);
    }
}

}  // namespace
}  // namespace nls
