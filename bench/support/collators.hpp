// What a user would take instead of nlsCompare and nlsSortKey: ICU's root collator, and glibc in a locale of the
// charset.
#pragma once

#include <unicode/ucol.h>

#include <clocale>
#include <memory>
#include <string>
#include <string_view>

#include "nls/records.h"

namespace nls::bench {

class IcuCollator {
public:
    explicit IcuCollator(UColAttributeValue strength);

    int compare(std::string_view utf8A, std::string_view utf8B) const;
    // The key, with its NUL, of UTF-16 text; its length.
    std::size_t key(const std::u16string& text, unsigned char* key, std::size_t room) const;
    UCollator* get() const { return collator_.get(); }

private:
    struct Close {
        void operator()(UCollator* collator) const { ucol_close(collator); }
    };
    std::unique_ptr<UCollator, Close> collator_;
};

std::u16string utf16Of(const std::string& utf8);
std::string upperCase(const std::string& utf8);

// A locale of glibc, compiled for this run with localedef; null where that fails.
locale_t compiledLocale(const char* language, const char* charset);

// Weights of a single-byte charset in the order of ICU's root collator: exact at tertiary strength, folded at
// secondary. Sharp s is an expansion.
nlsCollStruct rootCollation(const char* icuCharset);

}  // namespace nls::bench
