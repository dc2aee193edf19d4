#include "strings/case_mapping.hpp"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "core/base/cpu.hpp"
#include "nls/strings.h"
#include "tests/reference/case.hpp"
#include "tests/support/case_locale.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace {

using nls::CaseForm;
using nls::CpuLevel;
using nls::test::GuardedBuffer;
using nls::test::HandLocale;
using nls::test::MadeCaseTable;
using nls::test::SlowCase;

constexpr CaseForm kForms[] = {CaseForm::upper, CaseForm::lower};

nlsStatus change(CaseForm form, const nlsLocale* locale, const nlsStr* from, nlsStr* to) {
    return form == CaseForm::lower ? nlsLowerCase(locale, nullptr, from, to) : nlsUpperCase(locale, nullptr, from, to);
}

class CaseMapping : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }

    // The door beside what the slow twin wrote, both buffers in front of a faulting page.
    void expect(const nlsLocale* locale, const std::string& text, std::size_t room, CaseForm form,
                const SlowCase& want) {
        unsigned char* const source = source_.atEnd(text.c_str(), text.size() + 1);
        unsigned char* const target = target_.atEnd(room);
        std::memset(target, 0xEE, room);
        const nlsStr from{source, -1, 0};
        nlsStr to{target, static_cast<int32_t>(room), 77};
        ASSERT_EQ(change(form, locale, &from, &to), want.status) << testing::PrintToString(text) << room;
        ASSERT_EQ(std::memcmp(target, want.written.data(), want.written.size()), 0)
            << testing::PrintToString(text) << " gave " << testing::PrintToString(std::string(target, target + room));
        for (std::size_t i = want.written.size(); i < room; ++i) ASSERT_EQ(target[i], 0xEE) << i;
        ASSERT_EQ(to.strLength, want.status == NLS_OK ? want.written.size() - 1 : 77);
        if (want.status != NLS_OK || want.written.size() > text.size() + 1) return;
        nlsStr both{source, static_cast<int32_t>(text.size() + 1), 0};
        const nlsStatus status = change(form, locale, &both, &both);
        if (!inPlace_) return;
        ASSERT_EQ(status, NLS_OK);
        ASSERT_EQ(std::memcmp(source, want.written.data(), want.written.size()), 0);
    }

    bool inPlace_ = true;  // whether no form is longer than its character
    GuardedBuffer source_{4096}, target_{4096};
};
INSTANTIATE_TEST_SUITE_P(Levels, CaseMapping, testing::Values(CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512));

// Each character of the BMP whose forms a table can hold, as the C library has them; all others as they are.
TEST_P(CaseMapping, EveryCharacterOfTheBmp) {
    MadeCaseTable table;
    table.fillFromLibrary();
    HandLocale locale{nls::test::utf8Charset()};
    locale.get()->caseTable = table.get();
    const nls::test::LibraryCase library;
    unsigned mapped = 0;
    for (const CaseForm form : kForms)
        for (char32_t first = 1; first < 0x10000; first += 61) {
            std::string text, want;
            for (char32_t c = first; c < first + 61 && c < 0x10000; ++c) {
                const std::string own = nls::test::utf8Of(c), other = nls::test::utf8Of(library(c, form));
                const bool held = nls::test::canHold(nls::test::numberOf(own), nls::test::numberOf(other));
                text += own;
                want += held ? other : own;
                mapped += held && own != other;
            }
            unsigned char buf[256];
            nlsStr from{reinterpret_cast<unsigned char*>(text.data()), 0, 0}, to{buf, sizeof buf, 0};
            ASSERT_EQ(change(form, locale.get(), &from, &to), NLS_OK);
            ASSERT_EQ(std::string(buf, buf + to.strLength), want) << "from U+" << std::hex << uint32_t{first};
        }
    EXPECT_GT(mapped, 1800U);
}

// Any text, any table, every room from none to plenty.
TEST_P(CaseMapping, Utf8AsTheSlowTwin) {
    std::mt19937 random{11};
    nlsAttribStruct oddLengths = nls::test::oddCharset();
    oddLengths.flags |= NLS_CHARSET_UTF8;
    for (unsigned variant = 0; variant < 6; ++variant) {
        MadeCaseTable table;
        if (variant != 2) table.fillFromLibrary();
        if (variant == 1) table.set('I', CaseForm::lower, 0xC4B1), table.set('i', CaseForm::upper, 0xC4B0);
        if (variant == 3 || variant == 5) table.fillWild(variant, variant == 3);
        HandLocale locale{variant == 4 ? oddLengths : nls::test::utf8Charset()};
        locale.get()->caseTable = table.get();
        inPlace_ = variant == 0;
        for (unsigned i = 0; i < 500; ++i) {
            const CaseForm form = kForms[random() % 2];
            const std::string text = nls::test::randomUtf8(random, random() % (i % 8 == 0 ? 300 : 90), i % 4);
            const std::size_t plenty = text.size() * 2 + 2;
            const auto want = [&](std::size_t room) {
                return nls::test::slowCase(locale.attrib(), nullptr, false, &table.pages(), text, room,
                                           form == CaseForm::lower);
            };
            expect(locale.get(), text, plenty, form, want(plenty));
            for (std::size_t room = 0; room < plenty; room += i % 16 == 0 ? 1 : 1 + random() % plenty)
                ASSERT_NO_FATAL_FAILURE(expect(locale.get(), text, room, form, want(room)));
        }
    }
}

TEST_P(CaseMapping, BytesAsTheSlowTwin) {
    nlsCaseStruct table{};
    std::iota(std::begin(table.upperMap), std::end(table.upperMap), static_cast<unsigned char>(0));
    std::iota(std::begin(table.lowerMap), std::end(table.lowerMap), static_cast<unsigned char>(0x35));
    std::mt19937 random{12};
    std::shuffle(std::begin(table.upperMap) + 1, std::end(table.upperMap), random);
    for (const auto& charset : nls::test::handCharsets()) {
        for (const bool cLocale : {false, true}) {
            if (!cLocale && (charset.attrib.flags & NLS_CHARSET_UTF8) != 0) continue;
            HandLocale locale{charset.attrib};
            if (!cLocale) locale.get()->caseTable = &table;
            for (unsigned i = 0; i < 300; ++i) {
                const CaseForm form = kForms[random() % 2];
                unsigned char forms[256];
                for (int c = 0; c < 256; ++c)
                    forms[c] = !cLocale ? (form == CaseForm::lower ? table.lowerMap : table.upperMap)[c]
                               : form == CaseForm::lower ? static_cast<unsigned char>(tolower(c))
                                                         : static_cast<unsigned char>(toupper(c));
                const std::string text = nls::test::randomUtf8(random, random() % 150, i % 4);
                for (std::size_t room = 0; room < text.size() + 3;
                     room += i % 16 == 0 ? 1 : 1 + random() % (text.size() + 2)) {
                    const SlowCase want =
                        nls::test::slowCase(charset.attrib, forms, !cLocale, nullptr, text, room, false);
                    ASSERT_NO_FATAL_FAILURE(expect(locale.get(), text, room, form, want)) << charset.name << cLocale;
                }
            }
        }
    }
}

TEST(CaseDoors, ChecksInOrder) {
    HandLocale locale{nls::test::singleByteCharset()};
    unsigned char text[4] = "Ab", buf[4] = "xyz";
    const nlsStr from{text, 4, 2}, none{nullptr, 4, 0};
    for (const CaseForm form : kForms) {
        nlsStr to{buf, 0, 9}, noTarget{nullptr, 4, 0};
        EXPECT_EQ(change(form, nullptr, &from, &to), NLS_BAD_HANDLE);
        for (const int32_t size : {INT32_MIN, -1, 0}) {
            to.bufSize = size;
            EXPECT_EQ(change(form, locale.get(), &from, &to), NLS_BUF_SMALL);
        }
        EXPECT_EQ(change(form, locale.get(), &none, &to), NLS_BAD_ARG);
        EXPECT_EQ(change(form, locale.get(), &from, &noTarget), NLS_BAD_ARG);
        EXPECT_EQ(change(form, locale.get(), nullptr, &to), NLS_BAD_ARG);
        EXPECT_EQ(change(form, locale.get(), &from, nullptr), NLS_BAD_ARG);
        nlsLocale broken = *locale.get();
        broken.attrib = nullptr;
        EXPECT_EQ(change(form, &broken, &none, &noTarget), NLS_NO_ATTRIB);
        broken.hdr.typeTag = NLS_TAG_CONVERSION;
        EXPECT_EQ(change(form, &broken, &from, &to), NLS_BAD_LOCALE);
        broken.owner = nullptr;
        EXPECT_EQ(change(form, &broken, &from, &to), NLS_BAD_HANDLE);
        EXPECT_EQ(to.strLength, 9U);
        EXPECT_STREQ(reinterpret_cast<char*>(buf), "xyz");
    }
}

}  // namespace
