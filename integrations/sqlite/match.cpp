#include "integrations/sqlite/match.hpp"

#include <algorithm>
#include <stdexcept>

namespace nls::sqlite {
namespace {

// The signs of a pattern as the library gets them: control characters, the same bytes in every charset.
constexpr unsigned char kSingle = 1, kMulti = 2, kEscape = 3;

[[noreturn]] void refuse(const Order& order, nlsStatus status) {
    throw std::runtime_error(order.name() + " can't compare (status " + std::to_string(status) + ")");
}

ByteView untilFirstNul(ByteView text) {
    return text.first(static_cast<std::size_t>(std::find(text.begin(), text.end(), 0) - text.begin()));
}

// A pattern with its signs told apart from its characters.
struct Pattern {
    enum class Sign { literal, single, multi };

    Bytes literals;           // in UTF-8, one behind the other
    std::vector<Sign> signs;  // a run of multis is one
    bool isWhole = true;      // no escape at its end
};

Pattern readPattern(ByteView text, ByteView escape) {
    Pattern pattern;
    using Sign = Pattern::Sign;
    while (!text.empty()) {
        Character character = firstCharacter(text);
        text = text.subspan(character.bytes.size());
        const bool isEscape =
            !escape.empty() && std::equal(character.bytes.begin(), character.bytes.end(), escape.begin(), escape.end());
        if (isEscape && text.empty()) {
            pattern.isWhole = false;
            break;
        }
        if (isEscape) {
            character = firstCharacter(text);
            text = text.subspan(character.bytes.size());
        } else if (character.value == '_' || character.value == '%') {
            const Sign sign = character.value == '_' ? Sign::single : Sign::multi;
            if (sign == Sign::single || pattern.signs.empty() || pattern.signs.back() != sign) {
                pattern.signs.push_back(sign);
            }
            continue;
        }
        pattern.signs.push_back(Sign::literal);
        pattern.literals.insert(pattern.literals.end(), character.bytes.begin(), character.bytes.end());
    }
    return pattern;
}

// The characters of a form's first piece, as the tables of its charset tell.
std::vector<ByteView> charactersOf(const Order& order, const TextForm& form) {
    std::vector<ByteView> characters;
    ByteView left = form.piece(0);
    while (!left.empty()) {
        const std::size_t trails = order.locale()->attrib->lengthMap[left[0]] & 7U;
        const std::size_t size = std::min(left.size(), trails + 1);
        characters.push_back(left.first(size));
        left = left.subspan(size);
    }
    return characters;
}

// One for each literal: tables that a database brings may tell others.
std::vector<ByteView> literalsOf(const Order& order, const Pattern& pattern, const TextForm& form) {
    std::vector<ByteView> characters = charactersOf(order, form);
    const auto literals = std::count(pattern.signs.begin(), pattern.signs.end(), Pattern::Sign::literal);
    if (characters.size() != static_cast<std::size_t>(literals)) {
        throw std::runtime_error(order.name() + " forms characters otherwise than its charset");
    }
    return characters;
}

bool likeByLibrary(Order& order, const Pattern& pattern, const TextForm& literals, const TextForm& text) {
    const std::vector<ByteView> characters = literalsOf(order, pattern, literals);
    Bytes signs;
    std::size_t next = 0;
    for (const Pattern::Sign sign : pattern.signs) {
        if (sign != Pattern::Sign::literal) {
            signs.push_back(sign == Pattern::Sign::single ? kSingle : kMulti);
            continue;
        }
        const ByteView character = characters[next++];
        if (character[0] <= kEscape) signs.push_back(kEscape);
        signs.insert(signs.end(), character.begin(), character.end());
    }
    signs.push_back(0);
    const int32_t answer = nlsSqlLike(order.locale(), order.tls(), signs.data(), text.bytes.data(), order.modeNumber(),
                                      kEscape, kSingle, kMulti);
    if (answer != 0 && answer != 1) refuse(order, answer);
    return answer == 1;
}

// Where something is lacked: one character at a time, and back to the last multi after a character that doesn't fit.
class SlowLike {
public:
    SlowLike(Order& order, const Pattern& pattern, const TextForm& literals, const TextForm& text)
        : order_(order),
          literals_(literals),
          text_(text),
          patternOf_(literalsOf(order, pattern, literals)),
          textOf_(charactersOf(order, text)) {
        std::size_t literal = 0;
        for (const Pattern::Sign sign : pattern.signs) {
            signs_.push_back({sign, literal});
            literal += sign == Pattern::Sign::literal ? 1 : 0;
        }
    }

    bool matches() {
        constexpr auto none = static_cast<std::size_t>(-1);
        std::size_t at = 0, place = 0, multi = none, resume = 0;
        while (place < textOf_.size()) {
            if (at < signs_.size() && signs_[at].sign == Pattern::Sign::multi) {
                multi = at++;
                resume = place;
            } else if (at < signs_.size() && takes(signs_[at], place)) {
                ++at;
                ++place;
            } else if (multi != none) {
                at = multi + 1;
                place = ++resume;
            } else {
                return false;
            }
        }
        while (at < signs_.size() && signs_[at].sign == Pattern::Sign::multi) ++at;
        return at == signs_.size();
    }

private:
    struct Step {
        Pattern::Sign sign;
        std::size_t literal;
    };

    bool takes(const Step& step, std::size_t place) {
        if (step.sign == Pattern::Sign::single) return true;
        const std::optional<uint32_t> wanted = literals_.lackedAt(step.literal), given = text_.lackedAt(place);
        if (wanted || given) return wanted == given;
        return order_.comparePieces(patternOf_[step.literal], textOf_[place]) == 0;
    }

    Order& order_;
    const TextForm& literals_;
    const TextForm& text_;
    std::vector<ByteView> patternOf_, textOf_;
    std::vector<Step> signs_;
};

// Finds in one piece, and answers the number of characters in front of the match.
std::optional<std::size_t> findInPiece(Order& order, const TextForm& text, std::size_t number,
                                       std::size_t firstCharacterOfPiece, const TextForm& pattern) {
    const ByteView piece = text.piece(number);
    const auto charactersIn = [&](ByteView bytes) {
        uint32_t count = 0;
        if (bytes.empty()) return std::size_t{0};
        const nlsStatus status =
            nlsCountChars(order.locale(), order.tls(), bytes.data(), static_cast<int32_t>(bytes.size()), &count);
        if (status != NLS_OK) refuse(order, status);
        return std::size_t{count};
    };
    const std::size_t patternSize = charactersIn(pattern.piece(0));
    std::size_t offset = 0, characters = 0;
    while (offset < piece.size()) {
        uint32_t position = 0, end = 0;
        const unsigned char* found = nullptr;
        const nlsStatus status = nlsSearchForw(order.locale(), order.tls(), pattern.bytes.data(), piece.data() + offset,
                                               order.modeNumber(), &position, &end, &found);
        if (status != NLS_OK) refuse(order, status);
        if (position == 0) return std::nullopt;
        characters += charactersIn(piece.subspan(offset, position - 1));
        bool same = true;
        for (std::size_t i = 0; same && i < patternSize && (text.lacks() || pattern.lacks()); ++i) {
            same = text.lackedAt(firstCharacterOfPiece + characters + i) == pattern.lackedAt(i);
        }
        if (same) return characters;
        offset += position - 1;
        offset += (order.locale()->attrib->lengthMap[piece[offset]] & 7U) + 1;
        ++characters;
    }
    return std::nullopt;
}

}  // namespace

bool like(Order& order, ByteView pattern, ByteView text, ByteView escape) {
    const Pattern read = readPattern(untilFirstNul(pattern), escape);
    if (!read.isWhole) return false;
    const TextForm& literals = order.form(read.literals);
    const TextForm& form = order.secondForm(untilFirstNul(text));
    if (literals.lacks() || form.lacks()) return SlowLike(order, read, literals, form).matches();
    return likeByLibrary(order, read, literals, form);
}

std::size_t find(Order& order, ByteView text, ByteView pattern) {
    if (pattern.empty()) return 1;
    const TextForm& wanted = order.form(pattern);
    if (wanted.pieces.size() != 1) return 0;
    const TextForm& form = order.secondForm(text);
    std::size_t characters = 0;
    for (std::size_t number = 0; number < form.pieces.size(); ++number) {
        const std::optional<std::size_t> match = findInPiece(order, form, number, characters, wanted);
        if (match) return characters + *match + 1;
        uint32_t count = 0;
        const ByteView piece = form.piece(number);
        if (!piece.empty() && nlsCountChars(order.locale(), order.tls(), piece.data(),
                                            static_cast<int32_t>(piece.size()), &count) != NLS_OK) {
            refuse(order, NLS_PARTIAL_CHAR);
        }
        characters += std::size_t{count} + 1;
    }
    return 0;
}

}  // namespace nls::sqlite
