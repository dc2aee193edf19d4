#include "tests/real/data_file.hpp"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/support/texts.hpp"

namespace nls::real {

namespace {

constexpr int32_t kArena = 8 << 20;

Family familyOf(uint16_t rawFlags) {
    if (rawFlags & NLS_CHARSET_UTF8) return Family::utf8;
    if (rawFlags & NLS_CHARSET_UNITS16) return Family::units16;
    if (rawFlags & NLS_CHARSET_UNITS32) return Family::units32;
    return rawFlags & NLS_CHARSET_MULTI_BYTE ? Family::multiByte : Family::singleByte;
}

bool isSwapped(const std::string& name) {
    const char* const other = std::endian::native == std::endian::little ? "BE" : "LE";
    return name.starts_with("UTF") && name.ends_with(other);
}

constexpr uint16_t kConversionEntry = 1, kAttributeEntry = 2, kCaseEntry = 3, kCollationEntry = 4;

Bytes contentOf(const char* path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Bytes content(file ? static_cast<std::size_t>(file.tellg()) : 0);
    file.seekg(0).read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
    if (content.empty()) throw std::runtime_error(std::string("no data file at ") + path);
    return content;
}

}  // namespace

const Bytes& dataFile() {
    static const Bytes bytes = contentOf(NLS_CONVMAP);
    return bytes;
}

const Bytes& smallDataFile() {
    static const Bytes bytes = contentOf(NLS_SMALL_CONVMAP);
    return bytes;
}

RealFile& RealFile::shared() {
    static RealFile file;
    return file;
}

RealFile::RealFile() : open_(dataFile(), kArena) {
    if (!open_.isOpen()) throw std::runtime_error("nlsInit: " + std::to_string(open_.status));
    for (int32_t at = 0; at < open_.handle->tocCount; ++at) {
        const nlsTocEntry& entry = open_.handle->toc[at];
        const std::string name = entry.name1;
        if (entry.entryType == kConversionEntry) pairs_.emplace_back(name, entry.name2);
        if (entry.entryType == kCaseEntry) caseTables_.emplace_back(name, entry.name2);
        if (entry.entryType == kCollationEntry) collations_.emplace_back(name, entry.name2);
        if (entry.entryType == kAttributeEntry)
            charsets_.push_back({name, familyOf(static_cast<uint16_t>(entry.rawByte)), isSwapped(name)});
    }
    std::erase_if(charsets_, [this](const Name& charset) {
        return std::none_of(pairs_.begin(), pairs_.end(), [&](const auto& pair) { return pair.first == charset.text; });
    });
}

const Name& RealFile::charset(const std::string& name) const {
    const auto found =
        std::find_if(charsets_.begin(), charsets_.end(), [&](const Name& charset) { return charset.text == name; });
    if (found == charsets_.end()) throw std::runtime_error("no charset " + name);
    return *found;
}

std::vector<std::string> RealFile::names(bool unicode) const {
    std::vector<std::string> names;
    for (const Name& name : charsets_)
        if (name.isUnicode() == unicode) names.push_back(name.text);
    return names;
}

nlsLocale* RealFile::locale(const std::string& name) {
    nlsLocale* made = nullptr;
    const nlsStatus status = nlsCreateLocale(open_.handle, name.c_str(), NLS_NO_COLLATION, nullptr, &made);
    if (status != NLS_OK) throw std::runtime_error("locale " + name + ": " + std::to_string(status));
    return made;
}

const nlsLocale* RealFile::find(const std::string& charset, const char* collation, const char* caseName) {
    nlsLocale* made = nullptr;
    const nlsStatus status = nlsCreateLocale(open_.handle, charset.c_str(), collation, caseName, &made);
    return status == NLS_OK ? made : nullptr;
}

const nlsConversion* RealFile::find(const std::string& from, const std::string& to) {
    const auto known = found_.find({from, to});
    if (known != found_.end()) return known->second;
    nlsConversion* made = nullptr;
    const nlsStatus status = nlsCreateConversion(open_.handle, locale(from), locale(to), &made);
    if (status != NLS_OK && status != NLS_NO_CONV_TABLE)
        throw std::runtime_error(from + " to " + to + ": " + std::to_string(status));
    return found_[{from, to}] = made;
}

const nlsConversion& RealFile::conversion(const std::string& from, const std::string& to) {
    const nlsConversion* const made = find(from, to);
    if (made == nullptr) throw std::runtime_error("no conversion from " + from + " to " + to);
    return *made;
}

Outcome convert(const nlsConvTable* table, ByteView source) {
    // No character of one byte takes more than four in any charset, and nlsToUTF8 wants one byte to spare.
    Bytes target(source.size() * 4 + 8, kFill), scratch(target.size());
    Outcome outcome{0, kUntouched, {}};
    outcome.status = convertBytes(target.data(), static_cast<int32_t>(target.size()), source.data(),
                                  static_cast<int32_t>(source.size()), scratch.data(),
                                  static_cast<int32_t>(scratch.size()), table, &outcome.count, 0);
    target.resize(outcome.count == kUntouched ? 0 : std::min<std::size_t>(outcome.count, target.size()));
    outcome.bytes = std::move(target);
    return outcome;
}

namespace {

void appendUtf8(Bytes& text, uint32_t value) {
    const auto byte = [&text](uint32_t bits) { text.push_back(static_cast<unsigned char>(bits)); };
    if (value < 0x80) return byte(value);
    const unsigned trails = value < 0x800 ? 1 : value < 0x10000 ? 2 : value < 0x200000 ? 3 : 4;
    constexpr unsigned marks[] = {0x00, 0xC0, 0xE0, 0xF0, 0xF8};
    byte(marks[trails] | value >> trails * 6);
    for (unsigned left = trails; left-- > 0;) byte(0x80U | (value >> left * 6 & 0x3F));
}

template <typename Unit>
void appendUnit(Bytes& text, uint32_t value, bool swapped) {
    unsigned char bytes[sizeof(Unit)];
    const auto unit = static_cast<Unit>(value);
    std::memcpy(bytes, &unit, sizeof unit);
    if (swapped) std::reverse(std::begin(bytes), std::end(bytes));
    text.insert(text.end(), std::begin(bytes), std::end(bytes));
}

}  // namespace

void append(Bytes& text, uint32_t value, const Name& form) {
    if (form.family == Family::utf8) return appendUtf8(text, value);
    if (form.family == Family::units32) return appendUnit<uint32_t>(text, value, form.swapped);
    if (value < 0x10000) return appendUnit<uint16_t>(text, value, form.swapped);
    appendUnit<uint16_t>(text, 0xD800 + ((value - 0x10000) >> 10), form.swapped);
    appendUnit<uint16_t>(text, 0xDC00 + (value & 0x3FF), form.swapped);
}

const Bytes& realText(const std::string& charset) {
    static std::map<std::string, Bytes> texts;
    Bytes& text = texts[charset];
    if (!text.empty()) return text;
    constexpr std::size_t kEach = 6000;
    const nlsConvTable* const table = RealFile::shared().table("UTF-8", charset);
    for (int at = 0; at <= static_cast<int>(bench::Language::emoji); ++at) {
        const std::string utf8 = bench::text(static_cast<bench::Language>(at), kEach);
        const Outcome converted = convert(table, {reinterpret_cast<const unsigned char*>(utf8.data()), utf8.size()});
        if (converted.status == NLS_OK) text.insert(text.end(), converted.bytes.begin(), converted.bytes.end());
    }
    if (text.empty()) throw std::runtime_error("no language for " + charset);
    return text;
}

std::string firstDifference(ByteView have, ByteView want) {
    const auto [h, w] = std::mismatch(have.begin(), have.end(), want.begin(), want.end());
    if (h == have.end() && w == want.end()) return {};
    const auto at = h - have.begin();
    std::ostringstream message;
    message << "at byte " << at << " of " << have.size() << ", wanted " << want.size() << ":" << std::hex;
    const auto excerpt = [&](const char* label, ByteView bytes) {
        message << label;
        for (auto place = std::max<std::ptrdiff_t>(at - 4, 0); place < at + 12; ++place)
            if (static_cast<std::size_t>(place) < bytes.size())
                message << (place == at ? " >" : " ") << unsigned{bytes[static_cast<std::size_t>(place)]};
    };
    excerpt(" have", have);
    excerpt(", want", want);
    return message.str();
}

std::string identifier(std::string name) {
    for (char& c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    return name;
}

}  // namespace nls::real
