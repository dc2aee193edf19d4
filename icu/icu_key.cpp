#include "icu/icu_key.hpp"

#include "icu/collator.hpp"
#include "icu/converter.hpp"
#include "icu/image.hpp"

namespace nls {
namespace {

constexpr int32_t kMostUnits = 400;
constexpr unsigned kUncountedOption = 0x2000;

// ICU counts the key's NUL, and tells the room that a key needs which doesn't fit.
void close(ByteSpan key, int32_t length) {
    const auto end = static_cast<std::size_t>(length);
    if (length <= 0)
        key[0] = 0;
    else if (end < key.size())
        key[end] = 0;
    else
        key.back() = 0;
}

}  // namespace

void keyByIcu(ByteSpan key, ByteView text, nlsTlsBlock* tls, const unsigned char* map, unsigned options,
              bool primaryOnly) {
    key[0] = 0;
    if (static_cast<uint16_t>(text.size()) == 0) return;
    nlsIcuInfo* const info = IcuImage::infoOf(map);
    if (info == nullptr) return;
    const ChosenCollator chosen = collatorOf(*info, tls);
    if (chosen.status != NLS_OK) return;
    const int32_t strength = primaryOnly ? kPrimaryStrength : strengthOf(map, options & ~kUncountedOption);
    if (strength < 0) return;
    setStrength(*chosen.row, chosen.collator, strength);
    const Utf8Converter utf8;
    if (!utf8.isOpen()) return;
    IcuUnit units[kMostUnits];
    IcuStatus status = kIcuOk;
    const int32_t count = convFuncs().ucnv_toUChars(utf8.get(), units, kMostUnits, text.data(),
                                                    static_cast<int32_t>(text.size()), &status);
    if (status != kIcuOk) return;
    close(key, keyOfUnits(*chosen.row, chosen.collator, units, count, key.data(), static_cast<int32_t>(key.size())));
}

}  // namespace nls
