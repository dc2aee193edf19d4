#include "core/property_lists.hpp"

#include <algorithm>
#include <string_view>

#include "convmap/toc.hpp"
#include "core/base/charset.hpp"
#include "core/base/names.hpp"
#include "icu/name_list.hpp"
#include "strings/str_record.hpp"

namespace nls {

namespace {

using format::EntryType;

constexpr const char* kUtf8 = "UTF-8";
constexpr std::string_view kIcuNames{kAllIcuCollations.data(), kAllIcuCollationsLength};

// Where the parts of a list go. Both say whether the list is to go on.
class Counter {
public:
    bool put(std::string_view part) {
        length_ += static_cast<uint32_t>(part.size());
        return true;
    }
    uint32_t length() const { return length_; }

private:
    uint32_t length_ = 0;
};

class Writer {
public:
    explicit Writer(nlsStr& record) : record_(&record) {
        record.strLength = 0;
        if (record.bufSize > 0)
            *record.buf = 0;
        else
            status_ = NLS_BUF_SMALL;
    }
    bool put(std::string_view part) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(part.data());
        if (status_ == NLS_OK) status_ = appendText(*record_, bytes, static_cast<int32_t>(part.size()));
        return status_ == NLS_OK;
    }
    nlsStatus status() const { return status_; }

private:
    nlsStr* record_;
    nlsStatus status_ = NLS_OK;
};

EntryType entryTypeOf(ListKind kind) {
    switch (kind) {
        case ListKind::charsets:
            return EntryType::attributes;
        case ListKind::collations:
            return EntryType::collation;
        case ListKind::caseTables:
            return EntryType::caseTable;
        case ListKind::conversions:
            break;
    }
    return EntryType::conversion;
}

Contents contentsOf(const nlsHandle& handle) {
    return Contents{{handle.toc, static_cast<std::size_t>(std::max(handle.tocCount, 0))}};
}

template <typename Sink>
bool putPair(Sink& sink, std::string_view first, std::string_view between, std::string_view second) {
    return sink.put(first) && sink.put(between) && sink.put(second);
}

// The items of the entries that `selects` picks, a comma between them. Their count, with what was left out behind a
// failure of the sink.
template <typename Sink, typename Selects, typename PutItem>
uint32_t putItems(Sink& sink, const nlsHandle& handle, ListKind kind, Selects selects, PutItem putItem) {
    uint32_t count = 0;
    for (const nlsTocEntry& entry : contentsOf(handle).entries()) {
        if (!isType(entry, entryTypeOf(kind)) || !selects(entry)) continue;
        if (count++ != 0 && !sink.put(",")) break;
        if (!putItem(entry)) break;
    }
    return count;
}

// ICU's names, each as another item of "UTF-8".
template <typename Sink>
bool putIcuPairs(Sink& sink) {
    std::string_view rest = kIcuNames;
    while (!rest.empty()) {
        const std::string_view name{rest.data(), std::min(rest.find(','), rest.size())};
        if (!putPair(sink, ",", "UTF-8 ", name)) return false;
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    return true;
}

template <typename Sink>
bool putOfHandle(Sink& sink, const nlsTocEntry& entry, ListKind kind) {
    if (kind == ListKind::charsets) return sink.put(entry.name1);
    return putPair(sink, entry.name1, kind == ListKind::conversions ? " -> " : " ", entry.name2);
}

constexpr auto kAll = [](const nlsTocEntry&) { return true; };

// The charset whose collations a locale can have.
const char* charsetOfCollations(const nlsLocale& locale) {
    const Charset charset{*locale.attrib};
    if (charset.hasUnits32()) return kUtf8;
    if (charset.hasUnits16() && !sameName(locale.charsetName, "UCS2")) return kUtf8;
    return locale.charsetName;
}

template <typename Sink>
void putNamesOf(Sink& sink, const nlsHandle& handle, ListKind kind, const char* charset) {
    const auto ofCharset = [charset](const nlsTocEntry& entry) { return sameName(entry.name1, charset); };
    const auto putName = [&sink](const nlsTocEntry& entry) { return sink.put(entry.name2); };
    const uint32_t items = putItems(sink, handle, kind, ofCharset, putName);
    if (kind != ListKind::collations || !sameName(charset, kUtf8)) return;
    if (items == 0 || sink.put(",")) sink.put(kIcuNames);
}

template <typename Sink>
void putConversionsOf(Sink& sink, const nlsHandle& handle, const char* charset) {
    const auto fromOrTo = [charset](const nlsTocEntry& entry) {
        return sameName(entry.name1, charset) || sameName(entry.name2, charset);
    };
    const auto putWay = [&sink](const nlsTocEntry& entry) { return putOfHandle(sink, entry, ListKind::conversions); };
    putItems(sink, handle, ListKind::conversions, fromOrTo, putWay);
}

template <typename Sink>
void putListOf(Sink& sink, const nlsLocale& locale, ListKind kind) {
    if (kind == ListKind::conversions) return putConversionsOf(sink, *locale.owner, locale.charsetName);
    const char* const charset = kind == ListKind::collations ? charsetOfCollations(locale) : locale.charsetName;
    putNamesOf(sink, *locale.owner, kind, charset);
}

}  // namespace

uint32_t lengthOfList(const nlsHandle& handle, ListKind kind) {
    Counter counter;
    putItems(counter, handle, kind, kAll, [&](const nlsTocEntry& entry) { return putOfHandle(counter, entry, kind); });
    if (kind == ListKind::collations) putIcuPairs(counter);
    return counter.length();
}

nlsStatus writeList(const nlsHandle& handle, ListKind kind, nlsStr& record) {
    Writer writer{record};
    const auto putItem = [&](const nlsTocEntry& entry) {
        if (!putOfHandle(writer, entry, kind)) return false;
        return kind != ListKind::collations || !sameName(entry.name1, kUtf8) || putIcuPairs(writer);
    };
    putItems(writer, handle, kind, kAll, putItem);
    return writer.status();
}

uint32_t lengthOfList(const nlsLocale& locale, ListKind kind) {
    Counter counter;
    putListOf(counter, locale, kind);
    return counter.length();
}

nlsStatus writeList(const nlsLocale& locale, ListKind kind, nlsStr& record) {
    Writer writer{record};
    putListOf(writer, locale, kind);
    return writer.status();
}

}  // namespace nls
