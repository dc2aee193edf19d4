#include <algorithm>

#include "tools/nls/commands.hpp"
#include "tools/nls/failure.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/queries.hpp"
#include "tools/nls/session.hpp"

namespace nls::tool {
namespace {

const char* kindOf(const nlsLocale& charset) {
    if (numberOf(charset, NLS_PROP_UTF8) != 0) return "Unicode, bytes";
    if (numberOf(charset, NLS_PROP_UNITS16) != 0) return "Unicode, 16-bit units";
    if (numberOf(charset, NLS_PROP_UNITS32) != 0) return "Unicode, 32-bit units";
    return numberOf(charset, NLS_PROP_MULTI_BYTE) != 0 ? "multi-byte" : "single-byte";
}

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

struct Listed {
    std::string name, kind;
};

std::vector<Listed> listed(Session& session) {
    std::vector<Listed> charsets;
    for (const std::string& name : listOf(session.handle(), charsetList)) {
        const nlsLocale& charset = *session.locale(name);
        charsets.push_back({name, kindOf(charset)});
        // Some charsets have a name and tables of their own alone.
        if (numberOf(charset, NLS_PROP_CONVERSIONS_LENGTH) == 0) charsets.back().kind += ", no conversion";
    }
    return charsets;
}

void printJson(const Session& session, const std::vector<Listed>& charsets) {
    JsonWriter json;
    json.open('{').member("command", "list").member("dataFile", std::string_view(session.dataFile()));
    json.key("charsets").open('[');
    for (const Listed& charset : charsets) {
        json.open('{').member("name", std::string_view(charset.name));
        json.member("kind", std::string_view(charset.kind)).close('}');
    }
    json.close(']').close('}');
    print(json.text() + "\n");
}

// CHARSET/COLLATION, as `-l` takes it. ICU's are told once, wherever the library puts them.
std::vector<std::string> collationsOf(const Session& session) {
    std::vector<std::string> names;
    for (const std::string& item : listOf(session.handle(), collationList)) {
        const Pair pair = pairOf(item, " ");
        const std::string name = pair.first + "/" + pair.second;
        if (!isIcuName(pair.second) || std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

std::vector<std::string> collationsOfFile(const Session& session) {
    std::vector<std::string> names = collationsOf(session);
    std::erase_if(names, [](const std::string& name) { return isIcuName(name.substr(name.find('/') + 1)); });
    return names;
}

std::vector<std::string> collationsOfIcu() {
    std::vector<std::string> names = icuNames();
    for (std::string& name : names) name.insert(0, "UTF-8/");
    return names;
}

Exit printItems(const Common& common, const Session& session, const std::string& key,
                const std::vector<std::string>& items) {
    JsonWriter json;
    json.open('{').member("command", "list").member("dataFile", std::string_view(session.dataFile()));
    json.key(key).open('[');
    std::string lines;
    for (const std::string& item : items) {
        json.value(std::string_view(item));
        lines += item + "\n";
    }
    json.close(']').close('}');
    print(common.json ? json.text() + "\n" : lines);
    return Exit::done;
}

// What `nls list` takes: words, and the flags of old.
struct Options {
    std::string what, charset;
    bool collations = false, icu = false;
};

ListNumbers numbersOf(const std::string& what) {
    return what == "collations" ? collationList : what == "cases" ? caseList : conversionList;
}

Exit list(const Common& common, const Options& options) {
    const bool isCharsets = options.what.empty() || options.what == "charsets";
    if (isCharsets && !options.charset.empty()) {
        throw Failure(Exit::usage,
                      "a list of charsets takes no charset; nls show charset " + options.charset + " tells of one");
    }
    if (!options.what.empty() && (options.collations || options.icu)) {
        throw Failure(Exit::usage, "--collations and --icu stand without a word for what to list");
    }
    if (isCharsets && !options.collations && !options.icu) return listCharsets(common);
    Session session{findDataFile(common.dataFile)};
    if (options.collations) return printItems(common, session, "collations", collationsOfFile(session));
    if (options.icu) return printItems(common, session, "collations", collationsOfIcu());
    const ListNumbers numbers = numbersOf(options.what);
    if (!options.charset.empty()) {
        return printItems(common, session, options.what, listOf(*session.locale(options.charset), numbers));
    }
    return printItems(common, session, options.what,
                      options.what == "collations" ? collationsOf(session) : listOf(session.handle(), numbers));
}

}  // namespace

Exit listCharsets(const Common& common) {
    Session session{findDataFile(common.dataFile)};
    const std::vector<Listed> charsets = listed(session);
    if (common.json) {
        printJson(session, charsets);
    } else {
        for (const Listed& charset : charsets) print(padded(charset.name, 14) + charset.kind + "\n");
    }
    return Exit::done;
}

void addList(const Command& program, const Common& common) {
    Command command = program.add("list", "list what the data file holds");
    auto options = std::make_shared<Options>();
    command.option("WHAT", options->what, "charsets, which it is without a word, collations, cases or conversions")
        .shownAs("")
        .oneOf({"charsets", "collations", "cases", "conversions"});
    command.option("CHARSET", options->charset, "those of one charset").shownAs("");
    command.flag("--collations", options->collations, "the collations of the data file alone, as CHARSET/COLLATION");
    command.flag("--icu", options->icu, "ICU's collations, whether ICU can be loaded or not").excludes("--collations");
    command.footer(
        "A single-byte charset also has, by derivation, the collations of charsets from which the file has a byte map "
        "to it. Those of a Unicode form are those of UTF-8.\n"
        "\n"
        "Examples:\n"
        "  nls list collations                 CHARSET/COLLATION, as -l takes it, ICU's among them\n"
        "  nls list conversions SHIFT-JIS      from it and to it\n");
    command.runs([&common, options] { return list(common, *options); });
}

}  // namespace nls::tool
