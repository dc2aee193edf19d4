// A small map goes through the library and comes back as described, the same bytes each time; and every byte of a file
// that means something is noticed by the check when it is wrong.
#include "tools/mkconvmap/read_back.hpp"

#include <gtest/gtest.h>

#include "tests/tools/map_folder.hpp"

namespace nls::test {
namespace {

using mkconvmap::CompiledMap;
using Image = std::vector<unsigned char>;

const std::string kSmallList =
    "charset UTF-8 UTF-16 LATIN CYRILLIC\n"
    "convert UTF-8 UTF-16 LATIN CYRILLIC\n"
    "convert LATIN CYRILLIC\n";

class ReadBack : public testing::Test {
protected:
    ReadBack() { addSmallCharsets(folder_); }

    bool isNoticed(const CompiledMap& map, const Image& image) const {
        try {
            mkconvmap::readBack(map, image);
        } catch (const mkconvmap::ReadBackError&) {
            return true;
        }
        return false;
    }

    MapFolder folder_;
};

TEST_F(ReadBack, SoundFileIsTheSameEachTime) {
    const CompiledMap map = folder_.compile(kSmallList);
    const Image image = map.file.build();
    const mkconvmap::ArenaUse use = mkconvmap::readBack(map, image);
    EXPECT_EQ(use.entries, (std::vector<uint32_t>{792, 792, 792, 792, 8, 8, 3488, 0, 3632, 0, 264, 264}));
    EXPECT_EQ(folder_.compile(kSmallList).file.build(), image);
    // Magic, where the contents begin, version, number of entries.
    EXPECT_EQ(std::string(image.begin(), image.begin() + 11), "42421605012");
}

TEST_F(ReadBack, EqualRecordsAreWrittenOnce) {
    folder_.charset("LATIN2", "charset LATIN2\nkind single-byte\nsource iconv ISO-8859-1\n");
    const Image one = folder_.compile("charset UTF-8 LATIN\nconvert UTF-8 LATIN\n").file.build();
    const Image two = folder_.compile("charset UTF-8 LATIN LATIN2\nconvert UTF-8 LATIN LATIN2\n").file.build();
    EXPECT_EQ(two.size() - one.size(), 3 * format::entry::kSize);
}

// Places whose bytes the library acts on: all of the contents of charsets and conversions, and some of each table. The
// raw byte of a conversion that has a record counts on byte maps alone; the first unit of a charset is taken for 0
// whatever it is, and what stands behind a list of pairs may say anything.
class MeaningfulBytes {
public:
    explicit MeaningfulBytes(const Image& image) : bytes_(image) {
        add(0, endOf(format::header::kEntryCount));
        const auto count = static_cast<std::size_t>(format::decimalOf(bytes_, format::header::kEntryCount));
        for (std::size_t index = 0; index < count; ++index) {
            addEntry(format::header::kSize + index * format::entry::kSize);
        }
    }
    const std::vector<std::size_t>& places() const { return places_; }

private:
    void add(std::size_t start, std::size_t count, std::size_t step = 1) {
        for (std::size_t at = start; at < start + count; at += step) places_.push_back(at);
    }
    void addName(std::size_t start) { add(start, untilNul(bytes_.data() + start).size() + 1); }

    void addEntry(std::size_t start) {
        namespace f = format;
        const ByteView entry = bytes_.subspan(start, f::entry::kSize);
        if (f::byteOf(entry, f::entry::kType) > '2') return addOrderOrCase(entry);
        const bool isConversion = f::byteOf(entry, f::entry::kType) == '1';
        const auto offset = static_cast<std::size_t>(f::decimalOf(entry, f::entry::kOffset));
        const bool isByteMap = isConversion && f::byteOf(entry, f::entry::kRawByte) == 1;
        addName(start + f::entry::kName1.offset);
        if (isConversion) addName(start + f::entry::kName2.offset);
        add(start + f::entry::kType.offset, 1);
        if (offset == 0 || isByteMap || !isConversion) add(start + f::entry::kRawByte.offset, 1);
        if (offset == 0) return;
        add(start + f::entry::kOffset.offset, f::entry::kOffset.width);
        if (isConversion) {
            add(offset + f::conversion::kTypeCode.offset, f::conversion::kTypeCode.width);
            addTable(offset, f::conversion::kTable, isByteMap ? 0 : sizeof(uint16_t));
        } else {
            for (const f::Field map : {f::attributes::kAlphaMap, f::attributes::kLengthMap, f::attributes::kTrailMap}) {
                addTable(offset, map, 0);
            }
        }
    }

    void addOrderOrCase(ByteView entry) {
        namespace f = format;
        const auto offset = static_cast<std::size_t>(f::decimalOf(entry, f::entry::kOffset));
        if (f::byteOf(entry, f::entry::kType) == '4') {
            for (const f::Field map : {f::collation::kExactMap, f::collation::kFoldMap}) addTable(offset, map, 0);
            add(offset + f::collation::kKind.offset, 2);
        } else if (f::byteOf(entry, f::entry::kRawByte) == f::kUnicodeCase) {
            for (const f::Field list : {f::unicode_case::kUpperList, f::unicode_case::kLowerList})
                add(offset + list.offset, 80, 6);
        } else {
            for (const f::Field map : {f::byte_case::kUpperMap, f::byte_case::kLowerMap}) addTable(offset, map, 0);
        }
    }

    void addTable(std::size_t record, format::Field slot, std::size_t skipped) {
        const auto size = static_cast<std::size_t>(format::decimalOf(bytes_.subspan(record), format::kSlotSize));
        add(record + slot.offset + skipped, size - skipped, 37);
    }

    ByteView bytes_;
    std::vector<std::size_t> places_;
};

TEST_F(ReadBack, EveryWrongByteIsNoticed) {
    folder_.write("collations/points.txt", "collation points\norder code-points\n");
    folder_.write("collations/german.txt", "collation german\norder icu de\nletters äß\ndouble-s ß\n");
    folder_.write("case/basic.txt", "case basic\ntake 0000-00FF\n");
    const std::string list =
        "charset UTF-8 LATIN CYRILLIC\nconvert UTF-8 LATIN\nconvert LATIN CYRILLIC\n"
        "collation basic=points UTF-8\ncollation german LATIN\ncollation-part german CYRILLIC\ncase basic UTF-8 "
        "LATIN\n";
    const CompiledMap map = folder_.compile(list);
    Image image = map.file.build();
    const MeaningfulBytes meaningful{image};
    EXPECT_GT(meaningful.places().size(), 250U);
    for (const std::size_t place : meaningful.places()) {
        image[place] ^= 0x03;
        EXPECT_TRUE(isNoticed(map, image)) << "byte " << place;
        image[place] ^= 0x03;
    }
    EXPECT_FALSE(isNoticed(map, image));
}

// Words all over the arrays of a multi-byte charset: characters, rows, cells.
TEST_F(ReadBack, WrongWordsOfArraysAreNoticed) {
    std::filesystem::copy_file(dataFolder() / "charsets/GB2312.txt", folder_.path("charsets/GB2312.txt"));
    const CompiledMap map = folder_.compile("charset UTF-8 GB2312\nconvert UTF-8 GB2312\n");
    Image image = map.file.build();
    const std::size_t arrays = format::header::kSize + 4 * format::entry::kSize + 2 * format::attributes::kSize +
                               format::conversion::kSize + format::ucs2::kArrayPrefix;
    ASSERT_GT(image.size(), arrays + 50000);
    for (std::size_t place = arrays + 1; place < image.size(); place += 4 * 997) {
        image[place] ^= 0x15;
        EXPECT_TRUE(isNoticed(map, image)) << "byte " << place;
        image[place] ^= 0x15;
    }
    EXPECT_FALSE(isNoticed(map, image));
}

TEST_F(ReadBack, EveryTruncationIsNoticed) {
    const CompiledMap map = folder_.compile("charset UTF-8 LATIN\nconvert UTF-8 LATIN\n");
    const Image image = map.file.build();
    for (std::size_t size = 0; size < image.size(); size += 1 + size / 32) {
        EXPECT_TRUE(isNoticed(map, Image(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size)))) << size;
    }
}

}  // namespace
}  // namespace nls::test
