// nls doctor: what this program has found on the host, whether ICU can be had and if not why, and what the C locale of
// the environment does to names and case.
#include <unistd.h>

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <optional>

#include "tools/nls/commands.hpp"
#include "tools/nls/icu_install.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/session.hpp"

namespace nls::tool {
namespace {

constexpr const char* icuBuilds[] = {"ICU-", "ICU_48-"};

// Both forms of the answer, line by line.
class Answer {
public:
    explicit Answer(bool isJson) : isJson_(isJson) { json_.open('{').member("command", "doctor"); }

    void line(const char* title, const std::string& text) {
        std::string head = title;
        head.resize(12, ' ');
        text_ += head + text + "\n";
    }
    JsonWriter& json() { return json_; }
    void finish(Exit code) {
        json_.member("exit", static_cast<int64_t>(code)).close('}');
        print(isJson_ ? json_.text() + "\n" : text_);
    }

private:
    bool isJson_;
    JsonWriter json_;
    std::string text_;
};

std::string dataFileSource(const std::string& given, const std::string& found) {
    if (!given.empty()) return "-D";
    const char* const named = std::getenv("ZELCONV");
    if (named != nullptr && *named != 0) return "ZELCONV";
    const char* const folder = std::getenv("QRD");
    return folder != nullptr && *folder != 0 && found.starts_with(folder) ? "QRD" : "beside this program";
}

// The charsets of the data file; nothing if it can't be opened.
std::optional<std::vector<std::string>> examineData(const std::string& given, Answer& answer) {
    answer.json().key("dataFile").open('{');
    std::optional<std::vector<std::string>> charsets;
    try {
        const std::string path = findDataFile(given);
        const std::string source = dataFileSource(given, path);
        answer.json().member("path", std::string_view(path)).member("source", std::string_view(source));
        const Session session{path};
        charsets = session.charsets();
        answer.json().member("charsets", static_cast<uint64_t>(charsets->size()));
        answer.line("data file", path + " (" + source + "): " + std::to_string(charsets->size()) + " charsets");
    } catch (const Failure& failure) {
        answer.json().member("error", failure.what());
        answer.line("data file", std::string("NOT FOUND: ") + failure.what());
    }
    answer.json().close('}');
    return charsets;
}

// The root collation, which every ICU has.
bool examineBuild(const std::string& prefix, Answer& answer) {
    const IcuVerdict verdict = judgeIcuName(prefix + "UCA");
    answer.json().open('{').member("prefix", std::string_view(prefix)).member("opens", verdict.opened());
    if (!verdict.opened()) answer.json().member("reason", std::string_view(verdict.reason));
    answer.json().close('}');
    answer.line("", prefix + (verdict.opened() ? "… opens" : "… FAILS: " + verdict.reason));
    return verdict.opened();
}

bool examineIcu(Answer& answer) {
    const IcuFolder folder = icuFolder();
    answer.line("ICU", (folder.path.empty() ? "at the absolute names of its files" : "under " + folder.path) + " (" +
                           folder.source + ")");
    answer.json().key("icu").open('{').member("folder", std::string_view(folder.path));
    answer.json().member("source", std::string_view(folder.source)).key("builds").open('[');
    bool all = true;
    for (const char* const prefix : icuBuilds) all = examineBuild(prefix, answer) && all;
    answer.json().close(']').close('}');
    return all;
}

// What setlocale(LC_ALL, "") would take; this program itself stays in the locale "C".
std::string localeOfEnvironment() {
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != 0) return std::string(variable) + "=" + value;
    }
    return "none is set";
}

std::string inSmallLetters(std::string name) {
    for (char& letter : name) letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
    return name;
}

// Names that another way of writing their letters doesn't find in the process's locale.
std::vector<std::string> namesLost(const std::vector<std::string>& names) {
    std::vector<std::string> lost;
    for (const std::string& name : names) {
        if (nlsStbcmp(inSmallLetters(name).c_str(), name.c_str()) != 0) lost.push_back(name);
    }
    return lost;
}

// Bytes above 7F, and ASCII letters that aren't mapped as ASCII has it.
struct CaseEffect {
    uint64_t bytes = 0;
    std::string letters;
};
CaseEffect caseEffect() {
    CaseEffect effect;
    for (int byte = 0; byte < 256; ++byte) {
        const bool isAscii = byte < 0x80;
        const bool isMapped = std::toupper(byte) != byte || std::tolower(byte) != byte;
        if (!isAscii && isMapped) ++effect.bytes;
        const bool isLetter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
        const bool asAscii =
            isLetter ? std::toupper(byte) == (byte & ~0x20) && std::tolower(byte) == (byte | 0x20) : !isMapped;
        if (isAscii && !asAscii) effect.letters += static_cast<char>(byte);
    }
    return effect;
}

void tellNames(const std::vector<std::string>& charsets, Answer& answer) {
    const std::vector<std::string> lost = namesLost(charsets);
    answer.json().key("namesLost").open('[');
    std::string list;
    for (const std::string& name : lost) {
        answer.json().value(std::string_view(name));
        list += (list.empty() ? "" : ", ") + name;
    }
    answer.json().close(']');
    answer.line("", lost.empty() ? "names: found in capitals and in small letters"
                                 : "names: TRAP, not found in small letters: " + list);
}

void tellCase(Answer& answer) {
    const CaseEffect effect = caseEffect();
    answer.json().member("caseChangesBytes", effect.bytes).member("caseLosesLetters", std::string_view(effect.letters));
    std::string text = "case, where a locale has no case table: ";
    if (effect.bytes == 0 && effect.letters.empty()) {
        answer.line("", text + "ASCII letters alone change");
        return;
    }
    text += "TRAP, " + std::to_string(effect.bytes) + " bytes above 7F change, in UTF-8 text as well";
    if (!effect.letters.empty()) text += "; not as in ASCII: " + effect.letters;
    answer.line("", text);
}

void examineLocale(const std::vector<std::string>& charsets, Answer& answer) {
    const std::string told = localeOfEnvironment();
    const bool isThere = std::setlocale(LC_ALL, "") != nullptr;
    answer.line("C locale", told + (isThere ? "" : ", which isn't installed: a program stays in \"C\"") +
                                "; in a program that calls setlocale(LC_ALL, \"\"):");
    answer.json().key("locale").open('{').member("environment", std::string_view(told)).member("installed", isThere);
    tellNames(charsets, answer);
    tellCase(answer);
    answer.json().member("decimalPoint", std::string_view(std::localeconv()->decimal_point)).close('}');
    answer.line("", std::string("numbers: the decimal point is \"") + std::localeconv()->decimal_point +
                        "\"; the library reads and writes none by it");
    std::setlocale(LC_ALL, "C");
    answer.line("", "this program itself stays in the locale \"C\"");
}

Exit doctor(const Common& common) {
    Answer answer{common.json};
    const std::optional<std::vector<std::string>> charsets = examineData(common.dataFile, answer);
    const bool hasIcu = examineIcu(answer);
    examineLocale(charsets.value_or(std::vector<std::string>{}), answer);
    const Exit code = !charsets ? Exit::fileTrouble : hasIcu ? Exit::done : Exit::nothingFound;
    answer.finish(code);
    return code;
}

constexpr const char* footer =
    "Tells the data file in use; where ICU is looked for and which of its two builds open, or which file or function "
    "is "
    "missing; and what the C library's locale of the environment does. In a program that calls setlocale, names of "
    "charsets and collations are compared by that locale's capitals, and text is put into capitals by them where a "
    "locale was made without a case table: in a Turkish locale i and I are two letters.\n"
    "Exit codes: 0 all is there; 1 a build of ICU can't be had, and all but its collations works; 4 no data file.\n";

}  // namespace

void addDoctor(const Command& program, const Common& common) {
    Command command = program.add("doctor", "what was found on this host, and what is missing");
    command.footer(footer);
    command.runs([&common] { return doctor(common); });
}

}  // namespace nls::tool
