// The collations and keys of the extension put all texts in one row, whatever bytes they hold: what an index relies on.
#include <random>

#include "tests/integrations/sqlite_connection.hpp"

namespace nls::test {
namespace {

constexpr std::size_t kTexts = 48;

struct Given {
    const char* order;
    bool hasKeys;
};
constexpr Given orders[] = {
    {"ISO8859-1/german", true},  {"1252/german-phonebook", true}, {"1254/turkish", true}, {"ISO6937/basic", true},
    {"IBM037/basic", true},      {"620-2533/basic", true},        {"UTF-8/basic", true},  {"SHIFT-JIS/basic", true},
    {"CP950-HKSCS/basic", true}, {"EUCJIS/basic", false},         {"CP949/basic", true},
#if NLS_HAS_PACKS
    {"UTF-8/ICU-de", true},      {"UTF-8/ICU_48-sv", true},
#endif
};

class Laws {
public:
    Laws(Connection& connection, const Given& given, const std::string& mode)
        : title_(std::string(given.order) + " " + mode), hasKeys_(given.hasKeys) {
        const std::string order = std::string("'") + given.order + "','" + mode + "')";
        const std::string name = "c" + std::to_string(number_++);
        EXPECT_EQ(connection.ask("SELECT nls_collation_load('" + name + "'," + order), title_);
        compare_ = connection.prepare("SELECT (?1 > ?2 COLLATE " + name + ") - (?1 < ?2 COLLATE " + name + ")");
        key_ = connection.prepare("SELECT nls_key(?1," + order);
    }

    void hold() {
        for (int round = 0; round < 3 && !testing::Test::HasFailure(); ++round) {
            take();
            for (std::size_t i = 0; i < kTexts; ++i) {
                for (std::size_t j = 0; j < kTexts; ++j) signs_[i][j] = compare(i, j);
            }
            for (std::size_t i = 0; i < kTexts && !testing::Test::HasFailure(); ++i) holdTriples(i);
            if (hasKeys_) holdKeys();
        }
    }

private:
    void take() {
        const std::vector<std::string>& all = oddCharacters();
        std::string few[7];
        for (std::string& one : few) one = all[random_() % all.size()];
        for (std::string& text : texts_) {
            text.clear();
            for (std::size_t left = random_() % 5; left-- > 0;) text += few[random_() % std::size(few)];
        }
    }

    int compare(std::size_t i, std::size_t j) {
        bindText(compare_, 1, texts_[i]);
        bindText(compare_, 2, texts_[j]);
        EXPECT_EQ(sqlite3_step(compare_.get()), SQLITE_ROW) << title_;
        const int sign = sqlite3_column_int(compare_.get(), 0);
        sqlite3_reset(compare_.get());
        return sign;
    }

    void holdTriples(std::size_t i) {
        for (std::size_t j = 0; j < kTexts; ++j) {
            ASSERT_EQ(signs_[i][j], -signs_[j][i]) << told({i, j, j});
            for (std::size_t k = 0; k < kTexts && signs_[i][j] <= 0; ++k) {
                if (signs_[j][k] > 0) continue;
                ASSERT_EQ(signs_[i][k], std::min(signs_[i][j], signs_[j][k])) << told({i, j, k});
            }
        }
    }

    void holdKeys() {
        std::vector<std::string> keys;
        for (const std::string& text : texts_) {
            bindText(key_, 1, text);
            ASSERT_EQ(sqlite3_step(key_.get()), SQLITE_ROW) << title_ << testing::PrintToString(text);
            const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(key_.get(), 0));
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(key_.get(), 0));
            keys.emplace_back(size == 0 ? "" : bytes, size);
            sqlite3_reset(key_.get());
        }
        for (std::size_t i = 0; i < kTexts; ++i) {
            for (std::size_t j = 0; j < kTexts; ++j) {
                const int sign = keys[i].compare(keys[j]);
                ASSERT_EQ((sign > 0) - (sign < 0), signs_[i][j]) << "keys: " << told({i, j, j});
            }
        }
    }

    std::string told(const std::vector<std::size_t>& numbers) const {
        std::string all = title_;
        for (const std::size_t number : numbers) all += " " + testing::PrintToString(texts_[number]);
        return all;
    }

    static inline int number_ = 0;
    std::string title_;
    bool hasKeys_;
    Statement compare_, key_;
    std::mt19937 random_{static_cast<unsigned>(std::hash<std::string>{}(title_))};
    std::string texts_[kTexts];
    int signs_[kTexts][kTexts] = {};
};

TEST(SqliteOrder, IsOneRowOfAllTexts) {
#if NLS_HAS_PACKS
    setenv("BINPATHX", NLS_PACKS, 1);
#endif
    Connection connection;
    for (const Given& given : orders) {
        for (const char* const mode : {"exact", "fold"}) {
            Laws(connection, given, mode).hold();
            if (HasFailure()) return;
        }
    }
    EXPECT_EQ(connection.ask("SELECT nls_key('a', 'EUCJIS/basic')"),
              "error: nls_key: EUCJIS/basic compares through Shift-JIS and has no keys of all texts; sort with COLLATE "
              "instead");
}

}  // namespace
}  // namespace nls::test
