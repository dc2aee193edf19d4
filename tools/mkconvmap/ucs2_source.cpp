#include "tools/mkconvmap/ucs2_source.hpp"

#include <map>

namespace nls::mkconvmap {

namespace {

constexpr uint32_t kLastCode = 0xFFFF;
constexpr uint32_t kLastCodePoint = 0x10FFFF;
constexpr std::size_t kMostBlocks = 5;

struct HexRange {
    uint32_t first, last;
};

// "A1" or "A1-FE", both ends included.
HexRange hexRange(const Place& place, const std::string& field, uint32_t most) {
    const std::size_t dash = field.find('-');
    const uint32_t first = hexNumber(place, field.substr(0, dash), most);
    const uint32_t last = dash == std::string::npos ? first : hexNumber(place, field.substr(dash + 1), most);
    if (last < first) fail(place, "the range " + field + " ends before it begins");
    return {first, last};
}

class Ucs2SourceReader {
public:
    explicit Ucs2SourceReader(const CharsetSource& charset) : charset_(charset) {
        source_.place = charset.place;
        for (const Line& line : charset.mappingLines) read(line);
    }

    Ucs2Source finish() {
        if (source_.library.empty()) fail(source_.place, "the charset has no source: a line \"source …\" is missing");
        for (const MapName name : kSearchOrder) checkMap(name);
        return source_;
    }

private:
    void read(const Line& line) {
        static const std::map<std::string, void (Ucs2SourceReader::*)(const Line&)> readers{
            {"source", &Ucs2SourceReader::readSourceLine}, {"substitute", &Ucs2SourceReader::readSubstitute},
            {"single", &Ucs2SourceReader::readSingle},     {"without", &Ucs2SourceReader::readWithout},
            {"yield", &Ucs2SourceReader::readYield},       {"back", &Ucs2SourceReader::readBack},
            {"grid", &Ucs2SourceReader::readGrid},         {"forth", &Ucs2SourceReader::readForth},
            {"direct", &Ucs2SourceReader::readDirect},     {"rows", &Ucs2SourceReader::readRows},
        };
        const auto found = readers.find(line.keyword());
        if (found == readers.end()) {
            fail(line.place, "\"" + line.keyword() + "\" means nothing in a multi-byte charset");
        }
        (this->*found->second)(line);
    }

    // source icu|iconv CONVERTER [euc-image]
    void readSourceLine(const Line& line) {
        if (!source_.library.empty()) fail(line.place, "the charset has a source already");
        source_.sourcePlace = line.place;
        source_.library = line.field(1, "icu or iconv");
        source_.converter = line.field(2, "a converter's name");
        source_.eucImage = line.fields.size() > 3;
        if (source_.eucImage && line.fields[3] != "euc-image") {
            fail(line.place, "\"" + line.fields[3] + "\" is no way to take rows over: euc-image");
        }
        line.endsAfter(4);
    }

    void readSubstitute(const Line& line) {
        source_.substChar = static_cast<Code>(hexNumber(line.place, line.field(1, "a code"), kLastCode));
        line.endsAfter(2);
    }

    void readSingle(const Line& line) {
        line.field(1, "ranges of bytes");
        for (std::size_t at = 1; at < line.fields.size(); ++at) {
            const ByteRange range = byteRange(line.place, line.fields[at]);
            for (unsigned byte = range.first; byte <= range.last; ++byte) {
                if (byte < 0x80) fail(line.place, "bytes below 80 are ASCII, and no map holds them");
                if (charset_.lengths[byte] != 0) {
                    fail(line.place, "byte " + hexText(byte, 2) + " begins a double byte");
                }
                source_.singles.set(byte);
            }
        }
    }

    void readWithout(const Line& line) { readCodes(line, source_.without); }
    void readYield(const Line& line) { readCodes(line, source_.yielding); }

    static void readCodes(const Line& line, std::vector<CodeRange>& codes) {
        line.field(1, "ranges of codes");
        for (std::size_t at = 1; at < line.fields.size(); ++at) {
            const HexRange range = hexRange(line.place, line.fields[at], kLastCode);
            codes.push_back({line.place, static_cast<Code>(range.first), static_cast<Code>(range.last)});
        }
    }

    // back CODE-POINT CODE
    void readBack(const Line& line) {
        const uint32_t codePoint = hexNumber(line.place, line.field(1, "a code point"), kLastCodePoint);
        const uint32_t code = hexNumber(line.place, line.field(2, "a code"), kLastCode);
        line.endsAfter(3);
        source_.back.push_back({line.place, codePoint, static_cast<Code>(code)});
    }

    // grid MAP lead RANGE … trail RANGE …
    void readGrid(const Line& line) {
        MapPlan& map = mapOf(line);
        if (map.place.line != 0) fail(line.place, "the " + line.fields[1] + " map has a grid already");
        if (line.field(2, "lead") != "lead") fail(line.place, "\"lead\" is wanted in front of the ranges");
        std::vector<ByteRange> leads, trails;
        std::size_t at = 3;
        for (; line.field(at, "trail") != "trail"; ++at) leads.push_back(byteRange(line.place, line.fields[at]));
        for (++at; at < line.fields.size(); ++at) trails.push_back(byteRange(line.place, line.fields[at]));
        map.place = line.place;
        map.grid = Grid(line.place, leads, trails);
    }

    // forth MAP …
    void readForth(const Line& line) {
        mapWithGrid(line).holdsForth = true;
        line.endsAfter(2);
    }

    // direct third FIRST-LAST
    void readDirect(const Line& line) {
        MapPlan& map = mapWithGrid(line);
        if (line.fields[1] != "third") fail(line.place, "the third map alone is searched in the direct form");
        if (map.direct) fail(line.place, "the map has a direct block already");
        map.direct = DirectPlan{line.place, blockOf(line, 2)};
        if (map.direct->block.last > 0xFFFF) fail(line.place, "the direct form ends at U+FFFF");
        line.endsAfter(3);
    }

    // rows MAP ROW-SHIFT/VALUE-SHIFT FIRST-LAST …
    void readRows(const Line& line) {
        MapPlan& map = mapWithGrid(line);
        if (line.fields[1] == "third") fail(line.place, "the third map is searched in the direct form");
        if (map.rows) fail(line.place, "the map has rows already");
        RowsPlan rows{line.place, 0, 0, {}};
        const std::string& shifts = line.field(2, "shifts, as in 2/2");
        const std::size_t slash = shifts.find('/');
        if (slash == std::string::npos) fail(line.place, "\"" + shifts + "\" are no shifts, as in 2/2");
        rows.rowShift = decimalNumber(line.place, shifts.substr(0, slash), 14);
        rows.valueShift = decimalNumber(line.place, shifts.substr(slash + 1), 15);
        for (std::size_t at = 3; at < std::max<std::size_t>(line.fields.size(), 4); ++at) {
            rows.blocks.push_back(blockOf(line, at));
        }
        checkBlocks(rows);
        map.rows = rows;
    }

    static CodePointBlock blockOf(const Line& line, std::size_t at) {
        const HexRange range = hexRange(line.place, line.field(at, "a block of code points"), kLastCodePoint);
        return {range.first, range.last};
    }

    static void checkBlocks(const RowsPlan& rows) {
        if (rows.blocks.size() > kMostBlocks) {
            fail(rows.place, std::to_string(rows.blocks.size()) + " blocks; the format holds 5");
        }
        for (std::size_t at = 1; at < rows.blocks.size(); ++at) {
            if (rows.blocks[at].first <= rows.blocks[at - 1].last) {
                fail(rows.place, "the blocks overlap or aren't ascending");
            }
        }
    }

    static MapName nameOf(const Line& line) {
        static const std::map<std::string, MapName> names{
            {"first", MapName::first}, {"second", MapName::second}, {"third", MapName::third}};
        const auto found = names.find(line.field(1, "a map: first, second or third"));
        if (found == names.end()) fail(line.place, "\"" + line.fields[1] + "\" is no map: first, second or third");
        return found->second;
    }

    MapPlan& mapOf(const Line& line) { return source_.maps[static_cast<std::size_t>(nameOf(line))]; }

    MapPlan& mapWithGrid(const Line& line) {
        MapPlan& map = mapOf(line);
        if (map.place.line == 0) fail(line.place, "the " + line.fields[1] + " map has no grid yet");
        return map;
    }

    void checkMap(MapName name) {
        const MapPlan& map = source_.map(name);
        if (map.place.line == 0) return;
        if (name == MapName::third && !map.holdsForth) {
            fail(map.place, "the third map is looked at only if it has a way forth");
        }
        if (!map.holdsForth && !map.rows) fail(map.place, "the map has neither a way forth nor a way back");
    }

    const CharsetSource& charset_;
    Ucs2Source source_;
};

}  // namespace

Ucs2Source readUcs2Source(const CharsetSource& charset) {
    return Ucs2SourceReader{charset}.finish();
}

}  // namespace nls::mkconvmap
