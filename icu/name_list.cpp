#include "icu/name_list.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace nls {

constexpr char icucollnames_2_4[442] =
    "ICU-UCA,ICU-ar,ICU-be,ICU-bg,ICU-ca,ICU-cs,ICU-da,ICU-de__PHONEBOOK,ICU-el,ICU-en_BE,ICU-eo,ICU-es,"
    "ICU-es__TRADITIONAL,ICU-et,ICU-fa,ICU-fi,ICU-fr,ICU-gu,ICU-he,ICU-hi,ICU-hi__DIRECT,ICU-hr,ICU-hu,ICU-is,"
    "ICU-ja,ICU-ja__HQ,ICU-kn,ICU-ko,ICU-lt,ICU-lv,ICU-mk,ICU-mr,ICU-mt,ICU-nb,ICU-nn,ICU-pl,ICU-ro,ICU-ru,ICU-sh,"
    "ICU-sk,ICU-sl,ICU-sq,ICU-sr,ICU-sv,ICU-ta,ICU-te,ICU-th,ICU-tr,ICU-uk,ICU-vi,ICU-zh,ICU-zh_HK,ICU-zh_MO,"
    "ICU-zh_TW,ICU-zh__PINYIN";

constexpr char icucollnames_4_8[960] =
    "ICU_48-DUCET,ICU_48-af,ICU_48-ar,ICU_48-as,ICU_48-az,ICU_48-be,ICU_48-bg,ICU_48-bn,ICU_48-bn@traditional,"
    "ICU_48-bs,ICU_48-ca,ICU_48-cs,ICU_48-cy,ICU_48-da,ICU_48-de@phonebook,ICU_48-el,ICU_48-eo,ICU_48-es,"
    "ICU_48-es@traditional,ICU_48-et,ICU_48-fa,ICU_48-fa_AF,ICU_48-fi,ICU_48-fil,ICU_48-fo,ICU_48-fr_CA,ICU_48-gu,"
    "ICU_48-ha,ICU_48-haw,ICU_48-he,ICU_48-hi,ICU_48-hi@direct,ICU_48-hr,ICU_48-hu,ICU_48-hy,ICU_48-ig,ICU_48-is,"
    "ICU_48-ja,ICU_48-kk,ICU_48-kl,ICU_48-km,ICU_48-kn,ICU_48-kn@traditional,ICU_48-ko,ICU_48-kok,ICU_48-ln,"
    "ICU_48-ln@phonemic,ICU_48-lt,ICU_48-lv,ICU_48-mk,ICU_48-ml,ICU_48-mr,ICU_48-mt,ICU_48-my,ICU_48-nb,ICU_48-nn,"
    "ICU_48-om,ICU_48-or,ICU_48-pa,ICU_48-pl,ICU_48-ps,ICU_48-ro,ICU_48-ru,ICU_48-si,ICU_48-si@dictionary,"
    "ICU_48-sk,ICU_48-sl,ICU_48-sq,ICU_48-sr,ICU_48-sr_Latn,ICU_48-sv,ICU_48-ta,ICU_48-te,ICU_48-th,ICU_48-tr,"
    "ICU_48-uk,ICU_48-ur,ICU_48-vi,ICU_48-yo,ICU_48-zh,ICU_48-zh@big5han,ICU_48-zh@gb2312han,ICU_48-zh@stroke,"
    "ICU_48-zh_Hant";

constexpr std::array<char, kAllIcuCollationsLength + 1> kAllIcuCollations = [] {
    std::array<char, sizeof icucollnames_2_4 + sizeof icucollnames_4_8> joined{};
    char* const second = std::copy(std::begin(icucollnames_2_4), std::end(icucollnames_2_4), joined.data());
    second[-1] = ',';
    std::copy(std::begin(icucollnames_4_8), std::end(icucollnames_4_8), second);
    return joined;
}();

uint32_t placeInList(const char* word, const char* list) {
    const char* const found = std::strstr(list, word);
    return found == nullptr ? 0 : static_cast<uint32_t>(std::count(list, found, ',')) + 1;
}

}  // namespace nls
