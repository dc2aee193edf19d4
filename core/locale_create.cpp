#include "core/locale_create.hpp"

#include "convmap/attrib_table.hpp"
#include "convmap/case_table_load.hpp"
#include "convmap/coll_table_load.hpp"
#include "core/base/busy_guard.hpp"
#include "core/base/charset.hpp"
#include "core/base/names.hpp"
#include "core/base/object_chain.hpp"
#include "core/conversion_create.hpp"
#include "nls/objects.h"

namespace nls {

namespace {

constexpr const char* kDefaultCollation = "basic";
constexpr const char* kSjis = "shift-jis";

bool isNone(const char* collation) {
    return collation == NLS_NO_COLLATION;
}
bool isEmpty(const char* name) {
    return *name == '\0';
}

// The collation that a search looks for; null for a locale without one. An empty argument means "basic" here, though a
// locale made for it has none.
const char* collationToFind(const char* collation) {
    if (isNone(collation)) return nullptr;
    return collation == nullptr || isEmpty(collation) ? kDefaultCollation : collation;
}

const char* collationToMake(const char* collation) {
    if (isNone(collation)) return "";
    return collation == nullptr ? kDefaultCollation : collation;
}

// Where no name is wanted the locale's must be empty; blanks are a name.
bool answersTo(const char* name, const char* wanted) {
    return wanted == nullptr ? isEmpty(name) : sameName(name, wanted);
}

nlsStatus fillAttributes(const LoadContext& context, nlsLocale& locale, const char* charset) {
    const Loaded<nlsAttribStruct> attrib = loadAttributes(context, charset);
    if (attrib.status == NLS_OK) locale.attrib = attrib.object;
    return attrib.status;
}

nlsStatus fillCollation(const LoadContext& context, nlsLocale& locale, const char* charset) {
    if (isEmpty(locale.collationName)) return NLS_OK;
    const bool mayDerive = Charset{*locale.attrib}.isSingleByte();
    const Loaded<nlsCollStruct> coll = loadCollation(context, charset, locale.collationName, mayDerive);
    if (coll.status == NLS_OK) locale.coll = coll.object;
    return coll.status;
}

nlsStatus fillCaseTable(const LoadContext& context, nlsLocale& locale, const char* charset) {
    if (isEmpty(locale.caseName)) return NLS_OK;
    const Loaded<nlsCaseStruct> caseTable = loadCaseTable(context, charset, locale.caseName);
    if (caseTable.status == NLS_OK) locale.caseTable = caseTable.object;
    return caseTable.status;
}

nlsStatus fillLocale(const LoadContext& context, nlsLocale& locale, LocaleNames names) {
    copyName(locale.charsetName, sizeof locale.charsetName, names.charset);
    copyName(locale.collationName, sizeof locale.collationName, collationToMake(names.collation));
    if (names.caseName != nullptr) copyName(locale.caseName, sizeof locale.caseName, names.caseName);
    if (const nlsStatus bad = fillAttributes(context, locale, names.charset)) return bad;
    if (const nlsStatus bad = fillCollation(context, locale, names.charset)) return bad;
    return fillCaseTable(context, locale, names.charset);
}

CreatedLocale makeLocale(nlsHandle& handle, LocaleNames names) {
    const BusyGuard busy{handle};
    const LoadContext context = loadContextOf(handle);
    auto* const locale = context.arena.make<nlsLocale>();
    if (locale == nullptr) return {NLS_NO_MEM, nullptr};
    if (const nlsStatus bad = fillLocale(context, *locale, names)) return {bad, nullptr};
    locale->owner = &handle;
    linkObject(handle, locale->hdr);
    locale->hdr.typeTag = NLS_TAG_LOCALE;
    return {NLS_OK, locale};
}

// The newest locale that answers to the names and that `counts`.
template <typename Counts>
nlsLocale* findOnChainByNames(const nlsHandle& handle, LocaleNames names, Counts counts) {
    const char* const collation = collationToFind(names.collation);
    return findOnChain<nlsLocale>(handle, NLS_TAG_LOCALE, [&](const nlsLocale& locale) {
        return counts(locale) && sameName(locale.charsetName, names.charset) &&
               answersTo(locale.collationName, collation) && answersTo(locale.caseName, names.caseName);
    });
}

CreatedLocale createLocale(nlsHandle& handle, LocaleNames names) {
    if (handle.busy != 0) return {NLS_BUSY, nullptr};
    const CreatedLocale made = makeLocale(handle, names);
    if (made.status != NLS_OK || !Charset{*made.locale->attrib}.comparesViaSjis()) return made;
    return {makeCompanions(handle, *made.locale, names.charset), made.locale};
}

}  // namespace

nlsStatus makeCompanions(nlsHandle& handle, nlsLocale& locale, const char* charset) {
    nlsLocale* sjis = &locale;
    if (!sameName(charset, kSjis)) {
        const CreatedLocale made = findOrCreateLocale(handle, {kSjis, locale.collationName, locale.caseName});
        if (made.status != NLS_OK) return made.status;
        sjis = made.locale;
    }
    return findOrCreateConversion(handle, locale, *sjis).status;
}

nlsLocale* findLocaleByNames(const nlsHandle& handle, LocaleNames names) {
    return findOnChainByNames(handle, names, [](const nlsLocale&) { return true; });
}

CreatedLocale findOrCreateLocale(nlsHandle& handle, LocaleNames names) {
    if (nlsLocale* const known = findLocaleByNames(handle, names)) return {NLS_OK, known};
    return createLocale(handle, names);
}

CreatedLocale findOrCreateLastingLocale(nlsHandle& handle, LocaleNames names) {
    const auto lasts = [](const nlsLocale& locale) { return locale.dbBlockSize == 0; };
    if (nlsLocale* const known = findOnChainByNames(handle, names, lasts)) return {NLS_OK, known};
    return createLocale(handle, names);
}

}  // namespace nls
