#include "tools/mkconvmap/ucs2_mapping.hpp"

#include <algorithm>

#include "core/base/names.hpp"

namespace nls::mkconvmap {

namespace {

bool holds(const std::vector<CodeRange>& ranges, Code code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [code](const CodeRange& range) { return code >= range.first && code <= range.last; });
}

std::string codeText(Code code) {
    return hexText(code, code > 0xFF ? 4 : 2);
}

class MappingReader {
public:
    MappingReader(const CharsetSource& charset, const Ucs2Source& source)
        : charset_(charset),
          source_(source),
          rows_(openRowSource(source.sourcePlace, source.library, source.converter)) {}

    CodeMapping read() {
        readForth();
        readInverse();
        for (const OneWay& entry : source_.back) addOneWay(entry);
        if (source_.substChar >= 0x80 && !mapping_.forth.contains(source_.substChar)) {
            fail(source_.place, "the substitute " + codeText(source_.substChar) + " has no character");
        }
        return mapping_;
    }

private:
    void readForth() {
        for (unsigned first = 0x80; first <= 0xFF; ++first) {
            const unsigned trailCount = charset_.lengths[first] & 0x07U;
            if (source_.singles[first]) readCode(static_cast<Code>(first));
            if (trailCount > 1) fail(charset_.place, "a mapping of characters above two bytes isn't known");
            if (trailCount == 0) continue;
            for (unsigned trail = 1; trail <= 0xFF; ++trail) {
                if (charset_.trails[trail]) readCode(static_cast<Code>(first << 8 | trail));
            }
        }
        for (const CodeRange& range : source_.without) checkUsed(range, "the source has no code of this range");
        for (const CodeRange& range : source_.yielding) checkUsed(range, "no code of this range has a character");
    }

    void readCode(Code code) {
        const std::u32string text = decode(code);
        if (text.empty()) return;
        used_.push_back(code);
        if (holds(source_.without, code)) return;
        if (text.size() > 1) {
            fail(source_.sourcePlace, codeText(code) + " is a sequence of " + std::to_string(text.size()) +
                                          " code points; a line \"without " + codeText(code) + "\" leaves it out");
        }
        checkCodePoint(code, text[0]);
        mapping_.forth.emplace(code, text[0]);
    }

    std::u32string decode(Code code) {
        const uint8_t bytes[2] = {static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)};
        const ByteView character = code > 0xFF ? ByteView{bytes} : ByteView{bytes + 1, 1};
        if (!source_.eucImage) return rows_->decode(character);
        const std::vector<uint8_t> image = shiftJisOfEuc(character);
        return image.empty() ? std::u32string{} : rows_->decode(image);
    }

    void checkCodePoint(Code code, uint32_t codePoint) {
        const std::string text = codeText(code) + " is " + codePointText(codePoint);
        if (codePoint < 0x80) fail(source_.sourcePlace, text + ", and ASCII has no other bytes than its own");
        if (codePoint >= 0xD800 && codePoint < 0xE000) fail(source_.sourcePlace, text + ", half a surrogate pair");
        if (codePoint == 0xFFFD || codePoint == 0xFFFF)
            fail(source_.sourcePlace, text + ", which says \"no character\"");
        if (isCp936(charset_) && (codePoint == kEuro || code == kCp936EuroCode)) {
            fail(source_.sourcePlace, text + "; CP936 has the euro at 80 without a map");
        }
    }

    void checkUsed(const CodeRange& range, const std::string& complaint) {
        const auto inRange = [&range](Code code) { return code >= range.first && code <= range.last; };
        if (std::none_of(used_.begin(), used_.end(), inRange)) {
            fail(range.place, codeText(range.first) + "-" + codeText(range.last) + ": " + complaint);
        }
    }

    void readInverse() {
        for (const auto& [code, codePoint] : mapping_.forth) {
            const auto [entry, isNew] = mapping_.back.emplace(codePoint, code);
            if (!isNew && holds(source_.yielding, entry->second)) entry->second = code;
        }
    }

    void addOneWay(const OneWay& entry) {
        const std::string text = codePointText(entry.codePoint);
        if (entry.codePoint < 0x80) fail(entry.place, text + " is ASCII and stays what it is");
        if (isCp936(charset_) && entry.codePoint == kEuro) {
            fail(entry.place, text + " goes to 80 without a map in CP936");
        }
        const bool isAscii = entry.code > 0 && entry.code < 0x80;
        if (!isAscii && !mapping_.forth.contains(entry.code)) {
            fail(entry.place, codeText(entry.code) + " has no character");
        }
        if (!mapping_.back.emplace(entry.codePoint, entry.code).second) {
            fail(entry.place, text + " goes to " + codeText(mapping_.back.at(entry.codePoint)) + " already");
        }
    }

    const CharsetSource& charset_;
    const Ucs2Source& source_;
    std::unique_ptr<RowSource> rows_;
    std::vector<Code> used_;  // what the source has, left-out codes among them
    CodeMapping mapping_;
};

}  // namespace

bool isCp936(const CharsetSource& charset) {
    return sameName(charset.name.c_str(), "CP936");
}

CodeMapping readMapping(const CharsetSource& charset, const Ucs2Source& source) {
    return MappingReader{charset, source}.read();
}

std::vector<uint8_t> shiftJisOfEuc(ByteView euc) {
    constexpr uint8_t kanaPrefix = 0x8E;
    if (euc.size() != 2) return {};
    if (euc[0] == kanaPrefix && euc[1] >= 0xA1 && euc[1] <= 0xDF) return {euc[1]};
    if (euc[0] < 0xA1 || euc[0] > 0xFE || euc[1] < 0xA1 || euc[1] > 0xFE) return {};
    const unsigned row = euc[0] - 0xA1U, column = euc[1] - 0xA1U;
    // Two rows of JIS X 0208 share a lead byte; the leads leave out A0 to DF, the trails 7F.
    const unsigned lead = row / 2 + (row < 62 ? 0x81 : 0xC1);
    const unsigned trail = row % 2 == 1 ? column + 0x9F : column + (column < 63 ? 0x40 : 0x41);
    return {static_cast<uint8_t>(lead), static_cast<uint8_t>(trail)};
}

}  // namespace nls::mkconvmap
