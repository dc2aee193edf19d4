#include "tools/mkconvmap/collation_source.hpp"

#include <unicode/ustring.h>

namespace nls::mkconvmap {

namespace {

constexpr uint32_t kVowelStep = 0x08;  // vowels have the bits 0x78
constexpr uint32_t kMostVowels = 15;
constexpr uint32_t kFirstTone = 3, kLastTone = 7;  // tones have the bits 0x07; 2 is the syllable without one
constexpr uint32_t kMarker = 0x80;                 // stands between the weights of a key

std::u16string charactersOf(const Place& place, const std::string& utf8) {
    std::u16string characters(utf8.size(), 0);
    int32_t count = 0;
    UErrorCode error = U_ZERO_ERROR;
    const auto size = static_cast<int32_t>(utf8.size());
    u_strFromUTF8(characters.data(), size, &count, utf8.data(), size, &error);
    if (U_FAILURE(error)) fail(place, "\"" + utf8 + "\" is no UTF-8");
    characters.resize(static_cast<std::size_t>(count));
    return characters;
}

class CollationReader {
public:
    explicit CollationReader(const std::filesystem::path& file) : file_{file.string(), 0} {
        for (const Line& line : readSource(file)) read(line);
    }

    CollationSource finish() {
        if (collation_.name.empty()) fail(file_, "the collation has no name: a line \"collation NAME\" is missing");
        if (!orderIsKnown_) fail(file_, "the collation has no order: a line \"order …\" is missing");
        return std::move(collation_);
    }

private:
    void read(const Line& line) {
        const std::string& keyword = line.keyword();
        if (keyword == "collation") {
            if (!collation_.name.empty()) fail(line.place, "the collation has a name already");
            collation_.name = checkedName(line.place, line.field(1, "a name"));
            collation_.place = line.place;
            line.endsAfter(2);
        } else if (keyword == "order") {
            readOrder(line);
        } else if (!orderIsKnown_) {
            fail(line.place, "\"order\" has to stand in front of \"" + keyword + "\"");
        } else if (!readLineOfOrder(line)) {
            fail(line.place, "\"" + keyword + "\" means nothing in a collation of this order");
        }
    }

    void readOrder(const Line& line) {
        if (orderIsKnown_) fail(line.place, "the collation has an order already");
        orderIsKnown_ = true;
        collation_.orderPlace = line.place;
        const std::string& order = line.field(1, "bytes, code-points, icu or thai");
        if (order == "bytes" || order == "code-points") {
            collation_.order = order == "bytes" ? CollationOrder::bytes : CollationOrder::codePoints;
            return line.endsAfter(2);
        }
        if (order != "icu" && order != "thai") {
            fail(line.place, "\"" + order + "\" is no order: bytes, code-points, icu or thai");
        }
        collation_.order = order == "icu" ? CollationOrder::language : CollationOrder::thai;
        collation_.locale = line.field(2, "a locale of ICU");
        line.endsAfter(3);
    }

    bool readLineOfOrder(const Line& line) {
        const std::string& keyword = line.keyword();
        if (collation_.order == CollationOrder::language) {
            if (keyword == "letters") return readCharacters(line, collation_.letters);
            if (keyword == "double-s") return readCharacters(line, collation_.doubled);
        }
        if (collation_.order == CollationOrder::thai) {
            if (keyword == "weights") return readWeights(line);
            if (keyword == "vowels") return readVowels(line);
            if (keyword == "tones") return readTones(line);
        }
        return false;
    }

    bool readCharacters(const Line& line, std::u16string& characters) {
        line.field(1, "characters");
        for (std::size_t at = 1; at < line.fields.size(); ++at) {
            characters += charactersOf(line.place, line.fields[at]);
        }
        return true;
    }

    // weights FIRST [sorted] RANGE …
    bool readWeights(const Line& line) {
        const uint32_t first = hexNumber(line.place, line.field(1, "a first weight"), 0xFF);
        const bool sorted = line.field(2, "bytes") == "sorted";
        const WeightRow& row = addRow(line, first, 1, sorted ? 3 : 2, sorted);
        const std::size_t last = first + row.bytes.size() - 1;
        if (last > 0xFF) fail(line.place, "the weights run past FF");
        if (first == 0 || (first <= kMarker && last >= kMarker)) {
            fail(line.place, "the weights 00 and 80 have a meaning of their own");
        }
        return true;
    }

    // vowels RANGE …
    bool readVowels(const Line& line) {
        const WeightRow& row = addRow(line, kVowelStep, kVowelStep, 1, false);
        if (row.bytes.size() > kMostVowels) fail(line.place, "there is room for 15 vowels");
        return true;
    }

    // tones WEIGHT RANGE …
    bool readTones(const Line& line) {
        const uint32_t first = hexNumber(line.place, line.field(1, "a weight"), kLastTone);
        const WeightRow& row = addRow(line, first, 1, 2, false);
        if (first < kFirstTone || first + row.bytes.size() - 1 > kLastTone) {
            fail(line.place, "tones have weights from 3 to 7");
        }
        return true;
    }

    const WeightRow& addRow(const Line& line, uint32_t first, uint32_t step, std::size_t firstField, bool sorted) {
        WeightRow row{line.place, static_cast<uint8_t>(first), static_cast<uint8_t>(step), sorted, {}};
        line.field(firstField, "bytes");
        for (std::size_t at = firstField; at < line.fields.size(); ++at) {
            const ByteRange range = byteRange(line.place, line.fields[at]);
            for (uint32_t byte = range.first; byte <= range.last; ++byte) {
                if (byte == 0) fail(line.place, "byte 00 ends a text and has no weight");
                row.bytes.push_back(static_cast<uint8_t>(byte));
            }
        }
        return collation_.rows.emplace_back(std::move(row));
    }

    Place file_;
    CollationSource collation_;
    bool orderIsKnown_ = false;
};

}  // namespace

CollationSource readCollation(const std::filesystem::path& file) {
    return CollationReader{file}.finish();
}

}  // namespace nls::mkconvmap
