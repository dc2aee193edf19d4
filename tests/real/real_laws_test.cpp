// What makes an order of every collation, of the file and derived: opposite signs of exchanged texts, keys that sort as
// their texts, from which it follows that the order is transitive, limits that read as cut copies, and folding that
// parts nothing that is the same. Texts are of real characters of each charset; they begin alike and end in blanks.
// Characters with which these laws needn't hold are left out.
#include <random>
#include <set>

#include "tests/real/order_alphabet.hpp"

namespace nls::real {
namespace {

constexpr uint16_t kFold = 0, kExact = 1;

class Laws {
public:
    Laws(const std::string& charset, const std::string& collation, const nlsLocale* locale)
        : locale_(locale), title_(charset + " " + collation), alphabet_(charset, *locale) {}

    void run() {
        for (unsigned round = 0; round < 6 && !testing::Test::HasFailure(); ++round) {
            takeTexts();
            for (const Bytes& a : texts_)
                for (const Bytes& b : texts_) holdPair(a, b);
        }
    }

private:
    void takeTexts() {
        std::vector<Character> few;
        while (few.size() < 6) few.push_back(alphabet_.any(random_, false));
        const auto extend = [&](Bytes& text, std::size_t count) {
            for (; count > 0; --count) {
                const Bytes& one = few[random_() % few.size()].bytes;
                text.insert(text.end(), one.begin(), one.end());
            }
        };
        const bool hasBlank = locale_->attrib->lengthMap[unsigned{' '}] == 0;
        Bytes start;
        extend(start, random_() % 40);
        texts_.assign(24, start);
        for (Bytes& text : texts_) {
            extend(text, random_() % 4);
            text.insert(text.end(), hasBlank ? random_() % 3 : 0, static_cast<unsigned char>(' '));
            text.push_back(0);
        }
    }

    int whole(const Bytes& a, const Bytes& b, uint16_t mode) const {
        uint16_t result = 0x5555;
        EXPECT_EQ(nlsCompare(locale_, nullptr, a.data(), b.data(), mode, &result), NLS_OK) << title_;
        return static_cast<int16_t>(result);
    }
    int limited(const Bytes& a, std::size_t endA, const Bytes& b, std::size_t endB, uint16_t mode) const {
        const auto sizeA = static_cast<int32_t>(endA), sizeB = static_cast<int32_t>(endB);
        uint16_t result = 0x5555;
        EXPECT_EQ(nlsCompareN(locale_, nullptr, a.data(), b.data(), sizeA, sizeB, mode, &result), NLS_OK) << title_;
        return static_cast<int16_t>(result);
    }
    static Bytes cutAt(Bytes text, std::size_t size) {
        text.resize(size);
        text.push_back(0);
        return text;
    }
    Bytes keyOf(const Bytes& text, uint16_t mode) const {
        Bytes key(1024, kFill);
        uint16_t size = 0;
        EXPECT_EQ(nlsSortKey(locale_, nullptr, text.data(), 1024, mode, 1, key.data(), &size), NLS_OK) << title_;
        EXPECT_EQ(key[size], 0) << title_;
        key.resize(size);
        return key;
    }

    void holdPair(const Bytes& a, const Bytes& b) {
        for (const uint16_t mode : {kFold, kExact}) {
            const int sign = whole(a, b, mode);
            const auto told = [&] {
                return title_ + ", mode " + std::to_string(mode) + testing::PrintToString(a) +
                       testing::PrintToString(b);
            };
            ASSERT_EQ(whole(b, a, mode), -sign) << told();
            ASSERT_TRUE(mode == kFold || sign != 0 || whole(a, b, kFold) == 0) << told();
            const std::size_t endA = random_() % a.size(), endB = random_() % b.size();
            ASSERT_EQ(limited(a, a.size() - 1, b, b.size() - 1, mode), sign) << told();
            ASSERT_EQ(limited(a, endA, b, endB, mode), whole(cutAt(a, endA), cutAt(b, endB), mode))
                << told() << " at " << endA << " " << endB;
            const auto order = keyOf(a, mode) <=> keyOf(b, mode);
            ASSERT_EQ((order > 0) - (order < 0), sign) << told();
        }
    }

    const nlsLocale* locale_;
    std::string title_;
    Alphabet alphabet_;
    std::mt19937 random_{static_cast<unsigned>(std::hash<std::string>{}(title_))};
    std::vector<Bytes> texts_;
};

TEST(Laws, OfEveryOrder) {
    RealFile& file = RealFile::shared();
    std::set<std::string> names;
    for (const auto& [charset, name] : file.collations()) names.insert(name);
    std::size_t orders = 0;
    for (const Name& charset : file.charsets())
        for (const std::string& name : names) {
            const nlsLocale* locale = file.find(charset.text, name.c_str(), "basic");
            if (locale == nullptr) locale = file.find(charset.text, name.c_str(), nullptr);
            if (locale == nullptr) continue;
            ++orders;
            Laws{charset.text, name, locale}.run();
            if (HasFailure()) return;
        }
    EXPECT_GE(orders, file.collations().size());
}

}  // namespace
}  // namespace nls::real
