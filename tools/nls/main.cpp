// nls: text in many charsets converted, checked, counted, searched and sorted, and the data file looked into.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "tools/nls/commands.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/nearest_names.hpp"

namespace nls::tool {

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        throw fileFailure("(standard output)");
    }
}

void flushOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) throw fileFailure("(standard output)");
}

namespace {

constexpr const char* help =
    "Convert, check, count, search and sort text in many charsets.\n"
    "Options alone, without a command, mean convert: nls -f KOI8-R -t UTF-8 old.txt";

constexpr const char* footer =
    "Examples:\n"
    "  nls list                                     the charsets\n"
    "  nls convert -f SHIFT-JIS -t UTF-8 in.txt     to the standard output\n"
    "  nls convert -f UTF-8 -t 1252 -o out.txt in.txt\n"
    "  nls check -f UTF-8 *.txt                     valid? where not?\n"
    "  nls count -f EUCJIS in.txt                   bytes, characters, columns\n"
    "  nls find -l 1252/german --fold text in.txt   lines with a text, by a collation\n"
    "  nls sort -l 1252/swedish names.txt           lines in the order of a collation\n"
    "  nls sort -l UTF-8/ICU-sv names.txt           the same through ICU\n"
    "  nls db check index.nlscoll                   does a stored collation sort here as it did there?\n"
    "  nls doctor                                   what nls has found here, and what it misses\n"
    "\n"
    "Exit codes: 0 done, 1 bad input, of find and like nothing found, 2 usage or unknown name, 3 done with loss, of "
    "db: not the same, 4 "
    "file trouble.\n"
    "The data file is the one of -D; else of ZELCONV; else convmap.cp in the directory QRD; else the installed one.\n";

void addCommands(CLI::App& app, Common& common, Run& run) {
    const Command program{app, run};
    app.add_option("-D,--data", common.dataFile, "the data file, convmap.cp")->type_name("FILE");
    app.add_flag("--json", common.json, "answer in JSON");
    app.set_version_flag("-V,--version", "nls 1.0.0");
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough();
    for (const auto add :
         {&addConvert, &addCheck, &addCount, &addFind, &addLike, &addCut, &addSort, &addCompare, &addKey, &addUpper,
          &addLower, &addFingerprint, &addList, &addShow, &addDump, &addDoctor, &addDb, &addWords}) {
        add(program, common);
    }
}

void refuseUnknown(const CLI::App& app, const std::string& word) {
    std::vector<std::string> commands;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        commands.push_back(command->get_name());
        if (word == command->get_name()) return;
    }
    throw Failure(Exit::usage,
                  "unknown command \"" + word + "\"" + nearestNamesHint(word, commands) + "; see nls --help");
}

// As iconv is called: options without a command mean convert, and -l means list.
std::vector<std::string> withCommand(const CLI::App& app, std::vector<std::string> words) {
    std::size_t place = 0;
    for (; place < words.size(); ++place) {
        const std::string& word = words[place];
        if (word == "-D" || word == "--data") {
            ++place;
        } else if (word != "--json" && !word.starts_with("-D") && !word.starts_with("--data=")) {
            break;
        }
    }
    if (place >= words.size()) {
        throw Failure(
            Exit::usage,
            "say what to do: convert, check, count, find, like, cut, sort, compare, key, upper, lower, fingerprint, "
            "list, show, dump, db, words or doctor; see nls --help");
    }
    if (words[place].size() < 2 || words[place][0] != '-') {
        refuseUnknown(app, words[place]);
        return words;
    }
    const std::string& first = words[place];
    for (const char* const own : {"-h", "--help", "-V", "--version"}) {
        if (first == own) return words;
    }
    if (first == "-l" || first == "--list") {
        words[place] = "list";
    } else {
        words.insert(words.begin() + static_cast<std::ptrdiff_t>(place), "convert");
    }
    return words;
}

Exit fail(const Common& common, Exit code, const std::string& what) {
    if (common.json) {
        JsonWriter json;
        json.open('{').member("error", std::string_view(what)).member("exit", static_cast<int64_t>(code)).close('}');
        std::fprintf(stdout, "%s\n", json.text().c_str());
    }
    std::fprintf(stderr, "nls: %s\n", what.c_str());
    return code;
}

Exit runCommandLine(std::vector<std::string> words) {
    useOwnPacks();
    Common common;
    Run run;
    CLI::App app{help, "nls"};
    addCommands(app, common, run);
    try {
        words = withCommand(app, std::move(words));
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
        const Exit code = run();
        flushOutput();
        return code;
    } catch (const CLI::ParseError& wrong) {
        if (wrong.get_exit_code() == 0) {
            app.exit(wrong);
            return Exit::done;
        }
        return fail(common, Exit::usage, std::string(wrong.what()) + "; see nls --help");
    } catch (const Failure& failure) {
        return failure.isTold() ? fail(common, failure.code(), failure.what()) : failure.code();
    } catch (const std::bad_alloc&) {
        return fail(common, Exit::fileTrouble, "not enough memory");
    }
}

}  // namespace
}  // namespace nls::tool

int main(int count, char** words) {
    // A reader that goes away is told by the failing write.
    std::signal(SIGPIPE, SIG_IGN);
    return static_cast<int>(nls::tool::runCommandLine({words + 1, words + count}));
}
