// Multi-byte tables of the data file at NLS_CONVMAP, each with arrays of its own, which a test may change.
#pragma once

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "convmap/conv_table.hpp"
#include "convmap/dbcs_index.hpp"
#include "tests/support/open_handle.hpp"

namespace nls::test {

// Without an index. Not to be copied: the table holds addresses.
class RealDbcs {
public:
    explicit RealDbcs(const std::string& charset) {
        static OpenHandle open{wholeFile(), 4 << 20};
        const nlsConversion* const conversion = open.conversion(charset.c_str(), "UTF-8");
        if (conversion == nullptr) std::abort();
        table() = ConvTable{conversion->table}.dbcs();
        attrib = *table().attrib;
        for (std::size_t i = 0; i < 3; ++i) {
            const nlsUcs2Map& map = table().maps[i];
            if (map.cjisCount != 0) arrays[i][0].assign(map.cjisToUcs, map.cjisToUcs + map.cjisCount);
            if (map.ucsRowCount != 0) arrays[i][1].assign(map.ucsRows, map.ucsRows + map.ucsRowCount);
            if (map.ucsCellCount != 0) arrays[i][2].assign(map.ucsCells, map.ucsCells + map.ucsCellCount);
        }
        link();
    }
    RealDbcs(const RealDbcs&) = delete;
    RealDbcs& operator=(const RealDbcs&) = delete;

    // Read once in a run of the program, and left as it is.
    static const RealDbcs& of(const std::string& charset) {
        static std::map<std::string, std::unique_ptr<RealDbcs>> all;
        auto& one = all[charset];
        if (one == nullptr) one = std::make_unique<RealDbcs>(charset);
        return *one;
    }

    DbcsTable& table() { return block_.table; }
    const DbcsTable& table() const { return block_.table; }
    const nlsConvTable* handle() const { return reinterpret_cast<const nlsConvTable*>(&block_.table); }

    // Points the table to the arrays; to be called again after their sizes have changed.
    void link() {
        for (std::size_t i = 0; i < 3; ++i) {
            nlsUcs2Map& map = table().maps[i];
            const auto place = [&](std::size_t array) {
                return arrays[i][array].empty() ? nullptr : arrays[i][array].data();
            };
            map.cjisToUcs = place(0), map.ucsRows = place(1), map.ucsCells = place(2);
            map.cjisCount = static_cast<uint16_t>(arrays[i][0].size());
        }
        table().attrib = &attrib;
        tieDbcsIndex(table(), nullptr);
    }

    nlsAttribStruct attrib{};
    std::vector<uint16_t> arrays[3][3];  // by map: the way forth, rows, cells

private:
    static std::vector<unsigned char> wholeFile() {
        std::ifstream file(NLS_CONVMAP, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    struct Block {  // as in the arena: the type word stands in front of the table
        int64_t typeWord = 17;
        DbcsTable table{};
    } block_;
};

}  // namespace nls::test
