// Threads: each with a block of its own gets the answers that one alone gets, under the guard of the packs, and gives
// back what it opens; a collator that two of them share is found out. The thread sanitizer's build runs this.
#define NLS_ICU_FOLDER NLS_ICU_GUARDED_PACKS
#include <sys/wait.h>
#include <unistd.h>

#include <barrier>
#include <csignal>
#include <memory>
#include <thread>

#include "tests/icu/guard.hpp"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/words.hpp"

namespace nls {
namespace {

constexpr unsigned kThreads = 8;
constexpr const char* kNames[] = {"ICU-sv", "ICU_48-de@phonebook", "ICU_48-ja", "ICU-th"};

// Signs and keys of some words under a locale, by a block of its own.
std::string answers(const nlsLocale* locale) {
    const std::vector<std::string> words = test::words();
    test::ThreadBlock block;
    std::string all;
    for (std::size_t i = 0; i < words.size(); ++i) {
        for (const uint16_t mode : {uint16_t{0}, uint16_t{1}, uint16_t{4}}) {
            all += test::keyOf(locale, block.get(), words[i], mode, 200) + '\n';
            for (std::size_t j = i % 7; j < words.size(); j += 7)
                all += static_cast<char>('1' + test::compare(locale, block.get(), words[i], words[j], mode));
        }
    }
    return all;
}

TEST(IcuThreads, AnswerAsOneDoesAndGiveBackWhatTheyOpen) {
    test::IcuWorld world;
    std::vector<const nlsLocale*> locales;
    std::vector<std::string> alone;
    for (const char* const name : kNames) {
        locales.push_back(world.locale(name));
        alone.push_back(answers(locales.back()));
    }
    const test::GuardCount base{icuarray[0], kI18nLibrary}, newer{icuarray[1], kI18nLibrary};
    const test::GuardCount converters{icuarray[0], kCommonLibrary};
    std::barrier start{std::ptrdiff_t{kThreads}};
    std::vector<std::jthread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            for (std::size_t i = 0; i < locales.size(); ++i) {
                const std::size_t which = (i + thread) % locales.size();
                EXPECT_EQ(answers(locales[which]), alone[which]) << kNames[which];
            }
        });
    threads.clear();
    EXPECT_EQ(base.opened() + newer.opened(),
              kThreads * long{std::size(kNames)});  // once for each thread and collation
    EXPECT_EQ(base.open(), 0);
    EXPECT_EQ(newer.open(), 0);
    const long words = static_cast<long>(test::words().size());
    EXPECT_GT(converters.opened(), kThreads * words);  // once for each call
    EXPECT_EQ(converters.open(), 0);
}

TEST(IcuThreads, WithoutBlocksOfTheirOwnAreFoundOut) {
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stderr) == nullptr) _exit(0);
        test::IcuWorld world;
        const nlsLocale* const locale = world.locale("ICU-sv");
        const std::string text(1900, 'x');
        std::vector<std::jthread> threads;
        for (unsigned thread = 0; thread < 2; ++thread)
            threads.emplace_back([&] {
                for (unsigned i = 0; i < 1'000'000; ++i) test::compare(locale, nullptr, text + 'a', text + 'b', 1);
            });
        threads.clear();
        _exit(0);
    }
    int state = 0;
    ASSERT_EQ(waitpid(child, &state, 0), child);
#ifdef __SANITIZE_THREAD__
    EXPECT_NE(state, 0);  // it may be the first to find them
#else
    EXPECT_TRUE(WIFSIGNALED(state) && WTERMSIG(state) == SIGABRT) << state;
#endif
}

}  // namespace
}  // namespace nls
