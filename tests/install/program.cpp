// A C++ program against the installed tree: turns its standard input from one charset into another.
//
//     program CONVMAP FROM TO < text
//
// and, on the way, holds <nls/nls.hpp> to what it says of failures, substitutes and characters.
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <nls/nls.hpp>
#include <string>
#include <thread>
#include <vector>

namespace {

void expect(bool good, const char* what) {
    if (good) return;
    std::cerr << "nls.hpp: " << what << '\n';
    std::exit(1);
}

template <typename Call>
nlsStatus statusOf(Call call) {
    try {
        call();
    } catch (const nls::Error& error) {
        return error.status();
    }
    return NLS_OK;
}

void checkFailures(nls::Runtime& runtime) {
    expect(statusOf([&] { runtime.locale("IBM000"); }) == NLS_NO_ATTRIB_TABLE, "a charset that isn't there");
    expect(statusOf([&] { runtime.conversion("620-2533", "IBM273"); }) == NLS_NO_CONV_TABLE, "a pair without a way");
    expect(statusOf([] { nls::Runtime{"/dev/null"}; }) == NLS_BAD_MAGIC, "a file that is no data file");
    try {
        nls::Runtime{"/nowhere/convmap.cp"};
        expect(false, "a file that isn't there");
    } catch (const std::system_error& error) {
        expect(error.code() == std::errc::no_such_file_or_directory, "the reason why a file can't be opened");
    }
    const nls::Conversion toLatin = runtime.conversion("UTF-8", "ISO8859-1");
    expect(toLatin("\xC3\xA4").text == "\xE4" && !toLatin("\xC3\xA4").substituted, "a letter that is there");
    expect(toLatin("\xD0\x96!").text == "?!" && toLatin("\xD0\x96!").substituted, "a substitute");
    expect(statusOf([&] { toLatin("\xC3"); }) == NLS_BAD_ARG, "a text that ends inside a character");
    expect(toLatin("").text.empty(), "an empty text");
}

void checkCharacters(nls::Runtime& runtime) {
    const nls::Locale utf8 = runtime.locale("UTF-8");
    const std::string text = "a\xC3\xA4\xE3\x81\x82";
    std::vector<std::size_t> lengths;
    utf8.forEachCharacter(text, [&](std::string_view character) { lengths.push_back(character.size()); });
    expect(lengths == std::vector<std::size_t>{1, 2, 3}, "characters one by one");
    expect(utf8.countCharacters(text) == 3 && utf8.countColumns(text) == 4, "counts");
    expect(utf8.countCharacters("") == 0, "characters of an empty text");
}

// More tables than the first block holds, asked for by two threads at once.
void checkMemory(nls::Runtime& runtime) {
    const auto ask = [&runtime] {
        for (const char* name : {"CP949", "CP1361", "CP936", "CP950", "CP950-HKSCS", "SHIFT-JIS", "BIG-5"})
            expect(runtime.conversion(name, "UTF-8")("nls").text == "nls", name);
    };
    std::thread other{ask};
    ask();
    other.join();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    nls::Runtime runtime{argv[1]};
    checkFailures(runtime);
    checkCharacters(runtime);
    checkMemory(runtime);
    const std::string text{std::istreambuf_iterator<char>{std::cin}, {}};
    const nls::ConvertedText converted = runtime.conversion(argv[2], argv[3])(text);
    std::cout << converted.text;
    return converted.substituted ? 3 : 0;
}
