#include "strings/like.hpp"

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <random>

#include "core/base/cpu.hpp"
#include "nls/strings.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/like_worlds.hpp"

namespace {

using nls::CpuLevel;
using nls::test::bytesOf;
using nls::test::CollatedLocale;
using nls::test::GuardedBuffer;
using nls::test::LikeSet;
using nls::test::LikeWorld;
using nls::test::LikeWorlds;

constexpr std::size_t kLong = 100'000;
constexpr LikeSet kUsual{'\\', '_', '%'};

int32_t like(const nlsLocale* locale, const unsigned char* pattern, const unsigned char* text, uint16_t mode,
             LikeSet signs) {
    return nlsSqlLike(locale, nullptr, pattern, text, mode, signs.escape, signs.single, signs.multi);
}

class Like : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }

    // Beside the model, with a faulting page behind both texts; then with letters behind the end of a text that goes on
    // in another page, and of one that doesn't.
    void expect(const LikeWorld& world, const std::string& pattern, const std::string& text, unsigned mode,
                LikeSet signs) {
        const auto compareMode = static_cast<uint16_t>(mode);
        const unsigned char* const p = patterns_.atEnd(pattern.c_str(), pattern.size() + 1);
        const unsigned char* const t = texts_.atEnd(text.c_str(), text.size() + 1);
        const auto amongLetters = [&](unsigned char* place) {
            std::memset(place + text.size(), 'a', 2 * kBlock);
            return static_cast<unsigned char*>(std::memcpy(place, text.c_str(), text.size() + 1));
        };
        const unsigned char* const across = amongLetters(acrossPages_.atStart() + kPage - text.size() / 2);
        const unsigned char* const inside = amongLetters(acrossPages_.atStart());
        const nls::reference::Like model{world.locale, compareMode, signs.escape, signs.single, signs.multi};
        const int32_t want = model(p, t);
        for (const unsigned char* const place : {t, across, inside})
            ASSERT_EQ(like(world.locale, p, place, compareMode, signs), want)
                << world.name << ": " << testing::PrintToString(text) << " like " << testing::PrintToString(pattern)
                << " in mode " << mode << std::hex << ", signs " << signs.escape << " " << signs.single << " "
                << signs.multi
                << (place == t        ? ", at the end"
                    : place == across ? ", across"
                                      : ", inside")
                << " of a page";
        ++seen_[want + 1];
    }

    static constexpr std::size_t kPage = 4096, kBlock = 64;
    LikeWorlds worlds_;
    GuardedBuffer patterns_{kPage}, texts_{kPage}, acrossPages_{2 * kPage};
    unsigned seen_[64] = {};
};
INSTANTIATE_TEST_SUITE_P(Levels, Like, testing::Values(CpuLevel::baseline, CpuLevel::avx512));

TEST(LikeDoor, Verdicts) {
    const struct {
        const char *text, *pattern;
        int32_t want;
    } rows[] = {
        {"abc", "abc", 1},  {"abc", "ab", 0},    {"ab", "abc", 0},    {"abc", "a%", 1},      {"abc", "%c", 1},
        {"abc", "%b%", 1},  {"abc", "a_c", 1},   {"abc", "a_", 0},    {"", "%", 1},          {"", "", 1},
        {"", "_", 0},       {"", "%%", 0},       {"a", "a%", 1},      {"a", "a%%", 0},       {"ab", "ab ", 0},
        {"ab ", "ab", 0},   {"", " ", 1},        {" ", "", 1},        {"  ", "", 0},         {"5%", "5\\%", 1},
        {"5x", "5\\%", 0},  {"ax", "a\\x", -1},  {"bx", "a\\x", 0},   {"ax", "%\\x", 0},     {"ab", "a\\", -1},
        {"a", "a\\", 0},    {"ABC", "a%c", 1},   {"\\", "\\\\", 1},   {"a", "_ ", 1},        {"ba", "%_ ", 1},
        {"ba", "%a_ %", 0}, {"bac", "%a_ %", 1}, {"a_b", "%\\_b", 1}, {"axb", "%\\_b", 0},   {"aab", "%ab", 1},
        {"ss", "\xDF", 0},  {"\xDF", "ss", 0},   {"\xDF", "\xDF", 1}, {"aXbXc", "%x%x%", 1},
    };
    CollatedLocale locale{nls::test::singleByteCharset(), nls::test::plainCollation()};
    for (const auto& row : rows)
        EXPECT_EQ(like(locale.get(), bytesOf(row.pattern), bytesOf(row.text), 0, kUsual), row.want)
            << row.text << " like " << row.pattern;
    EXPECT_EQ(like(locale.get(), bytesOf("a%c"), bytesOf("ABC"), 1, kUsual), 0);
}

// Seldom met by chance: what the quick ways must leave to the comparison itself.
TEST_P(Like, CharactersThatOnlyTheComparisonKnows) {
    expect(worlds_.at("longer characters in a single-byte charset, kind 1"), "ba", "bA", 0, kUsual);
    expect(worlds_.at("utf8, no table, kind 3"), "?", "\xF9\x80\x80\x80\x80", 0, {'\\', '_', '%'});
    expect(worlds_.at("utf8, no table, kind 3"), "\xF9\x80\x80\x80\x80", "\xF8\x81\x80\x80\x80", 0, kUsual);
    expect(worlds_.at("utf8, first bytes alone, kind 3"), "%a", "b\xC1", 0, kUsual);
    expect(worlds_.at("shift-jis"), "%\x81 ", "x\x81", 0, kUsual);
    expect(worlds_.at("shift-jis"), "%\xDF_", "as", 0, kUsual);
    expect(worlds_.at("shift-jis"), "a_", "a\x81", 0, kUsual);
    expect(worlds_.at("utf8, a letter with a trailing byte, kind 3"), "%x_b", "xsab", 1, kUsual);
    for (const unsigned mode : {0U, 1U})
        expect(worlds_.at("utf8, odd lengths, kind 3"), "%x__b",
               "x\xC4\xB0"
               "b",
               mode, kUsual);
    expect(worlds_.at("utf8, own ASCII, kind 3"), "%b",
           "\xC3\xA9"
           "A",
           0, kUsual);
    EXPECT_EQ(seen_[2], 10U);
}

// At the beginning of a text, at its end, and at the end of a long one.
TEST_P(Like, CharactersThatFewAreEqualTo) {
    const struct {
        const char *world, *literal, *text;
    } rows[] = {
        {"shift-jis, crowded, kind 1", "a", "\xE0 "},  // a blank behind what weighs as the letter
        {"shift-jis, crowded, kind 1", "\xE0 ", "a"},
        {"shift-jis, crowded, kind 1", "a", "\xE0"},      // a first byte alone
        {"shift-jis, crowded, kind 1", "\x81s", "\xDF"},  // an expansion beside its two letters
        {"shift-jis, crowded, kind 1", "\xDF", "\x81s"},
        {"utf8, kind 3", "i", "\xC4\xB0"},  // forms on another page, and of another length
        {"utf8, kind 3", "\xD1\x80", "\xD0\xA0"},
        {"utf8, kind 3", "\xEF\xBD\x81", "\xEF\xBC\xA1"},
        {"utf8, kind 3", "c", "\xC3"},  // a first byte alone
        {"utf8, first bytes alone, kind 3", "a", "\xC1"},
        {"utf8, kind 3", "?", "\xF9\x80\x80\x80\x80"},
    };
    for (const auto& row : rows) {
        const LikeWorld& world = worlds_.at(row.world);
        const std::string literal = row.literal;
        seen_[2] = 0;
        expect(world, literal, row.text, 0, kUsual);
        expect(world, '%' + literal, std::string("x") + row.text, 0, kUsual);
        expect(world, '%' + literal + '%', std::string(100, 'x') + row.text, 0, kUsual);
        EXPECT_EQ(seen_[2], 3U) << row.world << ": " << testing::PrintToString(literal);
    }
}

TEST(LikeDoor, ChecksInTheirOrder) {
    CollatedLocale made{nls::test::singleByteCharset(), nls::test::plainCollation()};
    nlsLocale& locale = *made.get();
    const auto answer = [](const nlsLocale* by, const unsigned char* pattern, const unsigned char* text) {
        return like(by, pattern, text, 2, kUsual);
    };
    const std::string letter = "a";
    const unsigned char* const text = bytesOf(letter);
    EXPECT_EQ(answer(&locale, text, text), NLS_BAD_COMPARE_MODE);
    EXPECT_EQ(answer(&locale, bytesOf("_"), text), 1);
    locale.coll = nullptr;
    EXPECT_EQ(answer(&locale, text, text), NLS_BAD_COLLATION);
    EXPECT_EQ(answer(&locale, bytesOf("%"), text), 1);
    EXPECT_EQ(answer(&locale, bytesOf("%a"), text), 0);
    EXPECT_EQ(answer(&locale, nullptr, text), NLS_BAD_ARG);
    EXPECT_EQ(answer(&locale, text, nullptr), NLS_BAD_ARG);
    locale.attrib = nullptr;
    EXPECT_EQ(answer(&locale, nullptr, text), NLS_NO_ATTRIB);
    locale.hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(answer(&locale, nullptr, text), NLS_BAD_LOCALE);
    locale.owner->hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(answer(&locale, nullptr, text), NLS_BAD_HANDLE);
    EXPECT_EQ(answer(nullptr, nullptr, text), NLS_BAD_HANDLE);
}

// Every pattern of up to five bytes against every text of up to four.
TEST_P(Like, AllShortPatterns) {
    for (const char* const name : {"single", "shift-jis"}) {
        const LikeWorld& world = worlds_.at(name);
        nls::test::forAllStrings("aB _%\\", name[1] == 'i' ? 5 : 4, [&](const std::string& pattern) {
            nls::test::forAllStrings("aB ", 4, [&](const std::string& text) {
                for (const LikeSet signs : {kUsual, LikeSet{'_', '_', '%'}}) expect(world, pattern, text, 0, signs);
            });
        });
    }
    EXPECT_NE(seen_[0], 0U);
    EXPECT_NE(seen_[2], 0U);
}

std::string pieces(std::mt19937& random, const std::vector<std::string>& from, std::size_t longest,
                   const std::string& often) {
    std::string text;
    for (std::size_t left = random() % (longest + 1); left != 0; --left)
        text += random() % 3 == 0 ? often.substr(random() % often.size(), 1) : from[random() % from.size()];
    return text;
}

TEST_P(Like, RandomPatternsInEveryWorld) {
    std::mt19937 random{11};
    for (const LikeWorld& world : worlds_.all()) {
        for (unsigned round = 0; round < 12'000; ++round) {
            const LikeSet signs = round % 2 == 0 ? kUsual : world.signs[random() % world.signs.size()];
            const auto piece = [&] { return world.pieces[random() % world.pieces.size()]; };
            const std::vector<std::string> few{piece(), piece(), piece()};
            const bool isLikely = round % 4 < 2;  // that the pattern fits
            const auto& from = isLikely ? few : world.pieces;
            const std::string pattern = (isLikely ? "%" : "") + pieces(random, from, 7, "a_%%" + few[0]);
            const std::string text = pieces(random, from, 9, "aaA " + few[0]);
            const auto mode = static_cast<uint16_t>(random() % 8 == 0 ? 2 : random() % 2);
            expect(world, pattern, text, mode, signs);
            if (HasFatalFailure()) return;
        }
    }
    for (const int want : {-1, 0, 1, int{NLS_BAD_COMPARE_MODE}, int{NLS_BAD_COLLATION}, int{NLS_NO_SJIS}})
        EXPECT_NE(seen_[want + 1], 0U) << want;
}

// A part of the text as a pattern: some characters in the other case, wildcards or changed, signs escaped.
std::string partAsPattern(std::mt19937& random, const std::string& text) {
    const std::size_t begin = random() % (text.size() + 1), count = random() % (text.size() - begin + 1);
    std::string pattern;
    for (const char c : text.substr(begin, random() % 4 == 0 ? count : std::min(count, random() % 6))) {
        const unsigned draw = static_cast<unsigned>(random() % 64);
        if (draw == 0)
            pattern += 'b';
        else if (draw < 8)
            pattern += '_';
        else if (c == '%' || c == '_')
            pattern += {'\\', c};
        else
            pattern += draw < 16 ? static_cast<char>(c ^ 0x20) : c;
    }
    return pattern;
}

// Several blocks of text, and pages that end in the midst of them.
TEST_P(Like, LongTextsAndSegments) {
    std::mt19937 random{5};
    for (const char* const name : {"single", "single, crowded", "shift-jis", "utf8, kind 3", "euc"}) {
        const LikeWorld& world = worlds_.at(name);
        for (unsigned round = 0; round < 1500; ++round) {
            std::string text = pieces(random, {"a", "a", "b", "%", " "}, round % 3 == 0 ? 260 : 70, "aaaaaaA");
            if (round % 5 == 0) text.insert(random() % (text.size() + 1), pieces(random, world.pieces, 4, "a"));
            std::string pattern = partAsPattern(random, text);
            for (unsigned parts = random() % 4; parts != 0; --parts) pattern += '%' + partAsPattern(random, text);
            expect(world, pattern, text, random() % 2, kUsual);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GT(seen_[2], 500U);
}

// What a segment begins with is rare, and all around it stand characters of every kind, cut and broken ones too.
TEST_P(Like, RareSegmentsInLongTexts) {
    std::mt19937 random{17};
    for (const LikeWorld& world : worlds_.all()) {
        for (unsigned round = 0; round < 400; ++round) {
            const auto piece = [&] { return world.pieces[random() % world.pieces.size()]; };
            const std::vector<std::string> few{piece(), piece()};
            const std::string text = pieces(random, few, 150, few[0] + 'x') + pieces(random, world.pieces, 3, "a") +
                                     pieces(random, few, 9, "x");
            const std::string pattern = '%' + pieces(random, world.pieces, 3, "x_") + (round % 3 == 0 ? "" : "%");
            expect(world, pattern, text, random() % 2, kUsual);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GT(seen_[2], 500U);
}

// One place in a text of several blocks, and every place.
TEST_P(Like, SegmentsAtEveryPlace) {
    for (const char* const name : {"single", "shift-jis"}) {
        const LikeWorld& world = worlds_.at(name);
        for (const std::size_t length : {1U, 2U, 31U, 33U, 62U, 70U}) {
            const std::string segment = std::string(length - 1, 'a') + 'b';
            for (std::size_t place = 0; place < 200; ++place) {
                const std::string text = std::string(place, 'a') + segment + std::string(place % 7, 'x');
                const unsigned char* const at = texts_.atEnd(text.c_str(), text.size() + 1);
                const auto verdict = [&](const std::string& pattern) {
                    return like(world.locale, bytesOf(pattern), at, 0, kUsual);
                };
                ASSERT_EQ(verdict('%' + segment + '%'), 1) << name << length << " " << place;
                ASSERT_EQ(verdict('%' + segment), place % 7 == 0 ? 1 : 0) << name << length << " " << place;
            }
        }
    }
}

// Runs `work` on a stack of 64 KiB.
void onSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    pthread_t thread;
    const auto run = [](void* what) -> void* { return (*static_cast<const std::function<void()>*>(what))(), nullptr; };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string& piece, std::size_t count) {
    std::string all;
    while (count-- != 0) all += piece;
    return all;
}

// What costs a recursion its stack, or the age of the universe.
TEST_P(Like, HostilePatternsEnd) {
    for (const char* const name : {"single", "shift-jis", "utf8, kind 3"}) {
        const nlsLocale* const locale = worlds_.at(name).locale;
        const auto verdict = [&](const std::string& pattern, std::size_t letters = kLong) {
            int32_t answer = -7;
            const std::string text(letters, 'A');
            onSmallStack([&] { answer = like(locale, bytesOf(pattern), bytesOf(text), 0, kUsual); });
            return answer;
        };
        EXPECT_EQ(verdict(repeated("%a", 100) + "%b"), 0) << name;
        EXPECT_EQ(verdict(repeated("%a", 100) + "%a"), 1) << name;
        EXPECT_EQ(verdict(std::string(kLong, '%')), 1) << name;
        EXPECT_EQ(verdict(std::string(kLong, '%') + "b"), 0) << name;
        EXPECT_EQ(verdict('%' + std::string(999, 'a') + "b%", 4000), 0) << name;
        EXPECT_EQ(verdict('%' + std::string(999, 'a') + "b"), 0) << name;
        EXPECT_EQ(verdict('%' + std::string(kLong - 1, 'a') + '_'), 1) << name;
        EXPECT_EQ(verdict('%' + repeated("_ ", 40'000)), 0) << name;
    }
}

}  // namespace
