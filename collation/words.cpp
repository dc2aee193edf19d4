#include "collation/words.hpp"

#include "core/base/views.hpp"

namespace nls {

namespace {

enum class WordClass : uint8_t {
    ignored = 0,
    separator = 1,
    letter = 2,
    digit = 3,
    other = 4,
    letterJoiner = 5,
    digitJoiner = 6,
    joiner = 7,
    pair = 9,
    triple = 10,
    four = 11,
};

bool joins(WordClass held, WordClass kind) {
    if (kind == WordClass::letter) return held == WordClass::letterJoiner || held == WordClass::joiner;
    if (kind == WordClass::digit) return held == WordClass::digitJoiner || held == WordClass::joiner;
    return false;
}

class WordCutter {
public:
    WordCutter(const unsigned char* text, const WordBreaks& breaks, uint32_t options, unsigned char* target)
        : place_(text), breaks_(breaks), options_(options), target_(target) {}

    Word cut() {
        while (*place_ != 0 && take()) {
        }
        target_[length_] = 0;
        return {length_ != 0 ? place_ : nullptr, length_, truncated_};
    }

private:
    bool begun() const { return length_ != 0; }

    // One byte or one character; false where the word ends, at the place reached.
    bool take() {
        const auto kind = static_cast<WordClass>(breaks_.classOf(*place_));
        if (held_ != WordClass::ignored) {
            if (joins(held_, kind))
                append(place_[-1]);
            else if (begun())
                return false;
            held_ = WordClass::ignored;
        }
        switch (kind) {
            case WordClass::separator:
                if (begun()) return false;
                break;
            case WordClass::letter:
            case WordClass::digit:
            case WordClass::other:
                append(*place_);
                break;
            case WordClass::letterJoiner:
            case WordClass::digitJoiner:
            case WordClass::joiner:
                held_ = kind;
                break;
            case WordClass::pair:
                return (options_ & kBreakPairs) != 0 ? takeAlone(2) : takePair();
            case WordClass::triple:
                return takeAlone(3);
            case WordClass::four:
                return (options_ & kBreakFours) != 0 ? takeAlone(4) : takePair();
            default:
                break;
        }
        ++place_;
        return true;
    }

    void append(unsigned char byte) {
        if (length_ < kLongestWord)
            target_[length_++] = byte;
        else
            truncated_ = true;
    }

    // A word of one character, of `bytes` bytes unless the text ends before.
    bool takeAlone(int bytes) {
        if (begun()) return false;
        for (int i = 0; i < bytes && *place_ != 0; ++i) append(*place_++);
        return false;
    }

    // Two bytes of the word. Where they don't fit, the second is judged by itself.
    bool takePair() {
        if (length_ > kLongestWord - 2) {
            truncated_ = true;
            ++place_;
            return true;
        }
        append(*place_++);
        if (*place_ != 0) append(*place_++);
        return true;
    }

    const unsigned char* place_;
    const WordBreaks& breaks_;
    uint32_t options_;
    unsigned char* target_;
    uint32_t length_ = 0;
    WordClass held_ = WordClass::ignored;  // the joiner in front of the place; ignored for none
    bool truncated_ = false;
};

}  // namespace

WordBreaks::WordBreaks(const nlsWbTable* table) {
    if (table == nullptr) return;
    constexpr std::size_t kHead = 62, kClasses = 256;
    const auto head = loadWord<nlsWbTable>(table);
    const std::size_t size = kHead + head.wbBodySize;
    kind_ = head.wbKind;
    missing_ = head.wbKind == 0 && head.wbBodySize == 0 && head.wbClassOffset == 0;
    if (head.wbClassOffset >= size) return;
    classes_ = reinterpret_cast<const unsigned char*>(table) + head.wbClassOffset;
    classCount_ = size - head.wbClassOffset < kClasses ? size - head.wbClassOffset : kClasses;
}

Word cutWord(const unsigned char* text, const WordBreaks& breaks, uint32_t options,
             unsigned char (&target)[kWordRoom]) {
    return WordCutter{text, breaks, options, target}.cut();
}

}  // namespace nls
