#include <algorithm>

#include "tools/nls/commands.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/session.hpp"

namespace nls::tool {
namespace {

// By the flags of a charset.
const char* kindOf(int flags) {
    if ((flags & NLS_CHARSET_UTF8) != 0) return "Unicode, bytes";
    if ((flags & NLS_CHARSET_UNITS16) != 0) return "Unicode, 16-bit units";
    if ((flags & NLS_CHARSET_UNITS32) != 0) return "Unicode, 32-bit units";
    return (flags & NLS_CHARSET_MULTI_BYTE) != 0 ? "multi-byte" : "single-byte";
}

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

// Some charsets have a name and tables of their own alone.
bool converts(const std::vector<nlsTocEntry>& contents, const nlsTocEntry& charset) {
    constexpr uint16_t conversion = 1;
    return std::any_of(contents.begin(), contents.end(), [&charset](const nlsTocEntry& entry) {
        return entry.entryType == conversion && nlsStbcmp(entry.name1, charset.name1) == 0;
    });
}

struct Listed {
    std::string name, kind;
};

std::vector<Listed> listed(const std::vector<nlsTocEntry>& contents) {
    constexpr uint16_t attributeTable = 2;
    std::vector<Listed> charsets;
    for (const nlsTocEntry& entry : contents) {
        if (entry.entryType != attributeTable) continue;
        charsets.push_back({entry.name1, kindOf(entry.rawByte)});
        if (!converts(contents, entry)) charsets.back().kind += ", no conversion";
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

std::vector<std::string> collationsOf(const Session& session) {
    constexpr uint16_t collationEntry = 4;
    std::vector<std::string> names;
    for (const nlsTocEntry& entry : session.contents()) {
        if (entry.entryType == collationEntry) names.push_back(std::string(entry.name1) + "/" + entry.name2);
    }
    return names;
}

std::vector<std::string> collationsOfIcu() {
    std::vector<std::string> names = icuNames();
    for (std::string& name : names) name.insert(0, "UTF-8/");
    return names;
}

// CHARSET/COLLATION, as `-l` takes it.
Exit listCollations(const Common& common, bool ofIcu) {
    const Session session{findDataFile(common.dataFile)};
    JsonWriter json;
    json.open('{').member("command", "list").member("dataFile", std::string_view(session.dataFile()));
    json.key("collations").open('[');
    std::string lines;
    for (const std::string& name : ofIcu ? collationsOfIcu() : collationsOf(session)) {
        json.value(std::string_view(name));
        lines += name + "\n";
    }
    json.close(']').close('}');
    print(common.json ? json.text() + "\n" : lines);
    return Exit::done;
}

}  // namespace

Exit listCharsets(const Common& common) {
    const Session session{findDataFile(common.dataFile)};
    const std::vector<Listed> charsets = listed(session.contents());
    if (common.json) {
        printJson(session, charsets);
    } else {
        for (const Listed& charset : charsets) print(padded(charset.name, 14) + charset.kind + "\n");
    }
    return Exit::done;
}

void addList(const Command& program, const Common& common) {
    Command command = program.add("list", "list the charsets of the data file");
    struct Options {
        bool collations = false, icu = false;
    };
    auto options = std::make_shared<Options>();
    command.flag("--collations", options->collations, "list the collations instead, as CHARSET/COLLATION");
    command.flag("--icu", options->icu, "list ICU's collations instead, whether ICU can be loaded or not")
        .excludes("--collations");
    command.footer(
        "A single-byte charset also has, by derivation, the collations of charsets from which the file has a byte map "
        "to it.\n");
    command.runs([&common, options] {
        return options->collations || options->icu ? listCollations(common, options->icu) : listCharsets(common);
    });
}

}  // namespace nls::tool
