// The slow twin of all conversions: a text read character by character, each written as a piece of the target, and
// what a target of a given size then holds. It knows the rules of each type of table, and the characters from
// CharsetModel; it looks into no table.
#pragma once

#include "tests/real/charset_model.hpp"

namespace nls::real {

// Types of tables, as nlsConversionType tells them.
enum class Type : int32_t {
    byteMap = 1,
    identity = 2,
    sjisToEuc = 3,
    eucToSjis = 4,
    twoSteps = 7,
    multiToUtf8 = 17,
    utf8ToMulti = 18,
    singleToUtf8 = 19,
    utf8ToSingle = 20,
    ucs2ToUtf8 = 21,
    utf8ToUcs2 = 22,
    utf16ToUtf8 = 23,
    utf8ToUtf16 = 24,
    utf32ToUtf8 = 25,
    utf8ToUtf32 = 26,
    utf16ToUtf32 = 27,
    utf32ToUtf16 = 28,
    multiToUtf16 = 29,
    utf16ToMulti = 30,
    utf8ToMultiNarrow = 50,
    singleToUtf8Narrow = 51,
    multiToUtf8Wide = 81,
};

struct Route {
    Route(const std::string& fromName, const std::string& toName);

    const Name& from;
    const Name& to;
    const nlsConvTable* table;
    Type type;
};

// What a call leaves behind. The target holds kFill where nothing is to be written.
struct Foretold {
    nlsStatus status;
    uint32_t count;  // kUntouched where outLen is left alone
    Bytes target;
    std::size_t certain = target.size();  // bytes of the target that must stand so; any may stand behind them

    // Where a target differs; empty where it doesn't.
    std::string differenceOf(ByteView have) const;
};

// convertBytes through `route`, with a scratch buffer of `scratchSize` bytes where the table has two steps.
Foretold foretell(const Route& route, ByteView source, std::size_t targetSize, std::size_t scratchSize);

// The same with room for everything; the target is cut to what is counted.
Foretold foretellWhole(const Route& route, ByteView source);

// Places between the characters of a text, its start and its end among them.
std::vector<std::size_t> characterPlaces(const Name& charset, ByteView text);

}  // namespace nls::real
