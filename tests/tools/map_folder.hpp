// A folder of descriptions that is made for a test and goes away with it.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tools/mkconvmap/compile.hpp"

namespace nls::test {

class MapFolder {
public:
    MapFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "nls-map-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        folder_ = pattern;
        for (const char* const name : {"charsets", "collations", "case"}) {
            std::filesystem::create_directory(folder_ / name);
        }
    }
    ~MapFolder() { std::filesystem::remove_all(folder_); }
    MapFolder(const MapFolder&) = delete;
    MapFolder& operator=(const MapFolder&) = delete;

    std::filesystem::path path(const std::string& name) const { return folder_ / name; }
    std::filesystem::path list() const { return folder_ / "map.list"; }

    void charset(const std::string& name, const std::string& text) const { write("charsets/" + name + ".txt", text); }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream{folder_ / name, std::ios::binary} << text;
    }

    mkconvmap::CompiledMap compile(const std::string& listText) const {
        write("map.list", listText);
        return mkconvmap::compileMap(mkconvmap::readMap(list()));
    }

    // The message of the refusal without the folder's own path; empty where nothing is refused.
    std::string refusal(const std::string& listText) const {
        try {
            compile(listText).file.build();
        } catch (const mkconvmap::DescriptionError& error) {
            std::string message = error.what();
            const std::string prefix = folder_.string() + "/";
            for (std::size_t at = 0; (at = message.find(prefix, at)) != std::string::npos;) {
                message.erase(at, prefix.size());
            }
            return message;
        }
        return {};
    }

private:
    std::filesystem::path folder_;
};

// The folder of the real descriptions.
inline std::filesystem::path dataFolder() {
    return std::filesystem::path{NLS_TEST_DATA}.parent_path().parent_path() / "data";
}

// A few small charsets that occur in most of the tests.
inline void addSmallCharsets(const MapFolder& folder) {
    folder.charset("UTF-8", "charset UTF-8\nkind utf-8\n");
    folder.charset("UTF-16", "charset UTF-16\nkind utf-16\n");
    folder.charset("LATIN", "charset LATIN\nkind single-byte\nsource iconv ISO-8859-1\n");
    folder.charset("CYRILLIC", "charset CYRILLIC\nkind single-byte\nsource iconv ISO-8859-5\n");
}

}  // namespace nls::test
