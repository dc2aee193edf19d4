#include "icu/icu_compare.hpp"

#include <cstdlib>
#include <cstring>

#include "core/base/views.hpp"
#include "icu/collator.hpp"
#include "icu/converter.hpp"
#include "icu/image.hpp"

namespace nls {
namespace {

constexpr IcuCompared kUnanswered{NLS_OK, IcuCompared::kNoAnswer};

constexpr IcuCompared answer(int32_t sign) {
    return {NLS_OK, sign};
}
constexpr IcuCompared failure(nlsStatus status) {
    return {status, IcuCompared::kNoAnswer};
}

ByteView withoutBlanksAtEnd(const unsigned char* text, int32_t given) {
    std::size_t length = given < 0 ? std::strlen(reinterpret_cast<const char*>(text)) : static_cast<std::size_t>(given);
    while (length != 0 && text[length - 1] == ' ') --length;
    return {text, length};
}

// A text in UTF-16, which never has more units than UTF-8 has bytes: on the stack as long as it is short.
class Units {
public:
    explicit Units(ByteView text) : text_(text), units_(text.size() <= kOnStack ? near_ : far(text.size())) {}
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;
    ~Units() {
        if (units_ != near_) std::free(units_);
    }

    bool hasRoom() const { return units_ != nullptr; }
    // REQUIRES: room. Units that fill it to the last are no failure: that is what ASCII does.
    bool convert(IcuConverter* utf8) {
        const auto size = static_cast<int32_t>(text_.size());
        IcuStatus status = kIcuOk;
        count_ = convFuncs().ucnv_toUChars(utf8, units_, size, text_.data(), size, &status);
        return status == kIcuOk || status == kIcuNotTerminated;
    }
    const IcuUnit* get() const { return units_; }
    int32_t count() const { return count_; }

private:
    static constexpr std::size_t kOnStack = 2000;

    // The one place where the library takes memory of its own.
    static IcuUnit* far(std::size_t count) { return static_cast<IcuUnit*>(std::malloc(count * sizeof(IcuUnit))); }

    ByteView text_;
    IcuUnit near_[kOnStack];
    IcuUnit* units_;
    int32_t count_ = 0;
};

[[gnu::always_inline]] inline IcuCompared compareConverted(const ChosenCollator& by, IcuConverter* utf8, ByteView a,
                                                           ByteView b) {
    Units first{a};
    if (!first.hasRoom()) return failure(NLS_BUF_SMALL);
    if (!first.convert(utf8)) return kUnanswered;
    Units second{b};
    if (!second.hasRoom()) return failure(NLS_BUF_SMALL);
    if (!second.convert(utf8)) return kUnanswered;
    const int32_t sign = compareUnits(*by.row, by.collator, first.get(), first.count(), second.get(), second.count());
    return {sign == IcuCompared::kFailed ? NLS_BAD_TABLE : NLS_OK, sign};
}

}  // namespace

IcuCompared compareByIcu(const unsigned char* a, const unsigned char* b, nlsTlsBlock* tls, const unsigned char* map,
                         uint16_t mode, int32_t lengthA, int32_t lengthB) {
    const ByteView first = withoutBlanksAtEnd(a, lengthA), second = withoutBlanksAtEnd(b, lengthB);
    if (first.empty() || second.empty()) return answer(int{second.empty()} - int{first.empty()});
    nlsIcuInfo* const info = IcuImage::infoOf(map);
    if (info == nullptr) return failure(NLS_BAD_TABLE);
    const ChosenCollator chosen = collatorOf(*info, tls);
    if (chosen.status != NLS_OK) return failure(chosen.status);
    const int32_t strength = strengthOf(map, mode);
    if (strength < 0) return kUnanswered;
    setStrength(*chosen.row, chosen.collator, strength);
    const Utf8Converter utf8;
    if (!utf8.isOpen()) return failure(NLS_BAD_ARG);
    return compareConverted(chosen, utf8.get(), first, second);
}

}  // namespace nls
