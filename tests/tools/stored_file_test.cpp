// The file form of a stored collation: what is written is read back, and bytes that are no such form are refused with a
// reason, whatever they say of their sizes.
#include "tools/stored/stored_file.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace nls::stored {
namespace {

StoredCollation sample(std::size_t imageSize, std::size_t wordBreakBody, const std::string& text) {
    StoredCollation stored;
    std::memcpy(stored.record.dbCharset, "ISO8859-1", 9);
    std::memset(stored.record.dbCollation, 'c', sizeof stored.record.dbCollation);  // the full width, without a NUL
    stored.record.dbCollKind = 1;
    stored.record.dbImageSize = static_cast<uint32_t>(imageSize);
    for (std::size_t at = 0; at < imageSize; ++at) stored.image.push_back(static_cast<unsigned char>(at * 7));
    if (wordBreakBody != 0) {
        stored.wordBreak.resize(62 + wordBreakBody, 9);
        stored.wordBreak[2] = static_cast<unsigned char>(wordBreakBody & 0xFF);
        stored.wordBreak[3] = static_cast<unsigned char>(wordBreakBody >> 8);
        stored.wordBreakCharset = "shift-jis";
    }
    stored.text = text;
    return stored;
}

TEST(StoredFile, IsReadBack) {
    for (const std::size_t imageSize : {0u, 512u, 1376u, 7352u}) {
        for (const std::size_t body : {0u, 1u, 256u, 65535u}) {
            const StoredCollation want = sample(imageSize, body, body == 1 ? "" : "A text, \xC3\xA4");
            const Bytes bytes = toFileForm(want);
            std::string trouble;
            const std::optional<StoredCollation> got = fromFileForm(bytes, trouble);
            ASSERT_TRUE(got) << trouble;
            EXPECT_EQ(charsetOf(got->record), "ISO8859-1");
            EXPECT_EQ(collationOf(got->record), std::string(32, 'c'));
            EXPECT_EQ(caseOf(got->record), "");
            EXPECT_EQ(got->image, want.image);
            EXPECT_EQ(got->wordBreak, want.wordBreak);
            EXPECT_EQ(got->text, want.text);
            EXPECT_EQ(got->wordBreakCharset, want.wordBreakCharset);
            EXPECT_EQ(toFileForm(*got), bytes);
        }
    }
}

TEST(StoredFile, RefusesEveryOtherLength) {
    const Bytes bytes = toFileForm(sample(512, 256, "text"));
    std::string trouble;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));  // its end is watched
        ASSERT_FALSE(fromFileForm(cut, trouble)) << size;
        ASSERT_FALSE(trouble.empty());
    }
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_FALSE(fromFileForm(longer, trouble));
}

// A damaged head or word-break table is refused, or tells something else that is a form in itself.
TEST(StoredFile, DamageIsRefusedOrHarmless) {
    const Bytes bytes = toFileForm(sample(0, 256, "text"));
    std::mt19937 random(7);
    std::size_t refused = 0;
    for (int round = 0; round < 100000; ++round) {
        Bytes damaged = bytes;
        for (unsigned changes = 1 + random() % 4; changes != 0; --changes) {
            const unsigned char value = random() % 2 == 0 ? 0xFF : static_cast<unsigned char>(random());
            damaged[random() % damaged.size()] = value;
        }
        std::string trouble;
        const std::optional<StoredCollation> got = fromFileForm(damaged, trouble);
        refused += got ? 0U : 1U;
        EXPECT_EQ(got.has_value(), trouble.empty());
        if (got) {
            EXPECT_EQ(toFileForm(*got).size(), damaged.size());
        }
    }
    EXPECT_GT(refused, 10000U);
}

}  // namespace
}  // namespace nls::stored
