// Words of a text, cut by the classes that a word-break table gives its bytes.
// Tested by tests/collation/words_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nls/records.h"

namespace nls {

// A word-break table, which may stand at any address, and its classes. Where a table tells of classes behind its own
// end, those bytes are of class 0.
class WordBreaks {
public:
    explicit WordBreaks(const nlsWbTable* table);

    // A database may have none, and its place then is filled with zeros.
    bool isMissing() const { return missing_; }
    uint8_t kind() const { return kind_; }
    uint8_t classOf(unsigned char byte) const { return byte < classCount_ ? classes_[byte] : 0; }

private:
    const unsigned char* classes_ = nullptr;
    std::size_t classCount_ = 0;
    bool missing_ = true;
    uint8_t kind_ = 0;
};

inline constexpr uint32_t kLongestWord = 184;  // bytes; what is longer loses the rest
inline constexpr std::size_t kWordRoom = 188;  // of the word and its NUL

// Characters that are words of their own: those of two bytes, those of four.
enum BreakOptions : uint32_t { kBreakPairs = 1, kBreakFours = 2 };

struct Word {
    const unsigned char* next;  // where the text goes on; null when there is no word
    uint32_t length;            // bytes, without the NUL
    bool truncated;
};

// The first word of `text`, copied to `target` and closed by a NUL.
Word cutWord(const unsigned char* text, const WordBreaks& breaks, uint32_t options, unsigned char (&target)[kWordRoom]);

}  // namespace nls
