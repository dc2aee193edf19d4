#include "tools/nls/commands.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/order_options.hpp"
#include "tools/nls/text_argument.hpp"

namespace nls::tool {
namespace {

struct Options {
    OrderOptions order;
    std::string a, b;
    bool raw = false;
};

Exit compare(const Common& common, const Options& options) {
    Session session{findDataFile(common.dataFile)};
    const Order order{session, options.order.order, options.order.mode()};
    const ByteBuffer a = textArgument(order.charset(), options.a, options.raw, Exit::badInput);
    const ByteBuffer b = textArgument(order.charset(), options.b, options.raw, Exit::badInput);
    const int sign = order.compare(a.view(), b.view());
    const char* const answer = sign < 0 ? "<" : sign > 0 ? ">" : "=";
    if (!common.json) {
        print(std::string(answer) + "\n");
        return Exit::done;
    }
    JsonWriter json;
    json.open('{').member("command", "compare").member("order", std::string_view(order.name()));
    json.member("mode", std::string_view(options.order.fold)).member("a", std::string_view(options.a));
    json.member("b", std::string_view(options.b)).member("answer", answer).close('}');
    print(json.text() + "\n");
    return Exit::done;
}

}  // namespace

void addCompare(const Command& program, const Common& common) {
    Command command = program.add("compare", "which of two texts sorts first?");
    auto options = std::make_shared<Options>();
    addOrderOptions(command, options->order);
    command.flag("--raw", options->raw, "A and B are bytes of the charset, and not UTF-8");
    command.option("A", options->a, "a text, as UTF-8").required().shownAs("");
    command.option("B", options->b, "another").required().shownAs("");
    command.footer(
        "Writes < if A sorts before B, > if it sorts after it, and = if they are equal: exit code 0 all the same. 1: a "
        "text isn't valid, or the charset lacks a character of it.\n"
        "\n"
        "Examples:\n"
        "  nls compare -l 1252/swedish \xC3\x85land Zorn          >\n"
        "  nls compare -l 1252/german -f fold Stra\xC3\x9F"
        "e STRASSE\n");
    command.runs([&common, options] { return compare(common, *options); });
}

}  // namespace nls::tool
