// The command nls with ICU: orders of the packs beside ICU called directly, and what it says where ICU can't be had.
#include <gtest/gtest.h>

#include <sys/statvfs.h>

#include <algorithm>
#include <sstream>

#include "icu/packaging.hpp"
#include "tests/icu/peer.hpp"
#include "tests/support/c_locales.hpp"
#include "tests/tools/command.hpp"

namespace {

namespace fs = std::filesystem;
namespace peer = nls::test::peer;
using nls::test::Answer;
using nls::test::Folder;
using nls::test::KnownLeaks;
using nls::test::Words;

// On the real data file.
Answer nlsOf(const std::string& line, const std::string& input = {}, Words environment = {}) {
    static const KnownLeaks leaks;
    const std::string known = leaks.variable();
    environment.push_back(known);
    std::istringstream words(line);
    Words all{"-D", NLS_CONVMAP};
    for (std::string word; words >> word;) all.push_back(word);
    return nls::test::run(all, input, environment);
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// The lines and words of all samples, with blanks behind some, and texts around the longest that has a key.
std::vector<std::string> sampleLines() {
    std::vector<std::string> lines{"", "  ", "a", "a ", "A", "\u00AD", "co-op", "coop", "c\u00F4te", "cot\u00E9"};
    std::vector<fs::path> files;
    for (const auto& file : fs::directory_iterator(NLS_SAMPLES)) files.push_back(file.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& path : files) {
        std::ifstream file(path);
        for (std::string word; file >> word;) lines.push_back(word);
    }
    std::sort(lines.begin() + 2, lines.end(), [](const std::string& a, const std::string& b) {
        return std::hash<std::string>{}(a) < std::hash<std::string>{}(b);
    });
    for (const std::size_t length : {399U, 400U, 401U, 2100U}) {
        lines.push_back(std::string(length, 'x') + "b");
        lines.push_back(std::string(length - 1, 'x') + "a");
    }
    return lines;
}

struct Line {
    std::string text;
    std::u16string units;  // without blanks at the end
};

std::vector<Line> prepared(const std::vector<std::string>& texts) {
    std::vector<Line> lines;
    for (const std::string& text : texts) {
        const std::size_t last = text.find_last_not_of(' ');
        lines.push_back({text, peer::unitsOf(text.substr(0, last == std::string::npos ? 0 : last + 1))});
    }
    return lines;
}

std::string joined(const std::vector<Line>& lines) {
    std::string text;
    for (const Line& line : lines) text += line.text + "\n";
    return text;
}

std::string hexOf(const std::string& bytes) {
    std::string hex;
    char digits[3];
    for (const char byte : bytes)
        hex.append(digits, static_cast<std::size_t>(std::snprintf(digits, 3, "%02X", byte & 255)));
    return hex;
}

std::string keysOf(const peer::Collator& collator, const std::vector<Line>& lines) {
    std::string text;
    for (const Line& line : lines) text += (line.units.empty() ? "" : hexOf(collator.key(line.units))) + "\n";
    return text;
}

TEST(NlsIcu, SortsAndMakesKeysAsIcuItself) {
    constexpr struct {
        const char *name, *locale;
    } rows[] = {{"ICU-UCA", ""},     {"ICU-sv", "sv"},    {"ICU-de__PHONEBOOK", "de@collation=phonebook"},
                {"ICU_48-cs", "cs"}, {"ICU_48-th", "th"}, {"ICU_48-zh@stroke", "zh@collation=stroke"}};
    const std::vector<Line> shuffled = prepared(sampleLines());
    std::vector<Line> shorter = shuffled;
    shorter.erase(
        std::remove_if(shorter.begin(), shorter.end(), [](const Line& line) { return line.units.size() > 399; }),
        shorter.end());
    for (const auto& row : rows) {
        for (const int strength : {1, 2}) {
            const peer::Collator collator{row.locale, strength};
            std::vector<Line> sorted = shuffled;
            std::stable_sort(sorted.begin(), sorted.end(),
                             [&](const Line& a, const Line& b) { return collator.compare(a.units, b.units) < 0; });
            const std::string order = std::string(" -l UTF-8/") + row.name + (strength == 1 ? " -f fold" : "");
            for (const char* const how : {"", " --keys", " --memory 64K --keys"}) {
                const Answer answer = nlsOf("sort" + order + how, joined(shuffled));
                EXPECT_EQ(answer.exit, 0) << answer.err;
                EXPECT_TRUE(answer.out == joined(sorted)) << order << how;
            }
            EXPECT_TRUE(nlsOf("key --hex" + order, joined(shorter)).out == keysOf(collator, shorter)) << order;
        }
    }
}

struct Told {
    const char* line;
    const char* in;
    int exit;
    const char *out, *err;  // parts; an empty one wants nothing there
};

void expectTold(const Told& row, const Words& environment = {}) {
    const Answer answer = nlsOf(row.line, row.in, environment);
    EXPECT_EQ(answer.exit, row.exit) << row.line << "\n" << answer.err;
    EXPECT_TRUE(*row.out == 0 ? answer.out.empty() : holds(answer.out, row.out)) << row.line << "\n" << answer.out;
    EXPECT_TRUE(*row.err == 0 ? answer.err.empty() : holds(answer.err, row.err)) << row.line << "\n" << answer.err;
}

TEST(NlsIcu, ComparesFindsAndRefuses) {
    const std::string tooLong = std::string(400, 'x') + "\n";
    const Told rows[] = {
        {"compare -l UTF-8/ICU-sv Åland Zorn", "", 0, ">", ""},
        {"compare -l UTF-8/ICU-UCA Åland Zorn", "", 0, "<", ""},
        {"compare -l UTF-8/ICU_48-sv -f fold Öberg öBERG", "", 0, "=", ""},
        {"--json compare -l UTF-8/ICU-sv a b", "", 0, "\"order\": \"UTF-8/ICU-sv\"", ""},
        {"find -l UTF-8/ICU-da --fold -o MÜLLER", "Herr Müller\nHerr Muller\n", 0, "Müller\n", ""},
        {"find -l UTF-8/ICU-tr --fold ISI", "ısı\nisi\n", 0, "ısı\n", ""},
        {"find -l UTF-8/ICU-sv --fold x", "abc\n", 1, "", ""},
        {"like -l UTF-8/ICU-sv --fold %å_a%", "ÅSA B\nAsa\n", 0, "ÅSA B\n", ""},
        {"key -l UTF-8/ICU-sv", tooLong.c_str(), 1, "", "(standard input):1: this line has no key"},
        {"compare -l UTF-8/ICU-ca a b", "", 0, "<", "note: ICU-ca has no order of its own"},
        {"compare -l UTF-8/ICU-xx a b", "", 2, "", "ICU knows no collation \"ICU-xx\""},
        {"compare -l UTF-8/ICU_48-de@phonebok a b", "", 2, "", "ICU_48-de@phonebook"},
        {"compare -l UTF-8/ICU_47-de a b", "", 2, "", "ICU knows no collation \"ICU_47-de\""},
        {"compare -l UTF-8/ICU_48-a_name_that_has_too_many_bytes a b", "", 2, "", "knows no collation"},
        {"compare -l UTF-8/icu-sv a b", "", 2, "", "ICU-sv"},
        {"compare -l 1252/ICU-sv a b", "", 2, "", "UTF-8 alone"},
        {"list --icu", "", 0, "UTF-8/ICU-UCA\n", ""},
    };
    for (const Told& row : rows) expectTold(row);
    EXPECT_EQ(linesOf(nlsOf("list --icu").out).size(), 139U);
}

TEST(NlsIcu, AnotherIcuIsAnotherFingerprint) {
    const auto printOf = [](const std::string& order, const Words& environment = {}) {
        const Answer answer = nlsOf("fingerprint " + order, "", environment);
        EXPECT_EQ(answer.exit, 0) << answer.err;
        return answer.out.substr(0, 64);
    };
    const auto preloaded = [](const char* collator, const char* uca) {
        return Words{"LD_PRELOAD=" NLS_OTHER_ICU, std::string("NLS_OTHER_COLLATOR=") + collator,
                     std::string("NLS_OTHER_UCA=") + uca, "ASAN_OPTIONS=verify_asan_link_order=0"};
    };
    const std::string newer = "UTF-8/ICU_48-sv", older = "UTF-8/ICU-sv", table = "1252/swedish";
    EXPECT_EQ(printOf(newer), printOf(newer)) << "another process puts its record elsewhere";
    EXPECT_NE(printOf(newer), printOf(older));
    EXPECT_NE(printOf(newer), printOf("UTF-8/ICU_48-da"));
    const std::string now = printOf(newer, preloaded("7", "8"));
    EXPECT_NE(now, printOf(newer));
    EXPECT_EQ(now, printOf(newer, preloaded("7", "8")));
    EXPECT_NE(now, printOf(newer, preloaded("9", "8")));
    EXPECT_NE(now, printOf(newer, preloaded("7", "9")));
    EXPECT_NE(printOf(older, preloaded("7", "8")), printOf(older, preloaded("9", "8")));
    EXPECT_EQ(printOf(older, preloaded("7", "8")), printOf(older, preloaded("7", "9"))) << "it tells no UCA";
    EXPECT_EQ(printOf(table), printOf(table, preloaded("7", "8")));
    EXPECT_TRUE(holds(nlsOf("fingerprint " + newer, "", preloaded("7", "8")).out, "collator 7.0.0.0, UCA 8.0.0.0"));
}

// A copy of the packs, spoilt: without a file, or with a function under another name.
class SpoiltPacks {
public:
    // `file` begins with its slash.
    SpoiltPacks(const std::string& file, const std::string& function) : file_(folder_.path(file.substr(1))) {
        fs::copy(NLS_PACKS "/lib", folder_.path("lib"), fs::copy_options::recursive);
        if (function.empty()) {
            fs::remove(file_);
            return;
        }
        std::string bytes = folder_.get(file.substr(1));
        EXPECT_FALSE(bytes.empty());
        const std::string symbol = '\0' + function + '\0';
        for (std::size_t at = bytes.find(symbol); at != std::string::npos; at = bytes.find(symbol, at + 1))
            bytes[at + 1] = 'X';
        fs::remove(file_);
        folder_.put(file.substr(1), bytes);
    }

    Words environment() const { return {"BINPATHX=" + folder_.path("")}; }

private:
    Folder folder_;
    std::string file_;
};

TEST(NlsIcu, TheDoctorTellsWhatIsMissing) {
    const auto expectDoctor = [](const Words& environment, bool base, bool newer, const std::string& reason) {
        const Answer answer = nlsOf("doctor", "", environment);
        EXPECT_EQ(answer.exit, base && newer ? 0 : 1) << answer.out;
        EXPECT_EQ(holds(answer.out, "ICU-… opens"), base) << answer.out;
        EXPECT_EQ(holds(answer.out, "ICU_48-… opens"), newer) << answer.out;
        EXPECT_TRUE(holds(answer.out, reason)) << reason << " in\n" << answer.out;
        const std::string broken = newer ? "ICU-sv" : "ICU_48-sv";
        if (base && newer) return;
        const Answer sort = nlsOf("sort -l UTF-8/" + broken, "b\na\n", environment);
        EXPECT_EQ(sort.exit, 4) << reason;
        EXPECT_TRUE(holds(sort.err, "UTF-8/" + broken + " wants ICU") && holds(sort.err, reason)) << sort.err;
        EXPECT_EQ(nlsOf("sort -l 1252/swedish", "b\na\n", environment).out, "a\nb\n") << "all else works without ICU";
    };
    expectDoctor({}, true, true, "the packs of this program");
    expectDoctor({"BINPATHX=" NLS_PACKS}, true, true, "(BINPATHX)");
    expectDoctor({"QRD=" NLS_PACKS}, true, true, "(QRD)");
    expectDoctor({"BINPATHX=/nowhere", "QRD=" NLS_PACKS}, false, false, "/nowhere" + std::string(nls::iculib_2_4[0]));
    expectDoctor({"BINPATHX=/" + std::string(300, 'x')}, false, false, "bytes, and at most 302 can be used");
    const struct {
        std::string file, function;
        bool base, newer;
    } rows[] = {
        {nls::iculib_2_4[0], "", false, false},
        {nls::iculib_2_4[1], "", false, false},
        {nls::iculib_2_4[2], "", false, true},
        {nls::iculib_4_8[0], "", true, false},
        {nls::iculib_4_8[1], "", true, false},
        {nls::iculib_4_8[2], "", true, false},
        {nls::iculib_2_4[1], std::string("ucnv_flushCache") + nls::kBaseSuffix, false, false},
        {nls::iculib_2_4[2], std::string("ucol_getRules") + nls::kBaseSuffix, false, true},
        {nls::iculib_4_8[1], std::string("ucnv_flushCache") + nls::kNewerSuffix, true, true},
        {nls::iculib_4_8[2], std::string("ucol_getUCAVersion") + nls::kNewerSuffix, true, false},
    };
    for (const auto& row : rows) {
        const SpoiltPacks packs{row.file, row.function};
        const bool works = row.base && row.newer;
        expectDoctor(packs.environment(), row.base, row.newer,
                     works                  ? "opens"
                     : row.function.empty() ? row.file
                                            : row.function);
    }
}

TEST(NlsIcu, TheDoctorTellsOfDataFileAndLocale) {
    const Answer noData = nls::test::run({"-D", "/nowhere.cp", "doctor"});
    EXPECT_EQ(noData.exit, 4);
    EXPECT_TRUE(holds(noData.out, "NOT FOUND: /nowhere.cp") && holds(noData.out, "ICU-… opens")) << noData.out;
    const Answer plain = nlsOf("--json doctor", "", {"LC_ALL=C"});
    EXPECT_TRUE(holds(plain.out, "\"namesLost\": [], \"caseChangesBytes\": 0, \"caseLosesLetters\": \"\""))
        << plain.out;
    EXPECT_TRUE(holds(nlsOf("doctor", "", {"LC_ALL=xx_XX"}).out, "LC_ALL=xx_XX, which isn't installed"));
    nls::test::CLocales locales;
    if (!locales.use("tr_TR", "ISO-8859-9")) GTEST_SKIP() << "the Turkish locale can't be made here";
    const Answer turkish = nlsOf("--json doctor", "", {"LC_ALL=tr_TR.ISO-8859-9"});
    EXPECT_TRUE(holds(turkish.out, "\"SHIFT-JIS\"") && !holds(turkish.out, "\"EUCJIS\", \"UTF-8\"")) << turkish.out;
    EXPECT_TRUE(holds(turkish.out, "\"caseLosesLetters\": \"Ii\"") && holds(turkish.out, "\"decimalPoint\": \",\""))
        << turkish.out;
    EXPECT_EQ(turkish.exit, 0);
}

// A process that runs with more rights than its caller has: a copy of the command that belongs to root and may act for
// it, started by nobody.
TEST(NlsIcu, RaisedRightsDontListenToTheEnvironment) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a file the rights of root";
    const Folder folder;
    const std::string copy = folder.path("nls"), setpriv = "/usr/bin/setpriv";
    fs::permissions(folder.path(""), fs::perms{0755});
    fs::copy_file(NLS_COMMAND, copy);
    const auto asNobody = [&](const char* variable) {
        return nls::test::run({"--reuid=65534", "--regid=65534", "--clear-groups", copy, "-D", NLS_CONVMAP, "doctor"},
                              "", {std::string(variable) + "=" NLS_PACKS, "LD_LIBRARY_PATH="}, setpriv);
    };
    for (const char* const variable : {"BINPATHX", "QRD"}) {
        fs::permissions(copy, fs::perms{0755});
        const Answer plain = asNobody(variable);
        if (plain.exit != 0)
            GTEST_SKIP() << "nobody can't run the command here: " << plain.exit << plain.out << plain.err;
        struct statvfs mount {};
        ASSERT_EQ(statvfs(copy.c_str(), &mount), 0);
        if ((mount.f_flag & ST_NOSUID) != 0) GTEST_SKIP() << "this file system gives nobody the rights of another";
        fs::permissions(copy, fs::perms{04755});
        const Answer raised = asNobody(variable);
        EXPECT_EQ(raised.exit, 1) << raised.out << raised.err;
        EXPECT_TRUE(holds(raised.out, "don't count in a process with raised rights")) << raised.out;
        EXPECT_FALSE(holds(raised.out, NLS_PACKS)) << raised.out;
    }
}

}  // namespace
