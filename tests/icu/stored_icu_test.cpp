// Collations of ICU's that a database has stored: opened again they answer as the original did, with the strengths that
// the database gave them and the versions of the ICU that is loaded.
#include <random>

#include "icu/image.hpp"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/words.hpp"
#include "tests/support/stored_world.hpp"

namespace nls::test {
namespace {

constexpr std::size_t kVersions = 16, kStrength = 48, kFoldMap = 256;

class StoredIcu : public testing::Test {
protected:
    StoredBytes stored(const char* collation, int32_t format) {
        nlsLocale* made = nullptr;
        EXPECT_EQ(nlsCreateLocale(first.handle, "UTF-8", collation, "basic", &made), NLS_OK) << collation;
        original = made;
        return storedOf(*made, format);
    }
    void putWord(StoredBytes& to, std::size_t map, const std::string& word) {
        std::copy(word.begin(), word.end(), to.image.begin() + static_cast<std::ptrdiff_t>(map + kStrength));
    }

    OpenHandle first{storedWorld()}, second{storedWorld()};
    const nlsLocale* original = nullptr;
};

TEST_F(StoredIcu, AnswersAsTheOriginal) {
    for (const char* const name : {"ICU-UCA", "ICU_48-sv", "ICU_48-de@phonebook", "ICU-es__TRADITIONAL"})
        for (const int32_t format : {5, 6}) {
            StoredBytes from = stored(name, format);
            for (const std::size_t map : {std::size_t{0}, kFoldMap}) {
                EXPECT_EQ(std::count(&from.image[map], &from.image[map + 8], 0), 8) << "no address is stored";
                std::fill_n(&from.image[map], 8, static_cast<unsigned char>(0xE7));
                std::fill_n(&from.image[map + kVersions], 8, static_cast<unsigned char>(99));
            }
            from.text = "text";
            const StoredLocale opened{second.handle, from};
            ASSERT_EQ(opened.status, NLS_OK) << name;
            EXPECT_EQ(std::memcmp(opened.locale->coll->exactMap + kVersions, original->coll->exactMap + kVersions, 240),
                      0);
            EXPECT_EQ(std::memcmp(opened.locale->coll->foldMap + kVersions, original->coll->foldMap + kVersions, 240),
                      0);
            ThreadBlock mine, its;
            for (const uint16_t mode : std::initializer_list<uint16_t>{0, 1, 4, 6}) {
                const std::vector<std::string> all = words();
                for (std::size_t i = 0; i < all.size(); ++i) {
                    const std::string& other = all[(i * 7 + 3) % all.size()];
                    ASSERT_EQ(compare(opened.locale, its.get(), all[i], other, mode),
                              compare(original, mine.get(), all[i], other, mode));
                    ASSERT_EQ(keyOf(opened.locale, nullptr, all[i], mode), keyOf(original, nullptr, all[i], mode));
                }
            }
        }
}

TEST_F(StoredIcu, KeepsTheStrengthsOfTheDatabase) {
    StoredBytes from = stored("ICU-sv", 5);
    putWord(from, 0, std::string("PRIMARY\0", 8));
    putWord(from, kFoldMap, std::string("TERTIARY\0", 9));
    const StoredLocale opened{second.handle, from};
    ASSERT_EQ(opened.status, NLS_OK);
    EXPECT_EQ(compare(opened.locale, nullptr, "a", "A", 1), 0);
    EXPECT_EQ(compare(opened.locale, nullptr, "a", "A", 0), -1);
    StoredBytes none = stored("ICU-sv", 5);
    putWord(none, 0, std::string(1, '\0'));
    putWord(none, kFoldMap, std::string(1, '\0'));
    const StoredLocale usual{second.handle, none};
    EXPECT_EQ(compare(usual.locale, nullptr, "a", "A", 1), -1);
    EXPECT_EQ(compare(usual.locale, nullptr, "a", "A", 0), 0);
}

// The size told counts no padding between ICU's record and the text, which may so reach into the end of the name.
TEST_F(StoredIcu, NamesThatTheTextReachesAreRefused) {
    const StoredBytes plain = stored("ICU-sv", 6);
    EXPECT_EQ((StoredLocale{second.handle, plain}.size), 1120U);
    int refused = 0;
    for (const unsigned body : {256U, 259U, 261U})
        for (uint32_t length = 0; length <= 9; ++length)
            for (std::size_t named = 8; named <= 32; ++named) {
                StoredBytes from = plain;
                from.text = std::string(length, 't');
                from.words.assign(body + 62, 0);
                from.words[0] = 9;
                from.words[2] = static_cast<unsigned char>(body);
                from.words[3] = 1;
                from.words[4] = 62;
                std::string name = "ICU-en_US_";
                name.resize(named, 'X');
                std::fill(std::begin(from.record.dbCollation), std::end(from.record.dbCollation), '\0');
                std::copy(name.begin(), name.end(), from.record.dbCollation);
                const StoredLocale opened{second.handle, from};
                const uint32_t record = (736 + body + 62 + 7) / 8 * 8;
                EXPECT_EQ(opened.size, (736 + body + 62 + length + 1 + 7) / 8 * 8 + 64);
                const std::size_t kept = std::min<std::size_t>(named, 31) - 4 + 1;
                const bool reached = record + 32 + kept > opened.size - length - 1;
                ASSERT_EQ(opened.status, reached ? NLS_NO_COLL_TABLE : NLS_OK) << name << " " << length;
                refused += reached ? 1 : 0;
                if (reached) continue;
                EXPECT_STREQ(reinterpret_cast<const char*>(opened.locale->dbCollationName), from.text.c_str());
                EXPECT_STREQ(IcuImage{opened.locale->coll->exactMap}.info()->nameText,
                             name.substr(4, kept - 1).c_str());
            }
    EXPECT_GT(refused, 2);
}

TEST_F(StoredIcu, DamagedRecordsHarmNobody) {
    const Bytes seed = stored("ICU_48-de@phonebook", 5).toBytes();
    std::mt19937 random{5};
    int accepted = 0;
    for (int i = 0; i < 1500; ++i) {
        Bytes bytes = seed;
        for (auto left = 1 + random() % 4; left > 0; --left) {
            const std::size_t places[] = {StoredBytes::kHead + random() % 512, 36 + random() % 32,
                                          random() % seed.size()};
            bytes[places[random() % 3]] = static_cast<unsigned char>(random());
        }
        if (i % 5 == 0)  // a strength without an end
            for (const std::size_t map : {std::size_t{0}, kFoldMap})
                std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(StoredBytes::kHead + map + kStrength), 208,
                            'Y');
        const StoredLocale opened{second.handle, StoredBytes::of(bytes)};
        if (opened.locale == nullptr) continue;
        ++accepted;
        answersOf(opened.locale, "ab");
    }
    EXPECT_GT(accepted, 500);
}

}  // namespace
}  // namespace nls::test
