// The small file in little memory: everything can be made from the smallest block on, with buffers added as they are
// asked for, and what is made late works like what is made at once. Failing reads: tests/convmap/starvation_test.cpp.
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
    explicit Hungry(int32_t blockSize) : open_(smallDataFile(), blockSize) { EXPECT_EQ(open_.status, NLS_OK); }

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

// A form of Unicode in an order of its own, which the small file lacks.
bool hasByteOrder(const Name& name) {
    return name.text.ends_with("LE") || name.text.ends_with("BE");
}

// Text of the source's charset through both conversions, as far as it fits.
void expectWorksAlike(const nlsConversion& have, const nlsConversion& want) {
    const ByteView text = ByteView{realText(want.source->charsetName)}.first(400);
    const Outcome is = convert(have.table, text), should = convert(want.table, text);
    EXPECT_EQ(is.status, should.status) << want.source->charsetName << " to " << want.target->charsetName;
    EXPECT_EQ(is.bytes, should.bytes) << want.source->charsetName << " to " << want.target->charsetName;
}

// Every conversion of the small file in one handle of the smallest block.
TEST(RealStarvation, EverythingFromTheSmallestBlock) {
    RealFile& file = RealFile::shared();
    Hungry hungry(NLS_SMALLEST_BLOCK);
    std::size_t made = 0;
    for (const Name& from : file.charsets())
        for (const Name& to : file.charsets()) {
            if (hasByteOrder(from) || hasByteOrder(to)) continue;
            const nlsConversion* const want = file.find(from.text, to.text);
            if (want == nullptr || nlsConversionType(want->table) == static_cast<int32_t>(Type::byteMap)) continue;
            const nlsConversion* const have = hungry.conversion(from.text, to.text);
            ASSERT_NE(have, nullptr) << from.text << " to " << to.text;
            expectWorksAlike(*have, *want);
            ++made;
        }
    EXPECT_EQ(hungry.refused(), kLarge);
    EXPECT_GT(made, 400U);
}

}  // namespace
}  // namespace nls::real
