// The real file in little memory, and with reads that fail: everything can be made from the smallest block on, with
// buffers added as they are asked for, and what is made late works like what is made at once.
#include <set>

#include "tests/real/foretold.hpp"
#include "tests/support/open_handle.hpp"

namespace nls::real {
namespace {

using test::OpenHandle;

// Their maps don't fit in a buffer of the smallest size; 125000 bytes serve each.
const std::set<std::string> kLarge = {"CP949", "CP1361", "CP936", "CP950", "CP950-HKSCS"};
constexpr int32_t kLargeBuffer = 125000;

// A handle that is given memory when a call asks for it, and not before.
class Hungry {
public:
    explicit Hungry(int32_t blockSize) : open_(dataFile(), blockSize) { EXPECT_EQ(open_.status, NLS_OK); }

    nlsLocale* locale(const std::string& charset) {
        nlsLocale* made = nullptr;
        const auto create = [&] {
            return nlsCreateLocale(open_.handle, charset.c_str(), NLS_NO_COLLATION, nullptr, &made);
        };
        nlsStatus status = create();
        if (status == NLS_NO_MEM) {
            grow(NLS_SMALLEST_BUFFER);
            status = create();
        }
        EXPECT_EQ(status, NLS_OK) << charset;
        return made;
    }

    // Null where there is none. A fresh buffer is all that a call may want, and then it may want nothing more: 1 asks
    // for it, and so does an 8 where two tables are made at once.
    const nlsConversion* conversion(const std::string& from, const std::string& to) {
        nlsLocale *const source = locale(from), *const target = locale(to);
        nlsConversion* made = nullptr;
        const auto create = [&] { return nlsCreateConversion(open_.handle, source, target, &made); };
        nlsStatus status = create();
        if (status == NLS_OK) return made;
        EXPECT_TRUE(status == NLS_NO_MEM || status == NLS_NO_CONV_TABLE) << from << " to " << to << ": " << status;
        grow(NLS_SMALLEST_BUFFER);
        if (create() == NLS_OK) return made;
        if (status == NLS_NO_MEM) {
            EXPECT_TRUE(kLarge.contains(from) || kLarge.contains(to)) << from << " to " << to;
            refused_.insert(kLarge.contains(from) ? from : to);
        }
        grow(kLargeBuffer);
        status = create();
        EXPECT_TRUE(status == NLS_OK || status == NLS_NO_CONV_TABLE) << from << " to " << to << ": " << status;
        return made;
    }

    // Charsets that a buffer of the smallest size didn't serve.
    const std::set<std::string>& refused() const { return refused_; }

private:
    void grow(int32_t size) { ASSERT_EQ(open_.grow(size), NLS_OK); }

    OpenHandle open_;
    std::set<std::string> refused_;
};

// Text of the source's charset through both conversions, as far as it fits.
void expectWorksAlike(const nlsConversion& have, const nlsConversion& want) {
    const ByteView text = ByteView{realText(want.source->charsetName)}.first(400);
    const Outcome is = convert(have.table, text), should = convert(want.table, text);
    EXPECT_EQ(is.status, should.status) << want.source->charsetName << " to " << want.target->charsetName;
    EXPECT_EQ(is.bytes, should.bytes) << want.source->charsetName << " to " << want.target->charsetName;
}

// Every pair of charsets in one handle of the smallest block.
TEST(RealStarvation, EverythingFromTheSmallestBlock) {
    RealFile& file = RealFile::shared();
    Hungry hungry(NLS_SMALLEST_BLOCK);
    std::size_t made = 0;
    for (const Name& from : file.charsets())
        for (const Name& to : file.charsets()) {
            const nlsConversion* const want = file.find(from.text, to.text);
            if (want == nullptr) continue;
            const nlsConversion* const have = hungry.conversion(from.text, to.text);
            ASSERT_NE(have, nullptr) << from.text << " to " << to.text;
            expectWorksAlike(*have, *want);
            ++made;
        }
    EXPECT_EQ(hungry.refused(), kLarge);
    EXPECT_GT(made, 800U);
}

// The block runs out at another place each time.
TEST(RealStarvation, BlocksOfEverySize) {
    constexpr const char* kPairs[][2] = {{"SHIFT-JIS", "UTF-8"},  {"UTF-8", "1252"},  {"KOI8-R", "UTF-16BE"},
                                         {"EUCJIS", "SHIFT-JIS"}, {"UTF-8", "CP936"}, {"GB2312", "UTF-16LE"}};
    for (int32_t size = NLS_SMALLEST_BLOCK; size < NLS_SMALLEST_BLOCK + 12000; size += 88) {
        Hungry hungry(size);
        for (const auto& pair : kPairs) {
            const nlsConversion* const have = hungry.conversion(pair[0], pair[1]);
            ASSERT_NE(have, nullptr) << pair[0] << " to " << pair[1] << " in a block of " << size;
            expectWorksAlike(*have, RealFile::shared().conversion(pair[0], pair[1]));
        }
    }
}

// A pair that isn't there is told so at once, in any memory.
TEST(RealStarvation, WhatIsMissingIsMissing) {
    OpenHandle open(dataFile());
    nlsConversion* made = nullptr;
    EXPECT_EQ(nlsCreateConversion(open.handle, open.locale("1252"), open.locale("SHIFT-JIS"), &made),
              NLS_NO_CONV_TABLE);
    EXPECT_EQ(made, nullptr);
}

// One read after the other comes back short while a conversion is made, or a byte too long. The record of the
// conversion itself is told as 21; its maps, and the record of another table that it needs, as 8.
void expectEachReadMadeUpFor(const std::string& from, const std::string& to, int test::MemoryFile::*fault) {
    for (int read = 0;; ++read) {
        OpenHandle open(dataFile(), 400000);
        nlsLocale *const source = open.locale(from.c_str()), *const target = open.locale(to.c_str());
        nlsConversion* made = nullptr;
        open.file.*fault = open.file.reads + read;
        nlsStatus status = nlsCreateConversion(open.handle, source, target, &made);
        if (status == NLS_OK) {
            EXPECT_GE(read, 1) << from << " to " << to;
            return;
        }
        EXPECT_EQ(made, nullptr);
        const bool isOwnRecord = read == 0 && from != "UTF-8" && from != "UTF-16BE" && to != "UTF-16BE";
        EXPECT_EQ(status, isOwnRecord ? NLS_READ_FAILED : NLS_NO_CONV_TABLE) << from << " to " << to << ": " << read;
        status = nlsCreateConversion(open.handle, source, target, &made);
        ASSERT_EQ(status, NLS_OK) << from << " to " << to << ", read " << read;
        expectWorksAlike(*made, RealFile::shared().conversion(from, to));
    }
}

TEST(RealReads, EachReadOfAConversionMayFail) {
    std::vector<std::pair<std::string, std::string>> pairs = {{"1252", "UTF-8"}, {"UTF-8", "1252"}, {"1252", "IBM850"}};
    for (const std::string& charset : RealFile::shared().legacyCharsets()) {
        if (!CharsetModel::of(charset).isMultiByte()) continue;
        for (const char* const form : {"UTF-8", "UTF-16BE"}) {
            pairs.emplace_back(charset, form);
            pairs.emplace_back(form, charset);
        }
    }
    for (const auto& [from, to] : pairs) {
        expectEachReadMadeUpFor(from, to, &test::MemoryFile::cutRead);
        expectEachReadMadeUpFor(from, to, &test::MemoryFile::overRead);
    }
}

// Opening reads the header, then each entry.
TEST(RealReads, EachReadOfTheContentsMayFail) {
    const int entries = OpenHandle(dataFile()).handle->tocCount;
    for (int read = 0; read <= entries + 1; ++read) {
        const OpenHandle open(OpenHandle::kPlenty, dataFile(), read);
        const nlsStatus want = read == 0 ? NLS_BAD_MAGIC : read <= entries ? NLS_BAD_TOC : NLS_OK;
        EXPECT_EQ(open.status, want) << "read " << read;
    }
}

}  // namespace
}  // namespace nls::real
