#include "tools/stored/stored_file.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace nls::stored {
namespace {

constexpr std::string_view magic = "nlsdbcol";
constexpr uint32_t formVersion = 1;
constexpr std::size_t recordBytes = offsetof(nlsDbCollation, dbImage);
constexpr std::size_t charsetWidth = 20;

// Offsets of the head.
constexpr std::size_t atVersion = 8;
constexpr std::size_t atWhole = 12;
constexpr std::size_t atRecord = 16;
constexpr std::size_t atWordBreakSize = atRecord + recordBytes;
constexpr std::size_t atTextSize = 108;
constexpr std::size_t atCharset = 112;
constexpr std::size_t atReserved = 132;
constexpr std::size_t headBytes = 136;
static_assert(atWordBreakSize == 104 && recordBytes == 88);

// A word-break table: its head, and the 16-bit number of its body's bytes.
constexpr std::size_t wordBreakHead = 62;
constexpr std::size_t atBodySize = 2;

void putWord(Bytes& bytes, std::size_t at, uint32_t value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

uint32_t wordAt(ByteView bytes, std::size_t at) {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

template <std::size_t width>
std::string fieldText(const char (&field)[width]) {
    return {field, std::find(field, field + width, '\0')};
}

bool hasOwnLength(ByteView wordBreak) {
    if (wordBreak.empty()) return true;
    if (wordBreak.size() < wordBreakHead) return false;
    uint16_t body = 0;
    std::memcpy(&body, wordBreak.data() + atBodySize, sizeof body);
    return wordBreak.size() == wordBreakHead + body;
}

// What is wrong with the head and the sizes in it; empty for nothing.
std::string headTrouble(ByteView bytes) {
    if (bytes.size() < headBytes || std::memcmp(bytes.data(), magic.data(), magic.size()) != 0) {
        return "no stored collation: it doesn't begin as one";
    }
    const uint32_t version = wordAt(bytes, atVersion);
    if (version != formVersion) {
        return "a stored collation of form " + std::to_string(version) + "; this program knows form " +
               std::to_string(formVersion);
    }
    if (wordAt(bytes, atWhole) != bytes.size()) {
        return "cut or continued: it says that it has " + std::to_string(wordAt(bytes, atWhole)) + " bytes, and has " +
               std::to_string(bytes.size());
    }
    const uint64_t parts = uint64_t{wordAt(bytes, atRecord + offsetof(nlsDbCollation, dbImageSize))} +
                           wordAt(bytes, atWordBreakSize) + wordAt(bytes, atTextSize);
    if (parts + headBytes != bytes.size()) return "damaged: the sizes of its parts don't add up to its own";
    if (wordAt(bytes, atReserved) != 0) return "damaged: something stands in the reserved bytes 132 to 135";
    return {};
}

}  // namespace

std::string charsetOf(const nlsDbCollation& record) {
    return fieldText(record.dbCharset);
}

std::string collationOf(const nlsDbCollation& record) {
    return fieldText(record.dbCollation);
}

std::string caseOf(const nlsDbCollation& record) {
    return fieldText(record.dbCase);
}

Bytes toFileForm(const StoredCollation& stored) {
    Bytes bytes(headBytes);
    std::memcpy(bytes.data(), magic.data(), magic.size());
    std::memcpy(bytes.data() + atRecord, &stored.record, recordBytes);
    putWord(bytes, atRecord + offsetof(nlsDbCollation, dbImageSize), static_cast<uint32_t>(stored.image.size()));
    putWord(bytes, atVersion, formVersion);
    putWord(bytes, atWordBreakSize, static_cast<uint32_t>(stored.wordBreak.size()));
    putWord(bytes, atTextSize, static_cast<uint32_t>(stored.text.size()));
    std::copy_n(stored.wordBreakCharset.begin(), std::min(stored.wordBreakCharset.size(), charsetWidth - 1),
                bytes.begin() + atCharset);
    bytes.insert(bytes.end(), stored.image.begin(), stored.image.end());
    bytes.insert(bytes.end(), stored.wordBreak.begin(), stored.wordBreak.end());
    bytes.insert(bytes.end(), stored.text.begin(), stored.text.end());
    putWord(bytes, atWhole, static_cast<uint32_t>(bytes.size()));
    return bytes;
}

std::optional<StoredCollation> fromFileForm(ByteView bytes, std::string& trouble) {
    trouble = headTrouble(bytes);
    if (!trouble.empty()) return std::nullopt;
    StoredCollation stored;
    std::memcpy(&stored.record, bytes.data() + atRecord, recordBytes);
    std::array<char, charsetWidth> charset{};
    std::memcpy(charset.data(), bytes.data() + atCharset, charsetWidth);
    stored.wordBreakCharset.assign(charset.begin(), std::find(charset.begin(), charset.end(), '\0'));

    const ByteView image = bytes.subspan(headBytes, stored.record.dbImageSize);
    const ByteView wordBreak = bytes.subspan(headBytes + image.size(), wordAt(bytes, atWordBreakSize));
    const ByteView text = bytes.last(wordAt(bytes, atTextSize));
    stored.image.assign(image.begin(), image.end());
    stored.wordBreak.assign(wordBreak.begin(), wordBreak.end());
    stored.text.assign(text.begin(), text.end());
    if (!hasOwnLength(wordBreak)) {
        trouble = "damaged: its word-break table isn't as long as it says";
    } else if (stored.text.find('\0') != std::string::npos) {
        trouble = "damaged: a NUL stands in its text";
    } else if (stored.wordBreakCharset.size() == charsetWidth) {
        trouble = "damaged: the second charset's name has no end";
    }
    if (!trouble.empty()) return std::nullopt;
    return stored;
}

nlsStatus takeFrom(const nlsLocale& locale, int32_t format, StoredCollation& stored) {
    constexpr std::size_t longestImage = 1376 + 5976;
    Bytes image(longestImage);
    nlsDbCollation record{};
    record.dbImage = image.data();
    const nlsStatus status = nlsLocaleToDbCollation(&locale, format, static_cast<uint32_t>(image.size()), &record);
    if (status != NLS_OK) return status;
    image.resize(record.dbImageSize);
    record.dbImage = nullptr;
    stored.record = record;
    stored.image = std::move(image);
    return NLS_OK;
}

nlsStatus openStored(nlsHandle* handle, const StoredCollation& stored, nlsLocale* wordBreakLocale,
                     std::vector<uint64_t>& block, nlsLocale*& locale) {
    Bytes image = stored.image;  // the library takes a pointer that isn't const
    nlsDbCollation record = stored.record;
    record.dbImage = image.data();
    record.dbImageSize = static_cast<uint32_t>(image.size());
    record.dbWordBreak = stored.wordBreak.empty() ? nullptr : stored.wordBreak.data();
    record.dbWordBreakLocale = wordBreakLocale;
    if (image.empty()) return NLS_BAD_COLLATION;
    const auto* const text = reinterpret_cast<const unsigned char*>(stored.text.c_str());
    uint32_t size = 0;
    nlsStatus status = nlsDbCollationToLocale(handle, &record, text, &size, nullptr, &locale);
    if (status != NLS_BUF_SMALL) return status;
    block.assign((size + sizeof(uint64_t) - 1) / sizeof(uint64_t), 0);
    return nlsDbCollationToLocale(handle, &record, text, &size, block.data(), &locale);
}

std::string IcuVersions::text() const {
    std::string all;
    for (const auto* four : {&collator, &uca}) {
        if (!all.empty()) all += " / ";
        for (const unsigned char& number : *four) {
            if (&number != *four) all += '.';
            all += std::to_string(number);
        }
    }
    return all;
}

std::optional<IcuVersions> icuVersionsOf(ByteView image) {
    constexpr std::size_t atCollator = 16;
    constexpr std::size_t atUca = 20;
    if (image.size() < 512) return std::nullopt;
    IcuVersions versions{};
    std::memcpy(versions.collator, image.data() + atCollator, sizeof versions.collator);
    std::memcpy(versions.uca, image.data() + atUca, sizeof versions.uca);
    return versions;
}

}  // namespace nls::stored
