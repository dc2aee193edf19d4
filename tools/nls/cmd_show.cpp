#include <algorithm>
#include <cstdio>

#include "tools/nls/commands.hpp"
#include "tools/nls/hex_text.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/queries.hpp"
#include "tools/nls/text_charset.hpp"
#include "tools/nls/type_names.hpp"

namespace nls::tool {
namespace {

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
        add("widest", "widest",
            std::to_string(numberOf(*charset_.locale(), NLS_PROP_CHAR_SIZE)) + " bytes a character");
        if (numberOf(*charset_.locale(), NLS_PROP_VIA_SJIS) != 0) add("compares", "compares", "through Shift-JIS");
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
        const nlsLocale& locale = *charset_.locale();
        std::vector<std::string> to;
        std::vector<std::string> from;
        for (const std::string& item : listOf(locale, conversionList)) {
            const Pair pair = pairOf(item, " -> ");
            if (nlsStbcmp(pair.first.c_str(), locale.charsetName) == 0) to.push_back(pair.second);
            if (nlsStbcmp(pair.second.c_str(), locale.charsetName) == 0) from.push_back(pair.first);
        }
        std::vector<std::string> collations = listOf(locale, collationList);
        const auto ofIcu = std::erase_if(collations, isIcuName);
        if (ofIcu != 0) collations.push_back("and " + std::to_string(ofIcu) + " of ICU's");
        add("tables to", "tablesTo", joined(to));
        add("tables from", "tablesFrom", joined(from));
        add("collations", "collations", joined(collations));
        add("case tables", "caseTables", joined(listOf(locale, caseList)));
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

    std::string character(unsigned value) const { return characterOf(charset_, value); }

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

struct Words {
    std::string what, charset, target;
};

// One conversion: its table and the room that it takes.
Exit showConversion(const Common& common, const Words& words) {
    Session session{findDataFile(common.dataFile)};
    nlsLocale* const from = session.locale(words.charset);
    nlsLocale* const to = session.locale(words.target);
    const nlsConversion* const conversion = session.conversion(from, to);
    if (conversion == nullptr) {
        throw Failure(Exit::usage,
                      std::string("there is no table from ") + from->charsetName + " to " + to->charsetName);
    }
    const auto told = [conversion](uint32_t property, const char* unit) {
        const std::optional<uint32_t> number = numberOf(*conversion, property);
        return number ? unit + std::to_string(*number) : "not known for this type";
    };
    const struct {
        const char *label, *key;
        std::string value;
    } rows[] = {
        {"source", "source", from->charsetName},
        {"target", "target", to->charsetName},
        {"table", "table", typeName(nlsConversionType(conversion->table))},
        {"growth", "growth", told(NLS_PROP_GROWTH, "bytes times ")},
        {"widest", "widest", told(NLS_PROP_CONVERTED_CHAR_SIZE, "bytes a character: ")},
        {"scratch", "scratch", numberOf(*conversion, NLS_PROP_TWO_STEP) == 1U ? "needed" : "not needed"},
    };
    JsonWriter json;
    json.open('{').member("command", "show");
    std::string lines;
    for (const auto& row : rows) {
        json.member(row.key, std::string_view(row.value));
        lines += (row.label + std::string(14, ' ')).substr(0, 14) + row.value + "\n";
    }
    json.close('}');
    print(common.json ? json.text() + "\n" : lines);
    return Exit::done;
}

Exit show(const Common& common, const Words& words) {
    if (words.what == "charset" && words.target.empty()) return Show(common, words.charset).run();
    if (words.what == "conversion" && !words.target.empty()) return showConversion(common, words);
    throw Failure(Exit::usage, "say charset CHARSET, or conversion CHARSET TARGET");
}

}  // namespace

void addShow(const Command& program, const Common& common) {
    Command command = program.add("show", "show what the data file knows of a charset or of a conversion");
    auto words = std::make_shared<Words>();
    command.option("WHAT", words->what, "what to show: charset or conversion")
        .required()
        .shownAs("")
        .oneOf({"charset", "conversion"});
    command.option("CHARSET", words->charset, "its name, or that of the source").required().shownAs("");
    command.option("TARGET", words->target, "of a conversion").shownAs("");
    command.footer("Examples:\n  nls show charset KOI8-R\n  nls show conversion SHIFT-JIS UTF-8\n");
    command.runs([&common, words] { return show(common, *words); });
}

}  // namespace nls::tool
