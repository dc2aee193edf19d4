// The real data file as a caller sees it: read from memory, its charsets and conversions by name, text converted with
// room to spare.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/base/cpu.hpp"
#include "core/base/views.hpp"
#include "nls/nls.h"
#include "tests/support/open_handle.hpp"

namespace nls::real {

using Bytes = std::vector<unsigned char>;

enum class Family { singleByte, multiByte, utf8, units16, units32 };

struct Name {
    std::string text;
    Family family;
    bool swapped;  // 16- or 32-bit units against the order of the machine

    bool isUnicode() const { return family != Family::singleByte && family != Family::multiByte; }
};

const Bytes& dataFile();
// The file that opens in the smallest block.
const Bytes& smallDataFile();

// A handle with memory for everything that the file holds.
class RealFile {
public:
    static RealFile& shared();

    // Those that convert; some have a name and tables of their own alone.
    const std::vector<Name>& charsets() const { return charsets_; }
    std::vector<std::string> legacyCharsets() const { return names(false); }
    std::vector<std::string> unicodeForms() const { return names(true); }
    const Name& charset(const std::string& name) const;

    // The pairs that have an entry of their own, in the order of the file.
    const std::vector<std::pair<std::string, std::string>>& pairs() const { return pairs_; }

    // Charset and name of every collation, and of every case table.
    const std::vector<std::pair<std::string, std::string>>& collations() const { return collations_; }
    const std::vector<std::pair<std::string, std::string>>& caseTables() const { return caseTables_; }

    // Null where the file has no such tables and none are derived.
    const nlsLocale* find(const std::string& charset, const char* collation, const char* caseName);

    // Null where the library has no way from the one to the other.
    const nlsConversion* find(const std::string& from, const std::string& to);
    // The same, for a pair that must have one; the table is null for the identity.
    const nlsConversion& conversion(const std::string& from, const std::string& to);
    const nlsConvTable* table(const std::string& from, const std::string& to) { return conversion(from, to).table; }

private:
    RealFile();
    nlsLocale* locale(const std::string& name);
    std::vector<std::string> names(bool unicode) const;

    test::OpenHandle open_;
    std::vector<Name> charsets_;
    std::vector<std::pair<std::string, std::string>> pairs_, collations_, caseTables_;
    std::map<std::pair<std::string, std::string>, const nlsConversion*> found_;
};

// `outLen` of a call that left it alone.
inline constexpr uint32_t kUntouched = 0xEEEEEEEE;

struct Outcome {
    nlsStatus status;
    uint32_t count;
    Bytes bytes;
};

// What stands in a target where nothing was written.
inline constexpr unsigned char kFill = 0xA5;

// The whole conversion, two steps too, into a target that is large enough.
Outcome convert(const nlsConvTable* table, ByteView source);

// One character or value in a form of Unicode.
void append(Bytes& text, uint32_t value, const Name& form);

// Real text of every language that the charset holds without loss, some kilobytes of each. The same on every run.
const Bytes& realText(const std::string& charset);

// Where two byte strings part, for messages; empty where they don't.
std::string firstDifference(ByteView have, ByteView want);

// A name of letters, digits and low lines, as a test wants it.
std::string identifier(std::string name);

// Drives each path that this machine can take.
template <typename Run>
void forEachCpuLevel(const Run& run) {
    for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512}) {
        limitCpuLevel(level);
        if (cpuLevel() != level) break;
        const testing::ScopedTrace trace(__FILE__, __LINE__, "level " + std::to_string(static_cast<int>(level)));
        run();
    }
    limitCpuLevel(CpuLevel::avx512);
}

}  // namespace nls::real
