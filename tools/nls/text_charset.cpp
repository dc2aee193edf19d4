#include "tools/nls/text_charset.hpp"

#include <algorithm>
#include <array>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr int32_t twoStepType = 7;
constexpr unsigned char replacement[] = {0xEF, 0xBF, 0xBD};

TextCharset::Form formOf(const nlsAttribStruct& attrib) {
    if ((attrib.flags & NLS_CHARSET_UTF8) != 0) return TextCharset::Form::utf8;
    if ((attrib.flags & NLS_CHARSET_UNITS16) != 0) return TextCharset::Form::units16;
    if ((attrib.flags & NLS_CHARSET_UNITS32) != 0) return TextCharset::Form::units32;
    return (attrib.flags & NLS_CHARSET_MULTI_BYTE) != 0 ? TextCharset::Form::multiByte : TextCharset::Form::singleByte;
}

unsigned trailCount(const nlsAttribStruct& attrib, unsigned char first) {
    return attrib.lengthMap[first] & 0x07U;
}

// One call of the library, with as much room as it asks for. REQUIRES: a source that isn't empty.
nlsStatus convert(const nlsConvTable* table, ByteView source, ByteBuffer& target) {
    nlsStatus status = NLS_BUF_SMALL;
    ByteBuffer scratch;
    const bool twoSteps = nlsConversionType(table) == twoStepType;
    for (std::size_t room = source.size() * 4 + 16; status == NLS_BUF_SMALL && room <= INT32_MAX; room *= 2) {
        unsigned char* const place = target.reserve(room);
        uint32_t written = 0;
        status = convertBytes(place, static_cast<int32_t>(room), source.data(), static_cast<int32_t>(source.size()),
                              twoSteps ? scratch.reserve(room) : nullptr, twoSteps ? static_cast<int32_t>(room) : 0,
                              table, &written, 0);
        // A table of a type without rules answers success and tells of nothing written.
        if (status == NLS_OK && written == 0) return NLS_NO_CONV_TABLE;
        if (status != NLS_BUF_SMALL) target.grow(std::min<std::size_t>(written, room));
    }
    return status;
}

bool isZeroUnit(ByteView unit) {
    return std::all_of(unit.begin(), unit.end(), [](unsigned char byte) { return byte == 0; });
}

bool holdsReplacement(ByteView text) {
    return std::search(text.begin(), text.end(), std::begin(replacement), std::end(replacement)) != text.end();
}

std::size_t utf8Boundary(ByteView text, std::size_t at) {
    for (std::size_t back = 1; back <= 3 && back <= at; ++back) {
        const unsigned char byte = text[at - back];
        if ((byte & 0xC0U) == 0x80) continue;
        const std::size_t length = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return length > back ? at - back : at;
    }
    return at;
}

std::size_t utf16Boundary(ByteView text, std::size_t at, bool swapped) {
    at &= ~std::size_t{1};
    if (at < 2) return at;
    const unsigned char high = text[at - (swapped ? 2 : 1)];
    return (high & 0xFCU) == 0xD8 ? at - 2 : at;
}

std::size_t walkedBoundary(const nlsAttribStruct& attrib, ByteView text, std::size_t at) {
    std::size_t pos = 0;
    for (std::size_t next = 0; next <= at; next += trailCount(attrib, text[next]) + std::size_t{1}) {
        pos = next;
        if (next == at) break;
    }
    return pos;
}

}  // namespace

TextCharset::TextCharset(Session& session, const std::string& name, Tables tables) : locale_(session.locale(name)) {
    name_ = locale_->charsetName;
    for (const std::string& spelled : session.charsets()) {
        if (nlsStbcmp(spelled.c_str(), name.c_str()) == 0) name_ = spelled;
    }
    form_ = formOf(*locale_->attrib);
    for (const unsigned char entry : locale_->attrib->lengthMap) longestTrail_ = std::max(longestTrail_, entry & 0x07U);
    hasTables_ = isUtf8() || findTables(session);
    if (!hasTables_ && tables == Tables::ifAny) return;
    if (!hasTables_) {
        throw Failure(Exit::usage, session.dataFile() + " knows the charset \"" + name_ +
                                       "\" but no conversion between it and UTF-8");
    }
    if (form_ == Form::singleByte) findUndefinedBytes();
    findSubstitute();
}

// False where there are none.
bool TextCharset::findTables(Session& session) {
    nlsLocale* const own = session.locale(name_);
    nlsLocale* const utf8 = session.locale("UTF-8");
    // The way there first: it makes the table of the way back beside its own.
    const nlsConversion* const there = session.conversion(own, utf8);
    const nlsConversion* const back = session.conversion(utf8, own);
    if (there == nullptr || back == nullptr) return false;
    toUtf8_ = there->table;
    fromUtf8_ = back->table;
    uint32_t swapSource = 0;
    uint32_t swapTarget = 0;
    setSwap(toUtf8_, &swapSource, &swapTarget);
    swapped_ = swapSource != 0;
    constexpr unsigned char nextLine[] = {0xC2, 0x85};
    isEbcdic_ = form_ == Form::singleByte && reads(0x15, nextLine);
    return true;
}

// Whether a byte of a single-byte charset is `text`.
bool TextCharset::reads(unsigned char byte, ByteView text) const {
    ByteBuffer read;
    return convert(toUtf8_, {&byte, 1}, read) == NLS_OK && sameBytes(read.view(), text);
}

// A single-byte table has a character for every byte. Bytes that the charset leaves undefined stand in the private-use
// area, at U+F700 and their value.
void TextCharset::findUndefinedBytes() {
    for (unsigned value = 0x80; value < 0x100; ++value) {
        const unsigned char filler[] = {0xEF, static_cast<unsigned char>(0x9C + (value >> 6)),
                                        static_cast<unsigned char>(0x80 + (value & 0x3F))};
        undefined_.set(value, reads(static_cast<unsigned char>(value), filler));
    }
}

// In Unicode U+FFFD; in a multi-byte charset what its table holds for that; else the question mark of the charset.
void TextCharset::findSubstitute() {
    if (form_ == Form::singleByte) {
        const unsigned char question = '?';
        if (!encode({&question, 1}, substitute_)) substitute_.append({&question, 1});
    } else if (isUtf8()) {
        substitute_.append(replacement);
    } else {
        convert(fromUtf8_, replacement, substitute_);
    }
}

std::size_t TextCharset::boundary(ByteView text, std::size_t at) const {
    const nlsAttribStruct& attrib = *locale_->attrib;
    switch (form_) {
        case Form::utf8:
            return utf8Boundary(text, at);
        case Form::units16:
            return utf16Boundary(text, at, swapped_);
        case Form::units32:
            return at & ~std::size_t{3};
        default:
            break;
    }
    if (longestTrail_ == 0) return at;
    if (longestTrail_ > 1) return walkedBoundary(attrib, text, at);
    return nlsFirstByte(&attrib, text.data() + at, text.data()) != 0 ? at : at - 1;
}

Unit TextCharset::first(ByteView text) const {
    switch (form_) {
        case Form::utf8:
            return firstUtf8(text);
        case Form::units16:
            return firstUtf16(text, swapped_);
        case Form::units32:
            return firstUtf32(text, swapped_);
        default:
            break;
    }
    const nlsAttribStruct& attrib = *locale_->attrib;
    const std::size_t length = trailCount(attrib, text[0]) + std::size_t{1};
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size()) return {i, cutOff};
        // Text is not eaten by a stray first byte in front of it.
        if (text[i] < 0x80 && attrib.trailMap[text[i]] == 0) return {i, "a first byte without its trail byte"};
    }
    return {length, {}};
}

// The library's text ends at a unit of zeros, which is a character to the commands like any other.
bool TextCharset::hasSoundUnits(ByteView piece) const {
    const std::size_t unit = form_ == Form::units16 ? 2 : 4;
    for (std::size_t scanned = 0; scanned != piece.size();) {
        uint32_t chars = 0;
        const ByteView rest = piece.subspan(scanned);
        const nlsStatus status = nlsValidateString(locale_, nullptr, rest.data(), static_cast<int32_t>(rest.size()),
                                                   swapped_ ? 1 : 0, &chars);
        if (status != NLS_END_OF_STRING) return status == NLS_OK;
        while (!isZeroUnit(piece.subspan(scanned, unit))) scanned += unit;
        scanned += unit;
    }
    return true;
}

bool TextCharset::isWellFormed(ByteView piece) const {
    switch (form_) {
        case Form::utf8:
            return validUtf8(piece);
        case Form::units16:
            return hasSoundUnits(piece);
        case Form::units32:
            return hasSoundUnits(piece) && !holdsWideSurrogate(piece, swapped_);
        default:
            break;
    }
    if (undefined_.none()) return true;
    return std::none_of(piece.begin(), piece.end(), [&](unsigned char byte) { return undefined_.test(byte); });
}

bool TextCharset::decodeLeniently(ByteView piece, ByteBuffer& text) const {
    if (toUtf8_ == nullptr) {
        text.append(piece);
        return isUtf8() || validUtf8(piece);
    }
    const std::size_t start = text.size();
    if (convert(toUtf8_, piece, text) != NLS_OK) return false;
    // Two steps keep the loss of the first to themselves; but no charset of old holds U+FFFD.
    if (!isLegacy() || nlsConversionType(toUtf8_) != twoStepType) return true;
    return !holdsReplacement(text.view().subspan(start));
}

bool TextCharset::decode(ByteView piece, ByteBuffer& text) const {
    return isWellFormed(piece) && decodeLeniently(piece, text);
}

bool TextCharset::encode(ByteView text, ByteBuffer& piece) const {
    if (!hasTables_) {
        piece.append(text);
        return std::all_of(text.begin(), text.end(), [](unsigned char byte) { return byte < 0x80; });
    }
    if (fromUtf8_ == nullptr) {
        piece.append(text);
        return true;
    }
    const std::size_t start = piece.size();
    if (convert(fromUtf8_, text, piece) != NLS_OK) return false;
    // The way back to single bytes looks at a part of the character alone, and answers for some that the charset lacks.
    // The way there is exact, so it tells.
    if (form_ != Form::singleByte && nlsConversionType(fromUtf8_) != twoStepType) return true;
    again_.clear();
    return decode(piece.view().subspan(start), again_) && sameBytes(again_.view(), text);
}

}  // namespace nls::tool
