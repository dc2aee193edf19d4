// nls db: collations that databases store, written, shown, checked against what is at hand, and compared.
#include <algorithm>
#include <functional>

#include "tools/nls/commands.hpp"
#include "tools/nls/hex_text.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/output.hpp"
#include "tools/nls/stored_check.hpp"
#include "tools/nls/stored_fields.hpp"

namespace nls::tool {
namespace {

using stored::StoredCollation;

constexpr std::size_t wordBreakHead = 62;

struct ExportOptions {
    std::string order, output, wordBreak, wordBreakCharset, text;
    uint64_t format = 6;
    bool hasText = false;
};

stored::Bytes readWordBreak(const std::string& path) {
    stored::Bytes table = readWhole(path);
    const std::size_t wants =
        table.size() < wordBreakHead ? wordBreakHead : wordBreakHead + loadWord<uint16_t>(table.data() + 2);
    if (table.size() != wants) {
        throw Failure(Exit::badInput, path + " is no word-break table: it has " + std::to_string(table.size()) +
                                          " bytes, and by the number at its offset 2 it should have " +
                                          std::to_string(wants));
    }
    return table;
}

StoredCollation takeOrder(Session& session, const ExportOptions& options) {
    constexpr uint64_t highestFormat = INT32_MAX;
    const Order order{session, options.order, Fold::exact};
    StoredCollation stored;
    const auto format = static_cast<int32_t>(std::min(options.format, highestFormat));
    if (format <= NLS_LAST_SHORT_FORMAT && order.collation().collKind > static_cast<int32_t>(StoredKind::icu)) {
        throw Failure(Exit::usage, order.name() + " brings tables of its own, and needs --format 6 or more");
    }
    const nlsStatus status = stored::takeFrom(*order.locale(), format, stored);
    if (status != NLS_OK) {
        throw Failure(Exit::fileTrouble, order.name() + " can't be stored (status " + std::to_string(status) + ")");
    }
    stored.text = options.hasText ? options.text : printText(order);
    return stored;
}

Exit exportOrder(const Common& common, const ExportOptions& options) {
    const std::string dataFile = findDataFile(common.dataFile);
    Session session{dataFile};
    StoredCollation stored = takeOrder(session, options);
    if (!options.wordBreak.empty()) stored.wordBreak = readWordBreak(options.wordBreak);
    if (!options.wordBreakCharset.empty()) {
        stored.wordBreakCharset = session.locale(options.wordBreakCharset)->charsetName;
    }
    for (const std::string& reason : judgeStored(dataFile, stored).reasons) {
        std::fprintf(stderr, "nls: note: a database's order by this record may differ: %s\n", reason.c_str());
    }
    Output output{options.output};
    output.write(stored::toFileForm(stored));
    output.keep();
    return Exit::done;
}

// What is told of one file: text, and members of a JSON object.
struct Told {
    Exit exit = Exit::done;
    std::string text;
};
using Tell = std::function<Told(const std::string& path, JsonWriter& json)>;

// Trouble with a file outweighs damage, and damage an order that may differ.
Exit worse(Exit a, Exit b) {
    const auto rank = [](Exit exit) {
        return exit == Exit::fileTrouble ? 3 : exit == Exit::badInput ? 2 : exit == Exit::loss ? 1 : 0;
    };
    return rank(a) >= rank(b) ? a : b;
}

// A record's names don't stand on the command line: those that the data file doesn't know are no wrong usage.
Exit codeOf(const Failure& failure) {
    return failure.code() == Exit::usage ? Exit::fileTrouble : failure.code();
}

void tellTrouble(const std::string& file, const std::string& what) {
    std::fprintf(stderr, "nls: %s%s\n", what.starts_with(file) ? "" : (file + ": ").c_str(), what.c_str());
}

Exit tellEach(const Common& common, const char* command, const std::vector<std::string>& files, const Tell& tell) {
    JsonWriter json;
    json.open('{').member("command", command).key("files").open('[');
    Exit all = Exit::done;
    for (const std::string& file : files) {
        Told told;
        json.open('{').member("file", std::string_view(file));
        try {
            told = tell(file, json);
            if (!common.json) print(told.text);
        } catch (const Failure& failure) {
            told.exit = codeOf(failure);
            json.member("error", failure.what());
            tellTrouble(file, failure.what());
        }
        json.member("exit", static_cast<int64_t>(told.exit)).close('}');
        all = worse(all, told.exit);
    }
    json.close(']').member("exit", static_cast<int64_t>(all)).close('}');
    if (common.json) print(json.text() + "\n");
    return all;
}

std::string hexDigits(ByteView bytes) {
    std::string text;
    for (const unsigned char byte : bytes) text += formatted("%02X", unsigned{byte});
    return text;
}

std::string labelled(const std::string& label, const std::string& value) {
    return label + std::string(label.size() < 16 ? 16 - label.size() : 1, ' ') + value + "\n";
}

Told dumpOne(const std::string& path, JsonWriter& json) {
    const StoredCollation stored = readStored(path);
    Told told{Exit::done, path + "\n"};
    for (const StoredField& field : fieldsOf(stored)) {
        json.member(field.key, std::string_view(field.map.empty() ? field.value : hexDigits(field.map)));
        told.text += field.map.empty() ? labelled(field.label, field.value) : field.label + "\n" + byteRows(field.map);
    }
    return told;
}

Told checkOne(const std::string& dataFile, const std::string& path, JsonWriter& json) {
    const StoredCollation stored = readStored(path);
    const StoredVerdict verdict = judgeStored(dataFile, stored);
    const bool isSame = verdict.exit == Exit::done;
    const std::string name = shown(orderNameOf(stored));
    Told told{verdict.exit, path + ": " + name + ": " + (isSame ? "same order\n" : "the order may differ\n")};
    json.member("order", std::string_view(name)).member("verdict", isSame ? "same order" : "order may differ");
    const auto list = [&](const char* key, const char* title, const std::vector<std::string>& sentences) {
        json.key(key).open('[');
        for (const std::string& sentence : sentences) {
            json.value(std::string_view(sentence));
            told.text += title + sentence + "\n";
        }
        json.close(']');
    };
    list("reasons", "  since ", verdict.reasons);
    list("notes", "  note: ", verdict.notes);
    return told;
}

// Characters by the data file, where there is one that has the charset.
class Characters {
public:
    Characters(const Common& common, const StoredCollation& stored) {
        try {
            session_ = std::make_unique<Session>(findDataFile(common.dataFile));
            charset_ = std::make_unique<TextCharset>(*session_, stored::charsetOf(stored.record),
                                                     TextCharset::Tables::required);
        } catch (const Failure&) {
            charset_.reset();
        }
    }
    std::string operator()(unsigned byte) const { return charset_ ? characterOf(*charset_, byte) : std::string{}; }

private:
    std::unique_ptr<Session> session_;
    std::unique_ptr<TextCharset> charset_;
};

class Diff {
public:
    Diff(const Common& common, const std::vector<std::string>& files)
        : common_(common), stored_{read(files[0]), read(files[1])}, characters_(common, stored_[0]) {
        json_.open('{').member("command", "db diff").key("files").open('[');
        for (const std::string& file : files) json_.value(std::string_view(file));
        json_.close(']').key("differences").open('[');
    }

    Exit run() {
        const std::vector<StoredField> first = fieldsOf(stored_[0]);
        const std::vector<StoredField> second = fieldsOf(stored_[1]);
        for (const StoredField& field : first) compare(&field, find(second, field.key));
        for (const StoredField& field : second) {
            if (find(first, field.key) == nullptr) compare(nullptr, &field);
        }
        const Exit exit = isSame_ ? Exit::done : Exit::loss;
        json_.close(']').member("exit", static_cast<int64_t>(exit)).close('}');
        print(common_.json ? json_.text() + "\n" : text_);
        return exit;
    }

private:
    static StoredCollation read(const std::string& path) {
        try {
            return readStored(path);
        } catch (const Failure& failure) {
            const std::string what = failure.what();
            throw Failure(failure.code(), what.starts_with(path) ? what : path + ": " + what);
        }
    }

    static const StoredField* find(const std::vector<StoredField>& fields, const std::string& key) {
        const auto found =
            std::find_if(fields.begin(), fields.end(), [&key](const StoredField& field) { return field.key == key; });
        return found == fields.end() ? nullptr : &*found;
    }

    void compare(const StoredField* a, const StoredField* b) {
        const StoredField& any = a != nullptr ? *a : *b;
        if (a != nullptr && b != nullptr && !a->map.empty() && !b->map.empty()) return compareMap(*a, *b);
        const std::string left = textOf(a);
        const std::string right = textOf(b);
        if (left == right) return;
        isSame_ = false;
        json_.open('{').member("field", std::string_view(any.key));
        json_.member("first", std::string_view(left)).member("second", std::string_view(right)).close('}');
        text_ += labelled(any.label, left + " | " + right);
    }
    static std::string textOf(const StoredField* field) {
        if (field == nullptr) return "(not there)";
        return field->map.empty() ? field->value : "256 entries";
    }

    void compareMap(const StoredField& a, const StoredField& b) {
        const MapDifference difference = compareMaps(a.map, b.map, std::cref(characters_));
        if (difference.bytes.empty()) return;
        isSame_ = false;
        json_.open('{').member("field", std::string_view(a.key)).key("entries").open('[');
        for (const unsigned byte : difference.bytes) {
            json_.open('{').member("byte", uint64_t{byte});
            json_.member("character", std::string_view(characters_(byte)));
            json_.member("first", uint64_t{a.map[byte]}).member("second", uint64_t{b.map[byte]}).close('}');
        }
        json_.close(']').close('}');
        text_ += labelled(a.label, std::to_string(difference.bytes.size()) + " differ: " + difference.inWords);
    }

    const Common& common_;
    const StoredCollation stored_[2];
    Characters characters_;
    JsonWriter json_;
    std::string text_;
    bool isSame_ = true;
};

void addExport(const Command& db, const Common& common) {
    Command command = db.add("export", "write the record of a collation of the data file, or of ICU's");
    auto options = std::make_shared<ExportOptions>();
    command.option("-l,--order", options->order, "the charset and the collation")
        .shownAs("CHARSET/COLLATION[/CASETABLE]")
        .required();
    command
        .option("--format", options->format, "up to 5 the weights alone; from 6 on the charset and its case table, too")
        .shownAs("N")
        .showsDefault();
    command.option("--word-break", options->wordBreak, "a word-break table to store with it").shownAs("FILE");
    command
        .option("--word-break-charset", options->wordBreakCharset, "the second charset that the table is completed for")
        .shownAs("CHARSET")
        .needs("--word-break");
    auto text = std::make_shared<Option>(
        command.option("--text", options->text, "the text to store with it, in place of the order's fingerprint"));
    text->shownAs("TEXT");
    command.output(options->output);
    command.footer(
        "The form of the file is that of docs/stored-collation.md. The text is \"nls order \" and the fingerprint, by "
        "which nls db check sees every change that decides the order.\n"
        "\n"
        "Example:\n"
        "  nls db export -l 1252/swedish -o swedish.nlscoll\n");
    command.runs([&common, options, text] {
        options->hasText = text->isGiven();
        return exportOrder(common, *options);
    });
}

void addDumpStored(const Command& db, const Common& common) {
    Command command = db.add("dump", "show records field by field");
    auto files = std::make_shared<std::vector<std::string>>();
    command.files(*files, "records; - or none: standard input");
    command.footer("Exit codes: 1 a file is no stored collation; 4 one can't be read.\n");
    command.runs([&common, files] { return tellEach(common, "db dump", *files, dumpOne); });
}

void addCheckStored(const Command& db, const Common& common) {
    Command command = db.add("check", "does a record order here as it did where it was stored?");
    auto files = std::make_shared<std::vector<std::string>>();
    command.files(*files, "records; - or none: standard input");
    command.footer(
        "Opens each record as a database would, and compares it with this library, this data file and the ICU at hand: "
        "kind and weights, how the charset forms characters, the case table where it takes part, the versions of ICU's "
        "collator and of its UCA, and the fingerprint in the text.\n"
        "Exit codes: 0 the same order; 3 the order may differ, and why; 1 a record is damaged; 4 what it needs isn't "
        "here: a charset, or ICU.\n");
    command.runs([&common, files] {
        const std::string dataFile = findDataFile(common.dataFile);
        return tellEach(common, "db check", *files, [dataFile](const std::string& path, JsonWriter& json) {
            return checkOne(dataFile, path, json);
        });
    });
}

void addDiffStored(const Command& db, const Common& common) {
    Command command = db.add("diff", "which fields and weights of two records differ");
    auto files = std::make_shared<std::vector<std::string>>();
    command.option("FILE", *files, "two records").shownAs("").required();
    command.footer("Exit codes: 0 the same in every field; 3 not; 1 a file is no stored collation.\n");
    command.runs([&common, files] {
        if (files->size() != 2) throw Failure(Exit::usage, "nls db diff takes two files");
        return Diff(common, *files).run();
    });
}

}  // namespace

void addDb(const Command& program, const Common& common) {
    Command command = program.add("db", "collations that databases store: export, dump, check, diff");
    command.takesCommands();
    command.footer(
        "Examples:\n"
        "  nls db export -l 1252/swedish -o swedish.nlscoll\n"
        "  nls db check swedish.nlscoll             does it sort here as it did there?\n"
        "  nls db diff swedish.nlscoll other.nlscoll\n");
    for (const auto add : {&addExport, &addDumpStored, &addCheckStored, &addDiffStored}) add(command, common);
}

}  // namespace nls::tool
