#include "tools/nls/order.hpp"

#include "tools/nls/failure.hpp"
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
        default:
            return OrderKind::bytes;
    }
}

int Order::compare(ByteView a, ByteView b) const {
    static constexpr unsigned char nothing[] = {0};
    uint16_t result = 0;
    const nlsStatus status =
        nlsCompareN(locale_, nullptr, a.empty() ? nothing : a.data(), b.empty() ? nothing : b.data(),
                    static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()), mode(), &result);
    if (status == NLS_BAD_COLLATION) throw Failure(Exit::usage, name_ + " wants ICU, which this library doesn't bind");
    if (status != NLS_OK) {
        throw Failure(Exit::fileTrouble, name_ + " can't be compared by (status " + std::to_string(status) + ")");
    }
    const auto sign = static_cast<int16_t>(result);
    return (sign > 0 ? 1 : 0) - (sign < 0 ? 1 : 0);
}

ByteView Order::trimmed(ByteView text) const {
    if (kind() == OrderKind::site) return text;
    while (!text.empty() && text.back() == 0x20) text = text.first(text.size() - 1);
    return text;
}

}  // namespace nls::tool
