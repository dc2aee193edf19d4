// A language's published order: ICU's collator of a locale, asked for the sort keys of single characters.
// Tested by tests/tools/collation_refusals_test.cpp and tests/real/real_orders_test.cpp.
#pragma once

#include <memory>
#include <string>

#include "tools/mkconvmap/source_text.hpp"

struct UCollator;

namespace nls::mkconvmap {

class Collator {
public:
    // The collator with its default attributes, but that no sign is passed over. Fails at `place` where ICU doesn't
    // have just this locale: it would give the order of a wider one, or of no language at all, without a word.
    Collator(const Place& place, const std::string& locale);

    // Keys order as unsigned bytes. Tertiary keys tell capitals and accents apart, secondary keys accents alone. Both
    // are empty for a character that the collator passes over: the controls.
    std::string tertiaryKey(char32_t character) const { return key(*tertiary_, character); }
    std::string secondaryKey(char32_t character) const { return key(*secondary_, character); }

private:
    struct Close {
        void operator()(UCollator* collator) const;
    };
    using Handle = std::unique_ptr<UCollator, Close>;

    static std::string key(const UCollator& collator, char32_t character);

    Handle tertiary_, secondary_;
};

}  // namespace nls::mkconvmap
