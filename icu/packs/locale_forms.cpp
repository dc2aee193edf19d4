#include "icu/packs/locale_forms.hpp"

#include <strings.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>

#include <cstdio>
#include <cstring>

namespace nls::packs {
namespace {

struct Keyword {
    const char* variant;
    const char* collation;
};
constexpr Keyword kKeywords[] = {{"PHONEBOOK", "phonebook"},
                                 {"TRADITIONAL", "traditional"},
                                 {"DIRECT", "direct"},
                                 {"PINYIN", "pinyin"},
                                 {"STROKE", "stroke"}};

// A part of a locale in a room of its own; empty where ICU can't tell it.
class Part {
public:
    template <typename Fetch>
    explicit Part(Fetch fetch) {
        UErrorCode status = U_ZERO_ERROR;
        fetch(text_, int32_t{sizeof text_}, &status);
        if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) text_[0] = '\0';
    }
    const char* get() const { return text_; }
    bool isEmpty() const { return text_[0] == '\0'; }

private:
    char text_[128] = {};
};

Part languageOf(const char* locale) {
    return Part{[&](char* to, int32_t size, UErrorCode* status) { uloc_getLanguage(locale, to, size, status); }};
}
Part variantOf(const char* locale) {
    return Part{[&](char* to, int32_t size, UErrorCode* status) { uloc_getVariant(locale, to, size, status); }};
}
Part collationOf(const char* locale) {
    return Part{[&](char* to, int32_t size, UErrorCode* status) {
        uloc_getKeywordValue(locale, "collation", to, size, status);
    }};
}

const char* validLocaleOf(const UCollator* collator) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const locale = ucol_getLocaleByType(collator, ULOC_VALID_LOCALE, &status);
    return locale != nullptr ? locale : "";
}

bool knowsLanguage(const char* locale, const UCollator* collator) {
    const char* const valid = validLocaleOf(collator);
    if (*valid != '\0' && std::strcmp(valid, "root") != 0) return true;
    const Part language = languageOf(locale);
    for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
        if (std::strcmp(languageOf(uloc_getAvailable(i)).get(), language.get()) == 0) return true;
    }
    return false;
}

bool hasCollation(const char* locale, const char* collation) {
    UErrorCode status = U_ZERO_ERROR;
    UEnumeration* const all = ucol_getKeywordValuesForLocale("collation", locale, false, &status);
    bool found = false;
    while (const char* const one = uenum_next(all, nullptr, &status)) found |= strcasecmp(one, collation) == 0;
    uenum_close(all);
    return found;
}

bool knowsVariant(const char* locale, const UCollator* collator) {
    const Part variant = variantOf(locale);
    return variant.isEmpty() || std::strcmp(variant.get(), variantOf(validLocaleOf(collator)).get()) == 0;
}

}  // namespace

LocaleText asTold(const char* locale) {
    LocaleText told{};
    const int length = std::snprintf(told.text, sizeof told.text, "%s", locale);
    if (length >= int{sizeof told.text}) std::strcpy(told.text, "zxx");
    return told;
}

LocaleText todaysForm(const char* locale) {
    const LocaleText told = asTold(locale);
    const char* const variant = std::strrchr(told.text, '_');
    if (variant == nullptr) return told;
    for (const Keyword& keyword : kKeywords) {
        if (std::strcmp(variant + 1, keyword.variant) != 0) continue;
        int front = static_cast<int>(variant - told.text);
        while (front > 0 && told.text[front - 1] == '_') --front;  // no country between
        LocaleText made{};
        const int length =
            std::snprintf(made.text, sizeof made.text, "%.*s@collation=%s", front, told.text, keyword.collation);
        return length < int{sizeof made.text} ? made : asTold("zxx");
    }
    return told;
}

bool knowsCollation(const char* locale) {
    const char* const at = std::strchr(locale, '@');
    if (at != nullptr && std::strchr(at, '=') == nullptr) return false;
    const Part collation = collationOf(locale);
    return collation.isEmpty() || hasCollation(locale, collation.get());
}

UErrorCode toldStatus(const char* locale, const UCollator* collator, UErrorCode status) {
    if (*locale == '\0') return status;
    if (!knowsVariant(locale, collator) || (status == U_USING_DEFAULT_WARNING && !knowsLanguage(locale, collator)))
        return U_USING_DEFAULT_WARNING;
    return status == U_USING_DEFAULT_WARNING ? U_USING_FALLBACK_WARNING : status;
}

}  // namespace nls::packs
