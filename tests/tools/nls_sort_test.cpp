// Orders through the command nls: sort, compare, key, upper, lower and fingerprint, on a small data file with a
// collation of each kind and on the real one.
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <random>
#include <sstream>

#include "core/base/views.hpp"
#include "nls/nls.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"
#include "tests/tools/command.hpp"
#include "tools/nls/sha256.hpp"

namespace {

using nls::ByteView;
using nls::test::Answer;
using nls::test::ByteMap;
using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::Folder;
using nls::test::OpenHandle;
using nls::test::run;
using nls::test::Words;
using namespace std::string_literals;

Words split(const std::string& line) {
    std::istringstream words(line);
    Words all;
    for (std::string word; words >> word;) all.push_back(word);
    return all;
}

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// Letters fold, sharp s is a double s, and a blank weighs more than some letters.
ByteMap weights(bool fold) {
    ByteMap map;
    for (unsigned byte = 0; byte < 256; ++byte) map[byte] = static_cast<unsigned char>(byte < 8 ? 9 : byte);
    for (unsigned byte = 'A'; fold && byte <= 'Z'; ++byte) map[byte] = static_cast<unsigned char>(byte + 0x20);
    map[0xDF] = 0;
    map['!'] = 0x1F;
    return map;
}

ByteMap latinCase(unsigned from, unsigned to) {
    ByteMap map = nls::test::identityBytes();
    for (unsigned i = 0; i < 26; ++i) map[from + i] = static_cast<unsigned char>(to + i);
    return map;
}

// ASCII but for the line ends of EBCDIC.
nls::test::UnitTable ebcdicEnds() {
    nls::test::UnitTable units = nls::test::upperHalfAt(0x100);
    units[0x25] = 0x0A;
    units[0x15] = 0x85;
    units[0x0A] = 0x25;
    return units;
}

ConvmapBuilder world() {
    ConvmapBuilder builder = nls::test::smallWorld();
    builder.maps("EUCJIS", "UTF-8", 17, nls::test::smallMaps()).bare("UTF-8", "EUCJIS", 18);
    builder.attributes("EBCDIC", nls::test::singleByte()).collation("EBCDIC", "basic");
    builder.units("EBCDIC", "UTF-8", 51, ebcdicEnds()).bare("UTF-8", "EBCDIC", 20);
    builder.collation("LATIN", "german", 1, weights(false), weights(true), 1);
    builder.collation("EUCJIS", "folded", 1, latinCase(0, 0), latinCase('A', 'a'), 1);
    builder.collation("SHIFT-JIS", "folded", 1, latinCase(0, 0), latinCase('A', 'a'), 1);
    builder.caseTable("LATIN", "ascii", latinCase('a', 'A'), latinCase('A', 'a'));
    return builder;
}

// The small data file, as the command sees it and as the library does.
struct World {
    explicit World(ConvmapBuilder builder = world()) : content(builder.build()), open(content) {
        folder.put("convmap.cp", {content.begin(), content.end()});
    }
    Words words(const std::string& line, const Words& more = {}) const {
        Words all{"-D", folder.path("convmap.cp")};
        for (const Words& part : {split(line), more}) all.insert(all.end(), part.begin(), part.end());
        return all;
    }
    const nlsLocale* locale(const std::string& order, const char* caseName) {
        const std::size_t slash = order.find('/');
        nlsLocale* made = nullptr;
        EXPECT_EQ(nlsCreateLocale(open.handle, order.substr(0, slash).c_str(), order.substr(slash + 1).c_str(),
                                  caseName, &made),
                  NLS_OK);
        return made;
    }

    Folder folder;
    Bytes content;
    OpenHandle open;
};

std::string trimmed(std::string text) {
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

int compared(const nlsLocale* locale, const std::string& a, const std::string& b, unsigned mode) {
    uint16_t result = 0;
    EXPECT_EQ(nlsCompareN(locale, nullptr, bytesOf(a), bytesOf(b), static_cast<int32_t>(a.size()),
                          static_cast<int32_t>(b.size()), static_cast<uint16_t>(mode), &result),
              NLS_OK);
    return static_cast<int16_t>(result);
}

// Few different bytes, so that much is equal; whole characters, and halves of some.
std::vector<std::string> randomLines(std::mt19937& random, std::size_t count) {
    static const Words pieces = {"a",    "A",        "b",        "s",        "\xDF",     " ",
                                 "  ",   "!",        "\x01",     "\xC3\x89", "\xC3\xA9", "\xA4\xA2",
                                 "\xA4", "\x8E\xB1", "\xE0\xA1", "\xE7",     "\x82\xA0", "\xE3\x81\x82",
                                 "\xFC", "\x7F"};
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < count; ++i) {
        std::string line;
        for (std::size_t left = random() % 9; left != 0; --left) line += pieces[random() % pieces.size()];
        if (random() % 50 == 0) line += std::string(random() % 3000, 'a');
        lines.push_back(line);
    }
    return lines;
}

std::string joined(const std::vector<std::string>& lines, char end) {
    std::string text;
    for (const std::string& line : lines) text += line + end;
    return text;
}

// The order wanted, by the standard library's stable sort and the library's comparison.
std::vector<std::string> sorted(std::vector<std::string> lines,
                                const std::function<int(const std::string&, const std::string&)>& compare,
                                bool unique) {
    std::stable_sort(lines.begin(), lines.end(),
                     [&](const std::string& a, const std::string& b) { return compare(a, b) < 0; });
    if (unique) {
        const auto same = [&](const std::string& a, const std::string& b) { return compare(a, b) == 0; };
        lines.erase(std::unique(lines.begin(), lines.end(), same), lines.end());
    }
    return lines;
}

// Memory for a tenth of the text: many runs, merged in several passes.
TEST(NlsSort, AnyMemoryAndAnyKeysGiveTheOneOrder) {
    World small;
    std::mt19937 random{7};
    const struct {
        const char* order;
        const char* caseName;
    } orders[] = {{"LATIN/german", ""}, {"LATIN/thai", ""}, {"UTF-8/basic", "basic"}, {"EUCJIS/folded", ""}};
    for (const auto& row : orders) {
        const std::vector<std::string> lines = randomLines(random, 3000);
        const nlsLocale* const locale = small.locale(row.order, row.caseName);
        const std::string in = small.folder.put("in", joined(lines, '\n'));
        for (const unsigned mode : {0U, 1U}) {
            const auto forwards = [&](const std::string& a, const std::string& b) {
                return compared(locale, trimmed(a), trimmed(b), mode);
            };
            const auto backwards = [&](const std::string& a, const std::string& b) { return forwards(b, a); };
            const std::string plain = joined(sorted(lines, forwards, false), '\n');
            const std::string other = joined(sorted(lines, backwards, true), '\n');
            const std::string call = "sort -l "s + row.order + " -f " + (mode == 0 ? "fold" : "exact");
            for (const char* const how : {"", " --keys", " --memory 64K", " --keys --memory 64K"}) {
                const Answer straight = run(small.words(call + how, {in}));
                EXPECT_EQ(straight.err, "");
                EXPECT_TRUE(straight.out == plain) << call << how;
                if (mode == 0) {
                    EXPECT_TRUE(run(small.words(call + how + " -r -u", {in})).out == other) << call << how;
                }
            }
        }
    }
}

// Keys are used where they can be, and only there; lines too long for a key are compared.
TEST(NlsSort, LongLinesAndTheSummary) {
    const World small;
    const std::string longLine(40000, 'b');
    const std::string text = longLine + "c\n" + longLine + "a\nbx\n\xDF\nss\n" + longLine + "a \nb\n";
    const std::string want = "b\n" + longLine + "a\n" + longLine + "a \n" + longLine + "c\nbx\n\xDF\nss\n";
    const struct {
        const char* line;
        const char* told;
    } rows[] = {
        {"sort -l LATIN/german", "\"lines\": 7, \"written\": 7, \"keyed\": 0, \"runs\": 0"},
        {"sort -l LATIN/german --keys", "\"lines\": 7, \"written\": 7, \"keyed\": 4, \"runs\": 0"},
        {"sort -l LATIN/german --keys --memory 65536", "\"lines\": 7, \"written\": 7, \"keyed\": 4, \"runs\": 3"},
        {"sort -l LATIN/thai --keys", "\"keyed\": 0"},
        {"sort -l LATIN/german --keys -u", "\"lines\": 7, \"written\": 5"},
    };
    for (const auto& row : rows) {
        const Answer answer = run(small.words(row.line, {"--json"}), text);
        EXPECT_EQ(answer.exit, 0) << answer.err;
        EXPECT_NE(answer.err.find(row.told), std::string::npos) << row.line << answer.err;
        if (std::string(row.line).find("german") == std::string::npos ||
            answer.err.find("\"written\": 7") == std::string::npos)
            continue;
        EXPECT_TRUE(answer.out == want) << row.line;
    }
}

// Each row: a call, what comes in, the exit code, what goes out, and a part of what is told.
TEST(NlsOrders, RowsOfCalls) {
    const World small;
    const struct {
        const char* line;
        std::string in;
        int exit;
        std::string out;
        const char* told = "";
    } rows[] = {
        {"sort -l UTF-8", "", 0, ""},
        {"sort -l UTF-8/basic", "b\n\na", 0, "\na\nb\n"},
        {"sort -l UTF-8 -z", "b\n\0a\0"s, 0, "a\0b\n\0"s},
        {"sort -l UTF-8 -f fold", "b\nA\na\nA\n", 0, "A\na\nA\nb\n"},
        {"sort -l UTF-8 -f fold -u -r", "A\nb\na\nb \n", 0, "b\nA\n"},
        {"sort -l UTF-8 -k 2", "x  b\ny a\n  z\tc\nw\n", 0, "w\ny a\nx  b\n  z\tc\n"},
        {"sort -l UTF-8 -k 2 -k 1 -r", "x b\ny b\nz a\n", 0, "y b\nx b\nz a\n"},
        {"sort -l UTF-8 -t ; -k 2", "x;b\ny;;a\nz;a;a\n", 0, "y;;a\nz;a;a\nx;b\n"},
        {"sort -l UTF-8 -t ; -k 2,", "x;b\ny;a;b\nz;a;a\n", 0, "z;a;a\ny;a;b\nx;b\n"},
        {"sort -l UTF-8 -t ; -k 1,2", "b;b;a\nb;a;b\na;c;c\n", 0, "a;c;c\nb;a;b\nb;b;a\n"},
        {"sort -l UTF-8 -t \\t -k 2 --keys", "x\tb b\ny\ta \nz\ta\n", 0, "y\ta \nz\ta\nx\tb b\n"},
        // The separator is the second byte of the first character of a line, too.
        {"sort -l SHIFT-JIS -t | -k 2", "\x83||c\n\x83||a\nx|b\n", 0, "\x83||a\nx|b\n\x83||c\n"},
        {"sort -l EBCDIC",
         "b\x25"
         "a\nz\x15"
         "a",
         0,
         "a\x15"
         "a\nz\x15"
         "b\x25"},
        {"sort -l UTF-8", "ok\n\xC3\xA9x\0\n"s, 1, "", ":2:3: byte 6 (0x00): a NUL inside a line"},
        {"sort -l UTF-8 -k 0", "", 2, "", "\"0\" names no field: write 2 for"},
        {"sort -l UTF-8 -k 3,2", "", 2, "", "names no field"},
        {"sort -l LATIN -t \xE2\x82\xAC", "", 2, "", "LATIN has no separator \"\xE2\x82\xAC\""},
        {"sort -l UTF-16", "", 2, "", "text in UTF-16 can't be compared"},
        {"sort -l LATIN/germna", "", 2, "", "LATIN has no collation \"germna\" (do you mean german?)"},
        {"sort -l LATN/german", "", 2, "", "unknown charset \"LATN\" (do you mean LATIN"},
        {"sort -l LATIN/site", "", 4, "", "LATIN/site can't be used"},
        {"sort -l UTF-8 -f nocase", "", 2, "", "nls --help"},
        {"sort -l UTF-8 --memory 1K", "", 2, "", "--memory"},
        {"sort", "", 2, "", "--order is required"},
        {"compare -l LATIN/german a b", "", 0, "<\n"},
        {"compare -l LATIN/german A a", "", 0, "<\n"},
        {"compare -l LATIN/german -f fold A a", "", 0, "=\n"},
        {"compare -l LATIN/german --raw st \xDF", "", 0, ">\n"},
        {"compare -l LATIN/german \xE2\x82\xAC a", "", 1, "", "LATIN lacks a character of"},
        {"compare -l LATIN/german \xFF a", "", 1, "", "is not valid UTF-8"},
        {"compare -l LATIN/german a", "", 2, "", "B is required"},
        {"key -l LATIN/german --hex -f fold", "aS\xDF \n\n!", 0, "61737373\n\n1F\n"},
        {"key -l LATIN/german", "ab\nc", 0, "ab\0c\0"s},
        {"key -l LATIN/german", "a\n" + std::string(32767, 'x'), 1, "",
         ":2: the key of this line is longer than 32 KiB"},
        {"upper -l LATIN/ascii", "aZ\xE4\0z\n"s, 0, "AZ\xE4\0Z\n"s},
        {"lower -l UTF-8", "A\xC3\x89Z", 0, "a\xC3\xA9Z"},
        {"upper -l UTF-8", "a\n\xC3", 1, "", ":2:1: byte 2 (0xC3): cut off by the end of the text"},
        {"upper -l LATIN/asci", "", 2, "", "LATIN has no case table \"asci\" (do you mean ascii?)"},
        {"upper -l SHIFT-JIS", "", 2, "", "SHIFT-JIS has no case table \"basic\""},
        {"fingerprint LATIN/site", "", 4, "", "LATIN/site can't be used"},
        {"fingerprint", "", 2, "", "ORDER is required"},
        {"list --collations", "", 0,
         "LATIN/basic\nUTF-8/basic\nLATIN/thai\nLATIN/site\nSHIFT-JIS/basic\nEUCJIS/basic\n"
         "EBCDIC/basic\nLATIN/german\nEUCJIS/folded\nSHIFT-JIS/folded\n"},
    };
    for (const auto& row : rows) {
        const Answer answer = run(small.words(row.line), row.in);
        EXPECT_EQ(answer.exit, row.exit) << row.line << ": " << answer.err;
        EXPECT_EQ(answer.out, row.exit == 1 && row.out.empty() ? answer.out : row.out) << row.line;
        EXPECT_TRUE(*row.told == 0 ? answer.err.empty() : answer.err.find(row.told) != std::string::npos)
            << row.line << ": " << answer.err;
    }
}

// A text without an end is no reason to hang, and a file appears whole or not at all.
TEST(NlsSort, TroubleWithFilesLeavesTheOldOnes) {
    const World small;
    std::mt19937 random{1};
    const std::string text = joined(randomLines(random, 9000), '\n');
    const std::string in = small.folder.put("in", text);
    const std::string out = small.folder.put("out", "old");
    const std::string small64 = "sort -l LATIN/german --memory 64K";
    const struct {
        std::string line;
        Words more;
        const char* told;
    } rows[] = {
        {small64 + " --temp /nowhere", {in, "-o", out}, "temporary file in /nowhere: No such file"},
        {small64, {in, "/nowhere/in", "-o", out}, "/nowhere/in: No such file"},
        {small64, {in, "-o", "/nowhere/out"}, "/nowhere/out: No such file"},
        {small64, {in, "-o", "/dev/full"}, "/dev/full: No space left"},
        {small64, {small.folder.path("."), "-o", out}, "Is a directory"},
        {"upper -l UTF-8", {in, "-o", "/dev/full"}, ""},
    };
    for (const auto& row : rows) {
        const Answer answer = run(small.words(row.line, row.more));
        EXPECT_NE(answer.err.find(row.told), std::string::npos) << row.line << answer.err;
        EXPECT_TRUE(answer.exit == 4 || *row.told == 0) << row.line;
        EXPECT_EQ(small.folder.get("out"), "old") << row.line;
    }
    // No room for the runs: a limit on the size of files stands for a full disk.
    const rlimit limited{text.size() / 2, RLIM_INFINITY};
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limited);
    const Answer full = run(small.words(small64, {in, "-o", out}));
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(full.exit, 4);
    EXPECT_NE(full.err.find("File too large; --temp names another folder"), std::string::npos) << full.err;
    EXPECT_EQ(small.folder.names(), (std::set<std::string>{"convmap.cp", "in", "out"}));

    EXPECT_EQ(run(small.words(small64, {in, "-o", in})).exit, 0);
    EXPECT_EQ(small.folder.get("in"), run(small.words(small64), text).out);
    EXPECT_EQ(small.folder.names(), (std::set<std::string>{"convmap.cp", "in", "out"}));
}

// A reader that has had enough ends the command in silence.
TEST(NlsSort, BrokenPipe) {
    const World small;
    std::mt19937 random{2};
    const std::string in = small.folder.put("in", joined(randomLines(random, 60000), '\n'));
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int nothing = open("/dev/null", O_RDWR);
    const std::string err = small.folder.put("err", "");
    const int told = open(err.c_str(), O_WRONLY);
    const pid_t child =
        nls::test::start(NLS_COMMAND, small.words("sort -l LATIN/german --memory 1M", {in}), nothing, ends[1], told);
    close(ends[1]);
    char some[100];
    EXPECT_GT(read(ends[0], some, sizeof some), 0);
    close(ends[0]);
    EXPECT_EQ(nls::test::ended(child), 4);
    EXPECT_EQ(small.folder.get("err"), "");
    for (const int descriptor : {nothing, told}) close(descriptor);
}

// Longer than a chunk, with NULs: the same as the library makes of the whole.
TEST(NlsCase, LongTextChangesAsTheLibraryChangesIt) {
    World small;
    std::mt19937 random{3};
    static const char* const letters[] = {
        "a", "Z", "\n", "\xC3\x89", "\xC3\xA9", "\xE1\xB8\x80", "\xE1\xB8\x81", "\xF0\x9F\x98\x80"};
    std::string text;
    while (text.size() < 700000) text += random() % 1000 == 0 ? "\0"s : letters[random() % std::size(letters)];
    nlsLocale* locale = nullptr;
    ASSERT_EQ(nlsCreateLocale(small.open.handle, "UTF-8", NLS_NO_COLLATION, "basic", &locale), NLS_OK);
    std::string want;
    for (std::size_t at = 0; at <= text.size(); at = text.find('\0', at) + 1) {
        std::string part = text.c_str() + at;
        std::string room(part.size() * 2 + 1, 0);
        nlsStr from{reinterpret_cast<unsigned char*>(part.data()), 0, 0};
        nlsStr to{reinterpret_cast<unsigned char*>(room.data()), static_cast<int32_t>(room.size()), 0};
        ASSERT_EQ(nlsUpperCase(locale, nullptr, &from, &to), NLS_OK);
        want.append(room, 0, to.strLength);
        if (text.find('\0', at) == std::string::npos) break;
        want += '\0';
    }
    EXPECT_TRUE(run(small.words("upper -l UTF-8"), text).out == want);
}

TEST(NlsFingerprint, WhatDecidesTheOrderChangesIt) {
    ByteMap heavier = weights(false);
    heavier['q'] = 'r';
    const auto base = [](const ByteMap& exact, const ByteMap& fold, unsigned char kind, unsigned char subKind,
                         bool longQ, const char* name, nls::test::CasePairs pairs = {{'A', 'a'}}) {
        ConvmapBuilder builder;
        ConvmapBuilder::Attributes latin = nls::test::singleByte();
        if (longQ) latin.length['q'] = 1;
        latin.alpha['x'] = 1;
        builder.attributes("UTF-8", nls::test::utf8()).attributes("LATIN", latin);
        builder.units("LATIN", "UTF-8", 51, nls::test::upperHalfAt(0x80)).bare("UTF-8", "LATIN", 20);
        builder.collation("LATIN", name, kind, exact, fold, subKind).unicodeCollation("UTF-8", "basic");
        builder.unicodeCase("UTF-8", "basic", {{'a', 'A'}}, pairs);
        const World made{builder};
        const Answer answer = run(made.words("fingerprint", {"LATIN/"s + name, "UTF-8/basic"}));
        EXPECT_EQ(answer.exit, 0) << answer.err;
        const std::size_t second = answer.out.find('\n') + 1;
        return std::pair{answer.out.substr(0, 64), answer.out.substr(second, 64)};
    };
    const ByteMap exact = weights(false);
    const ByteMap fold = weights(true);
    const auto plain = base(exact, fold, 1, 1, false, "a");
    EXPECT_EQ(base(exact, fold, 1, 1, false, "b"), plain);
    EXPECT_NE(plain.first, plain.second);
    const std::string others[] = {base(heavier, fold, 1, 1, false, "a").first,
                                  base(exact, heavier, 1, 1, false, "a").first,
                                  base(exact, fold, 4, 1, false, "a").first, base(exact, fold, 1, 0, false, "a").first,
                                  base(exact, fold, 1, 1, true, "a").first};
    EXPECT_EQ((std::set<std::string>{std::begin(others), std::end(others)}).size(), std::size(others));
    for (const std::string& other : others) EXPECT_NE(other, plain.first);
    EXPECT_NE(base(exact, fold, 1, 1, false, "a", {{'A', 'a'}, {'B', 'b'}}).second, plain.second);
}

TEST(NlsFingerprint, TheDigestIsSha256) {
    const auto digest = [](const std::string& text, int times = 1) {
        nls::tool::Sha256 sha;
        for (int i = 0; i < times; ++i) sha.add({bytesOf(text), text.size()});
        return sha.finish();
    };
    EXPECT_EQ(digest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(digest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(digest("a", 1000000), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// The lists of names stand in the order of their language, and come back into it.
TEST(NlsSort, NamesOfManyLanguages) {
    std::ifstream lists(NLS_SAMPLES "/names.list");
    int count = 0;
    for (std::string language, order; lists >> language >> order; ++count) {
        std::ifstream file(NLS_SAMPLES "/" + language + ".names");
        const std::string want{std::istreambuf_iterator<char>(file), {}};
        const std::string charset = order.substr(0, order.find('/'));
        std::vector<std::string> names = split(want);
        std::sort(names.begin(), names.end());
        const std::string bytes = joined(names, '\n');
        const Answer there = run({"convert", "-t", charset}, bytes);
        const Answer sorted = run({"sort", "-l", order, "-f", "fold"}, there.out);
        EXPECT_EQ(run({"convert", "-f", charset}, sorted.out).out, want) << order << there.err << sorted.err;
        EXPECT_NE(bytes, want) << language;
    }
    EXPECT_GT(count, 8);
}

}  // namespace
