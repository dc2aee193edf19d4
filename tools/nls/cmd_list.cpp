#include "tools/nls/commands.hpp"
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

void printJson(const Session& session, const std::vector<nlsTocEntry>& charsets) {
    JsonWriter json;
    json.open('{').member("command", "list").member("dataFile", std::string_view(session.dataFile()));
    json.key("charsets").open('[');
    for (const nlsTocEntry& entry : charsets) {
        json.open('{').member("name", entry.name1).member("kind", kindOf(entry.rawByte)).close('}');
    }
    json.close(']').close('}');
    print(json.text() + "\n");
}

}  // namespace

Exit listCharsets(const Common& common) {
    constexpr uint16_t attributeTable = 2;
    const Session session{findDataFile(common.dataFile)};
    std::vector<nlsTocEntry> charsets;
    for (const nlsTocEntry& entry : session.contents()) {
        if (entry.entryType == attributeTable) charsets.push_back(entry);
    }
    if (common.json) {
        printJson(session, charsets);
    } else {
        for (const nlsTocEntry& entry : charsets) print(padded(entry.name1, 14) + kindOf(entry.rawByte) + "\n");
    }
    return Exit::done;
}

void addList(CLI::App& app, const Common& common, Run& run) {
    CLI::App* const command = app.add_subcommand("list", "list the charsets of the data file");
    command->callback([&common, &run] { run = [&common] { return listCharsets(common); }; });
}

}  // namespace nls::tool
