#include "tools/mkconvmap/charset_source.hpp"

#include <map>
#include <memory>
#include <optional>

#include "core/base/names.hpp"
#include "tools/mkconvmap/row_source.hpp"

namespace nls::mkconvmap {

namespace {

// Reads the lines of one description in order; what they say of single bytes is put together at the end.
class CharsetReader {
public:
    explicit CharsetReader(const std::filesystem::path& file) : file_{file.string(), 0} {
        for (const Line& line : readSource(file)) read(line);
    }

    CharsetSource finish() {
        if (charset_.name.empty()) fail(file_, "the charset has no name: a line \"charset NAME\" is missing");
        if (!kindIsKnown_) fail(file_, "the charset has no kind: a line \"kind …\" is missing");
        if (charset_.isSingleByte()) finishSingleByte();
        if (charset_.isUnicode()) finishUnicode();
        return charset_;
    }

private:
    void read(const Line& line) {
        const std::string& keyword = line.keyword();
        if (keyword == "charset") {
            readName(line);
        } else if (keyword == "kind") {
            readKind(line);
        } else if (!kindIsKnown_) {
            fail(line.place, "\"kind\" has to stand in front of \"" + keyword + "\"");
        } else if (charset_.isUnicode()) {
            readUnicodeLine(line);
        } else if (charset_.isMultiByte()) {
            readMultiByteLine(line);
        } else {
            readSingleByteLine(line);
        }
    }

    void readName(const Line& line) {
        if (!charset_.name.empty()) fail(line.place, "the charset has a name already");
        charset_.name = checkedName(line.place, line.field(1, "a name"));
        if (sameName(charset_.name.c_str(), "undefined")) {
            fail(line.place, "the library takes the name " + charset_.name + " for a charset that is never converted");
        }
        charset_.place = line.place;
        line.endsAfter(2);
    }

    void readKind(const Line& line) {
        static const std::map<std::string, CharsetKind> kinds{
            {"single-byte", CharsetKind::singleByte},
            {"multi-byte", CharsetKind::multiByte},
            {"utf-8", CharsetKind::utf8},
            {"ucs2", CharsetKind::ucs2},
            {"utf-16", CharsetKind::utf16},
            {"utf-32", CharsetKind::utf32},
        };
        if (kindIsKnown_) fail(line.place, "the charset has a kind already");
        const auto found = kinds.find(line.field(1, "a kind"));
        if (found == kinds.end()) {
            fail(line.place,
                 "\"" + line.fields[1] + "\" is no kind: single-byte, multi-byte, utf-8, ucs2, utf-16 or utf-32");
        }
        line.endsAfter(2);
        charset_.kind = found->second;
        kindIsKnown_ = true;
    }

    void readUnicodeLine(const Line& line) {
        const bool hasUnits = charset_.kind == CharsetKind::utf16 || charset_.kind == CharsetKind::utf32;
        if (line.keyword() != "order" || !hasUnits) failUnknown(line);
        const std::string& order = line.field(1, "little or big");
        if (order != "little" && order != "big") fail(line.place, "\"" + order + "\" is no order: little or big");
        line.endsAfter(2);
        charset_.order = order == "little" ? UnitOrder::little : UnitOrder::big;
    }

    void readMultiByteLine(const Line& line) {
        if (line.keyword() == "length") {
            readLength(line);
        } else if (line.keyword() == "trail") {
            line.field(1, "ranges of bytes");
            forEachByte(line, 1, [this](uint8_t byte) { charset_.trails.set(byte); });
        } else if (line.keyword() == "via-shift-jis") {
            line.endsAfter(1);
            charset_.viaShiftJis = true;
        } else {
            charset_.mappingLines.push_back(line);
        }
    }

    // length COUNT [narrow] RANGE …
    void readLength(const Line& line) {
        constexpr uint8_t narrowBit = 0x08;
        const uint32_t count = decimalNumber(line.place, line.field(1, "a number of trailing bytes"), 3);
        const bool narrow = line.field(2, "ranges of first bytes") == "narrow";
        if (narrow) line.field(3, "ranges of first bytes");
        if (narrow && count == 0) fail(line.place, "a single byte is never narrow");
        forEachByte(line, narrow ? 3 : 2, [&](uint8_t byte) {
            if (charset_.lengths[byte] != 0) fail(line.place, "byte " + hexText(byte, 2) + " has a length already");
            charset_.lengths[byte] = static_cast<uint8_t>(count | (narrow ? narrowBit : 0U));
        });
    }

    void readSingleByteLine(const Line& line) {
        if (line.keyword() == "source") {
            if (source_) fail(line.place, "the charset has a source already");
            sourcePlace_ = line.place;
            const std::string& library = line.field(1, "a library, icu or iconv");
            source_ = openRowSource(line.place, library, line.field(2, "a converter's name"));
            line.endsAfter(3);
        } else if (line.keyword() == "row") {
            readRow(line);
        } else if (line.keyword() == "fill") {
            line.field(1, "bytes");
            forEachByte(line, 1, [&](uint8_t byte) {
                if (charset_.filled[byte]) fail(line.place, "byte " + hexText(byte, 2) + " is named twice");
                charset_.filled.set(byte);
                charset_.unitLines[byte] = line.place.line;
            });
        } else {
            failUnknown(line);
        }
    }

    // row FIRST UNIT …
    void readRow(const Line& line) {
        uint32_t byte = hexNumber(line.place, line.field(1, "a first byte"), 0xFF);
        line.field(2, "a character");
        for (std::size_t at = 2; at < line.fields.size(); ++at, ++byte) {
            if (byte > 0xFF) fail(line.place, "the row runs past byte FF");
            if (rows_[byte]) fail(line.place, "byte " + hexText(byte, 2) + " has a row already");
            rows_[byte] = static_cast<char32_t>(hexNumber(line.place, line.fields[at], 0x10FFFF));
            charset_.unitLines[byte] = line.place.line;
        }
    }

    void finishSingleByte() {
        for (uint32_t byte = 0; byte < 256; ++byte) takeCharacter(static_cast<uint8_t>(byte));
        for (uint32_t byte = 0; byte < 256; ++byte) {
            if (charset_.filled[byte]) charset_.units[byte] = fillerOf(byte);
        }
        checkSingleByteUnits(charset_);
    }

    // The character that row or source gives to a byte: one for a byte that isn't filled, none for one that is.
    void takeCharacter(uint8_t byte) {
        std::u32string text;
        if (rows_[byte]) {
            text = *rows_[byte];
        } else if (source_) {
            text = source_->decode({&byte, 1});
            if (!charset_.filled[byte]) charset_.unitLines[byte] = sourcePlace_.line;
        }
        const Place place = placeOf(byte);
        const std::string byteText = "byte " + hexText(byte, 2);
        if (charset_.filled[byte]) {
            if (!text.empty()) fail(place, byteText + " has a character, " + codePointText(text[0]));
            return;
        }
        if (text.empty()) fail(place, byteText + " has no character and isn't filled");
        if (text.size() > 1) fail(place, byteText + " has several characters; the format holds one");
        if (text[0] > 0xFFFF) fail(place, byteText + " has " + codePointText(text[0]) + "; the format ends at U+FFFF");
        charset_.units[byte] = static_cast<uint16_t>(text[0]);
    }

    // The C1 control of the same number where there is one and no byte has it, else a private-use character.
    uint16_t fillerOf(uint32_t byte) const {
        constexpr uint16_t privateUse = 0xF700;
        bool controlIsFree = byte >= 0x80 && byte <= 0x9F;
        for (const uint16_t unit : charset_.units) controlIsFree = controlIsFree && unit != byte;
        return static_cast<uint16_t>(controlIsFree ? byte : privateUse + byte);
    }

    Place placeOf(uint8_t byte) const {
        const int line = charset_.unitLines[byte];
        return {file_.file, line != 0 ? line : charset_.place.line};
    }

    // The library knows the forms of Unicode by how their names begin.
    void checkUnicodeName() const {
        static const std::map<CharsetKind, std::string> beginnings{
            {CharsetKind::utf8, "UTF-8"},
            {CharsetKind::ucs2, "UCS2"},
            {CharsetKind::utf16, "UTF-16"},
            {CharsetKind::utf32, "UTF-32"},
        };
        const std::string& beginning = beginnings.at(charset_.kind);
        const bool onlyName = charset_.kind == CharsetKind::utf8;
        if (onlyName ? charset_.name == beginning : charset_.name.starts_with(beginning)) return;
        fail(charset_.place, "the library looks for this form of Unicode under " +
                                 std::string(onlyName ? "the name " : "names that begin with ") + beginning);
    }

    void finishUnicode() {
        checkUnicodeName();
        const auto fill = [this](uint32_t first, uint32_t last, uint8_t count) {
            for (uint32_t byte = first; byte <= last; ++byte) charset_.lengths[byte] = count;
        };
        if (charset_.kind == CharsetKind::utf8) {
            fill(0xC0, 0xDF, 1);
            fill(0xE0, 0xEF, 2);
            fill(0xF0, 0xF7, 3);
            for (uint32_t byte = 0x80; byte <= 0xBF; ++byte) charset_.trails.set(byte);
        } else {
            fill(0x00, 0xFF, charset_.kind == CharsetKind::utf32 ? 3 : 1);
            charset_.trails.set();
        }
    }

    template <typename Action>
    void forEachByte(const Line& line, std::size_t firstField, Action action) {
        for (std::size_t at = firstField; at < line.fields.size(); ++at) {
            const ByteRange range = byteRange(line.place, line.fields[at]);
            for (uint32_t byte = range.first; byte <= range.last; ++byte) action(static_cast<uint8_t>(byte));
        }
    }

    [[noreturn]] void failUnknown(const Line& line) {
        fail(line.place, "\"" + line.keyword() + "\" means nothing in a charset of this kind");
    }

    Place file_;
    CharsetSource charset_;
    bool kindIsKnown_ = false;
    std::unique_ptr<RowSource> source_;
    Place sourcePlace_;
    std::array<std::optional<char32_t>, 256> rows_;
};

std::string byteAndUnit(uint32_t byte, uint16_t unit) {
    return hexText(byte, 2) + " (" + codePointText(unit) + ")";
}

}  // namespace

CharsetSource readCharset(const std::filesystem::path& file) {
    return CharsetReader{file}.finish();
}

uint16_t keyOfUnit(uint16_t unit) {
    constexpr uint16_t firstThreeByteForm = 0x800;
    if (unit < firstThreeByteForm) return unit;
    // Pages of three-byte forms are 80 to BF, those of two-byte forms C2 to DF: no key is shared between the two.
    return static_cast<uint16_t>(0x8000 | (unit & 0xFFF));
}

void checkSingleByteUnits(const CharsetSource& charset) {
    std::map<uint16_t, uint32_t> byteOfKey;
    for (uint32_t byte = 0; byte < 256; ++byte) {
        const uint16_t unit = charset.units[byte];
        const Place place{charset.place.file, charset.unitLines[byte]};
        const std::string text = byteAndUnit(byte, unit);
        if ((unit == 0) != (byte == 0)) fail(place, "byte " + text + ": byte 00 and no other is U+0000");
        if (unit >= 0xD800 && unit <= 0xDFFF) fail(place, "byte " + text + " is half a surrogate pair");
        if (unit >= 0xFFFD) fail(place, "byte " + text + " is no character");
        const auto [other, isNew] = byteOfKey.emplace(keyOfUnit(unit), byte);
        if (isNew) continue;
        const std::string both = "bytes " + byteAndUnit(other->second, charset.units[other->second]) + " and " + text;
        if (charset.units[other->second] == unit) fail(place, both + " are one character");
        fail(place, both + " share a key: the way back sees the low 12 bits alone above U+07FF");
    }
}

}  // namespace nls::mkconvmap
