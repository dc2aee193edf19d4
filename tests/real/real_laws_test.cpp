// What makes an order of every collation, of the file and derived: reflexive, antisymmetric and transitive, equal texts
// with it; keys that sort as their texts; limits that read as cut copies; folding that parts nothing that is the same;
// texts that stay as they are. Texts are of real characters of each charset, short ones exhaustively, and blanks.
#include <array>
#include <cctype>
#include <set>

#include "tests/real/order_alphabet.hpp"

namespace nls::real {
namespace {

constexpr uint16_t kFold = 0, kExact = 1;

struct Sample {
    Bytes text;  // with its NUL
    Excuse excuse = kUnexcused;
    Bytes key{};
};

class Laws {
public:
    Laws(const std::string& charset, const std::string& collation, const nlsLocale* locale)
        : locale_(locale), title_(charset + " " + collation), alphabet_(charset, *locale) {}

    // Answers the excuses that were needed.
    std::set<Excuse> run() {
        for (unsigned round = 0; round < 8 && !testing::Test::HasFailure(); ++round) {
            samples_.clear();
            const std::vector<Character> few = chosen(round % 4 >= 2);
            round % 2 == 0 ? takeShort(few) : takeLong(few);
            const std::vector<Sample> given = samples_;
            holdPairs();
            for (const uint16_t mode : {kFold, kExact}) holdKeysAndTriples(mode);
            for (std::size_t i = 0; i < kTexts; ++i) EXPECT_EQ(samples_[i].text, given[i].text) << title_;
        }
        return needed_;
    }

private:
    static constexpr std::size_t kFew = 6, kTexts = 1 + kFew + kFew * kFew;

    // A blank, where it is a character of one byte, and others; half of the rounds do without excuses.
    std::vector<Character> chosen(bool excused) {
        std::vector<Character> few;
        if (locale_->attrib->lengthMap[unsigned{' '}] == 0) few.push_back({{' '}});
        while (few.size() < kFew) {
            few.push_back(alphabet_.any(random_, excused && few.size() % 2 != 0));
            // Second bytes aren't folded: with a letter for one comes its other case.
            if (const Bytes& code = few.back().bytes; code.size() != 2 || std::isalpha(code[1]) == 0) continue;
            few.push_back(few.back());
            few.back().bytes[1] = static_cast<unsigned char>(few.back().bytes[1] ^ 0x20);
        }
        few.resize(kFew);
        return few;
    }

    static void extend(Sample& sample, const Character& by) {
        sample.text.insert(sample.text.end() - 1, by.bytes.begin(), by.bytes.end());
        sample.excuse = std::max(sample.excuse, by.excuse);
    }

    // Each text of up to two characters.
    void takeShort(const std::vector<Character>& few) {
        samples_.push_back({{0}});
        for (std::size_t from = 0; samples_.size() < kTexts; ++from)
            for (const Character& one : few) {
                samples_.push_back(samples_[from]);
                extend(samples_.back(), one);
            }
    }

    // Texts that begin alike and end in blanks.
    void takeLong(const std::vector<Character>& few) {
        Sample start{{0}};
        for (std::size_t left = random_() % 40; left-- > 0;) extend(start, few[random_() % kFew]);
        while (samples_.size() < kTexts) {
            samples_.push_back(start);
            for (std::size_t left = random_() % 5; left-- > 0;) extend(samples_.back(), few[random_() % kFew]);
            for (std::size_t left = random_() % 3; left-- > 0;) extend(samples_.back(), few[0]);
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

    static Bytes firstBytes(const Bytes& text, std::size_t size) {
        Bytes cut(size + 1);
        std::copy_n(text.begin(), size, cut.begin());
        return cut;
    }

    std::string told(std::size_t a, std::size_t b, uint16_t mode) const {
        return title_ + ", mode " + std::to_string(mode) + testing::PrintToString(samples_[a].text) +
               testing::PrintToString(samples_[b].text);
    }

    // The laws of two texts.
    void holdPairs() {
        for (const uint16_t mode : {kFold, kExact})
            for (std::size_t i = 0; i < kTexts; ++i)
                for (std::size_t j = 0; j < kTexts; ++j) {
                    const Bytes &a = samples_[i].text, &b = samples_[j].text;
                    const int sign = signs_[mode][i][j] = whole(a, b, mode);
                    // On the diagonal: nothing but 0 is its own opposite.
                    ASSERT_TRUE(j > i || sign == -signs_[mode][j][i]) << told(i, j, mode);
                    ASSERT_TRUE(mode == kFold || sign != 0 || signs_[kFold][i][j] == 0) << told(i, j, mode);
                    ASSERT_EQ(limited(a, a.size() - 1, b, b.size() - 1, mode), sign) << told(i, j, mode);
                    const std::size_t endA = random_() % a.size(), endB = random_() % b.size();
                    ASSERT_EQ(limited(a, endA, b, endB, mode), whole(firstBytes(a, endA), firstBytes(b, endB), mode))
                        << told(i, j, mode) << " at " << endA << " " << endB;
                }
    }

    void makeKeys(uint16_t mode) {
        constexpr int16_t kRoom = 1024;
        for (Sample& sample : samples_) {
            sample.key.assign(kRoom, kFill);
            uint16_t size = 0;
            ASSERT_EQ(nlsSortKey(locale_, nullptr, sample.text.data(), kRoom, mode, 1, sample.key.data(), &size), 0);
            sample.key.resize(size + std::size_t{1});
            ASSERT_EQ(sample.key.back(), 0) << title_;
        }
    }

    void holdKeysAndTriples(uint16_t mode) {
        makeKeys(mode);
        const auto& sign = signs_[mode];
        for (std::size_t i = 0; i < kTexts; ++i)
            for (std::size_t j = 0; j < kTexts; ++j) {
                const auto order = samples_[i].key <=> samples_[j].key;
                hold((order > 0) - (order < 0) == sign[i][j], {i, j, j}, mode);
                for (std::size_t k = 0; k < kTexts && sign[i][j] <= 0; ++k)
                    if (sign[j][k] <= 0) hold(sign[i][k] == std::min(sign[i][j], sign[j][k]), {i, j, k}, mode);
            }
    }

    void hold(bool held, const std::array<std::size_t, 3>& texts, uint16_t mode) {
        if (held || testing::Test::HasFailure()) return;  // one of them tells enough
        std::size_t excuse = kUnexcused;
        for (const std::size_t text : texts) excuse = std::max<std::size_t>(excuse, samples_[text].excuse);
        needed_.insert(static_cast<Excuse>(excuse));
        EXPECT_NE(excuse, kUnexcused) << told(texts[0], texts[1], mode)
                                      << testing::PrintToString(samples_[texts[2]].text);
    }

    const nlsLocale* locale_;
    std::string title_;
    Alphabet alphabet_;
    std::mt19937 random_{static_cast<unsigned>(std::hash<std::string>{}(title_))};
    std::vector<Sample> samples_;
    std::array<std::array<std::array<int, kTexts>, kTexts>, 2> signs_{};
    std::set<Excuse> needed_;
};

TEST(Laws, OfEveryOrder) {
    RealFile& file = RealFile::shared();
    std::set<std::string> names;
    for (const auto& [charset, name] : file.collations()) names.insert(name);
    std::set<Excuse> needed;
    std::size_t orders = 0;
    for (const Name& charset : file.charsets())
        for (const std::string& name : names) {
            const nlsLocale* locale = file.find(charset.text, name.c_str(), "basic");
            if (locale == nullptr) locale = file.find(charset.text, name.c_str(), nullptr);
            if (locale == nullptr) continue;
            ++orders;
            needed.merge(Laws{charset.text, name, locale}.run());
            if (HasFailure()) return;
        }
    EXPECT_GE(orders, file.collations().size());
    for (std::size_t excuse = kLight; excuse < kExcuses; ++excuse)
        EXPECT_TRUE(needed.contains(static_cast<Excuse>(excuse))) << "never needed: " << kReasons[excuse];
}

}  // namespace
}  // namespace nls::real
