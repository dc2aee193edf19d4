#include "core/word_break_table.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

// Against the arrows: what a charset is called is compared by the locale's own collation.
#include "collation/compare.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/charset.hpp"
#include "core/conversion_create.hpp"

namespace nls {

namespace {

constexpr std::size_t kByteValues = 256;
using WordClasses = std::array<unsigned char, kByteValues>;

// The classes; that of a lead byte is kLeadByte and the count of its trail bytes.
constexpr unsigned char kOther = 1, kLetter = 2, kDigit = 3, kLeadByte = 8, kOneColumn = 11;

constexpr unsigned char kLastKindByTargetsLetters = 8;
constexpr unsigned char kKindByCharacters = 9;

enum WbFlag : unsigned char { kCharsetIsUtf8 = 0x02, kNamedUtf8 = 0x04, kTargetNamedUtf8 = 0x08 };

constexpr const char* kUtf8Name = "utf-8";

// The copy in the locale's block, at any address.
class WordBreakTable {
public:
    explicit WordBreakTable(ByteSpan bytes) : bytes_(bytes) {}

    unsigned char kind() const { return bytes_[offsetof(nlsWbTable, wbKind)]; }
    void setFlag(WbFlag flag) const {
        unsigned char& flags = bytes_[offsetof(nlsWbTable, wbFlags)];
        flags = static_cast<unsigned char>(flags | flag);
    }
    // At most 256 bytes: as many as lie within the table.
    ByteSpan classes() const {
        const std::size_t offset = loadWord<uint16_t>(&bytes_[offsetof(nlsWbTable, wbClassOffset)]);
        if (offset >= bytes_.size()) return {};
        return bytes_.subspan(offset, std::min(kByteValues, bytes_.size() - offset));
    }

private:
    ByteSpan bytes_;
};

// What tells a reader how long the table is and where its classes stand, kept as it is by a scope that writes classes:
// they may overlap it.
class KeptHead {
public:
    explicit KeptHead(ByteSpan table) : place_(table.data()) { std::memcpy(head_, place_, sizeof head_); }
    ~KeptHead() { std::memcpy(place_, head_, sizeof head_); }
    KeptHead(const KeptHead&) = delete;
    KeptHead& operator=(const KeptHead&) = delete;

private:
    unsigned char* place_;
    unsigned char head_[offsetof(nlsWbTable, wbFlags)];
};

unsigned char plainClass(Charset letters, unsigned char byte) {
    if (letters.isLetter(byte)) return kLetter;
    return byte >= '0' && byte <= '9' ? kDigit : kOther;
}

unsigned char multiByteClass(Charset charset, unsigned char byte, unsigned char plain) {
    if (const unsigned trails = charset.trailCount(byte)) return static_cast<unsigned char>(kLeadByte + trails);
    return charset.oneColumn(byte) ? kOneColumn : plain;
}

WordClasses defaultClasses(Charset charset, Charset letters, unsigned char kind) {
    const bool byCharacters = charset.isMultiByte() && (charset.isUtf8() || kind == kKindByCharacters);
    WordClasses classes;
    for (unsigned value = 0; value < kByteValues; ++value) {
        const auto byte = static_cast<unsigned char>(value);
        const unsigned char plain = plainClass(letters, byte);
        classes[value] = byCharacters ? multiByteClass(charset, byte, plain) : plain;
    }
    return classes;
}

// Puts the classes where the database gave none. REQUIRES: at most 256 bytes.
void complete(ByteSpan given, WordClasses& classes) {
    for (std::size_t byte = 0; byte < given.size(); ++byte) {
        if (given[byte] == 0) given[byte] = classes[byte];
        classes[byte] = given[byte];
    }
}

struct NameTest {
    nlsStatus status;
    bool isUtf8;
};
NameTest testName(const nlsLocale& locale, const char (&charsetName)[20]) {
    const auto* const name = reinterpret_cast<const unsigned char*>(charsetName);
    const auto* const utf8 = reinterpret_cast<const unsigned char*>(kUtf8Name);
    constexpr uint16_t kFolded = 0;
    const Compared compared =
        compareTexts(locale, nullptr, Text::of(name, sizeof charsetName), Text::of(utf8, -1), kFolded);
    return {compared.status, static_cast<uint16_t>(compared.sign) == 0};
}

// The classes of the bytes that the locale's turn into, where the database's words are looked at after a conversion.
void moveClasses(ByteSpan target, const WordClasses& classes, ConvTable table) {
    if (table.type() != ConvType::byteMap) return;
    for (std::size_t byte = 0; byte < kByteValues; ++byte) {
        const std::size_t image = table.byteMap().map[byte];
        if (image < target.size()) target[image] = classes[byte];
    }
}

// What only a table with a target gets.
nlsStatus completeForTarget(WordBreakTable table, unsigned char kind, const WordClasses& classes,
                            const nlsLocale& locale, const nlsLocale& target, ConvTable conversion) {
    if (locale.coll == nullptr) return NLS_BAD_COLLATION;
    const NameTest own = testName(locale, locale.charsetName);
    if (own.status != NLS_OK) return own.status;
    const NameTest other = testName(locale, target.charsetName);
    if (other.status != NLS_OK) return other.status;
    if (own.isUtf8)
        table.setFlag(kNamedUtf8);
    else if (other.isUtf8)
        table.setFlag(kTargetNamedUtf8);
    else if (kind == kKindByCharacters)
        moveClasses(table.classes(), classes, conversion);
    return NLS_OK;
}

}  // namespace

nlsStatus completeWordBreakTable(nlsLocale& locale, ByteView data, nlsLocale* target) {
    const nlsConversion* conversion = nullptr;
    if (target != nullptr) {
        const CreatedConversion made = findOrCreateConversion(*locale.owner, locale, *target);
        if (made.status != NLS_OK) return made.status;
        conversion = made.conversion;
    }
    const ByteSpan copy{reinterpret_cast<unsigned char*>(locale.wordBreak), data.size()};
    if (!data.empty()) std::memmove(copy.data(), data.data(), data.size());
    if (copy.size() < sizeof(nlsWbTable)) return NLS_OK;

    const KeptHead head{copy};
    const WordBreakTable table{copy};
    const unsigned char kind = table.kind();
    const Charset charset{*locale.attrib};
    const bool byTarget = kind <= kLastKindByTargetsLetters && target != nullptr && !charset.isUtf8();
    WordClasses classes = defaultClasses(charset, byTarget ? Charset{*target->attrib} : charset, kind);
    const ByteSpan given = table.classes();
    complete(given, classes);
    if (charset.isUtf8()) table.setFlag(kCharsetIsUtf8);
    if (conversion == nullptr) return NLS_OK;
    return completeForTarget(table, kind, classes, locale, *target, ConvTable{conversion->table});
}

}  // namespace nls
