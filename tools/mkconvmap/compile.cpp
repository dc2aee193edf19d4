#include "tools/mkconvmap/compile.hpp"

#include <algorithm>

#include "convmap/type_codes.hpp"
#include "tools/mkconvmap/attrib_writer.hpp"

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
    explicit Compiler(const MapSource& source) {
        for (const CharsetSource& charset : source.charsets) addCharset(charset);
        for (const MapItem& item : source.items) std::visit([this](const auto& what) { add(what); }, item);
        checkOrder();
        checkRoutesOfUnits16();
        checkShiftJisCompanions();
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

    CompiledMap map_;
};

}  // namespace

CompiledMap compileMap(const MapSource& source) {
    return Compiler{source}.finish();
}

}  // namespace nls::mkconvmap
