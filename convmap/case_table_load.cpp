#include "convmap/case_table_load.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>

// Against the arrows: the pages are keyed by forms that the codec alone knows how to write.
#include "conversion/utf_codec.hpp"

namespace nls {

namespace {

using LoadedCase = Loaded<nlsCaseStruct>;

constexpr uint32_t kRawSize = offsetof(nlsUnicodeCaseStruct, casePages);
static_assert(kRawSize == 5976);
constexpr uint32_t kStageSize = sizeof(nlsUnicodeCaseStruct::casePages) + 2 * sizeof(uint32_t);
constexpr uint32_t kPadding = 2;  // what the alignment of a page is allowed for
constexpr uint16_t kForSurrogates = '?';
constexpr uint32_t kPairSize = 2 * sizeof(uint16_t);

uint32_t sizeOfPage(unsigned page) {
    return entriesOfCasePage(page) * static_cast<uint32_t>(sizeof(uint16_t));
}

uint32_t utf8Number(uint16_t unit) {
    unsigned char form[3];
    const unsigned length = encodeUtf8(isSurrogate(unit) ? kForSurrogates : unit, form);
    uint32_t number = 0;
    for (unsigned i = 0; i < length; ++i) number = number << 8 | form[i];
    return number;
}

// The pages while they are filled; null where no character has come yet.
class PageBuilder {
public:
    explicit PageBuilder(const Arena& memory) : memory_(memory) {}

    // Up to the pair that ends the list, or to the end of its room. False where the memory is used up.
    bool putList(ByteView list, CaseForm form) {
        for (; list.size() >= kPairSize; list = list.subspan(kPairSize)) {
            const auto character = loadWord<uint16_t>(list.data());
            if (character == 0) break;
            const auto mapped = loadWord<uint16_t>(list.data() + sizeof character);
            if (!put(caseKeyForBuilding(utf8Number(character)), form, static_cast<uint16_t>(utf8Number(mapped))))
                return false;
        }
        return true;
    }

    void finish(nlsUnicodeCaseStruct& table) const {
        table.caseBuildSize = buildSize_;
        for (unsigned page = 0; page < kCasePages; ++page)
            table.casePages[page] = pages_[page] == nullptr ? kNoCasePage : pages_[page];
    }

private:
    bool put(uint32_t key, CaseForm form, uint16_t entry) {
        const unsigned page = casePageOf(key);
        if (pages_[page] == nullptr && !takePage(page)) return false;
        pages_[page][caseIndexOf(key, form)] = entry;
        return true;
    }
    bool takePage(unsigned page) {
        const uint32_t size = sizeOfPage(page);
        void* const memory = memory_.take(size, alignof(uint16_t));
        if (memory == nullptr) return false;
        std::memset(memory, 0, size);  // a caller's buffer holds anything
        pages_[page] = static_cast<uint16_t*>(memory);
        buildSize_ += size + kPadding;
        return true;
    }

    const Arena& memory_;
    uint16_t* pages_[kCasePages] = {};
    // The first stage, the pages, and always a page without entries: a reader that shares none has to build its own.
    uint32_t buildSize_ = kStageSize + kCasePageEntries * sizeof(uint16_t) + kPadding;
};

void fillMaps(nlsCaseStruct& table, ByteView record) {
    const int32_t size = std::clamp<int32_t>(format::decimalOf(record, format::kSlotSize), 0, format::kMapEntries);
    table.caseMapSize = size;
    std::memcpy(table.upperMap, record.data() + format::byte_case::kUpperMap.offset, static_cast<std::size_t>(size));
    std::memcpy(table.lowerMap, record.data() + format::byte_case::kLowerMap.offset, static_cast<std::size_t>(size));
}

LoadedCase loadBytes(const LoadContext& context, const nlsTocEntry& entry) {
    unsigned char record[format::byte_case::kSize];
    if (!context.file.read(entry.offset, record)) return {NLS_READ_FAILED, nullptr};
    auto* const table = context.arena.make<nlsCaseStruct>();
    if (table == nullptr) return {NLS_NO_MEM, nullptr};
    fillMaps(*table, record);
    return {NLS_OK, table};
}

LoadedCase loadPages(const LoadContext& context, const nlsTocEntry& entry) {
    unsigned char record[format::unicode_case::kSize];
    if (!context.file.read(entry.offset, record)) return {NLS_READ_FAILED, nullptr};
    auto* const table = context.arena.make<nlsUnicodeCaseStruct>();
    if (table == nullptr || !buildUnicodeCaseTable(context.arena, record, *table)) return {NLS_NO_MEM, nullptr};
    return {NLS_OK, reinterpret_cast<nlsCaseStruct*>(table)};
}

bool isUnicodeKind(const nlsTocEntry& entry) {
    return entry.rawByte == format::kUnicodeCase;
}

bool isUtf8(const Contents& contents, const char* charset) {
    const nlsTocEntry* const attributes = contents.find(format::EntryType::attributes, charset);
    return attributes != nullptr && (attributes->rawByte & NLS_CHARSET_UTF8) != 0;
}

}  // namespace

bool buildUnicodeCaseTable(const Arena& memory, ByteView record, nlsUnicodeCaseStruct& table) {
    PageBuilder builder{memory};
    if (!builder.putList(format::bytesOf(record, format::unicode_case::kUpperList), CaseForm::upper) ||
        !builder.putList(format::bytesOf(record, format::unicode_case::kLowerList), CaseForm::lower))
        return false;
    table.caseRawSize = kRawSize;
    std::memmove(table.caseRaw, record.data(), sizeof table.caseRaw);
    builder.finish(table);
    return true;
}

LoadedCase loadCaseTable(const LoadContext& context, const char* charset, const char* caseName) {
    nlsTocEntry* const entry = context.contents.find(format::EntryType::caseTable, charset, caseName);
    if (entry == nullptr || (!isUnicodeKind(*entry) && isUtf8(context.contents, charset)))
        return {NLS_NO_CASE_TABLE, nullptr};
    if (entry->data != nullptr) return {NLS_OK, cachedCaseTable(*entry)};
    const LoadedCase loaded = isUnicodeKind(*entry) ? loadPages(context, *entry) : loadBytes(context, *entry);
    if (loaded.status == NLS_OK) entry->data = loaded.object;
    return loaded;
}

}  // namespace nls
