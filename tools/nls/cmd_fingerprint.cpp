#include "tools/nls/commands.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/order_print.hpp"

namespace nls::tool {
namespace {

void addToJson(JsonWriter& json, const Order& order, const std::string& print) {
    json.open('{').member("order", std::string_view(order.name())).member("fingerprint", std::string_view(print));
    json.member("kind", int64_t{order.collation().collKind}).member("subKind", uint64_t{order.collation().collSubKind});
    if (order.kind() == OrderKind::icu) {
        const IcuVersions versions = icuVersionsOf(order.collation().exactMap);
        json.member("collatorVersion", std::string_view(versions.collator));
        json.member("ucaVersion", std::string_view(versions.uca));
    }
    json.member("caseTable", std::string_view(order.locale()->caseName)).member("viaShiftJis", order.isBridged());
    json.close('}');
}

// Behind the name, so that one sees which of them has changed.
std::string versionsOf(const Order& order) {
    if (order.kind() != OrderKind::icu) return {};
    const IcuVersions versions = icuVersionsOf(order.collation().exactMap);
    return "  collator " + versions.collator + ", UCA " + versions.uca;
}

Exit fingerprint(const Common& common, const std::vector<std::string>& names) {
    Session session{findDataFile(common.dataFile)};
    JsonWriter json;
    json.open('{').member("command", "fingerprint").member("orderVersion", uint64_t{NLS_ORDER_VERSION});
    json.key("orders").open('[');
    std::string lines;
    for (const std::string& name : names) {
        const Order order{session, name, Fold::exact};
        const std::string print = fingerprintOf(order);
        addToJson(json, order, print);
        lines += print + "  " + order.name() + versionsOf(order) + "\n";
    }
    json.close(']').close('}');
    print(common.json ? json.text() + "\n" : lines);
    return Exit::done;
}

}  // namespace

void addFingerprint(const Command& program, const Common& common) {
    Command command = program.add("fingerprint", "a digest of everything that decides an order");
    auto names = std::make_shared<std::vector<std::string>>();
    command.option("ORDER", *names, "CHARSET/COLLATION").required().shownAs("");
    command.footer(
        "Two hosts whose prints are the same sort the same way, exactly and folded: an index that one has built is in "
        "order for the other. The digest is SHA-256 over the collation's kind and maps, the charset's way of forming "
        "characters, and where they take part the case table and the conversion to Shift-JIS. Of ICU's collations the "
        "versions of "
        "collator and UCA take the place of the maps, and are shown: another ICU, another print. The base build "
        "doesn't "
        "tell its UCA, and counts as 3.1.1.0.\n"
        "\n"
        "Examples:\n"
        "  nls fingerprint 1252/swedish\n"
        "  nls fingerprint -D old.cp UTF-8/basic EUCJIS/basic > old; nls fingerprint UTF-8/basic EUCJIS/basic | diff "
        "old -\n");
    command.runs([&common, names] { return fingerprint(common, *names); });
}

}  // namespace nls::tool
