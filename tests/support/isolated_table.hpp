// A copy of a conversion table of which each piece has an allocation of its own, of just its size. In the arena the
// pieces stand close together, and a reader that runs from one into the next goes unseen; here the sanitizer sees it.
#pragma once

#include <cstring>
#include <deque>
#include <vector>

#include "convmap/conv_table.hpp"

namespace nls::test {

class IsolatedTable {
public:
    explicit IsolatedTable(const nlsConvTable* table) : copy_(copied(ConvTable{table})) {}
    IsolatedTable(const IsolatedTable&) = delete;
    IsolatedTable& operator=(const IsolatedTable&) = delete;

    const nlsConvTable* get() const { return copy_; }

private:
    template <typename T>
    T* piece(const T* from, std::size_t count) {
        pieces_.emplace_back(count * sizeof(T));
        if (count != 0) std::memcpy(pieces_.back().data(), from, count * sizeof(T));
        return reinterpret_cast<T*>(pieces_.back().data());
    }

    // The type word of `table` and `block` behind it.
    const nlsConvTable* behindWord(ConvTable table, const void* block, std::size_t size) {
        std::vector<unsigned char>& memory = pieces_.emplace_back(8 + size);
        std::memcpy(memory.data(), reinterpret_cast<const unsigned char*>(table.raw()) - 8, 8);
        if (size != 0) std::memcpy(memory.data() + 8, block, size);
        return reinterpret_cast<const nlsConvTable*>(memory.data() + 8);
    }

    const nlsConvTable* copied(ConvTable table) {
        if (table.isNull()) return nullptr;
        switch (blockOf(table.type())) {
            case TableBlock::byteMap:
                return behindWord(table, &table.byteMap(), sizeof(ByteMapTable));
            case TableBlock::sbcsWords:
                return behindWord(table, &table.sbcsWords(), sizeof(SbcsWords));
            case TableBlock::sbcsPages:
                return copiedPages(table);
            case TableBlock::dbcs:
                return copiedMaps(table);
            case TableBlock::innerTable: {
                const nlsConvTable* const inner = copied(table.inner());
                return behindWord(table, &inner, sizeof inner);
            }
            case TableBlock::twoSteps: {
                const nlsConvTable* const steps[3] = {copied(table.firstStep()), copied(table.secondStep()), nullptr};
                return behindWord(table, steps, sizeof steps);
            }
            case TableBlock::icuConverter:
            case TableBlock::none:
                break;
        }
        return behindWord(table, nullptr, 0);
    }
    const nlsConvTable* copiedPages(ConvTable table) {
        constexpr std::size_t kAsciiPage = 256, kPage = 64;
        SbcsPages pages = table.sbcsPages();
        for (std::size_t i = 0; i < 256; ++i) pages.page[i] = piece(pages.page[i], i == 0 ? kAsciiPage : kPage);
        return behindWord(table, &pages, sizeof pages);
    }
    // An array without entries has whatever pointer the file gave it, and keeps it.
    const nlsConvTable* copiedMaps(ConvTable table) {
        DbcsTable block = table.dbcs();
        for (nlsUcs2Map& map : block.maps) {
            if (map.cjisCount != 0) map.cjisToUcs = piece(map.cjisToUcs, map.cjisCount);
            if (map.ucsRowCount != 0) map.ucsRows = piece(map.ucsRows, map.ucsRowCount);
            if (map.ucsCellCount != 0) map.ucsCells = piece(map.ucsCells, map.ucsCellCount);
        }
        block.attrib = piece(block.attrib, 1);
        return behindWord(table, &block, sizeof block);
    }

    std::deque<std::vector<unsigned char>> pieces_;
    const nlsConvTable* copy_;
};

}  // namespace nls::test
