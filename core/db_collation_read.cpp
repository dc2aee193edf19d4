#include "core/db_collation_read.hpp"

#include <algorithm>
#include <cstring>

#include "collation/coll_kind.hpp"
#include "collation/user_sort.hpp"
#include "convmap/case_table_load.hpp"
#include "core/base/busy_guard.hpp"
#include "core/base/checks.hpp"
#include "core/base/names.hpp"
#include "core/base/object_chain.hpp"
#include "core/db_block.hpp"
#include "core/locale_create.hpp"
#include "core/word_break_table.hpp"
#include "icu/collation_name.hpp"
#include "icu/collator.hpp"
#include "nls/objects.h"

namespace nls {

namespace {

constexpr const char* kBasic = "basic";
constexpr std::size_t kAlignment = 8;

constexpr uint64_t alignedUp(uint64_t place) {
    return (place + kAlignment - 1) & ~uint64_t{kAlignment - 1};
}

bool bringsItsTables(const nlsDbCollation& record) {
    return record.dbCollKind > kLastKindByFile;
}

bool hasCase(const nlsDbCollation& record) {
    return record.dbCase[0] != '\0';
}

uint32_t wordsSize(const nlsDbCollation& record) {
    if (record.dbWordBreak == nullptr) return kRoomForNoWords;
    const auto* const table = static_cast<const unsigned char*>(record.dbWordBreak);
    return loadWord<uint16_t>(table + offsetof(nlsWbTable, wbBodySize)) + kWordsHead;
}

// A long image, before it has come to its place.
class LongImage {
public:
    explicit LongImage(const nlsDbCollation& record) : bytes_(record.dbImage, record.dbImageSize) {}

    bool holds(uint32_t size) const { return bytes_.size() >= size; }
    // REQUIRES: the image holds both tables; for the sizes, the start of a case table.
    bool isUtf8() const { return (word(kFlags) & NLS_CHARSET_UTF8) != 0; }
    uint32_t caseRawSize() const { return word(kTablesSize); }
    uint32_t caseBuildSize() const { return word(kTablesSize + offsetof(nlsUnicodeCaseStruct, caseBuildSize)); }

private:
    static constexpr std::size_t kFlags = sizeof(nlsCollStruct) + offsetof(nlsAttribStruct, flags);

    uint32_t word(std::size_t place) const { return loadWord<uint32_t>(&bytes_[place]); }

    ByteView bytes_;
};

// The sizes that caseBuildSize can tell: from no page to all of them, each with its padding, and the empty one.
constexpr uint32_t kStage = sizeof(nlsUnicodeCaseStruct::casePages) + 2 * sizeof(uint32_t);
constexpr uint32_t kMostForPages = (kCasePages + 2) * (kCasePageEntries * sizeof(uint16_t) + sizeof(uint16_t));

struct StoredCase {
    nlsStatus status;
    CaseSizes sizes;
};
StoredCase caseOf(const nlsDbCollation& record) {
    constexpr StoredCase kRefused{NLS_BAD_COLLATION, kNoCase};
    const LongImage image{record};
    if (!image.holds(kTablesSize)) return kRefused;
    if (!hasCase(record)) return {NLS_OK, kNoCase};
    if (!image.isUtf8()) return image.holds(kTablesSize + kByteCase.image) ? StoredCase{NLS_OK, kByteCase} : kRefused;
    if (!image.holds(kTablesSize + kCaseRawSize) || image.caseRawSize() != kCaseRawSize) return kRefused;
    const uint32_t build = image.caseBuildSize();
    if (build < kStage || build > kStage + kMostForPages) return kRefused;
    return {NLS_OK, {kCaseRawSize, kCaseRawSize + build}};
}

// The names as the locale has them: a name that fills its field loses its last character.
struct StoredNames {
    char charset[sizeof nlsDbCollation::dbCharset], collation[sizeof nlsDbCollation::dbCollation];
    char caseName[sizeof nlsDbCollation::dbCase];
};
template <std::size_t Size>
void closeName(char (&to)[Size], const char (&from)[Size]) {
    std::memset(to, 0, Size);
    std::memcpy(to, from, strnlen(from, Size - 1));
}
StoredNames namesOf(const nlsDbCollation& record) {
    StoredNames names;
    closeName(names.charset, record.dbCharset);
    closeName(names.collation, record.dbCollation);
    closeName(names.caseName, record.dbCase);
    return names;
}

// One locale on its way from its record into its block.
class StoredLocale {
public:
    StoredLocale(nlsHandle& handle, const nlsDbCollation& record, ByteView text, ByteSpan block)
        : handle_(handle),
          record_(record),
          text_(text),
          block_(block),
          names_(namesOf(record)),
          locale_(*at<nlsLocale>(0)),
          coll_(*at<nlsCollStruct>(sizeof(nlsLocale))) {}

    nlsStatus open() {
        std::memset(block_.data(), 0, kSmallBlockBase);
        if (const nlsStatus bad = bringsItsTables(record_) ? takeTablesOfImage() : takeTablesOfFile()) return bad;
        if (const nlsStatus bad = acceptKind()) return bad;
        fillLocale();
        const nlsStatus bad = complete();
        if (bad != NLS_OK) locale_.hdr.typeTag = NLS_TAG_CLOSED;
        return bad;
    }

private:
    template <typename T>
    T* at(std::size_t place) const {
        return reinterpret_cast<T*>(block_.data() + place);
    }
    std::size_t textPlace() const { return block_.size() - text_.size() - 1; }

    // ---- tables

    nlsStatus takeTablesOfFile() {
        if (record_.dbImageSize < kMapsSize) return NLS_BAD_COLLATION;
        const BusyPause pause{handle_};
        const CreatedLocale made = findOrCreateLastingLocale(handle_, {names_.charset, NLS_NO_COLLATION, kBasic});
        if (made.status != NLS_OK) return made.status;
        locale_.attrib = made.locale->attrib;
        locale_.caseTable = made.locale->caseTable;
        coll_.collMapSize = sizeof coll_.exactMap;
        coll_.collKind = record_.dbCollKind;
        coll_.collSubKind = record_.dbCollSubKind;
        copyName(coll_.collCharset, sizeof coll_.collCharset, names_.charset);
        copyName(coll_.collName, sizeof coll_.collName, names_.collation);
        std::memcpy(block_.data() + sizeof(nlsLocale), record_.dbImage, kMapsSize);
        words_ = block_.subspan(kSmallBlockBase, wordsSize(record_));
        return NLS_OK;
    }

    nlsStatus takeTablesOfImage() {
        const StoredCase stored = caseOf(record_);
        if (stored.status != NLS_OK) return stored.status;
        std::memcpy(block_.data() + sizeof(nlsLocale), record_.dbImage, kTablesSize + stored.sizes.image);
        // A collation of ICU's has no record here.
        if (kindOf(coll_) == CollKind::icu) return NLS_BAD_COLLATION;
        locale_.attrib = at<nlsAttribStruct>(kSmallBlockBase);
        makeSound(*locale_.attrib);
        std::size_t end = kLargeBlockBase;
        if (stored.sizes.image != 0) {
            locale_.caseTable = at<nlsCaseStruct>(kLargeBlockBase);
            end = completeCase(*locale_.caseTable);
        }
        return placeWords(end);
    }

    // Pointers of another process, counts and names that have to end.
    void makeSound(nlsAttribStruct& attrib) {
        attrib.sjisAttrib = nullptr;
        attrib.sjisConversion = nullptr;
        attrib.mapSize = std::min<uint32_t>(attrib.mapSize, sizeof attrib.alphaMap);
        coll_.nextColl = nullptr;
        coll_.collMapSize = std::min<uint32_t>(coll_.collMapSize, sizeof coll_.exactMap);
        coll_.collCharset[sizeof coll_.collCharset - 1] = '\0';
        coll_.collName[sizeof coll_.collName - 1] = '\0';
    }

    // Where the case table ends; behind the block's text where its pages don't fit.
    std::size_t completeCase(nlsCaseStruct& table) {
        if (!Charset{*locale_.attrib}.isUtf8()) {
            table.caseMapSize = std::clamp<int32_t>(table.caseMapSize, 0, sizeof table.upperMap);
            return kLargeBlockBase + sizeof table;
        }
        auto& pages = reinterpret_cast<nlsUnicodeCaseStruct&>(table);
        unsigned char* next = at<unsigned char>(kLargeBlockBase + sizeof pages);
        auto left = static_cast<uint32_t>(textPlace() - kLargeBlockBase - sizeof pages);
        if (!buildUnicodeCaseTable(Arena{next, left}, pages.caseRaw, pages)) return block_.size();
        return static_cast<std::size_t>(next - block_.data());
    }

    nlsStatus placeWords(std::size_t from) {
        const std::size_t size = wordsSize(record_);
        if (from > textPlace() || textPlace() - from < size) return NLS_BAD_COLLATION;
        const std::size_t aligned = alignedUp(from);
        words_ = block_.subspan(aligned + size <= textPlace() ? aligned : from, size);
        return NLS_OK;
    }

    // ---- kinds

    nlsStatus acceptKind() {
        switch (kindOf(coll_)) {
            case CollKind::unicode:
                return hasUnicodeMarks() ? NLS_OK : NLS_BAD_COLLATION;
            case CollKind::userSort:
                return openUserSort(userSortSlotOf(handle_), coll_.collName) == NLS_OK ? NLS_OK : NLS_NO_COLL_TABLE;
            case CollKind::icu:
                return openIcu();
            default:
                return NLS_OK;
        }
    }

    bool hasUnicodeMarks() const {
        constexpr char kMark[] = "BASIC";
        return std::memcmp(coll_.exactMap, kMark, sizeof kMark) == 0 &&
               std::memcmp(coll_.foldMap, kMark, sizeof kMark) == 0;
    }

    // The text may end in the record of ICU's, behind the name that is kept there.
    nlsStatus openIcu() {
        const std::size_t place = alignedUp(kSmallBlockBase + words_.size());
        auto& info = *at<nlsIcuInfo>(place);
        if (const nlsStatus bad = fillIcuInfo(coll_, info, coll_.collName)) return bad;
        constexpr std::size_t kPrefix = 4;
        const std::size_t kept = std::strlen(coll_.collName) - kPrefix + 1;
        if (place + offsetof(nlsIcuInfo, nameText) + kept > textPlace()) return NLS_NO_COLL_TABLE;
        return makeIcuCollation(info.icuLocale, coll_);
    }

    // ---- the locale

    void fillLocale() {
        locale_.coll = &coll_;
        locale_.wordBreak = reinterpret_cast<nlsWbTable*>(words_.data());
        locale_.dbBlockSize = static_cast<uint32_t>(block_.size());
        locale_.dbCollationName = at<unsigned char>(textPlace());
        copyName(locale_.charsetName, sizeof locale_.charsetName, names_.charset);
        copyName(locale_.collationName, sizeof locale_.collationName, names_.collation);
        copyName(locale_.caseName, sizeof locale_.caseName, names_.caseName);
        if (!text_.empty()) std::memcpy(locale_.dbCollationName, text_.data(), text_.size());
        locale_.dbCollationName[text_.size()] = 0;
        locale_.hdr.typeTag = NLS_TAG_LOCALE;
        locale_.owner = &handle_;
    }

    nlsStatus complete() {
        {
            const BusyPause pause{handle_};
            if (Charset{*locale_.attrib}.comparesViaSjis()) {
                if (const nlsStatus bad = makeCompanions(handle_, locale_, locale_.charsetName)) return bad;
            }
            if (const nlsStatus bad = completeWords()) return bad;
        }
        linkObject(handle_, locale_.hdr);
        return NLS_OK;
    }

    nlsStatus completeWords() {
        if (record_.dbWordBreak == nullptr) {
            std::ranges::fill(words_, static_cast<unsigned char>(0));
            return NLS_OK;
        }
        nlsLocale* const target = record_.dbWordBreakLocale;
        if (target != nullptr) {
            if (const nlsStatus bad = checkLocale(target)) return bad;
        }
        const ByteView data{static_cast<const unsigned char*>(record_.dbWordBreak), words_.size()};
        return completeWordBreakTable(locale_, data, target);
    }

    nlsHandle& handle_;
    const nlsDbCollation& record_;
    ByteView text_;
    ByteSpan block_;
    StoredNames names_;
    nlsLocale& locale_;
    nlsCollStruct& coll_;
    ByteSpan words_;
};

}  // namespace

BlockNeeded blockNeeded(const nlsDbCollation& record, uint64_t textLength) {
    const uint64_t small = kSmallBlockBase + wordsSize(record) + textLength + 1;
    if (record.dbCollKind == static_cast<int32_t>(CollKind::icu))
        return {NLS_OK, alignedUp(small) + sizeof(nlsIcuInfo)};
    if (!bringsItsTables(record)) return {NLS_OK, small};
    const StoredCase stored = caseOf(record);
    return {stored.status, small + sizeof(nlsAttribStruct) + stored.sizes.block};
}

nlsStatus openStored(nlsHandle& handle, const nlsDbCollation& record, ByteView text, ByteSpan block) {
    return StoredLocale{handle, record, text, block}.open();
}

}  // namespace nls
