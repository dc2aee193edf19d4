// A small world with ICU: the packs of this build, a data file that names ICU's charsets, and locales by ICU's
// collations.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "nls/nls.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

// What a locale or a table has opened stays open for as long as the process runs; the guard of the packs counts.
extern "C" [[gnu::used]] inline const char* __lsan_default_suppressions() {
    return "leak:libicuuc\nleak:libicui18n\nleak:nls::openCollator\nleak:nls::openConverter\n";
}

namespace nls::test {

// A test that wants the packs with a guard defines it before it includes this.
#ifndef NLS_ICU_FOLDER
#define NLS_ICU_FOLDER NLS_ICU_PACKS
#endif

// Before anything loads ICU.
inline bool useFolder(const char* folder) {
    return setenv("BINPATHX", folder, 1) == 0;
}
inline const bool kPacksInUse = useFolder(NLS_ICU_FOLDER);

inline const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

class IcuWorld {
public:
    IcuWorld()
        : open_(ConvmapBuilder{}.attributes("UTF-8", utf8()).unicodeCollation("UTF-8", "basic").build(), 4 << 20) {}

    nlsStatus create(const char* collation, nlsLocale*& locale) {
        return nlsCreateLocale(open_.handle, "UTF-8", collation, nullptr, &locale);
    }
    // Null, and a failure of the test, where there is none.
    const nlsLocale* locale(const char* collation) {
        nlsLocale* made = nullptr;
        EXPECT_EQ(create(collation, made), NLS_OK) << collation;
        return made;
    }

private:
    OpenHandle open_;
};

// A thread's block, closed at the end.
class ThreadBlock {
public:
    ThreadBlock() {
        uint32_t size = sizeof memory_;
        EXPECT_EQ(nlsTlsInit(0, memory_.data(), &size, &block_), NLS_OK);
    }
    ThreadBlock(const ThreadBlock&) = delete;
    ThreadBlock& operator=(const ThreadBlock&) = delete;
    ~ThreadBlock() { EXPECT_EQ(nlsTlsClose(block_), NLS_OK); }

    nlsTlsBlock* get() const { return block_; }

private:
    std::array<uint64_t, 512> memory_{};
    nlsTlsBlock* block_ = nullptr;
};

// -1, 0 or 1.
inline int compare(const nlsLocale* locale, nlsTlsBlock* tls, std::string_view a, std::string_view b, uint16_t mode) {
    uint16_t result = 0x5555;
    EXPECT_EQ(nlsCompareN(locale, tls, bytesOf(a), bytesOf(b), static_cast<int32_t>(a.size()),
                          static_cast<int32_t>(b.size()), mode, &result),
              NLS_OK);
    return static_cast<int16_t>(result);
}

// Without its NUL.
inline std::string keyOf(const nlsLocale* locale, nlsTlsBlock* tls, const std::string& text, uint16_t options,
                         int16_t room = 16000) {
    std::string key(static_cast<std::size_t>(room), '\xEE');
    uint16_t length = 0x5555;
    EXPECT_EQ(
        nlsSortKey(locale, tls, bytesOf(text), room, options, 0, reinterpret_cast<unsigned char*>(key.data()), &length),
        NLS_OK);
    key.resize(length);
    return key;
}

}  // namespace nls::test
