#include "tools/mkconvmap/case_writer.hpp"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "convmap/file_format.hpp"
#include "core/base/views.hpp"
#include "tools/mkconvmap/attrib_writer.hpp"

namespace nls::mkconvmap {

namespace {

using Pairs = std::vector<std::pair<char32_t, char32_t>>;

constexpr char32_t kFirstSupplementary = 0x10000;

const char* nameOf(CaseForm form) {
    return form == CaseForm::upper ? "upper" : "lower";
}

// The UTF-8 bytes of a character of the first plane as one number.
uint32_t numberOf(char32_t character) {
    if (character < 0x80) return character;
    if (character < 0x800) return 0xC080U | (character & 0x7C0U) << 2 | (character & 0x3FU);
    return 0xE08080U | (character & 0xF000U) << 4 | (character & 0xFC0U) << 2 | (character & 0x3FU);
}

// Why the table of UTF-8 can't hold a pair; null where it can.
const char* obstacleOf(const CaseSource& table, char32_t character, char32_t form) {
    if (character >= kFirstSupplementary || form >= kFirstSupplementary) return "beyond U+FFFF";
    const uint32_t from = numberOf(character), to = numberOf(form);
    if (!caseKeyOf(from).exists) return "three bytes that no look-up knows";
    if (caseTopOf(from) == 0 && caseTopOf(to) != 0) return "two bytes become three";
    if (caseTopOf(from) != 0 && caseTopOf(to) == 0) return "three bytes become fewer";
    if (caseTopOf(from) != caseTopOf(to)) return "the first of three bytes changes";
    return table.takes(character) ? nullptr : "in no range that is taken";
}

std::string rangesText(const std::vector<char32_t>& characters) {
    std::string text;
    for (std::size_t at = 0; at < characters.size();) {
        std::size_t last = at;
        // Capitals and small letters often alternate, so every other character is a range too.
        while (last + 1 < characters.size() && characters[last + 1] - characters[last] <= 2) ++last;
        text += (text.empty() ? "" : " ") + codePointText(characters[at]);
        if (last > at) text += "-" + hexText(characters[last], 4);
        at = last + 1;
    }
    return text;
}

// One of the two lists of the table of UTF-8.
class PairList {
public:
    PairList(const CaseSource& table, CaseForm form) : form_(form) {
        for (char32_t character = 1; character <= UCHAR_MAX_VALUE; ++character) {
            const char32_t formed = table.formOf(character, form);
            if (formed != character) add(table, character, formed);
        }
        if (pairs_.size() > format::unicode_case::kMostPairs) {
            fail(table.place, std::to_string(pairs_.size()) + " pairs to " + nameOf(form) + " case; the format holds " +
                                  std::to_string(format::unicode_case::kMostPairs));
        }
    }

    void write(ByteSpan record, format::Field list) const {
        unsigned char* place = record.data() + list.offset;
        for (const auto& [character, formed] : pairs_) {
            storeWord(place, static_cast<uint16_t>(character));
            storeWord(place + sizeof(uint16_t), static_cast<uint16_t>(formed));
            place += 2 * sizeof(uint16_t);
        }
    }

    std::vector<std::string> remarks() const {
        std::vector<std::string> lines{std::to_string(pairs_.size()) + " pairs to " + nameOf(form_) + " case"};
        for (const auto& [reason, characters] : leftOut_) {
            lines.push_back("  left out, " + reason + ": " + std::to_string(characters.size()) + ": " +
                            rangesText(characters));
        }
        return lines;
    }

private:
    void add(const CaseSource& table, char32_t character, char32_t formed) {
        const char* const obstacle = obstacleOf(table, character, formed);
        if (obstacle == nullptr) {
            pairs_.emplace_back(character, formed);
            return;
        }
        const auto own = table.own(form_).find(character);
        if (own != table.own(form_).end())
            fail(own->second.place, "UTF-8's table can't hold the form: " + std::string{obstacle});
        leftOut_[obstacle].push_back(character);
    }

    CaseForm form_;
    Pairs pairs_;
    std::map<std::string, std::vector<char32_t>> leftOut_;
};

CaseRecord unicodeRecord(const CaseSource& table) {
    const PairList upper{table, CaseForm::upper}, lower{table, CaseForm::lower};
    CaseRecord made{format::kUnicodeCase, {}, upper.remarks()};
    made.record.bytes.resize(format::unicode_case::kSize);
    upper.write(made.record.bytes, format::unicode_case::kUpperList);
    lower.write(made.record.bytes, format::unicode_case::kLowerList);
    for (std::string& line : lower.remarks()) made.remarks.push_back(std::move(line));
    return made;
}

}  // namespace

ByteTable byteCase(const CaseSource& table, const CompiledCharset& charset, CaseForm form) {
    std::map<char32_t, uint8_t> byteOf;
    for (uint32_t byte = 1; byte < format::kMapEntries; ++byte) {
        byteOf.emplace(characterOfByte(charset, byte), static_cast<uint8_t>(byte));
    }
    ByteTable map;
    for (uint32_t byte = 0; byte < format::kMapEntries; ++byte) {
        const char32_t character = characterOfByte(charset, byte);
        const char32_t formed = character == 0 ? 0 : table.formOf(character, form);
        const auto found = formed == 0 ? byteOf.end() : byteOf.find(formed);
        map[byte] = found == byteOf.end() ? static_cast<uint8_t>(byte) : found->second;
        const auto own = table.own(form).find(character);
        if (found == byteOf.end() && own != table.own(form).end()) {
            fail(own->second.place, charset.source.name + " has no " + codePointText(formed) + ", the " + nameOf(form) +
                                        "-case form of " + codePointText(character));
        }
    }
    return map;
}

CaseRecord caseRecord(const CaseSource& table, const CompiledCharset& charset) {
    if (charset.source.kind == CharsetKind::utf8) return unicodeRecord(table);
    CaseRecord made;
    made.record.bytes.resize(format::byte_case::kSize);
    format::putDecimal(made.record.bytes, format::kSlotSize, format::kMapEntries);
    const auto put = [&](CaseForm form, format::Field slot) {
        const ByteTable map = byteCase(table, charset, form);
        std::memcpy(made.record.bytes.data() + slot.offset, map.data(), map.size());
    };
    put(CaseForm::upper, format::byte_case::kUpperMap);
    put(CaseForm::lower, format::byte_case::kLowerMap);
    return made;
}

}  // namespace nls::mkconvmap
