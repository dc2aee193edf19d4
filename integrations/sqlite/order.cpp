#include "integrations/sqlite/order.hpp"

#include <algorithm>
#include <stdexcept>

namespace nls::sqlite {

Order::Order(const nlsLocale* locale, const nlsConversion* toCharset, Mode mode)
    : locale_(locale), former_(toCharset), mode_(mode) {}

Order::~Order() {
    nlsTlsClose(&tls_);
}

std::string Order::name() const {
    return std::string(locale_->charsetName) + "/" + locale_->collationName;
}

// A site's own sort may want NULs behind its texts, and may write there.
bool Order::isPlain(ByteView text) const {
    return kind() != kSiteSort && !holdsNul(text) && former_.isPlain(text);
}

ByteView Order::trimmed(ByteView piece) const {
    if (kind() == kSiteSort) return piece;
    while (!piece.empty() && piece.back() == 0x20) piece = piece.first(piece.size() - 1);
    return piece;
}

int Order::comparePieces(ByteView a, ByteView b) {
    static constexpr unsigned char nothing[] = {0};
    static constexpr uint16_t noAnswer = 0x5555;  // stays where ICU can't convert a text
    uint16_t result = noAnswer;
    const nlsStatus status =
        nlsCompareN(locale_, &tls_, a.empty() ? nothing : a.data(), b.empty() ? nothing : b.data(),
                    static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()), modeNumber(), &result);
    if (status != NLS_OK || (result == noAnswer && kind() == kIcuOrder)) {
        throw std::runtime_error(name() + " can't compare two texts (status " + std::to_string(status) + ")");
    }
    return static_cast<int16_t>(result);
}

int Order::compare(ByteView a, ByteView b) {
    if (isPlain(a) && isPlain(b)) return comparePieces(trimmed(a), trimmed(b));
    return compareForms(form(a), secondForm(b));
}

int Order::compareForms(const TextForm& a, const TextForm& b) {
    for (std::size_t number = 0; number < a.pieces.size() && number < b.pieces.size(); ++number) {
        const int sign = comparePieces(trimmed(a.piece(number)), trimmed(b.piece(number)));
        if (sign != 0) return sign;
    }
    if (a.pieces.size() != b.pieces.size()) return a.pieces.size() < b.pieces.size() ? -1 : 1;
    const auto isLess = [](const TextForm::Value& left, const TextForm::Value& right) {
        return left.value < right.value;
    };
    if (std::lexicographical_compare(a.values.begin(), a.values.end(), b.values.begin(), b.values.end(), isLess))
        return -1;
    return std::lexicographical_compare(b.values.begin(), b.values.end(), a.values.begin(), a.values.end(), isLess) ? 1
                                                                                                                    : 0;
}

}  // namespace nls::sqlite
