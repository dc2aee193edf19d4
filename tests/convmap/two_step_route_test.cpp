// Routes against a plain search that takes the entries pair by pair.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "convmap/two_step_route.hpp"

namespace {

using nls::NamePair;

nlsTocEntry conversion(const std::string& from, const std::string& to) {
    nlsTocEntry entry = {};
    from.copy(entry.name1, 19);
    to.copy(entry.name2, 19);
    entry.entryType = 1;
    return entry;
}

struct Pair {
    int first = -1, second = -1;
    bool operator==(const Pair&) const = default;
};

// `side` is 's' or 't': the side whose entries are taken in order.
Pair plainSearch(const std::vector<nlsTocEntry>& toc, const std::string& from, const std::string& to, char side) {
    const int count = static_cast<int>(toc.size());
    const auto at = [&](int i) -> const nlsTocEntry& { return toc[static_cast<std::size_t>(i)]; };
    for (int outer = 0; outer < count; ++outer)
        for (int inner = 0; inner < count; ++inner) {
            const int e = side == 's' ? outer : inner, f = side == 's' ? inner : outer;
            if (at(e).entryType == 1 && at(f).entryType == 1 && at(e).name1 == from && at(f).name2 == to &&
                std::string(at(e).name2) == at(f).name1)
                return {e, f};
        }
    return {};
}

Pair found(std::vector<nlsTocEntry>& toc, NamePair pair) {
    const nls::TwoStepRoute route = nls::findTwoStepRoute(nls::Contents{toc}, pair);
    if (!route.found()) return {};
    return {static_cast<int>(route.first - toc.data()), static_cast<int>(route.second - toc.data())};
}

TEST(TwoStepRoute, IsTheFirstPairOfThePlainSearch) {
    std::mt19937 random{5};
    const std::string names[] = {"A", "B", "C", "UTF-8", "UTF-16LE", "UCS2"};
    int routes = 0;
    for (int round = 0; round < 3000; ++round) {
        std::vector<nlsTocEntry> toc;
        for (unsigned i = 0; i < 3 + random() % 12; ++i) {
            toc.push_back(conversion(names[random() % 6], names[random() % 6]));
            if (random() % 8 == 0) toc.back().entryType = 4;
        }
        for (const char* const unicode : {"UTF-8", "UTF-16LE", "UCS2"})
            for (const char* const other : {"A", "B"}) {
                const Pair there = plainSearch(toc, unicode, other, 's'), back = plainSearch(toc, other, unicode, 't');
                EXPECT_EQ(found(toc, {unicode, other}), there);
                EXPECT_EQ(found(toc, {other, unicode}), back);
                routes += (there.first >= 0) + (back.first >= 0);
            }
    }
    EXPECT_GT(routes, 1000);
}

TEST(TwoStepRoute, TheSideThatIsSearchedFromGoesByTheOrderOfThePrefixes) {
    // Two routes between two Unicode charsets; each side meets another of them first.
    std::vector<nlsTocEntry> toc = {conversion("UTF-16", "A"),  conversion("B", "UTF-8"),   conversion("A", "UTF-8"),
                                    conversion("UTF-16", "B"),  conversion("UCS2", "B"),    conversion("UCS2", "A"),
                                    conversion("A", "UTF-32X"), conversion("B", "UTF-32X"), conversion("UTF-8", "A"),
                                    conversion("A", "X"),       conversion("X", "A")};
    const struct {
        const char* why;
        NamePair pair;
        Pair want;
    } rows[] = {
        {"UTF-8 comes before UTF-16: from the target", {"UTF-16", "UTF-8"}, {3, 1}},
        {"UCS2 comes before UTF-32: from the source", {"ucs2", "utf-32x"}, {4, 7}},
        {"a prefix is enough, in any case", {"utf-8", "x"}, {8, 9}},
        {"no Unicode name, no route", {"B", "X"}, {}},
        {"a name that only holds a prefix", {"XUTF-8", "A"}, {}},
    };
    for (const auto& row : rows) EXPECT_EQ(found(toc, row.pair), row.want) << row.why;
}

}  // namespace
