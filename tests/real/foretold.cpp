#include "tests/real/foretold.hpp"

#include <algorithm>

#include "tests/real/characters.hpp"
#include "tests/real/known_differences.hpp"
#include "tests/reference/jis.hpp"

namespace nls::real {

namespace {

// A whole conversion before the size of the target is thought of: what each character becomes, end to end.
struct Plan {
    Bytes bytes;
    std::vector<std::size_t> places{0};  // between the characters
    nlsStatus end = NLS_OK;              // unless the target is full first
    bool isRefused = false;

    void endCharacter() { places.push_back(bytes.size()); }
    void substituted() {
        if (end == NLS_OK) end = NLS_CONV_SUBST;
    }
};

void writeCode(const CharsetModel& model, uint32_t codePoint, Plan& plan) {
    const uint32_t code = codePoint == kNone ? kNone : model.encode(codePoint);
    if (code == kNone) plan.substituted();
    model.append(plan.bytes, code == kNone ? model.substitute() : code);
}

void writeUnicode(const Name& form, uint32_t value, Type type, Plan& plan) {
    const bool fromUtf16 = type == Type::ucs2ToUtf8 || type == Type::utf16ToUtf8;
    const bool fromUtf32 = type == Type::utf32ToUtf8;
    const bool isLoneSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value == kNone) {
        plan.substituted();
        value = 0xFFFD;
    } else if (isLoneSurrogate && (fromUtf16 || fromUtf32)) {
        plan.end = fromUtf16 ? NLS_BAD_ARG : NLS_INVALID_STRING;
        value = '?';
    } else if (value > (fromUtf32 ? 0x3FFFFFF : 0x10FFFF)) {
        value = 0xFFFD;
    }
    append(plan.bytes, value, form);
}

bool refusesTrail(Type type) {
    return type == Type::utf8ToMulti || type == Type::utf8ToMultiNarrow || type == Type::utf8ToSingle ||
           type == Type::utf8ToUcs2 || type == Type::utf8ToUtf16 || type == Type::utf8ToUtf32;
}

Reading readingOf(Type type) {
    if (type == Type::utf8ToSingle) return Reading::byPages;
    return type == Type::utf32ToUtf16 ? Reading::byUnit : Reading::byCharacter;
}

Plan planThroughUnicode(const Route& route, ByteView source) {
    Plan plan;
    plan.isRefused = refusesTrail(route.type) && !source.empty() && (source[0] & 0xC0) == 0x80;
    if (plan.isRefused) return plan;
    const Characters read = readCharacters(route.from, source, readingOf(route.type));
    const CharsetModel* const model = route.to.isUnicode() ? nullptr : &CharsetModel::of(route.to.text);
    for (const uint32_t value : read.values) {
        model == nullptr ? writeUnicode(route.to, value, route.type, plan) : writeCode(*model, value, plan);
        plan.endCharacter();
    }
    if (read.end != NLS_OK) plan.end = read.end;
    return plan;
}

// The rule of Shift-JIS and EUC, asked for one character at a time.
Plan planByRule(const Route& route, ByteView source) {
    const bool toEuc = route.type == Type::sjisToEuc;
    Plan plan;
    for (std::size_t at = 0; at < source.size();) {
        const unsigned first = source[at];
        const bool isPair = toEuc ? (first >= 0x81 && first <= 0x9F) || (first >= 0xE0 && first <= 0xEF)
                                  : (first >= 0xA1 && first <= 0xFE) || first == 0x8E;
        const ByteView one = source.subspan(at, std::min<std::size_t>(isPair ? 2 : 1, source.size() - at));
        const auto ruled = toEuc ? reference::sjisToEuc(one, 2) : reference::eucToSjis(one, 2);
        plan.end = ruled.status;
        if (plan.end != NLS_OK) break;
        plan.bytes.insert(plan.bytes.end(), ruled.bytes.begin(), ruled.bytes.end());
        plan.endCharacter();
        at += one.size();
    }
    return plan;
}

// The byte of the same character; a byte without a character, on either side, has no counterpart.
uint32_t counterpart(const CharsetModel& from, const CharsetModel& to, unsigned char byte) {
    const uint32_t code = to.exactCode(from.decode(byte));
    const bool isNone =
        code == kNone || isFiller(from.name(), byte) || isFiller(to.name(), static_cast<unsigned char>(code));
    return isNone ? kNone : code;
}

const std::array<unsigned char, 256>& byteMapOf(const Route& route) {
    static std::map<std::pair<std::string, std::string>, std::array<unsigned char, 256>> maps;
    auto [place, isNew] = maps.try_emplace({route.from.text, route.to.text});
    if (!isNew) return place->second;
    const CharsetModel &from = CharsetModel::of(route.from.text), &to = CharsetModel::of(route.to.text);
    for (unsigned byte = 0; byte <= 0xFF; ++byte) {
        const uint32_t code = counterpart(from, to, static_cast<unsigned char>(byte));
        place->second[byte] = static_cast<unsigned char>(code == kNone ? to.exactCode('?') : code);
    }
    return place->second;
}

Plan planByteMap(const Route& route, ByteView source) {
    Plan plan;
    for (const unsigned char byte : source) {
        plan.bytes.push_back(byteMapOf(route)[byte]);
        plan.endCharacter();
    }
    return plan;
}

Plan planOf(const Route& route, ByteView source) {
    if (route.type == Type::sjisToEuc || route.type == Type::eucToSjis) return planByRule(route, source);
    return route.type == Type::byteMap ? planByteMap(route, source) : planThroughUnicode(route, source);
}

bool mayBreakCharacters(Type type) {
    return type == Type::utf8ToMulti || type == Type::utf8ToMultiNarrow || type == Type::utf16ToMulti;
}

bool forgetsCount(Type type) {
    return type == Type::multiToUtf8 || type == Type::multiToUtf8Wide;
}

bool fillsField(Type type) {
    return type == Type::singleToUtf8 || type == Type::singleToUtf8Narrow;
}

// A full target of the ways from single bytes to UTF-8: a field padded with blanks and closed.
Foretold closedField(Bytes target, std::size_t place) {
    std::fill(target.begin() + static_cast<std::ptrdiff_t>(place), target.end(), static_cast<unsigned char>(' '));
    if (!target.empty()) target.back() = 0;
    const auto size = static_cast<uint32_t>(target.size());
    return {NLS_BUF_SMALL, size, std::move(target)};
}

Foretold fit(Type type, const Plan& plan, std::size_t targetSize) {
    Bytes target(targetSize, kFill);
    std::size_t fitting = plan.places.size() - 1;  // characters
    const auto needs = [&](std::size_t character) {
        const std::size_t end = plan.places[character + 1];
        return end + (fillsField(type) && end - plan.places[character] > 1 ? 1 : 0);
    };
    for (std::size_t character = 0; character < fitting; ++character)
        if (needs(character) > targetSize) fitting = character;
    const bool isFull = fitting + 1 < plan.places.size();
    const std::size_t count = isFull && mayBreakCharacters(type) ? targetSize : plan.places[fitting];
    std::copy_n(plan.bytes.begin(), count, target.begin());
    if (isFull && fillsField(type)) return closedField(std::move(target), count);
    Foretold result{plan.end, static_cast<uint32_t>(count), std::move(target)};
    if (isFull) result.status = NLS_BUF_SMALL;
    if (isFull && forgetsCount(type)) result.count = 0;
    return result;
}

Foretold foretellOneStep(const Route& route, ByteView source, std::size_t targetSize) {
    Bytes untouched(targetSize, kFill);
    if (route.type == Type::identity) {
        const std::size_t count = std::min(source.size(), targetSize);
        std::copy_n(source.begin(), count, untouched.begin());
        return {count < source.size() ? NLS_BUF_SMALL : NLS_OK, static_cast<uint32_t>(count), std::move(untouched)};
    }
    if (source.empty()) return {NLS_OK, 0, std::move(untouched)};
    if (route.type == Type::byteMap && source.size() > targetSize) return {NLS_BUF_SMALL, 0, std::move(untouched)};
    const Plan plan = planOf(route, source);
    if (plan.isRefused) return {NLS_BAD_ARG, kUntouched, std::move(untouched)};
    return fit(route.type, plan, targetSize);
}

Foretold foretellTwoSteps(const Route& route, ByteView source, std::size_t targetSize, std::size_t scratchSize) {
    const Route first(route.from.text, "UTF-8"), second("UTF-8", route.to.text);
    const Bytes untouched(targetSize, kFill);
    if (source.empty()) return {NLS_OK, 0, untouched};
    if (scratchSize == 0) return {NLS_BAD_ARG, kUntouched, untouched};
    const Foretold middle = foretellOneStep(first, source, scratchSize);
    if (middle.status != NLS_OK && middle.status != NLS_CONV_SUBST) return {middle.status, middle.count, untouched};
    Foretold result = foretellOneStep(second, ByteView{middle.target}.first(middle.count), targetSize);
    if (result.count == kUntouched) result.count = middle.count;
    return result;
}

}  // namespace

Route::Route(const std::string& fromName, const std::string& toName)
    : from(RealFile::shared().charset(fromName)),
      to(RealFile::shared().charset(toName)),
      table(RealFile::shared().table(fromName, toName)),
      type(Type{nlsConversionType(table)}) {}

std::string Foretold::differenceOf(ByteView have) const {
    const bool isWhole = have.size() == target.size();
    return firstDifference(isWhole ? have.first(certain) : have, isWhole ? ByteView{target}.first(certain) : target);
}

Foretold foretell(const Route& route, ByteView source, std::size_t targetSize, std::size_t scratchSize) {
    return route.type == Type::twoSteps ? foretellTwoSteps(route, source, targetSize, scratchSize)
                                        : foretellOneStep(route, source, targetSize);
}

Foretold foretellWhole(const Route& route, ByteView source) {
    const std::size_t enough = source.size() * 4 + 8;
    Foretold result = foretell(route, source, enough, enough);
    result.target.resize(result.count == kUntouched ? 0 : result.count);
    result.certain = std::min(result.certain, result.target.size());
    return result;
}

std::vector<std::size_t> characterPlaces(const Name& charset, ByteView text) {
    return readCharacters(charset, text, Reading::byCharacter).places;
}

}  // namespace nls::real
