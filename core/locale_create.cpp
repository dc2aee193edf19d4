#include "core/locale_create.hpp"

#include "convmap/attrib_table.hpp"
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

// The collation a locale names. Tables of collations aren't read yet: no name is known.
nlsStatus loadCollation(nlsLocale& locale) {
    return isEmpty(locale.collationName) ? NLS_OK : NLS_NO_COLL_TABLE;
}

// The case table a locale names. Case tables aren't read yet: no name is known.
nlsStatus loadCaseTable(nlsLocale& locale) {
    return isEmpty(locale.caseName) ? NLS_OK : NLS_NO_CASE_TABLE;
}

nlsStatus fillLocale(const LoadContext& context, nlsLocale& locale, LocaleNames names) {
    copyName(locale.charsetName, sizeof locale.charsetName, names.charset);
    copyName(locale.collationName, sizeof locale.collationName, collationToMake(names.collation));
    if (names.caseName != nullptr) copyName(locale.caseName, sizeof locale.caseName, names.caseName);
    const Loaded<nlsAttribStruct> attrib = loadAttributes(context, names.charset);
    if (attrib.status != NLS_OK) return attrib.status;
    locale.attrib = attrib.object;
    if (const nlsStatus bad = loadCollation(locale)) return bad;
    return loadCaseTable(locale);
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

// The locale and the conversion through which a locale compares. The conversion is found again on the chain. The handle
// isn't busy here, since both are made like any other.
nlsStatus makeCompanions(nlsHandle& handle, nlsLocale& locale, const char* charset) {
    nlsLocale* sjis = &locale;
    if (!sameName(charset, kSjis)) {
        const CreatedLocale made = findOrCreateLocale(handle, {kSjis, locale.collationName, locale.caseName});
        if (made.status != NLS_OK) return made.status;
        sjis = made.locale;
    }
    return findOrCreateConversion(handle, locale, *sjis).status;
}

}  // namespace

nlsLocale* findLocaleByNames(const nlsHandle& handle, LocaleNames names) {
    const char* const collation = collationToFind(names.collation);
    return findOnChain<nlsLocale>(handle, NLS_TAG_LOCALE, [&](const nlsLocale& locale) {
        return sameName(locale.charsetName, names.charset) && answersTo(locale.collationName, collation) &&
               answersTo(locale.caseName, names.caseName);
    });
}

CreatedLocale findOrCreateLocale(nlsHandle& handle, LocaleNames names) {
    if (nlsLocale* const known = findLocaleByNames(handle, names)) return {NLS_OK, known};
    if (handle.busy != 0) return {NLS_BUSY, nullptr};
    const CreatedLocale made = makeLocale(handle, names);
    if (made.status != NLS_OK || !Charset{*made.locale->attrib}.comparesViaSjis()) return made;
    return {makeCompanions(handle, *made.locale, names.charset), made.locale};
}

}  // namespace nls
