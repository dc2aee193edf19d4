#include "tools/mkconvmap/map_source.hpp"

#include "core/base/names.hpp"

namespace nls::mkconvmap {

namespace {

class MapReader {
public:
    explicit MapReader(const std::filesystem::path& list) : folder_(list.parent_path() / "charsets") {
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
        } else {
            fail(line.place, "\"" + line.keyword() + "\" is none of charset, convert, convert-by-rule");
        }
    }

    void readCharsetNamed(const Line& line, const std::string& name) {
        checkedName(line.place, name);
        if (name.find('/') != std::string::npos) fail(line.place, "\"" + name + "\" is no name of a charset's file");
        if (find(name) != map_.charsets.size()) fail(line.place, "the charset " + name + " is in the list already");
        const std::filesystem::path file = folder_ / (name + ".txt");
        if (!std::filesystem::exists(file)) fail(line.place, "there is no " + file.string());
        CharsetSource charset = readCharset(file);
        if (charset.name != name) fail(charset.place, "the file of " + name + " describes " + charset.name);
        map_.items.emplace_back(map_.charsets.size());
        map_.charsets.push_back(std::move(charset));
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
