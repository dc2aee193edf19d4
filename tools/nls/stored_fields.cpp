#include "tools/nls/stored_fields.hpp"

#include <cstddef>

#include "tools/nls/hex_text.hpp"
#include "tools/nls/sha256.hpp"
#include "tools/nls/stored_locale.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t mapSize = 256, mapsSize = 2 * mapSize;
constexpr std::size_t atAttrib = sizeof(nlsCollStruct), atCase = atAttrib + sizeof(nlsAttribStruct);

const char* kindInWords(int32_t kind) {
    static constexpr const char* words[] = {"byte tables", "a sort of the site's own", "Unicode", "Thai", "ICU"};
    if (kind < 1) return "unknown";
    return kind <= 5 ? words[kind - 1] : "tables of its own";
}

std::string digestOf(ByteView bytes) {
    Sha256 digest;
    digest.add(bytes);
    return digest.finish();
}

class Fields {
public:
    explicit Fields(const stored::StoredCollation& stored) : stored_(stored), image_(stored.image) {}

    std::vector<StoredField> gather() {
        addRecord();
        addMaps();
        if (image_.size() >= atCase) addLongImage();
        addWordBreak();
        add("text", "text", shown(stored_.text));
        return std::move(fields_);
    }

private:
    void add(const char* label, const char* key, const std::string& value) {
        fields_.push_back({label, key, value, {}});
    }
    void addMap(const char* label, const char* key, ByteView map) { fields_.push_back({label, key, {}, map}); }

    template <typename Number>
    Number imageNumber(std::size_t at) const {
        return loadWord<Number>(&image_[at]);
    }
    std::string imageText(std::size_t at, std::size_t width) const {
        const ByteView field = image_.subspan(at, width);
        return shown({field.begin(), std::find(field.begin(), field.end(), 0)});
    }
    static std::string kindText(int32_t kind) { return std::to_string(kind) + " (" + kindInWords(kind) + ")"; }

    void addRecord() {
        const nlsDbCollation& record = stored_.record;
        add("charset", "charset", shown(stored::charsetOf(record)));
        add("collation", "collation", shown(stored::collationOf(record)));
        add("case table", "caseTable", shown(stored::caseOf(record)));
        add("kind", "kind", kindText(record.dbCollKind));
        add("second kind", "subKind", std::to_string(record.dbCollSubKind));
        add("image", "imageSize", std::to_string(image_.size()) + " bytes");
        add("block", "blockBase", std::to_string(record.dbBlockBase) + " bytes in front of words and text");
    }

    void addMaps() {
        if (image_.size() < mapsSize) return;
        if (isOfKind(stored_, StoredKind::icu)) {
            addIcuMap("exact", "exactMap", 0);
            addIcuMap("folded", "foldMap", mapSize);
        } else if (isOfKind(stored_, StoredKind::unicode)) {
            add("exact mark", "exactMap", imageText(0, 6));
            add("folded mark", "foldMap", imageText(mapSize, 6));
        } else {
            addMap("exact weights", "exactMap", image_.first(mapSize));
            addMap("folded weights", "foldMap", image_.subspan(mapSize, mapSize));
        }
    }

    void addIcuMap(const char* label, const char* key, std::size_t at) {
        constexpr std::size_t collator = 16, uca = 20, locale = 32, localeWidth = 16, strength = 48;
        const auto version = [&](std::size_t place) {
            return formatted("%u.%u.%u.%u", unsigned{image_[place]}, unsigned{image_[place + 1]},
                             unsigned{image_[place + 2]}, unsigned{image_[place + 3]});
        };
        add(label, key,
            "collator " + version(at + collator) + ", UCA " + version(at + uca) + ", locale \"" +
                imageText(at + locale, localeWidth) + "\", strength " + imageText(at + strength, mapSize - strength));
    }

    void addLongImage() {
        add("in the image:", "imageForm", "long");
        add("  charset", "imageCharset", imageText(offsetof(nlsCollStruct, collCharset), 20));
        add("  collation", "imageCollation", imageText(offsetof(nlsCollStruct, collName), 32));
        add("  kind", "imageKind", kindText(imageNumber<int32_t>(offsetof(nlsCollStruct, collKind))));
        add("  second kind", "imageSubKind",
            std::to_string(imageNumber<uint32_t>(offsetof(nlsCollStruct, collSubKind))));
        add("  weights", "collMapSize", std::to_string(imageNumber<int32_t>(offsetof(nlsCollStruct, collMapSize))));
        addAttributes();
        if (image_.size() > atCase) addCase();
    }

    uint32_t flags() const { return imageNumber<uint32_t>(atAttrib + offsetof(nlsAttribStruct, flags)); }

    void addAttributes() {
        const auto map = [this](std::size_t at) { return image_.subspan(atAttrib + at, mapSize); };
        add("  flags", "flags", formatted("0x%04X", flags()));
        add("  attributes", "mapSize",
            std::to_string(imageNumber<int32_t>(atAttrib + offsetof(nlsAttribStruct, mapSize))));
        const ByteView letters = map(offsetof(nlsAttribStruct, alphaMap));
        const ByteView lengths = map(offsetof(nlsAttribStruct, lengthMap));
        const ByteView trails = map(offsetof(nlsAttribStruct, trailMap));
        add("  letters", "letters", byteRanges([&](unsigned byte) { return letters[byte] != 0; }));
        for (unsigned trail = 1; trail <= 7; ++trail) {
            const std::string bytes = byteRanges([&](unsigned byte) { return (lengths[byte] & 7U) == trail; });
            const std::string length = std::to_string(trail + 1);
            if (!bytes.empty()) add(("  first of " + length).c_str(), ("firstOf" + length).c_str(), bytes);
        }
        add("  trail bytes", "trailBytes", byteRanges([&](unsigned byte) { return trails[byte] != 0; }));
        add("  one column", "oneColumn", byteRanges([&](unsigned byte) { return (lengths[byte] & 8U) != 0; }));
    }

    void addCase() {
        constexpr std::size_t unicodeSize = offsetof(nlsUnicodeCaseStruct, casePages);
        const ByteView table = image_.subspan(atCase);
        if ((flags() & NLS_CHARSET_UTF8) != 0 && table.size() >= unicodeSize) {
            add("  case size", "caseBuildSize",
                std::to_string(loadWord<uint32_t>(table.data() + offsetof(nlsUnicodeCaseStruct, caseBuildSize))));
            add("  case record", "caseRecord",
                "SHA-256 " + digestOf(table.first(unicodeSize).subspan(offsetof(nlsUnicodeCaseStruct, caseRaw))));
        } else if ((flags() & NLS_CHARSET_UTF8) == 0 && table.size() >= sizeof(nlsCaseStruct)) {
            addMap("  capitals", "upperMap", table.subspan(offsetof(nlsCaseStruct, upperMap), mapSize));
            addMap("  small letters", "lowerMap", table.subspan(offsetof(nlsCaseStruct, lowerMap), mapSize));
        }
    }

    void addWordBreak() {
        const ByteView table{stored_.wordBreak};
        if (table.empty()) return;
        const std::size_t classes = loadWord<uint16_t>(table.data() + offsetof(nlsWbTable, wbClassOffset));
        add("words", "wordBreakSize", std::to_string(table.size()) + " bytes");
        add("  kind", "wordBreakKind", std::to_string(table[offsetof(nlsWbTable, wbKind)]));
        add("  flags", "wordBreakFlags", formatted("0x%02X", unsigned{table[offsetof(nlsWbTable, wbFlags)]}));
        add("  classes at", "wordClassOffset", std::to_string(classes));
        if (!stored_.wordBreakCharset.empty()) add("  for", "wordBreakCharset", shown(stored_.wordBreakCharset));
        if (classes + mapSize <= table.size()) addMap("  classes", "wordClasses", table.subspan(classes, mapSize));
    }

    const stored::StoredCollation& stored_;
    ByteView image_;
    std::vector<StoredField> fields_;
};

}  // namespace

std::vector<StoredField> fieldsOf(const stored::StoredCollation& stored) {
    return Fields(stored).gather();
}

MapDifference compareMaps(ByteView a, ByteView b, const std::function<std::string(unsigned)>& character) {
    constexpr std::size_t mostInWords = 8;
    MapDifference difference;
    for (unsigned byte = 0; byte < mapSize; ++byte) {
        if (a[byte] == b[byte]) continue;
        difference.bytes.push_back(byte);
        if (difference.bytes.size() == mostInWords + 1) difference.inWords += ", …";
        if (difference.bytes.size() > mostInWords) continue;
        const std::string name = character(byte);
        difference.inWords += (difference.inWords.empty() ? "" : ", ") + formatted("%02X", byte) +
                              (name.empty() ? "" : " \"" + name + "\"") +
                              formatted(": %02X | %02X", unsigned{a[byte]}, unsigned{b[byte]});
    }
    return difference;
}

}  // namespace nls::tool
