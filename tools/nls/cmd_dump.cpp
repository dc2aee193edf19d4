#include <map>

#include "tools/nls/commands.hpp"
#include "tools/nls/convmap_text.hpp"
#include "tools/nls/json.hpp"

namespace nls::tool {
namespace {

struct Options {
    std::string file;
    bool wholeArrays = false;
    bool contentsOnly = false;
};

void dumpText(const ConvmapText& dump, const Options& options) {
    print(options.file + ": version " + std::to_string(dump.header().version) + ", " +
          std::to_string(dump.entries().size()) + " entries, " + std::to_string(dump.fileSize()) + " bytes\n");
    // Entries of one kind may share a record; it is shown once.
    std::map<std::pair<unsigned, uint32_t>, std::size_t> shown;
    for (std::size_t i = 0; i < dump.entries().size(); ++i) {
        const DumpEntry& entry = dump.entries()[i];
        print("#" + std::to_string(i + 1) + " " + ConvmapText::title(entry) + "\n");
        if (options.contentsOnly) continue;
        const auto [first, isNew] = shown.try_emplace({entry.type, entry.offset}, i + 1);
        print(isNew || entry.offset == 0 ? dump.record(entry)
                                         : "    the record of #" + std::to_string(first->second) + "\n");
    }
}

void dumpJson(const ConvmapText& dump, const Options& options) {
    JsonWriter json;
    json.open('{').member("command", "dump").member("file", std::string_view(options.file));
    json.member("version", static_cast<int64_t>(dump.header().version)).member("bytes", dump.fileSize());
    json.key("entries").open('[');
    for (const DumpEntry& entry : dump.entries()) {
        json.open('{').member("type", uint64_t{entry.type}).member("name1", std::string_view(entry.name1));
        json.member("name2", std::string_view(entry.name2)).member("offset", uint64_t{entry.offset});
        json.member("subKind", uint64_t{entry.subKind}).member("rawByte", uint64_t{entry.rawByte});
        if (!options.contentsOnly) json.member("record", std::string_view(dump.record(entry)));
        json.close('}');
    }
    json.close(']').close('}');
    print(json.text() + "\n");
}

}  // namespace

void addDump(const Command& program, const Common& common) {
    Command command = program.add("dump", "show every record of a data file");
    auto options = std::make_shared<Options>();
    command.option("CONVMAP", options->file, "the data file; without it the one in use").shownAs("");
    command.flag("--arrays", options->wholeArrays, "the arrays of multi-byte charsets word by word");
    command.flag("--contents", options->contentsOnly, "the table of contents alone");
    command.footer("Example:\n  nls dump share/nls/convmap.cp | less\n");
    command.runs([&common, options] {
        if (options->file.empty()) options->file = findDataFile(common.dataFile);
        const ConvmapText dump{options->file, options->wholeArrays};
        common.json ? dumpJson(dump, *options) : dumpText(dump, *options);
        return Exit::done;
    });
}

}  // namespace nls::tool
