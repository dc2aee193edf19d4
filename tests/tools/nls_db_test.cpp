// nls db and nls words as their users run them: each command is a process of its own, so what one writes another reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>

#include "nls/nls.h"
#include "tests/tools/command.hpp"
#include "tools/stored/stored_file.hpp"

namespace {

using nls::stored::StoredCollation;
using nls::test::Answer;
using nls::test::Folder;
using nls::test::KnownLeaks;
using nls::test::Words;

// On the real data file.
Answer nlsOf(const std::string& line, const Words& files = {}, const std::string& input = {}, Words environment = {}) {
    static const KnownLeaks leaks;
    std::istringstream stream(line);
    Words words{std::istream_iterator<std::string>(stream), {}};
    words.insert(words.end(), files.begin(), files.end());
    if (!line.starts_with("-D")) words.insert(words.begin(), {"-D", NLS_CONVMAP});
    environment.push_back(leaks.variable());
    const Answer answer = nls::test::run(words, input, environment);
    EXPECT_EQ(answer.err.find("Sanitizer"), std::string::npos) << line << answer.err;
    EXPECT_EQ(answer.err.find("runtime error"), std::string::npos) << line << answer.err;
    return answer;
}

Words linesOf(const std::string& text) {
    std::istringstream stream(text);
    Words lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// Text in units of 16 and 32 bits can't be compared, so a database has no index of it.
bool isComparable(const std::string& order) {
    return !order.starts_with("UTF-16") && !order.starts_with("UTF-32") && !order.starts_with("UCS2");
}

StoredCollation stored(const std::string& bytes) {
    std::string trouble;
    return nls::stored::fromFileForm({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, trouble)
        .value();
}

std::string fileForm(const StoredCollation& collation) {
    const nls::stored::Bytes bytes = nls::stored::toFileForm(collation);
    return {bytes.begin(), bytes.end()};
}

template <std::size_t width>
void putName(char (&field)[width], const std::string& name) {
    std::memset(field, 0, width);
    name.copy(field, width);
}

// A table of its kind without a class of its own: all come from the charset.
std::string wordBreakTable(unsigned char kind) {
    std::string table(62 + 256, '\0');
    table[0] = static_cast<char>(kind);
    table[3] = 1;   // 256 bytes behind the 62
    table[4] = 62;  // where the classes stand
    return table;
}

TEST(NlsDb, EveryCollationIsInOrderWhenReadInAnotherProcess) {
    const Folder folder;
    Words files;
    Words orders = linesOf(nlsOf("list --collations").out);
    if (NLS_HAS_PACKS) orders.insert(orders.end(), {"UTF-8/ICU-sv", "UTF-8/ICU_48-de@phonebook"});
    ASSERT_GT(orders.size(), 100U);
    for (const std::string& order : orders) {
        if (!isComparable(order)) continue;
        files.push_back(folder.path(std::to_string(files.size())));
        const std::string format = files.size() % 2 == 0 ? " --format 5" : "";
        const Answer written = nlsOf("db export -l " + order + format + " -o " + files.back());
        ASSERT_EQ(written.exit, 0) << order << written.err;
        ASSERT_EQ(written.err, "") << order;
    }
    const Answer checked = nlsOf("db check", files);
    EXPECT_EQ(checked.exit, 0) << checked.err;
    EXPECT_EQ(linesOf(checked.out).size(), files.size()) << checked.out;
    const Answer dumped = nlsOf("--json db dump", files);
    EXPECT_EQ(dumped.exit, 0) << dumped.err;
    EXPECT_TRUE(holds(dumped.out, "\"collation\": \"swedish\""));
}

// What changes on the way, and what check says of it.
TEST(NlsDb, TellsWhatHasChangedAndWhatIsDamaged) {
    constexpr std::size_t lengthMap = 840, flags = 1372, caseRecord = 1384;
    using Change = std::function<void(StoredCollation&)>;
    const auto flip = [](std::size_t at) { return [at](StoredCollation& it) { it.image[at] ^= 1U; }; };
    const auto name = [](const char* charset) {
        return [charset](StoredCollation& it) { putName(it.record.dbCharset, charset); };
    };
    const auto kind = [](int32_t value) { return [value](StoredCollation& it) { it.record.dbCollKind = value; }; };
    struct Row {
        const char* order;
        const char* format;
        Change change;
        int exit;
        const char* says;
    };
    std::vector<Row> rows{
        {"1252/german", "6", [](StoredCollation&) {}, 0, "1252/german: same order"},
        {"1252/german", "6", flip('A'), 3, "1 of its exact weights aren't those of this data file"},
        {"1252/german", "5", flip(256 + 'A'), 3, "41 \"A\": 83 | 82"},
        {"1252/german", "6", flip(lengthMap), 3, "forms characters otherwise"},
        {"1252/german", "6", flip(flags), 3, "has other flags"},
        {"1252/german", "6", [](StoredCollation& it) { it.text.back() ^= 1; }, 3, "the fingerprint in its text"},
        {"1252/german", "5", [](StoredCollation& it) { it.text = "none"; }, 0,
         "note: the record has the weights alone"},
        {"1252/german", "6", [](StoredCollation& it) { it.record.dbCollSubKind += 1; }, 3, "its kind is 1 (2)"},
        {"1252/german", "6", kind(2), 3, "a sort of the site's own"},
        {"1252/german", "6", kind(3), 1, "damaged"},
        {"1252/german", "5", kind(6), 1, "damaged"},
        {"1252/german", "6", kind(6), 3, "its kind is 6"},
        {"1252/german", "6", name("nowhere"), 4, "has no charset nowhere"},
        {"1252/german", "6", [](StoredCollation& it) { putName(it.record.dbCollation, "own"); }, 0,
         "note: nothing here to compare with: 1252 has no collation \"own\""},
        {"UTF-8/basic", "6", flip(caseRecord + 8), 3, "folds by another case table"},
        {"UTF-8/basic", "6", flip(0), 1, "damaged"},
        {"EUCJIS/basic", "5", [](StoredCollation& it) { it.image.resize(511); }, 1, "damaged"},
    };
    if (NLS_HAS_PACKS) {
        rows.push_back({"UTF-8/ICU-sv", "6", flip(16), 3, "it was stored with another ICU: collator and UCA "});
        rows.push_back({"UTF-8/ICU-sv", "6", flip(256 + 20), 3, "it was stored with another ICU"});
        rows.push_back({"UTF-8/ICU-sv", "5", [](StoredCollation& it) { std::memcpy(&it.image[48], "SECONDARY", 10); },
                        3, "its strength is SECONDARY, and by its name here TERTIARY"});
        rows.push_back({"UTF-8/ICU-sv", "5",
                        [](StoredCollation& it) { std::memcpy(&it.record.dbCollation, "ICX-", 4); }, 4,
                        "can't be had of ICU"});
    }
    const Folder folder;
    for (const Row& row : rows) {
        const std::string file = folder.path("record");
        nlsOf(std::string("db export -l ") + row.order + " --format " + row.format + " -o " + file);
        StoredCollation collation = stored(folder.get("record"));
        row.change(collation);
        folder.put("record", fileForm(collation));
        const Answer checked = nlsOf("db check " + file);
        EXPECT_EQ(checked.exit, row.exit) << row.says << checked.out << checked.err;
        EXPECT_TRUE(holds(checked.out + checked.err, row.says)) << row.says << "\n" << checked.out << checked.err;
        EXPECT_EQ(nlsOf("db dump " + file).exit, 0);
    }
}

TEST(NlsDb, AnotherDataFileAndAnotherIcuAreTold) {
    const Folder folder;
    const std::string german = folder.path("german");
    nlsOf("db export -l 1252/german -o " + german);
    const StoredCollation collation = stored(folder.get("german"));
    std::ifstream file(NLS_CONVMAP, std::ios::binary);
    std::string data{std::istreambuf_iterator<char>(file), {}};
    const auto found = std::search(data.begin(), data.end(), collation.image.begin(), collation.image.begin() + 256,
                                   [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
    ASSERT_NE(found, data.end());
    found['z'] = static_cast<char>(found['z'] ^ 1);
    folder.put("other.cp", data);
    const Answer other = nlsOf("-D " + folder.path("other.cp") + " db check " + german);
    EXPECT_EQ(other.exit, 3) << other.err;
    EXPECT_TRUE(holds(other.out, "7A \"z\"")) << other.out;
    EXPECT_EQ(nlsOf("-D " + german + " db check " + german).exit, 4);
#ifdef NLS_OTHER_ICU
    const std::string swedish = folder.path("swedish");
    nlsOf("db export -l UTF-8/ICU-sv -o " + swedish);
    EXPECT_EQ(nlsOf("db check", {swedish, german}).exit, 0);
    const Answer drifted = nlsOf("db check", {swedish, german}, {},
                                 {"LD_PRELOAD=" NLS_OTHER_ICU, "ASAN_OPTIONS=verify_asan_link_order=0"});
    EXPECT_EQ(drifted.exit, 3) << drifted.err;
    EXPECT_TRUE(holds(drifted.out, "another ICU")) << drifted.out;
    EXPECT_TRUE(holds(drifted.out, "1252/german: same order")) << drifted.out;
    EXPECT_EQ(nlsOf("db check " + swedish, {}, {}, {"BINPATHX=/nowhere"}).exit, 4);
#endif
}

TEST(NlsDb, DiffNamesTheFieldsAndTheCharacters) {
    const Folder folder;
    const std::string german = folder.path("german");
    nlsOf("db export -l 1252/german -o " + german);
    StoredCollation collation = stored(folder.get("german"));
    const unsigned weight = collation.image[256 + 0xE4] ^= 1U;
    collation.text = "\xFF\x1B";
    const std::string other = folder.put("other", fileForm(collation));
    EXPECT_EQ(nlsOf("db diff", {german, german}).out, "");
    EXPECT_EQ(nlsOf("db diff", {german, german}).exit, 0);
    const Answer differ = nlsOf("db diff", {german, other});
    EXPECT_EQ(differ.exit, 3);
    EXPECT_EQ(linesOf(differ.out).size(), 2U) << differ.out;
    EXPECT_TRUE(holds(differ.out, "folded weights  1 differ: E4 \"\xC3\xA4\": ")) << differ.out;
    EXPECT_TRUE(holds(differ.out, "| \\xFF\\x1B")) << differ.out;
    EXPECT_TRUE(holds(nlsOf("--json db diff", {german, other}).out,
                      std::string("{\"byte\": 228, \"character\": \"\xC3\xA4\", \"first\": ") +
                          std::to_string(weight ^ 1U) + ", \"second\": " + std::to_string(weight) + "}"));
    EXPECT_EQ(nlsOf("db diff", {german, NLS_CONVMAP}).exit, 1);
    EXPECT_EQ(nlsOf("db diff", {german}).exit, 2);
}

// Damage at random, all of the head and of what sizes hang on more often: no run ends by a signal.
TEST(NlsDb, HostileRecordsNeverCrash) {
    const Folder folder;
    const std::string table = folder.put("table", wordBreakTable(9));
    std::mt19937 random(6);
    for (const char* order : {"1252/german", "UTF-8/basic", "EUCJIS/basic", "620-2533/basic"}) {
        const Answer written =
            nlsOf(std::string("db export -l ") + order + " --word-break-charset UTF-8 --word-break " + table + " -o " +
                  folder.path("record"));
        ASSERT_EQ(written.exit, 0) << written.err;
        const StoredCollation sound = stored(folder.get("record"));
        Words files;
        for (int round = 0; round < 60; ++round) {
            StoredCollation collation = sound;
            if (round % 2 == 0) collation.record.dbCollKind = 6 + round % 4;
            std::string bytes = fileForm(collation);
            for (unsigned changes = 1 + random() % 4; changes != 0; --changes) {
                static constexpr std::size_t hot[] = {88, 136 + 524, 136 + 1372, 136 + 1376, 136 + 1380};
                const std::size_t at = random() % 3 == 0 ? hot[random() % 5] + random() % 4 : random() % bytes.size();
                if (at < bytes.size()) bytes[at] = static_cast<char>(random() % 2 == 0 ? 0xFF : random());
            }
            files.push_back(folder.put("mutant" + std::to_string(round), bytes));
        }
        for (const char* command : {"db check", "db dump", "--json db check"}) {
            const Answer answer = nlsOf(command, files);
            EXPECT_LE(answer.exit, 4) << command << answer.err;
            EXPECT_NE(answer.exit, 2) << command << answer.err;
            if (answer.exit != 0) {
                EXPECT_NE(answer.out + answer.err, "");
            }
        }
        for (const std::string& file : Words(files.begin(), files.begin() + 16)) {
            const Answer answer = nlsOf("words --record " + file, {}, "One two \xE3\x81\x82\xA4\xA2 3\n");
            EXPECT_LE(answer.exit, 4) << file << answer.err;
            EXPECT_NE(answer.exit, 2) << file << answer.err;
        }
    }
}

TEST(NlsWords, CutsByTheTableOfARecord) {
    const Folder folder;
    const std::string plain = folder.put("plain", wordBreakTable(7));
    const std::string keyed = folder.put("keyed", wordBreakTable(128));
    const std::string record = folder.path("record");
    const std::string with = "db export -l 1252/german -o " + record + " --word-break ";
    const std::string text =
        "Stra\xDF"
        "e, und 3 W\xF6rter\n\nZwei\n";
    ASSERT_EQ(nlsOf(with + plain).exit, 0);
    const std::string words =
        "Stra\xDF"
        "e\nund\n3\nW\xF6rter\nZwei\n";
    EXPECT_EQ(nlsOf("words --record " + record, {}, text).out, words);
    EXPECT_EQ(nlsOf("words --record " + record + " -l KOI8-R/basic", {}, "\xC4\xC1 net\n").out, "\xC4\xC1\nnet\n");
    const Answer cut = nlsOf("words --record " + record, {}, std::string(200, 'a') + " b");
    EXPECT_EQ(cut.exit, 3);
    EXPECT_EQ(cut.out, std::string(184, 'a') + "\nb\n");

    ASSERT_EQ(nlsOf(with + keyed).exit, 0);
    for (const char* mode : {"exact", "fold"}) {
        EXPECT_EQ(nlsOf("words --record " + record + " -f " + mode, {}, text).out,
                  nlsOf(std::string("key -l 1252/german --hex -f ") + mode, {}, words).out);
    }
    nlsOf("db export -l 1252/german -o " + record);
    EXPECT_EQ(nlsOf("words --record " + record, {}, text).exit, 1);
    EXPECT_EQ(nlsOf("db export -l 1252/german --word-break " + record).exit, 1);
}

}  // namespace
