#include "tools/mkconvmap/ucs2_pack.hpp"

#include <map>
#include <optional>
#include <utility>

namespace nls::mkconvmap {

namespace {

constexpr uint16_t kHole = 0xFFFF;         // in cjisToUcs: nothing is mapped here
constexpr uint16_t kNothing = 0;           // in the direct form: number 0, whose code 0xFFFF is none
constexpr uint32_t kMostEntries = 0xFFFF;  // counts and indices have 16 bits
constexpr uint32_t kPlaneMask = 0xFFFF0000;

// Numbers in the grid by code point.
using Numbers = std::map<uint32_t, uint16_t>;

// Where a block of code points stands in the row table: its code points less `delta`.
struct PlacedBlock {
    CodePointBlock block;
    uint32_t delta;
};

// Blocks of one map laid end to end, each beginning a row. The first keeps the low 16 bits of its code points.
std::vector<PlacedBlock> placeBlocks(const RowsPlan& plan) {
    const uint32_t columns = 1U << plan.rowShift;
    const uint32_t start = plan.blocks.front().first & 0xFFFF;
    uint32_t next = start;
    std::vector<PlacedBlock> placed;
    for (const CodePointBlock& block : plan.blocks) {
        if (block.first < next)
            fail(plan.place, "the block at " + codePointText(block.first) +
                                 " begins within the last row of the one before; join the two");
        placed.push_back({block, block.first - next});
        next += (block.size() + columns - 1) / columns * columns;
    }
    const uint32_t last = plan.blocks.back().last - placed.back().delta;
    if (last > kMostEntries) fail(plan.place, "the blocks have too many code points for 16 bits");
    return placed;
}

class RowTable {
public:
    RowTable(const RowsPlan& plan, PackedMap& map) : plan_(plan), blocks_(placeBlocks(plan)), map_(map) {}

    void write(const Numbers& numbers) {
        nlsUcs2Map& record = map_.record;
        record.rowShift = static_cast<uint16_t>(plan_.rowShift);
        record.valueShift = static_cast<uint16_t>(plan_.valueShift);
        record.colMask = static_cast<uint16_t>(columns() - 1);
        record.skipMask = static_cast<uint16_t>((1U << plan_.valueShift) - 1);
        record.ucsMin = placeOf(blocks_.front(), blocks_.front().block.first);
        record.ucsMax = placeOf(blocks_.back(), blocks_.back().block.last);
        writeTriples();
        for (const PlacedBlock& placed : blocks_) writeBlock(placed, numbers);
    }

private:
    uint32_t columns() const { return 1U << plan_.rowShift; }
    static uint16_t placeOf(const PlacedBlock& placed, uint32_t codePoint) {
        return static_cast<uint16_t>(codePoint - placed.delta);
    }

    // A single block of the first 64 K needs no triple: the bounds say as much.
    void writeTriples() {
        if (blocks_.size() == 1 && blocks_.front().delta == 0) return;
        for (std::size_t at = 0; at < blocks_.size(); ++at) {
            const CodePointBlock& block = blocks_[at].block;
            map_.record.ranges[at] = {block.last, block.first, blocks_[at].delta};
        }
    }

    void writeBlock(const PlacedBlock& placed, const Numbers& numbers) {
        for (uint64_t first = placed.block.first; first <= placed.block.last; first += columns()) {
            const auto begin = static_cast<uint32_t>(first);
            const auto from = numbers.lower_bound(begin);
            const auto to = numbers.lower_bound(std::min(begin + columns() - 1, placed.block.last) + 1);
            writeRow(begin, from, to);
        }
    }

    void writeRow(uint32_t begin, Numbers::const_iterator from, Numbers::const_iterator to) {
        if (map_.ucsRows.size() == kMostEntries) fail(plan_.place, "more than 65535 rows");
        if (from == to && emptyRow_) {
            map_.ucsRows.push_back(*emptyRow_);
            return;
        }
        const uint16_t start = nextCell();
        map_.ucsRows.push_back(start);
        if (from == to) emptyRow_ = start;
        uint32_t column = 0;
        uint16_t value = 0;
        if (from != to && from->first == begin) value = (from++)->second;
        for (; from != to; ++from) {
            const uint32_t next = from->first - begin;
            writeCell(begin + column, value, next - column);
            column = next;
            value = from->second;
        }
        // In the last column the walk is over; its distance only has to be one that needs no further cell.
        if (column == columns() - 1 && plan_.valueShift == 0) {
            addCell(value);
        } else {
            writeCell(begin + column, value, columns() - column);
        }
    }

    // A distance that its bits can't hold stands in a cell of its own, behind a distance of 0.
    void writeCell(uint32_t codePoint, uint16_t value, uint32_t distance) {
        const uint32_t cell = static_cast<uint32_t>(value) << plan_.valueShift;
        if (cell > 0xFFFF) {
            fail(plan_.place, codePointText(codePoint) + " has the number " + std::to_string(value) +
                                  ", which doesn't fit beside a distance of " + std::to_string(plan_.valueShift) +
                                  " bits");
        }
        const bool fits = distance <= map_.record.skipMask;
        addCell(static_cast<uint16_t>(cell | (fits ? distance : 0)));
        if (!fits) addCell(static_cast<uint16_t>(distance));
    }

    uint16_t nextCell() const {
        if (map_.ucsCells.size() >= kMostEntries) fail(plan_.place, "the rows take more than 65535 cells");
        return static_cast<uint16_t>(map_.ucsCells.size());
    }
    void addCell(uint16_t cell) {
        nextCell();
        map_.ucsCells.push_back(cell);
    }

    const RowsPlan& plan_;
    std::vector<PlacedBlock> blocks_;
    PackedMap& map_;
    std::optional<uint16_t> emptyRow_;
};

class Packer {
public:
    Packer(const Ucs2Source& source, const CodeMapping& mapping)
        : source_(source), forthLeft_(mapping.forth), backLeft_(mapping.back) {}

    PackedMaps pack() {
        for (const MapName name : kSearchOrder) packMap(name);
        if (!forthLeft_.empty()) {
            const auto [code, codePoint] = *forthLeft_.begin();
            fail(source_.place, "no map has a way forth for " + hexText(code, 4) + " (" + codePointText(codePoint) +
                                    ") and " + std::to_string(forthLeft_.size() - 1) + " other codes");
        }
        if (!backLeft_.empty()) {
            const auto [codePoint, code] = *backLeft_.begin();
            fail(source_.place, "no map has a way back for " + codePointText(codePoint) + " (" + hexText(code, 4) +
                                    ") and " + std::to_string(backLeft_.size() - 1) + " other code points");
        }
        return std::move(maps_);
    }

private:
    void packMap(MapName name) {
        const MapPlan& plan = source_.map(name);
        PackedMap& map = maps_[static_cast<std::size_t>(name)];
        plan.grid.describe(map.record);
        map.record.substChar = source_.substChar;
        map.record.ucsMin = 1;  // no way back unless there is a plan for it
        map.record.ucsMax = 0;
        if (plan.direct) writeDirect(plan, map);
        if (plan.rows) writeRows(plan, map);
        if (plan.holdsForth) writeForth(plan, map);
        map.record.cjisCount = static_cast<uint16_t>(map.cjisToUcs.size());
        map.record.ucsRowCount = static_cast<uint16_t>(map.ucsRows.size());
        map.record.ucsCellCount = static_cast<uint16_t>(map.ucsCells.size());
    }

    // The code points of a block whose codes stand in the grid, taken out of what is left.
    void takeBlock(const Grid& grid, const CodePointBlock& block, Numbers& numbers) {
        for (auto at = backLeft_.lower_bound(block.first); at != backLeft_.end() && at->first <= block.last;) {
            const auto number = grid.number(at->second);
            if (number) numbers.emplace(at->first, *number);
            at = number ? backLeft_.erase(at) : std::next(at);
        }
    }

    void writeDirect(const MapPlan& plan, PackedMap& map) {
        const CodePointBlock& block = plan.direct->block;
        Numbers numbers;
        takeBlock(plan.grid, block, numbers);
        if (block.size() > kMostEntries) fail(plan.direct->place, "the block has more than 65535 code points");
        map.record.ucsMin = static_cast<uint16_t>(block.first);
        map.record.ucsMax = static_cast<uint16_t>(block.last);
        map.ucsCells.assign(block.size(), kNothing);
        for (const auto& [codePoint, number] : numbers) map.ucsCells[codePoint - block.first] = number;
    }

    void writeRows(const MapPlan& plan, PackedMap& map) {
        Numbers numbers;
        for (const CodePointBlock& block : plan.rows->blocks) takeBlock(plan.grid, block, numbers);
        if (numbers.empty()) fail(plan.rows->place, "no code point of the blocks is left for the map");
        RowTable{*plan.rows, map}.write(numbers);
    }

    // Entry 0 is a hole. A table of 16-bit words reaches a higher plane through the one block of the way back: an entry
    // stands for itself plus the distance of that plane, and a hole has to lie behind the block's end.
    void writeForth(const MapPlan& plan, PackedMap& map) {
        const uint32_t plane = plan.rows ? plan.rows->blocks.front().first & kPlaneMask : 0;
        uint32_t last = kHole - 1;
        if (plane != 0) {
            if (plan.rows->blocks.size() > 1) fail(plan.rows->place, "a plane of its own takes one block");
            map.record.rangesOnCjis = 1;
            last = plan.rows->blocks.front().last;
            if (last >= plane + kHole)
                fail(plan.rows->place, "the block has to end below " + codePointText(plane + kHole));
        }
        map.cjisToUcs.assign(1, kHole);
        for (auto at = forthLeft_.begin(); at != forthLeft_.end();) {
            const auto number = plan.grid.number(at->first);
            const bool taken = number && at->second >= plane && at->second <= last;
            if (taken) {
                if (map.cjisToUcs.size() <= *number) map.cjisToUcs.resize(*number + 1U, kHole);
                map.cjisToUcs[*number] = static_cast<uint16_t>(at->second - plane);
            }
            at = taken ? forthLeft_.erase(at) : std::next(at);
        }
        if (map.cjisToUcs.size() == 1) fail(plan.place, "no code is left for the way forth of the map");
    }

    const Ucs2Source& source_;
    std::map<Code, uint32_t> forthLeft_;
    std::map<uint32_t, Code> backLeft_;
    PackedMaps maps_;
};

}  // namespace

std::size_t PackedMap::arrayBytes() const {
    return sizeof(uint16_t) * (cjisToUcs.size() + ucsRows.size() + ucsCells.size());
}

std::size_t arrayBytes(const PackedMaps& maps) {
    std::size_t bytes = 0;
    for (const PackedMap& map : maps) bytes += map.arrayBytes();
    return bytes;
}

PackedMaps packMaps(const Ucs2Source& source, const CodeMapping& mapping) {
    return Packer{source, mapping}.pack();
}

}  // namespace nls::mkconvmap
