#include "tools/nls/converter.hpp"

#include <algorithm>

#include "tools/nls/hex_text.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t smallPiece = 4;
constexpr std::size_t largePiece = std::size_t{1} << 20;

std::string codePointName(ByteView character) {
    if (character.empty()) return "nothing";
    return formatted("U+%04X", static_cast<unsigned>(codePointOf(character)));
}

}  // namespace

Converter::Converter(const TextCharset& from, const TextCharset* to, bool lossless)
    : from_(from), to_(to), lossless_(lossless), want_(largePiece) {}

std::optional<Piece> Converter::next(ByteView source, bool last) {
    if (source.empty()) return std::nullopt;
    const std::size_t limit = last ? source.size() : from_.boundary(source, source.size());
    if (limit == 0) return std::nullopt;
    const Unit unit = from_.first(source.first(limit));
    for (;;) {
        std::size_t length = limit;
        if (want_ < limit) length = from_.boundary(source, want_);
        if (length <= unit.length) return single(source.first(unit.length), unit);
        if (attempt(source.first(length)) == Outcome::good) {
            want_ = std::min(largePiece, std::max(want_, smallPiece) * 2);
            return Piece{source.first(length), text_, output_, true};
        }
        want_ = length / 2;
    }
}

Converter::Outcome Converter::attempt(ByteView source) {
    textBuffer_.clear();
    outputBuffer_.clear();
    if (!from_.decode(source, textBuffer_)) return Outcome::notInSource;
    text_ = textBuffer_.view();
    output_ = text_;
    if (to_ == nullptr) return Outcome::good;
    if (!to_->encode(text_, outputBuffer_)) return Outcome::notInTarget;
    output_ = outputBuffer_.view();
    return lossless_ && !comesBack(source) ? Outcome::notSameBack : Outcome::good;
}

// The output read as the target charset must be the text, and the text written as the source charset the source.
bool Converter::comesBack(ByteView source) {
    backText_.clear();
    backSource_.clear();
    if (!to_->decode(output_, backText_) || !sameBytes(backText_.view(), text_)) return false;
    return from_.encode(text_, backSource_) && sameBytes(backSource_.view(), source);
}

Piece Converter::single(ByteView source, const Unit& unit) {
    want_ = smallPiece;
    unit_ = unit;
    outcome_ = unit.fault.empty() ? attempt(source) : Outcome::malformed;
    if (outcome_ != Outcome::good) return {source, {}, {}, false};
    return {source, text_, output_, true};
}

std::string Converter::fault() const {
    switch (outcome_) {
        case Outcome::malformed:
            return std::string(unit_.fault);
        case Outcome::notInSource:
            return "no character of " + from_.name();
        case Outcome::notInTarget:
            return "no character in " + to_->name() + " for " + codePointName(text_);
        default:
            break;
    }
    if (sameBytes(backText_.view(), text_)) {
        return "not lossless: " + codePointName(text_) + " comes back as " + hexOf(backSource_.view());
    }
    return "not lossless: " + codePointName(text_) + " becomes " + hexOf(output_) + ", which comes back as " +
           codePointName(backText_.view());
}

}  // namespace nls::tool
