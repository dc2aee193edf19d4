// One order over all texts that SQLite can hand over, by a locale of the library's.
//
// Two texts are taken apart (text_form.hpp) and compared by their pieces, one after the other, by the locale's
// collation; a text whose pieces run out first sorts first. Texts equal by that are compared by the values of what
// their charset lacks, in the order of the text. Blanks at the end of a piece never count and are cut off, unless a
// site's own sort says otherwise: only without them do the library's collations put all texts in one row, whatever
// bytes they hold.
//
// Each of the two steps compares something that depends on one text alone. So the whole is transitive, and texts that
// are equal have the same place beside every other: what an index needs. Tested by
// tests/integrations/sqlite_order_test.cpp.
#pragma once

#include <optional>
#include <string>

#include "integrations/sqlite/text_form.hpp"

namespace nls::sqlite {

// Values of the library's compare mode.
enum class Mode : uint16_t { fold = 0, exact = 1 };

// Of one thread at a time, as a connection is.
class Order {
public:
    // `toCharset`: from UTF-8; null where the locale's charset is UTF-8.
    Order(const nlsLocale* locale, const nlsConversion* toCharset, Mode mode);
    ~Order();
    Order(const Order&) = delete;
    Order& operator=(const Order&) = delete;

    // Below 0, 0 or above 0. Throws where the library can't compare.
    int compare(ByteView a, ByteView b);
    // The sign of two pieces, blanks at their ends counted as the library does.
    int comparePieces(ByteView a, ByteView b);
    ByteView trimmed(ByteView piece) const;

    const TextForm& form(ByteView text) { return formed(text, forms_[0]); }
    const TextForm& secondForm(ByteView text) { return formed(text, forms_[1]); }

    const nlsLocale* locale() const { return locale_; }
    nlsTlsBlock* tls() { return &tls_; }
    Mode mode() const { return mode_; }
    uint16_t modeNumber() const { return static_cast<uint16_t>(mode_); }
    int32_t kind() const { return locale_->coll->collKind; }
    std::string name() const;  // CHARSET/COLLATION

private:
    const TextForm& formed(ByteView text, TextForm& form) const {
        former_.form(text, form);
        return form;
    }
    bool isPlain(ByteView text) const;
    int compareForms(const TextForm& a, const TextForm& b);

    const nlsLocale* locale_;
    TextFormer former_;
    Mode mode_;
    nlsTlsBlock tls_{};
    TextForm forms_[2];
};

inline constexpr int32_t kSiteSort = 2, kUnicodeOrder = 3, kThaiOrder = 4, kIcuOrder = 5;

}  // namespace nls::sqlite
