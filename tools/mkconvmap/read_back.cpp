#include "tools/mkconvmap/read_back.hpp"

#include <algorithm>
#include <cstring>

#include "nls/convert.h"
#include "nls/handle.h"
#include "nls/inner.h"
#include "nls/objects.h"
#include "nls/status.h"
#include "tools/mkconvmap/attrib_writer.hpp"
#include "tools/mkconvmap/charset_model.hpp"
#include "tools/mkconvmap/table_check.hpp"

namespace nls::mkconvmap {

namespace {

constexpr const char* kUtf8 = "UTF-8";

// The read callback gets a number alone, so the file under test stands here.
const std::vector<unsigned char>* openImage = nullptr;

uint32_t readImage(uint32_t, uint32_t offset, void* buffer, uint32_t length) {
    if (offset > openImage->size() || length > openImage->size() - offset) return 0;
    std::memcpy(buffer, openImage->data() + offset, length);
    return length;
}

void require(nlsStatus status, const std::string& what) {
    if (status != NLS_OK) throw ReadBackError(what + ": the library answers status " + std::to_string(status));
}

// A handle on the image, with room for every table of a full file.
class OpenMap {
public:
    explicit OpenMap(const std::vector<unsigned char>& image)
        : size_(static_cast<uint32_t>(image.size() * kGrowth + kObjects)), block_(size_ / sizeof(uint64_t) + 1) {
        openImage = &image;
        require(nlsInit(0, block_.data(), static_cast<int32_t>(size_), readImage, &handle_), "opening the file");
    }
    ~OpenMap() { nlsClose(handle_); }
    OpenMap(const OpenMap&) = delete;
    OpenMap& operator=(const OpenMap&) = delete;

    nlsHandle* handle() const { return handle_; }
    uint32_t arenaUsed() const { return size_ - handle_->freeBytes; }

private:
    // A single-byte charset's 528 bytes become 4352 in the arena; no other table grows as much.
    static constexpr std::size_t kGrowth = 9;
    static constexpr std::size_t kObjects = 1 << 20;

    uint32_t size_;
    std::vector<uint64_t> block_;
    nlsHandle* handle_ = nullptr;
};

// One conversion entry, character by character.
class ConversionCheck {
public:
    ConversionCheck(const CharsetModel& from, const CharsetModel& to, const nlsConvTable* table)
        : from_(from), to_(to), type_(ConvType{nlsConversionType(table)}), table_(table) {
        if (type_ == ConvType::byteMap) map_ = byteMapBetween(from.source(), to.source());
        if (type_ == ConvType::utf8ToSbcs) collectKeys();
    }

    void run() const {
        const bool withPlane2 = to_.source().isMultiByte();
        for (const std::string& probe : from_.probes(withPlane2)) check(probe);
    }

private:
    struct Answer {
        nlsStatus status;
        std::string bytes;

        bool operator==(const Answer&) const = default;
    };

    void check(const std::string& probe) const {
        if (type_ == ConvType::sjisToEuc || type_ == ConvType::eucToSjis) return checkRule(probe);
        const Answer have = convert(probe);
        const Answer want = wanted(probe);
        if (!(have == want)) failAt(probe, have, "not " + text(want));
    }

    // By rule a character keeps its meaning. Where the charset that is converted to has no such character anything may
    // come out.
    void checkRule(const std::string& probe) const {
        if (type_ == ConvType::sjisToEuc && probe.size() == 2 && firstByte(probe) >= kFirstPassedLead) return;
        const std::optional<char32_t> character = from_.decode(probe);
        if (!character || !to_.encode(*character)) return;
        const Answer have = convert(probe);
        const std::optional<char32_t> arrived = to_.decode(have.bytes);
        if (have.status != NLS_OK || arrived != character) failAt(probe, have, "no " + codePointText(*character));
    }

    Answer wanted(const std::string& probe) const {
        if (type_ == ConvType::byteMap) return {NLS_OK, std::string(1, static_cast<char>(map_.map[firstByte(probe)]))};
        const std::optional<char32_t> character = from_.decode(probe);
        if (!character) return {NLS_CONV_SUBST, to_.substitute()};
        if (const std::optional<std::string> bytes = to_.encode(*character)) return {NLS_OK, *bytes};
        if (type_ == ConvType::utf8ToSbcs && *character <= 0xFFFF) {
            const auto sharer = byteOfKey_.find(keyOfUnit(static_cast<uint16_t>(*character)));
            if (sharer != byteOfKey_.end()) return {NLS_OK, sharer->second};
        }
        return {NLS_CONV_SUBST, to_.substitute()};
    }

    Answer convert(const std::string& probe) const {
        unsigned char target[16];
        uint32_t length = 0;
        const nlsStatus status =
            nlsConvertBytes(target, sizeof target, reinterpret_cast<const unsigned char*>(probe.data()),
                            static_cast<int32_t>(probe.size()), table_, &length);
        return {status, std::string(reinterpret_cast<const char*>(target), length <= sizeof target ? length : 0)};
    }

    // A character above U+07FF that the charset lacks comes back as the one that shares its key.
    void collectKeys() {
        for (uint32_t byte = 0; byte < 256; ++byte) {
            byteOfKey_[keyOfUnit(to_.source().units[byte])] = std::string(1, static_cast<char>(byte));
        }
    }

    static unsigned char firstByte(const std::string& text) { return static_cast<unsigned char>(text.front()); }

    static std::string text(const Answer& answer) {
        return "\"" + bytesText(answer.bytes) + "\" with result " + std::to_string(answer.status);
    }
    [[noreturn]] void failAt(const std::string& probe, const Answer& have, const std::string& instead) const {
        throw ReadBackError(from_.source().name + " to " + to_.source().name + ": \"" + bytesText(probe) +
                            "\" becomes " + text(have) + ", " + instead);
    }

    // The rule passes the lead bytes F0 to FF of Shift-JIS on as single bytes.
    static constexpr unsigned char kFirstPassedLead = 0xF0;

    const CharsetModel& from_;
    const CharsetModel& to_;
    ConvType type_;
    const nlsConvTable* table_;
    ByteMap map_;
    std::map<uint16_t, std::string> byteOfKey_;
};

class MapCheck {
public:
    MapCheck(const CompiledMap& map, const std::vector<unsigned char>& image) : map_(map), open_(image) {
        for (const CompiledCharset& charset : map.charsets) models_.emplace_back(charset);
    }

    ArenaUse run() {
        ArenaUse use;
        use.handle = open_.arenaUsed();
        for (const FileEntry& entry : map_.file.entries()) use.entries.push_back(load(entry));
        for (const CompiledCharset& charset : map_.charsets) checkLocale(charset);
        for (const FileEntry& entry : map_.file.entries()) {
            if (isTable(entry)) checkTable(open_.handle(), entry);
            if (entry.type != format::EntryType::conversion) continue;
            checkConversion(entry);
            checkMark(entry);
        }
        checkRoutes();
        checkDerivedTables(open_.handle(), map_);
        return use;
    }

private:
    static bool isTable(const FileEntry& entry) {
        return entry.type == format::EntryType::collation || entry.type == format::EntryType::caseTable;
    }

    // Loads the table of an entry alone and tells what it took.
    uint32_t load(const FileEntry& entry) {
        const uint32_t before = open_.arenaUsed();
        if (entry.type == format::EntryType::attributes) {
            nlsAttribStruct* attrib = nullptr;
            require(nlsGetAttribStructPtr(open_.handle(), entry.name1.c_str(), &attrib), entry.name1);
        } else if (isTable(entry)) {
            loadTable(open_.handle(), entry);
        } else {
            nlsConvTable* table = nullptr;
            require(nlsGetConvTablePtr(open_.handle(), entry.name1.c_str(), entry.name2.c_str(), 0, &table),
                    entry.name1 + " to " + entry.name2);
        }
        return open_.arenaUsed() - before;
    }

    nlsLocale* localeOf(const std::string& charset) {
        nlsLocale* locale = nullptr;
        require(nlsCreateLocale(open_.handle(), charset.c_str(), NLS_NO_COLLATION, nullptr, &locale), charset);
        return locale;
    }

    nlsConversion* conversionOf(const std::string& from, const std::string& to) {
        nlsConversion* conversion = nullptr;
        require(nlsCreateConversion(open_.handle(), localeOf(from), localeOf(to), &conversion), from + " to " + to);
        return conversion;
    }

    void checkLocale(const CompiledCharset& charset) {
        const nlsAttribStruct& attrib = *localeOf(charset.source.name)->attrib;
        const DataRecord record = attributeRecord(charset);
        const auto same = [&record](const unsigned char* map, format::Field slot) {
            return std::memcmp(map, record.bytes.data() + slot.offset, format::kMapEntries) == 0;
        };
        constexpr int32_t fileFlags = 0xFF;
        if (same(attrib.alphaMap, format::attributes::kAlphaMap) &&
            same(attrib.lengthMap, format::attributes::kLengthMap) &&
            same(attrib.trailMap, format::attributes::kTrailMap) &&
            (attrib.flags & fileFlags) == attributeFlags(charset.source)) {
            return;
        }
        throw ReadBackError(charset.source.name + ": the attributes differ from the description");
    }

    // A byte map that loses something isn't given to those who ask for lossless maps alone.
    void checkMark(const FileEntry& entry) {
        constexpr uint32_t losslessMapsOnly = 1;
        nlsConvTable* table = nullptr;
        const nlsStatus status =
            nlsGetConvTablePtr(open_.handle(), entry.name1.c_str(), entry.name2.c_str(), losslessMapsOnly, &table);
        const bool isRefused = entry.rawByte == static_cast<uint8_t>(ConvType::byteMap) && entry.subKind == 0;
        if (status == (isRefused ? NLS_NO_CONV_TABLE : NLS_OK)) return;
        throw ReadBackError(entry.name1 + " to " + entry.name2 + ": the mark of a lossless map is wrong");
    }

    void checkConversion(const FileEntry& entry) {
        const nlsConversion* const conversion = conversionOf(entry.name1, entry.name2);
        ConversionCheck{modelOf(entry.name1), modelOf(entry.name2), conversion->table}.run();
    }

    // A charset that converts with UTF-8 reaches every form of Unicode, by an entry or by a route of two steps.
    void checkRoutes() {
        for (const CharsetModel& charset : models_) {
            if (!reachesUtf8(charset)) continue;
            for (const CharsetModel& unicode : models_) {
                if (!unicode.source().isUnicode() || !reachesUtf8(unicode)) continue;
                conversionOf(charset.source().name, unicode.source().name);
                conversionOf(unicode.source().name, charset.source().name);
            }
        }
    }

    bool reachesUtf8(const CharsetModel& model) const {
        const auto& entries = map_.file.entries();
        return std::any_of(entries.begin(), entries.end(), [&model](const FileEntry& entry) {
            return entry.type == format::EntryType::conversion && entry.name1 == model.source().name &&
                   entry.name2 == kUtf8;
        });
    }

    const CharsetModel& modelOf(const std::string& name) const {
        for (const CharsetModel& model : models_) {
            if (model.source().name == name) return model;
        }
        throw ReadBackError("no charset " + name);
    }

    const CompiledMap& map_;
    OpenMap open_;
    std::vector<CharsetModel> models_;
};

}  // namespace

ArenaUse readBack(const CompiledMap& map, const std::vector<unsigned char>& image) {
    return MapCheck{map, image}.run();
}

}  // namespace nls::mkconvmap
