#include "core/conversion_create.hpp"

#include "convmap/conv_table_load.hpp"
#include "core/base/busy_guard.hpp"
#include "core/base/names.hpp"
#include "core/base/object_chain.hpp"

namespace nls {

namespace {

// Does a database locale have its attribute table in its own block?
bool ownsAttributes(const nlsLocale& locale) {
    const auto block = reinterpret_cast<uintptr_t>(&locale), attrib = reinterpret_cast<uintptr_t>(locale.attrib);
    return attrib >= block && attrib - block < locale.dbBlockSize;
}

// An attribute table that doesn't go with the block of the locale. Null where the arena is used up.
nlsAttribStruct* lastingAttributes(const LoadContext& context, const nlsLocale& locale) {
    if (!ownsAttributes(locale)) return locale.attrib;
    auto* const copy = context.arena.make<nlsAttribStruct>();
    if (copy == nullptr) return nullptr;
    *copy = *locale.attrib;
    copy->sjisAttrib = nullptr;
    copy->sjisConversion = nullptr;
    return copy;
}

// The locale that a conversion keeps. A database locale lives in a block that goes back to its caller while conversions
// stay on the chain, so a conversion keeps a locale of its own in its place: what conversions read of one, and nothing
// in it points into that block. It stands on no chain. Null where the arena is used up.
nlsLocale* lastingLocale(const LoadContext& context, nlsLocale& locale) {
    if (locale.dbBlockSize == 0) return &locale;
    auto* const standIn = context.arena.make<nlsLocale>();
    if (standIn == nullptr) return nullptr;
    copyName(standIn->charsetName, sizeof standIn->charsetName, locale.charsetName);
    standIn->attrib = lastingAttributes(context, locale);
    if (standIn->attrib == nullptr && locale.attrib != nullptr) return nullptr;
    standIn->owner = locale.owner;
    standIn->hdr.typeTag = NLS_TAG_LOCALE;
    return standIn;
}

CreatedConversion makeConversion(nlsHandle& handle, nlsLocale& source, nlsLocale& target) {
    const BusyGuard busy{handle};
    const LoadContext context = loadContextOf(handle);
    auto* const conversion = context.arena.make<nlsConversion>();
    if (conversion == nullptr) return {NLS_NO_MEM, nullptr};
    conversion->source = lastingLocale(context, source);
    conversion->target = lastingLocale(context, target);
    if (conversion->source == nullptr || conversion->target == nullptr) return {NLS_NO_MEM, nullptr};
    const Loaded<nlsConvTable> table =
        loadConvTable(context, {source.charsetName, target.charsetName}, LoadOptions::none);
    if (table.status != NLS_OK) return {table.status, nullptr};
    conversion->table = table.object;
    linkObject(handle, conversion->hdr);
    conversion->hdr.typeTag = NLS_TAG_CONVERSION;
    return {NLS_OK, conversion};
}

}  // namespace

nlsConversion* findConversionByNames(const nlsHandle& handle, const nlsLocale& source, const nlsLocale& target) {
    return findOnChain<nlsConversion>(handle, NLS_TAG_CONVERSION, [&](const nlsConversion& known) {
        return sameName(known.source->charsetName, source.charsetName) &&
               sameName(known.target->charsetName, target.charsetName);
    });
}

CreatedConversion findOrCreateConversion(nlsHandle& handle, nlsLocale& source, nlsLocale& target) {
    if (nlsConversion* const known = findConversionByNames(handle, source, target)) return {NLS_OK, known};
    if (handle.busy != 0) return {NLS_BUSY, nullptr};
    return makeConversion(handle, source, target);
}

}  // namespace nls
