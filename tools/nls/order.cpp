#include "tools/nls/order.hpp"

#include <cstdio>

#include "tools/nls/failure.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/order_name.hpp"

namespace nls::tool {
namespace {

constexpr const char* basic = "basic";

const nlsLocale* findLocale(Session& session, const TextCharset& charset, const OrderName& name) {
    if (charset.form() == TextCharset::Form::units16 || charset.form() == TextCharset::Form::units32) {
        throw Failure(Exit::usage, "text in " + charset.name() +
                                       " can't be compared, since comparison ends at a NUL; convert it to UTF-8 first");
    }
    const std::string collation = name.collation.empty() ? basic : name.collation;
    std::string caseTable = name.caseTable;
    if (caseTable.empty() && charset.isUtf8() && session.hasCaseTable(charset.name(), basic)) caseTable = basic;
    return session.locale(charset.name(), collation, caseTable);
}

}  // namespace

Order::Order(Session& session, const std::string& name, Fold fold)
    : charset_(session, parseOrderName(name).charset, TextCharset::Tables::ifAny),
      fold_(fold),
      locale_(findLocale(session, charset_, parseOrderName(name))),
      name_(charset_.name() + "/" + collation().collName) {
    tryIt();
    if (kind() == OrderKind::icu) tellFallback();
}

Order::Order(Session& session, const nlsLocale* locale, Fold fold)
    : charset_(session, locale->charsetName, TextCharset::Tables::ifAny),
      fold_(fold),
      locale_(locale),
      name_(charset_.name() + "/" + collation().collName) {
    tryIt();
}

void Order::tellFallback() const {
    const char* const collation = locale_->collationName;
    if (judgeIcuName(collation).kind != IcuVerdict::Kind::opensByFallback) return;
    std::fprintf(stderr,
                 "nls: note: %s has no order of its own in ICU, which takes the nearest, often the root order\n",
                 collation);
}

// The library tells by its status what it can't compare by.
void Order::tryIt() const {
    const unsigned char letter[] = {'a', 0};
    compare({letter, 1}, {letter, 1});
}

OrderKind Order::kind() const {
    switch (collation().collKind) {
        case 2:
            return OrderKind::site;
        case 3:
            return OrderKind::unicode;
        case 4:
            return OrderKind::thai;
        case 5:
            return OrderKind::icu;
        default:
            return OrderKind::bytes;
    }
}

int Order::compare(ByteView a, ByteView b) const {
    static constexpr unsigned char nothing[] = {0};
    static constexpr uint16_t noAnswer = 0x5555;  // stays where ICU can't convert a text
    uint16_t result = noAnswer;
    const nlsStatus status =
        nlsCompareN(locale_, nullptr, a.empty() ? nothing : a.data(), b.empty() ? nothing : b.data(),
                    static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()), mode(), &result);
    if (status != NLS_OK) {
        throw Failure(Exit::fileTrouble, name_ + " can't be compared by (status " + std::to_string(status) + ")");
    }
    if (result == noAnswer) throw Failure(Exit::fileTrouble, name_ + ": ICU can't convert a text");
    const auto sign = static_cast<int16_t>(result);
    return (sign > 0 ? 1 : 0) - (sign < 0 ? 1 : 0);
}

ByteView Order::trimmed(ByteView text) const {
    if (kind() == OrderKind::site) return text;
    while (!text.empty() && text.back() == 0x20) text = text.first(text.size() - 1);
    return text;
}

}  // namespace nls::tool
