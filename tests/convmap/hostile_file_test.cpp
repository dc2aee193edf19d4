// Data files with anything in any field: all that they name is made, and text is sent through it. Each answer is one
// that the headers tell, and nothing outside the records, the arena and the text is touched; the sanitizers watch
// that.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/support/convmap_builder.hpp"
#include "tests/support/everything.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::Everything;
using nls::test::FieldPlace;
using nls::test::OpenHandle;
using nls::test::smallWorld;

// Opens a file and makes everything in it; tells how many tables there were.
int makeAll(const Bytes& file) {
    OpenHandle open{file, 25000};
    EXPECT_TRUE(open.status == 0 || open.status == 1 || open.status == 4 || open.status == 5 || open.status == 6)
        << open.status;
    if (!open.isOpen()) return 0;
    Everything everything{open};
    everything.make();
    EXPECT_EQ(open.handle->busy, 0U);
    EXPECT_EQ(nlsClose(open.handle), NLS_OK);
    return everything.tables;
}

// `text` in the field, blanks behind it.
Bytes withText(Bytes file, const FieldPlace& field, std::string text) {
    text.resize(field.width, ' ');
    std::memcpy(file.data() + field.offset, text.data(), field.width);
    return file;
}
Bytes withByte(Bytes file, const FieldPlace& field, unsigned char byte) {
    std::memset(file.data() + field.offset, byte, field.width);
    return file;
}
Bytes withWord(Bytes file, const FieldPlace& field, unsigned low) {
    for (std::size_t i = 0; i < field.width; ++i) file[field.offset + i] = static_cast<unsigned char>(i == 0 ? low : 0);
    return file;
}

std::vector<Bytes> mutants(const Bytes& file, const FieldPlace& field) {
    if (field.text) {
        const std::string nines(field.width, '9');
        std::vector<Bytes> all;
        for (const std::string& text :
             {std::string("0"), std::string("1"), nines, "-" + nines.substr(1), std::string("x"), std::string("12z")})
            all.push_back(withText(file, field, text));
        all.push_back(withByte(file, field, 0xFF));
        return all;
    }
    std::vector<Bytes> all = {withByte(file, field, 0), withByte(file, field, 0xFF), withByte(file, field, 0x80),
                              withWord(file, field, 1)};
    if (field.what.ends_with("rawByte") || field.what.ends_with("type code"))
        for (const unsigned type : {3U, 5U, 7U, 17U, 18U, 19U, 20U, 29U, 30U, 130U, 178U}) {
            all.push_back(withWord(file, field, type));
            if (field.width == 2) {
                all.push_back(withWord(file, field, 0));
                all.back()[field.offset + 1] = static_cast<unsigned char>(type);
            }
        }
    return all;
}

void sweep(bool ofMaps) {
    ConvmapBuilder builder = smallWorld();
    const Bytes good = builder.build();
    const int sound = makeAll(good);
    EXPECT_GT(sound, 40);
    int worse = 0;
    for (const FieldPlace& field : builder.places()) {
        if ((field.what.compare(0, 4, "map ") == 0) != ofMaps) continue;
        for (const Bytes& mutant : mutants(good, field)) {
            SCOPED_TRACE(field.what);
            worse += makeAll(mutant) < sound;
        }
    }
    if (!ofMaps) {
        EXPECT_GT(worse, 150) << "most of it does harm";
    }
}

TEST(HostileFile, EachFieldOfHeaderContentsAndRecords) {
    sweep(false);
}
TEST(HostileFile, EachWordOfTheMaps) {
    sweep(true);
}

TEST(HostileFile, CutAtAndAroundEachRecord) {
    ConvmapBuilder builder = smallWorld();
    const Bytes good = builder.build();
    for (const std::size_t edge : builder.edges())
        for (const std::ptrdiff_t shift : {-1, 0, 1}) {
            const auto size = static_cast<std::ptrdiff_t>(edge) + shift;
            if (size > static_cast<std::ptrdiff_t>(good.size())) continue;
            makeAll(Bytes(good.begin(), good.begin() + size));
        }
}

TEST(HostileFile, RandomDamage) {
    ConvmapBuilder builder = smallWorld();
    const Bytes good = builder.build();
    std::mt19937 random{23};
    const std::vector<FieldPlace>& places = builder.places();
    for (int round = 0; round < 200; ++round) {
        Bytes file = good;
        for (unsigned i = 0; i < 1 + random() % 6; ++i) {
            const FieldPlace& field = places[random() % places.size()];
            const std::size_t place = field.offset + random() % field.width;
            const auto letter = static_cast<unsigned char>("0123456789- x"[random() % 13]);
            file[place] = field.text ? letter : static_cast<unsigned char>(random() % 256);
        }
        makeAll(file);
    }
}

// Any two entries may share a record, and any record may be taken for any other.
TEST(HostileFile, EntriesThatPointAnywhere) {
    ConvmapBuilder builder = smallWorld();
    const Bytes good = builder.build();
    std::mt19937 random{29};
    for (int round = 0; round < 100; ++round) {
        Bytes file = good;
        for (std::size_t i = 0; i < builder.entryCount(); ++i) {
            const nls::ByteSpan entry{file.data() + 16 + i * 64, 64};
            if (random() % 3 == 0)
                nls::format::putDecimal(entry, nls::format::entry::kOffset,
                                        static_cast<uint32_t>(random() % file.size()));
            if (random() % 8 == 0) nls::format::putDecimal(entry, nls::format::entry::kType, 1 + random() % 4);
        }
        makeAll(file);
    }
}

}  // namespace
