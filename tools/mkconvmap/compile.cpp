#include "tools/mkconvmap/compile.hpp"

#include <algorithm>

#include "convmap/type_codes.hpp"
#include "core/base/names.hpp"
#include "tools/mkconvmap/attrib_writer.hpp"
#include "tools/mkconvmap/case_writer.hpp"
#include "tools/mkconvmap/coll_derivation.hpp"
#include "tools/mkconvmap/coll_writer.hpp"

namespace nls::mkconvmap {

namespace {

const std::string kUtf8 = "UTF-8";
const std::string kShiftJis = "SHIFT-JIS";

bool isConversion(const FileEntry& entry) {
    return entry.type == format::EntryType::conversion;
}
bool touchesUtf8(const FileEntry& entry) {
    return entry.name1 == kUtf8 || entry.name2 == kUtf8;
}

class Compiler {
public:
    explicit Compiler(const MapSource& source) : source_(source) {
        for (const CharsetSource& charset : source.charsets) addCharset(charset);
        for (const MapItem& item : source.items) std::visit([this](const auto& what) { add(what); }, item);
        checkOrder();
        checkRoutesOfUnits16();
        checkShiftJisCompanions();
        checkDerivedCollations(map_.file.entries());
    }
    CompiledMap finish() { return std::move(map_); }

private:
    void addCharset(const CharsetSource& charset) {
        CompiledCharset compiled{charset, std::nullopt};
        if (charset.isMultiByte()) compiled.multiByte = packMultiByte(charset);
        map_.charsets.push_back(std::move(compiled));
    }

    void add(std::size_t charset) {
        const CompiledCharset& compiled = map_.charsets[charset];
        FileEntry entry;
        entry.place = compiled.source.place;
        entry.type = format::EntryType::attributes;
        entry.name1 = compiled.source.name;
        entry.rawByte = attributeFlags(compiled.source);
        entry.record = attributeRecord(compiled);
        map_.file.add(std::move(entry));
    }

    void add(const ConversionSource& pair) {
        const CompiledCharset& from = map_.charsets[pair.from];
        const CompiledCharset& to = map_.charsets[pair.to];
        auto [forth, back] =
            pair.byRule ? conversionsByRule(pair.place, from, to) : conversionsBetween(pair.place, from, to);
        add(pair.place, from.source.name, to.source.name, std::move(forth));
        add(pair.place, to.source.name, from.source.name, std::move(back));
    }

    void add(const CollationEntry& entry) {
        const CompiledCharset& charset = map_.charsets[entry.charset];
        const CollationSource& collation = source_.collations[entry.description];
        // A charset that compares through Shift-JIS asks its maps for the bytes of Shift-JIS.
        const CompiledCharset& indexed = charset.source.viaShiftJis ? shiftJis(entry.place) : charset;
        FileEntry made = tableEntry(format::EntryType::collation, entry.place, charset.source.name, entry.name);
        made.record = collationRecord(entry.place, collation, charset, indexed);
        checkLetters(entry, collation, charset.source);
        map_.file.add(std::move(made));
    }

    void add(const CaseEntry& entry) {
        const CompiledCharset& charset = map_.charsets[entry.charset];
        CaseRecord table = caseRecord(source_.caseTables[entry.description], charset);
        FileEntry made = tableEntry(format::EntryType::caseTable, entry.place, charset.source.name, entry.name);
        made.rawByte = table.rawByte;
        made.record = std::move(table.record);
        map_.file.add(std::move(made));
        if (table.remarks.empty()) return;
        map_.remarks.push_back("case table " + entry.name + " of " + charset.source.name + ":");
        for (const std::string& line : table.remarks) map_.remarks.push_back("  " + line);
    }

    static FileEntry tableEntry(format::EntryType type, const Place& place, const std::string& charset,
                                const std::string& name) {
        FileEntry entry;
        entry.place = place;
        entry.type = type;
        entry.name1 = charset;
        entry.name2 = name;
        return entry;
    }

    const CompiledCharset& shiftJis(const Place& place) const {
        for (const CompiledCharset& charset : map_.charsets) {
            if (charset.source.name == kShiftJis) return charset;
        }
        fail(place, "the charset compares through " + kShiftJis + ", which isn't in the list");
    }

    static void checkLetters(const CollationEntry& entry, const CollationSource& collation,
                             const CharsetSource& charset) {
        const std::optional<char32_t> missing = missingLetter(collation, charset);
        if (missing && !entry.isPart) {
            fail(entry.place, charset.name + " doesn't carry " + entry.name + ": it has no " + codePointText(*missing));
        }
        if (!missing && entry.isPart) fail(entry.place, charset.name + " has all letters of " + entry.name);
    }

    void add(const Place& place, const std::string& from, const std::string& to, ConversionEntry conversion) {
        FileEntry entry;
        entry.place = place;
        entry.name1 = from;
        entry.name2 = to;
        entry.subKind = conversion.subKind;
        entry.rawByte = conversion.code;
        entry.record = std::move(conversion.record);
        map_.file.add(std::move(entry));
    }

    // The library's search for a route of two steps takes the first that it finds.
    void checkOrder() const {
        bool behindOthers = false;
        for (const FileEntry& entry : map_.file.entries()) {
            if (!isConversion(entry)) continue;
            if (touchesUtf8(entry) && behindOthers) {
                fail(entry.place, entry.name1 + " to " + entry.name2 +
                                      " has to stand in front of the conversions without UTF-8, or routes of two steps "
                                      "would miss UTF-8");
            }
            behindOthers = behindOthers || !touchesUtf8(entry);
        }
    }

    // Types 29 and 30 work through the tables between the charset and UTF-8.
    void checkRoutesOfUnits16() const {
        for (const FileEntry& entry : map_.file.entries()) {
            if (!isConversion(entry)) continue;
            const int type = typeWordOfCode(entry.rawByte) & 0x7F;
            if (type == static_cast<int>(ConvType::dbcsToUtf16)) requireEntry(entry, entry.name1, kUtf8);
            if (type == static_cast<int>(ConvType::utf16ToDbcs)) requireEntry(entry, kUtf8, entry.name2);
        }
    }

    // A locale of a charset that compares through Shift-JIS brings a locale of that name and the conversion to it.
    void checkShiftJisCompanions() const {
        for (const CompiledCharset& charset : map_.charsets) {
            const Place& place = charset.source.place;
            if (charset.source.viaShiftJis) requireEntry(place, charset.source.name, charset.source.name, kShiftJis);
        }
        for (const FileEntry& entry : map_.file.entries()) {
            if (entry.type == format::EntryType::collation || entry.type == format::EntryType::caseTable) {
                checkTwin(entry);
            }
        }
    }

    // The companion has the names of the collation and of the case table.
    void checkTwin(const FileEntry& entry) const {
        const auto& charsets = map_.charsets;
        const bool hasCompanion = std::any_of(charsets.begin(), charsets.end(), [&](const CompiledCharset& charset) {
            return charset.source.name == entry.name1 && charset.source.viaShiftJis;
        });
        const auto isTwin = [&entry](const FileEntry& other) {
            return other.type == entry.type && other.name1 == kShiftJis &&
                   sameName(other.name2.c_str(), entry.name2.c_str());
        };
        const auto& entries = map_.file.entries();
        if (hasCompanion && std::none_of(entries.begin(), entries.end(), isTwin)) {
            fail(entry.place, entry.name2 + " of " + entry.name1 + " needs " + entry.name2 + " of " + kShiftJis);
        }
    }

    void requireEntry(const FileEntry& asking, const std::string& from, const std::string& to) const {
        requireEntry(asking.place, asking.name1 + " to " + asking.name2, from, to);
    }
    void requireEntry(const Place& place, const std::string& what, const std::string& from,
                      const std::string& to) const {
        const auto& entries = map_.file.entries();
        const auto is = [&](const FileEntry& entry) {
            return isConversion(entry) && entry.name1 == from && entry.name2 == to;
        };
        if (std::none_of(entries.begin(), entries.end(), is)) {
            fail(place, what + " needs the conversion " + from + " to " + to);
        }
    }

    const MapSource& source_;
    CompiledMap map_;
};

}  // namespace

CompiledMap compileMap(const MapSource& source) {
    return Compiler{source}.finish();
}

}  // namespace nls::mkconvmap
