#include "tools/mkconvmap/table_check.hpp"

#include <cstring>
#include <map>
#include <set>

#include "convmap/case_pages.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/names.hpp"
#include "nls/inner.h"
#include "nls/objects.h"
#include "nls/status.h"
#include "tools/mkconvmap/read_back_error.hpp"

namespace nls::mkconvmap {

namespace {

constexpr uint32_t kReplacement = 0xFFFD;

bool isCollation(const FileEntry& entry) {
    return entry.type == format::EntryType::collation;
}

std::string describe(const FileEntry& entry) {
    return (isCollation(entry) ? "collation " : "case table ") + entry.name2 + " of " + entry.name1;
}

[[noreturn]] void failAt(const FileEntry& entry, const std::string& reason) {
    throw ReadBackError(describe(entry) + ": " + reason);
}

void require(nlsStatus status, const FileEntry& entry) {
    if (status != NLS_OK) failAt(entry, "the library answers status " + std::to_string(status));
}

nlsLocale* localeOf(nlsHandle* handle, const FileEntry& entry) {
    nlsLocale* locale = nullptr;
    const char* const charset = entry.name1.c_str();
    require(isCollation(entry) ? nlsCreateLocale(handle, charset, entry.name2.c_str(), nullptr, &locale)
                               : nlsCreateLocale(handle, charset, NLS_NO_COLLATION, entry.name2.c_str(), &locale),
            entry);
    return locale;
}

bool isSame(const unsigned char* map, const DataRecord& record, format::Field slot) {
    return std::memcmp(map, record.bytes.data() + slot.offset, format::kMapEntries) == 0;
}

void checkCollation(const FileEntry& entry, const nlsCollStruct& coll) {
    const DataRecord& record = *entry.record;
    if (!isSame(coll.exactMap, record, format::collation::kExactMap) ||
        !isSame(coll.foldMap, record, format::collation::kFoldMap)) {
        failAt(entry, "the weights differ from the description");
    }
    if (coll.collKind != record.bytes[format::collation::kKind.offset] ||
        coll.collSubKind != record.bytes[format::collation::kSubKind.offset]) {
        failAt(entry, "the kind differs from the description");
    }
}

uint32_t utf8Number(uint32_t unit) {
    if (unit < 0x80) return unit;
    if (unit < 0x800) return 0xC080U | (unit & 0x7C0U) << 2 | (unit & 0x3FU);
    return 0xE08080U | (unit & 0xF000U) << 4 | (unit & 0xFC0U) << 2 | (unit & 0x3FU);
}

// The pairs of a list as the record holds them.
std::map<uint32_t, uint32_t> pairsOf(const DataRecord& record, format::Field list) {
    std::map<uint32_t, uint32_t> pairs;
    const auto word = [&](uint32_t at) { return loadWord<uint16_t>(record.bytes.data() + list.offset + 2 * at); };
    for (uint32_t at = 0; word(at) != 0; at += 2) pairs[word(at)] = word(at + 1);
    return pairs;
}

// Every character of the first plane has the form that the list gives it, and no other has one.
void checkUnicodeForms(const FileEntry& entry, const nlsCaseStruct& table, CaseForm form, format::Field list) {
    const auto pairs = pairsOf(*entry.record, list);
    for (uint32_t unit = 1; unit < kReplacement; ++unit) {
        const auto found = pairs.find(unit);
        const uint32_t want = utf8Number(found == pairs.end() ? unit : found->second);
        const uint32_t have = caseFormOf(unicodeCaseTable(table).casePages, utf8Number(unit), form);
        if (have != want) failAt(entry, codePointText(unit) + " has another form than in the list");
    }
}

void checkCase(const FileEntry& entry, const nlsCaseStruct& table) {
    if (entry.rawByte == format::kUnicodeCase) {
        checkUnicodeForms(entry, table, CaseForm::upper, format::unicode_case::kUpperList);
        checkUnicodeForms(entry, table, CaseForm::lower, format::unicode_case::kLowerList);
    } else if (!isSame(table.upperMap, *entry.record, format::byte_case::kUpperMap) ||
               !isSame(table.lowerMap, *entry.record, format::byte_case::kLowerMap)) {
        failAt(entry, "the maps differ from the description");
    }
}

// A collation of `charset` that has no entry: nothing, or the weights of a charset that has it. The characters of the
// two are the same, since the map between them is a permutation.
void checkDerived(nlsHandle* handle, const CharsetSource& charset, const FileEntry& entry,
                  const std::map<std::string, const CharsetSource*>& sources) {
    nlsLocale *derived = nullptr, *source = localeOf(handle, entry);
    if (nlsCreateLocale(handle, charset.name.c_str(), entry.name2.c_str(), nullptr, &derived) != NLS_OK) {
        failAt(entry, "none is derived for " + charset.name);
    }
    const CharsetSource& from = *sources.at(entry.name1);
    std::map<uint16_t, unsigned> byteOf;
    for (unsigned byte = 0; byte < format::kMapEntries; ++byte) byteOf[charset.units[byte]] = byte;
    for (unsigned byte = 0; byte < format::kMapEntries; ++byte) {
        const unsigned moved = byteOf.at(from.units[byte]);
        if (derived->coll->exactMap[moved] == source->coll->exactMap[byte] &&
            derived->coll->foldMap[moved] == source->coll->foldMap[byte]) {
            continue;
        }
        failAt(entry, codePointText(from.units[byte]) + " has another weight in what is derived for " + charset.name);
    }
}

bool isPermutation(const FileEntry& entry) {
    return entry.type == format::EntryType::conversion && entry.subKind == 1 &&
           entry.rawByte == static_cast<uint8_t>(ConvType::byteMap);
}

}  // namespace

void loadTable(nlsHandle* handle, const FileEntry& entry) {
    if (isCollation(entry)) {
        nlsCollStruct* coll = nullptr;
        require(nlsGetCollStructPtr(handle, nullptr, entry.name1.c_str(), entry.name2.c_str(), &coll), entry);
    } else {
        nlsCaseStruct* table = nullptr;
        require(getCaseStructPtr(handle, entry.name1.c_str(), entry.name2.c_str(), &table), entry);
    }
}

void checkTable(nlsHandle* handle, const FileEntry& entry) {
    const nlsLocale& locale = *localeOf(handle, entry);
    isCollation(entry) ? checkCollation(entry, *locale.coll) : checkCase(entry, *locale.caseTable);
}

void checkDerivedTables(nlsHandle* handle, const CompiledMap& map) {
    std::map<std::string, const CharsetSource*> charsets;
    for (const CompiledCharset& charset : map.charsets) charsets[charset.source.name] = &charset.source;
    std::set<std::pair<std::string, std::string>> known;
    for (const FileEntry& entry : map.file.entries()) {
        if (isCollation(entry)) known.emplace(entry.name1, entry.name2);
    }
    // The first collation with a map leads the way, so the order of the file is that of this search.
    for (const FileEntry& entry : map.file.entries()) {
        if (!isCollation(entry)) continue;
        for (const FileEntry& way : map.file.entries()) {
            if (!isPermutation(way) || way.name1 != entry.name1 || !known.emplace(way.name2, entry.name2).second) {
                continue;
            }
            checkDerived(handle, *charsets.at(way.name2), entry, charsets);
        }
    }
}

}  // namespace nls::mkconvmap
