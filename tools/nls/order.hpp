// The order that a collation of the data file, or of ICU's, gives to texts of its charset.
// Tested by tests/tools/nls_sort_test.cpp.
#pragma once

#include <string>

#include "tools/nls/text_charset.hpp"

namespace nls::tool {

// Values of the library's compare mode.
enum class Fold : uint16_t { folded = 0, exact = 1 };

// Values of nlsCollStruct.collKind.
enum class OrderKind : int32_t { bytes = 1, site = 2, unicode = 3, thai = 4, icu = 5 };

class Order {
public:
    // `name` is CHARSET/COLLATION or CHARSET/COLLATION/CASETABLE; the collation left out is "basic". UTF-8 folds by the
    // case table "basic" unless another is named. Throws where the file doesn't have it, or can't compare by it. Tells
    // on the standard error where ICU takes another collation than the one named.
    Order(Session& session, const std::string& name, Fold fold);

    // That of a locale of the session's, a database's for instance.
    Order(Session& session, const nlsLocale* locale, Fold fold);

    // -1, 0 or 1. REQUIRES: less than 2^31 bytes each. A site's own sort may want the byte behind a text for its NUL.
    int compare(ByteView a, ByteView b) const;
    // The text without the blanks that never count. Cut so, texts stand in one order: with its blanks a text can sort
    // on either side of another that goes on with something lighter than a blank.
    ByteView trimmed(ByteView text) const;

    // CHARSET/COLLATION as the data file spells them.
    const std::string& name() const { return name_; }
    const TextCharset& charset() const { return charset_; }
    const nlsLocale* locale() const { return locale_; }
    const nlsAttribStruct& attrib() const { return *locale_->attrib; }
    const nlsCollStruct& collation() const { return *locale_->coll; }
    // Numbers that aren't named go as `bytes`.
    OrderKind kind() const;
    uint16_t mode() const { return static_cast<uint16_t>(fold_); }
    const unsigned char* weights() const { return fold_ == Fold::exact ? collation().exactMap : collation().foldMap; }
    bool isBridged() const { return (attrib().flags & NLS_CHARSET_VIA_SJIS) != 0; }

private:
    void tryIt() const;
    void tellFallback() const;

    TextCharset charset_;
    Fold fold_;
    const nlsLocale* locale_;
    std::string name_;
};

}  // namespace nls::tool
