// The functions on string records and single characters, on real tables.
#include "tests/real/foretold.hpp"

namespace nls::real {
namespace {

// A record over bytes of its own, with room for `room`.
class Record {
public:
    explicit Record(std::size_t room) : bytes_(room, kFill) { str_ = {bytes_.data(), static_cast<int32_t>(room), 0}; }
    // A text with its NUL behind it.
    explicit Record(ByteView text) : bytes_(text.begin(), text.end()) {
        bytes_.push_back(0);
        str_ = {bytes_.data(), static_cast<int32_t>(bytes_.size()), static_cast<uint32_t>(text.size())};
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    nlsStr* str() { return &str_; }
    const Bytes& bytes() const { return bytes_; }
    uint32_t length() const { return str_.strLength; }

private:
    Bytes bytes_;
    nlsStr str_;
};

const nlsConversion* conversion(const std::string& from, const std::string& to) {
    return &RealFile::shared().conversion(from, to);
}

// The last characters of the last language, which is the farthest from ASCII.
Bytes shortText(const std::string& charset) {
    const Bytes& text = realText(charset);
    const std::vector<std::size_t> places = characterPlaces(RealFile::shared().charset(charset), text);
    return {text.begin() + static_cast<std::ptrdiff_t>(places[places.size() - 41]), text.end()};
}

Bytes bytesOf(const char* text) {
    return {text, text + std::char_traits<char>::length(text)};
}

// The NUL behind a text is as wide as a unit of its charset: told by the table, or by the second of two steps. The
// identity knows no charset.
std::size_t terminatorWidth(const Route& route) {
    if (route.type == Type::identity || !route.to.isUnicode() || route.to.family == Family::utf8) return 1;
    return route.to.family == Family::units16 ? 2 : 4;
}

// As foretold where the terminator fits behind it; else 2, and no byte of it.
TEST(Records, ConvertNlsClosesTheText) {
    for (const Name& from : RealFile::shared().charsets()) {
        const Bytes text = shortText(from.text);
        for (const Name& to : RealFile::shared().charsets()) {
            if (RealFile::shared().find(from.text, to.text) == nullptr) continue;
            const Route route(from.text, to.text);
            const std::size_t full = foretellWhole(route, text).target.size(), width = terminatorWidth(route);
            for (std::size_t room = full; room <= full + width + 1; ++room) {
                Record source(text), target(room), scratch(text.size() * 4);
                Foretold want = foretell(route, text, room, text.size() * 4);
                if (want.count + width > room) {
                    want.status = NLS_BUF_SMALL;
                } else {
                    std::fill_n(want.target.begin() + want.count, width, static_cast<unsigned char>(0));
                    want.certain = std::max(want.certain, want.count + width);
                }
                const nlsStatus status =
                    nlsConvertNLS(conversion(from.text, to.text), nullptr, source.str(), scratch.str(), target.str());
                EXPECT_EQ(status, want.status) << from.text << " to " << to.text << ", room " << room - full;
                EXPECT_EQ(target.length(), want.count) << from.text << " to " << to.text << ", room " << room - full;
                EXPECT_EQ(want.differenceOf(target.bytes()), "")
                    << from.text << " to " << to.text << ", room " << room - full;
            }
        }
    }
}

TEST(Records, CheckTellsWhetherTheTextChanges) {
    const Bytes ascii = bytesOf("Zeile 17"), umlaut = {'G', 'r', 0xFC, 'n'}, kana = {0x83, 0x41};
    const struct {
        const char *from, *to;
        const Bytes& text;
        nlsStatus status;
        uint32_t length;
        const char* why;
    } rows[] = {
        {"1252", "1252", umlaut, NLS_OK, 4, "the identity"},
        {"1252", "ISO8859-1", umlaut, NLS_OK, 4, "a byte map that leaves these bytes alone"},
        {"1252", "IBM850", umlaut, NLS_CONV_CHANGED, 4, "a byte map that moves one"},
        {"SHIFT-JIS", "EUCJIS", ascii, NLS_OK, 8, "ASCII by the rule"},
        {"SHIFT-JIS", "EUCJIS", kana, NLS_CONV_CHANGED, 2, "kana by the rule"},
        {"SHIFT-JIS", "UTF-8", ascii, NLS_CONV_CHANGED, 8, "a multi-byte charset isn't compared"},
        {"UTF-8", "UTF-16BE", ascii, NLS_CONV_CHANGED, 17, "16 bits: one byte of the NUL is taken off"},
        {"SHIFT-JIS", "UTF-16BE", kana, NLS_CONV_CHANGED, 3, "the same"},
    };
    for (const auto& row : rows) {
        Record source(row.text), target(100);
        EXPECT_EQ(nlsConvertNLSCheck(conversion(row.from, row.to), nullptr, source.str(), target.str()), row.status)
            << row.why;
        EXPECT_EQ(target.length(), row.length) << row.why;
        // With the NUL, since that is converted too.
        Bytes withNul = row.text;
        withNul.push_back(0);
        EXPECT_EQ(foretell(Route(row.from, row.to), withNul, 100, 0).differenceOf(target.bytes()), "") << row.why;
    }
    Record record(ascii), target(100);
    EXPECT_EQ(nlsConvertNLSCheck(conversion("1252", "UTF-8"), nullptr, record.str(), record.str()), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertNLSCheck(conversion("1252", "UTF-16"), nullptr, record.str(), target.str()), NLS_BAD_ARG);
}

// To UCS2 with the NUL of the record, from UCS2 without any, in every size of target. Single-byte charsets take two
// steps, for which there is no buffer here.
TEST(Records, ToAndFromUcs2) {
    for (const Name& charset : RealFile::shared().charsets()) {
        if (charset.text == "UCS2") continue;
        const Route there(charset.text, "UCS2"), back("UCS2", charset.text);
        Bytes text = shortText(charset.text), units = shortText("UCS2");
        Record source(text);
        text.push_back(0);
        for (std::size_t room = 0; room <= text.size() * 2 + 2; ++room) {
            const Foretold want = foretell(there, text, room, 0);
            Bytes target(room, kFill);
            uint32_t count = kUntouched;
            const nlsStatus status = nlsConvertToUCS2(conversion(charset.text, "UCS2"), nullptr, source.str(),
                                                      static_cast<int32_t>(room), target.data(), &count);
            EXPECT_EQ(status, want.status) << charset.text << ", room " << room;
            EXPECT_EQ(count, want.count) << charset.text << ", room " << room;
            EXPECT_EQ(want.differenceOf(target), "") << charset.text << ", room " << room;
        }
        for (std::size_t room = 1; room <= units.size() * 2; ++room) {
            const Foretold want = foretell(back, units, room, 0);
            Record target(room);
            const nlsStatus status = nlsConvertFromUCS2(conversion("UCS2", charset.text), nullptr, units.data(),
                                                        static_cast<int32_t>(units.size()), target.str());
            EXPECT_EQ(status, want.status) << charset.text << ", room " << room;
            EXPECT_EQ(target.length(), want.count == kUntouched ? 0 : want.count) << charset.text << ", room " << room;
            EXPECT_EQ(want.differenceOf(target.bytes()), "") << charset.text << ", room " << room;
        }
    }
}

// Characters that a charset or form may be asked for, as their bytes: all of one byte, some of the longer ones.
std::vector<Bytes> charactersOf(const Name& charset) {
    std::vector<Bytes> characters;
    if (charset.isUnicode()) {
        for (uint32_t value = 1; value <= 0x10FFFF; value += value < 0x800 ? 1 : 997)
            append(characters.emplace_back(), value, charset);
        return characters;
    }
    const CharsetModel& model = CharsetModel::of(charset.text);
    for (uint32_t code = 1; code <= 0xFFFF; code += code < 0x100 ? 1 : 31)
        if (code <= 0xFF || model.decode(code) != kNone) model.append(characters.emplace_back(), code);
    return characters;
}

uint32_t asLChar(ByteView bytes) {
    uint32_t value = 0;
    for (const unsigned char byte : bytes) value = value << 8 | byte;
    return value;
}

// An LChar without its leading zero bytes is a text of up to four bytes; one to four that come out are an LChar again.
TEST(Records, SingleCharacters) {
    for (const auto& [from, to] : RealFile::shared().pairs()) {
        const Route route(from, to);
        if (route.from.family == Family::units16 || route.from.family == Family::units32) continue;
        for (const Bytes& character : charactersOf(route.from)) {
            const Foretold want = foretell(route, character, 4, 0);
            uint32_t result = kUntouched;
            const nlsStatus status = nlsConvertLChar(conversion(from, to), nullptr, asLChar(character), &result);
            if (want.count == 0 || want.count == kUntouched) {
                EXPECT_EQ(status, NLS_BAD_ARG) << from << " to " << to << ", " << asLChar(character);
                EXPECT_EQ(result, kUntouched) << from << " to " << to << ", " << asLChar(character);
                continue;
            }
            const uint32_t value = route.type == Type::utf8ToUtf32 ? onlyCodePoint(character)
                                                                   : asLChar(ByteView{want.target}.first(want.count));
            EXPECT_EQ(status, want.status) << from << " to " << to << ", " << asLChar(character);
            EXPECT_EQ(result, value) << from << " to " << to << ", " << asLChar(character);
        }
    }
    uint32_t result = kUntouched;
    EXPECT_EQ(nlsConvertLChar(conversion("1252", "1252"), nullptr, 0x12345678, &result), NLS_OK);
    EXPECT_EQ(result, 0x12345678U);
    EXPECT_EQ(nlsConvertLChar(conversion("1252", "UTF-16"), nullptr, 'A', &result), NLS_BAD_ARG);
    EXPECT_EQ(result, 0x12345678U);
}

}  // namespace
}  // namespace nls::real
