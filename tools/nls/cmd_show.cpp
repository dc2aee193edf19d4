#include <algorithm>
#include <cstdio>

#include "tools/nls/commands.hpp"
#include "tools/nls/hex_text.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/text_charset.hpp"

namespace nls::tool {
namespace {

// Entry types of the contents.
constexpr uint16_t conversionEntry = 1;
constexpr uint16_t caseEntry = 3;
constexpr uint16_t collationEntry = 4;

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

class Show {
public:
    Show(const Common& common, const std::string& name)
        : common_(common),
          session_(findDataFile(common.dataFile)),
          utf8_(session_.locale("UTF-8")),
          usedBefore_(session_.arenaUsed()),
          charset_(session_, name, TextCharset::Tables::ifAny) {}

    Exit run() {
        gather();
        common_.json ? showJson() : showText();
        return Exit::done;
    }

private:
    struct Row {
        std::string label, key, value;
    };

    const nlsAttribStruct& attrib() const { return *charset_.locale()->attrib; }

    void add(const std::string& label, const std::string& key, const std::string& value) {
        if (!value.empty()) rows_.push_back({label, key, value});
    }

    void gather() {
        const nlsAttribStruct& maps = attrib();
        char flags[16];
        std::snprintf(flags, sizeof flags, "0x%04X", static_cast<unsigned>(maps.flags & 0xFFFF));
        add("charset", "name", charset_.name());
        add("kind", "kind", kind());
        add("flags", "flags", flags);
        if (charset_.form() == TextCharset::Form::multiByte || charset_.isUtf8()) gatherLengths(maps);
        if (charset_.isLegacy() || charset_.isUtf8()) {
            add("letters", "letters", byteRanges([&](unsigned byte) { return maps.alphaMap[byte] != 0; }));
        }
        if (charset_.isLegacy() && charset_.hasTables()) add("substitute", "substitute", hexOf(charset_.substitute()));
        gatherContents();
        const uint64_t bytes = session_.arenaUsed() - usedBefore_;
        if (bytes != 0) add("memory", "memory", std::to_string(bytes) + " bytes of arena for all of it");
    }

    std::string kind() const {
        switch (charset_.form()) {
            case TextCharset::Form::utf8:
                return "Unicode in bytes";
            case TextCharset::Form::units16:
                return "Unicode in 16-bit units";
            case TextCharset::Form::units32:
                return "Unicode in 32-bit units";
            case TextCharset::Form::multiByte:
                return "multi-byte";
            default:
                return "single-byte";
        }
    }

    void gatherLengths(const nlsAttribStruct& maps) {
        for (unsigned trails = 1; trails <= 7; ++trails) {
            const std::string length = std::to_string(trails + 1);
            add("first of " + length, "firstOf" + length,
                byteRanges([&](unsigned byte) { return (maps.lengthMap[byte] & 7U) == trails; }));
        }
        add("trail bytes", "trailBytes", byteRanges([&](unsigned byte) { return maps.trailMap[byte] != 0; }));
        add("one column", "oneColumn", byteRanges([&](unsigned byte) { return (maps.lengthMap[byte] & 8U) != 0; }));
    }

    void gatherContents() {
        std::vector<std::string> to;
        std::vector<std::string> from;
        std::vector<std::string> collations;
        std::vector<std::string> cases;
        for (const nlsTocEntry& entry : session_.contents()) {
            const bool first = nlsStbcmp(entry.name1, charset_.name().c_str()) == 0;
            const bool second = nlsStbcmp(entry.name2, charset_.name().c_str()) == 0;
            if (entry.entryType == conversionEntry && first) to.emplace_back(entry.name2);
            if (entry.entryType == conversionEntry && second) from.emplace_back(entry.name1);
            if (entry.entryType == collationEntry && first) collations.emplace_back(entry.name2);
            if (entry.entryType == caseEntry && first) cases.emplace_back(entry.name2);
        }
        add("tables to", "tablesTo", joined(to));
        add("tables from", "tablesFrom", joined(from));
        add("collations", "collations", joined(collations));
        add("case tables", "caseTables", joined(cases));
    }

    void showJson() {
        JsonWriter json;
        json.open('{').member("command", "show");
        for (const Row& row : rows_) json.member(row.key, std::string_view(row.value));
        if (hasChart()) {
            json.key("characters").open('[');
            for (unsigned byte = 0; byte < 256; ++byte) json.value(std::string_view(character(byte)));
            json.close(']');
        }
        json.close('}');
        print(json.text() + "\n");
    }

    void showText() {
        for (const Row& row : rows_) {
            std::string line = row.label;
            line.resize(14, ' ');
            print(line + row.value + "\n");
        }
        if (hasChart()) showChart();
    }

    bool hasChart() const { return charset_.form() == TextCharset::Form::singleByte && charset_.hasTables(); }

    // The character of a byte as UTF-8; empty if it has none.
    std::string character(unsigned value) const {
        const auto byte = static_cast<unsigned char>(value);
        ByteBuffer text;
        if (!charset_.decode({&byte, 1}, text)) return "";
        return {reinterpret_cast<const char*>(text.view().data()), text.size()};
    }

    void showChart() {
        print("\n   ");
        for (unsigned low = 0; low < 16; ++low) print({' ', ' ', "0123456789ABCDEF"[low]});
        for (unsigned byte = 0; byte < 256; ++byte) {
            char label[8];
            std::snprintf(label, sizeof label, "\n%02X ", byte);
            if (byte % 16 == 0) print(label);
            print(chartCell(character(byte)));
        }
        print("\n");
    }

    // Three columns: the character, a dot for a control, nothing for a byte without one.
    std::string chartCell(const std::string& text) const {
        if (text.empty()) return "   ";
        const ByteView bytes{reinterpret_cast<const unsigned char*>(text.data()), text.size()};
        const uint32_t value = codePointOf(bytes);
        if (value < 0x20 || (value >= 0x7F && value < 0xA0)) return "  .";
        uint32_t columns = 0;
        nlsCountColumns(utf8_, nullptr, bytes.data(), static_cast<int32_t>(bytes.size()), &columns);
        // A mark needs a letter to stand on.
        if (columns == 0 || (value >= 0x300 && value < 0x370) || (value >= 0x5B0 && value < 0x5D0) ||
            (value >= 0x64B && value < 0x660)) {
            return "  \xE2\x97\x8C" + text;
        }
        return std::string(columns >= 2 ? 1 : 2, ' ') + text;
    }

    const Common& common_;
    Session session_;
    const nlsLocale* utf8_;
    uint64_t usedBefore_;
    TextCharset charset_;
    std::vector<Row> rows_;
};

}  // namespace

void addShow(const Command& program, const Common& common) {
    Command command = program.add("show", "show what the data file knows of a charset");
    auto words = std::make_shared<std::pair<std::string, std::string>>();
    command.option("WHAT", words->first, "what to show: charset").required().shownAs("").oneOf({"charset"});
    command.option("CHARSET", words->second, "its name").required().shownAs("");
    command.footer("Example:\n  nls show charset KOI8-R\n");
    command.runs([&common, words] { return Show(common, words->second).run(); });
}

}  // namespace nls::tool
