#include "tools/mkconvmap/map_source.hpp"

#include <algorithm>

#include "core/base/names.hpp"

namespace nls::mkconvmap {

namespace {

class MapReader {
public:
    explicit MapReader(const std::filesystem::path& list) : folder_(list.parent_path()) {
        for (const Line& line : readSource(list)) read(line);
        if (map_.items.empty()) fail({list.string(), 0}, "the list is empty");
    }
    MapSource finish() { return std::move(map_); }

private:
    void read(const Line& line) {
        if (line.keyword() == "charset") {
            line.field(1, "names of charsets");
            for (std::size_t at = 1; at < line.fields.size(); ++at) readCharsetNamed(line, line.fields[at]);
        } else if (line.keyword() == "convert") {
            readPairs(line, false);
        } else if (line.keyword() == "convert-by-rule") {
            readPairs(line, true);
        } else if (line.keyword() == "collation" || line.keyword() == "collation-part") {
            const std::size_t first = map_.items.size();
            readTables<CollationEntry>(line, "collations", map_.collations, readCollation);
            for (std::size_t at = first; at < map_.items.size(); ++at) {
                std::get<CollationEntry>(map_.items[at]).isPart = line.keyword() == "collation-part";
            }
        } else if (line.keyword() == "case") {
            readTables<CaseEntry>(line, "case", map_.caseTables, readCase);
        } else {
            fail(line.place, "\"" + line.keyword() +
                                 "\" is none of charset, convert, convert-by-rule, collation, collation-part, case");
        }
    }

    void readCharsetNamed(const Line& line, const std::string& name) {
        if (find(name) != map_.charsets.size()) fail(line.place, "the charset " + name + " is in the list already");
        const std::filesystem::path file = described(line, "charsets", name);
        CharsetSource charset = readCharset(file);
        if (charset.name != name) fail(charset.place, "the file of " + name + " describes " + charset.name);
        map_.items.emplace_back(map_.charsets.size());
        map_.charsets.push_back(std::move(charset));
    }

    std::filesystem::path described(const Line& line, const char* folder, const std::string& name) const {
        checkedName(line.place, name);
        if (name.find('/') != std::string::npos) fail(line.place, "\"" + name + "\" is no name of a file");
        std::filesystem::path file = folder_ / folder / (name + ".txt");
        if (!std::filesystem::exists(file)) fail(line.place, "there is no " + file.string());
        return file;
    }

    // KEYWORD NAME CHARSET …, or NAME=DESCRIPTION where the description has a name of its own.
    template <typename Entry, typename Description, typename Read>
    void readTables(const Line& line, const char* folder, std::vector<Description>& descriptions,
                    Read readDescription) {
        const std::string& field = line.field(1, "a name");
        line.field(2, "charsets");
        const std::size_t equals = field.find('=');
        Entry entry{line.place, field.substr(0, equals), 0, 0};
        checkedName(line.place, entry.name);
        if (entry.name.starts_with("ICU-") || entry.name.starts_with("ICU_")) {
            fail(line.place, "the library looks for no " + entry.name + " in a file: it takes ICU's");
        }
        const std::string wanted = equals == std::string::npos ? entry.name : field.substr(equals + 1);
        const auto named = [&wanted](const Description& description) { return description.name == wanted; };
        const auto known = std::find_if(descriptions.begin(), descriptions.end(), named);
        entry.description = static_cast<std::size_t>(known - descriptions.begin());
        if (known == descriptions.end()) {
            descriptions.push_back(readDescription(described(line, folder, wanted)));
            const Description& description = descriptions.back();
            if (description.name != wanted) {
                fail(description.place, "the file of " + wanted + " describes " + description.name);
            }
        }
        for (std::size_t at = 2; at < line.fields.size(); ++at) {
            entry.charset = this->known(line, line.fields[at]);
            map_.items.emplace_back(entry);
        }
    }

    void readPairs(const Line& line, bool byRule) {
        line.field(2, "two charsets");
        for (std::size_t at = 2; at < line.fields.size(); ++at) {
            ConversionSource pair{line.place, known(line, line.fields[1]), known(line, line.fields[at]), byRule};
            if (pair.from == pair.to) fail(line.place, line.fields[1] + " converts to itself without an entry");
            map_.items.emplace_back(pair);
        }
    }

    std::size_t known(const Line& line, const std::string& name) const {
        const std::size_t index = find(name);
        if (index == map_.charsets.size()) fail(line.place, "no charset " + name + " in the list so far");
        return index;
    }
    std::size_t find(const std::string& name) const {
        std::size_t index = 0;
        while (index < map_.charsets.size() && !sameName(map_.charsets[index].name.c_str(), name.c_str())) ++index;
        return index;
    }

    std::filesystem::path folder_;
    MapSource map_;
};

}  // namespace

MapSource readMap(const std::filesystem::path& list) {
    return MapReader{list}.finish();
}

}  // namespace nls::mkconvmap
