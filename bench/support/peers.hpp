// What a user would take instead: glibc's iconv and ICU, each with its converter opened once.
#pragma once

#include <iconv.h>
#include <unicode/ucnv.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace nls::bench {

class Iconv {
public:
    Iconv(const std::string& from, const std::string& to);
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv();

    // The bytes written. A source that iconv refuses, or a target too small, ends the program.
    std::size_t convert(std::string_view source, char* target, std::size_t room) const;
    std::string convert(std::string_view source) const;

private:
    std::string what_;
    iconv_t converter_;
};

// ICU has two ways from a charset to another: streaming through a small pivot (ucnv_convertEx), and whole strings of
// UTF-16 in between. Which one is faster depends on the text, so a comparison takes both.
class IcuPair {
public:
    IcuPair(const std::string& from, const std::string& to);

    std::size_t convertStreaming(std::string_view source, char* target, std::size_t room);
    std::size_t convertWhole(std::string_view source, char* target, std::size_t room);

private:
    struct Close {
        void operator()(UConverter* converter) const { ucnv_close(converter); }
    };
    using Converter = std::unique_ptr<UConverter, Close>;
    static Converter open(const std::string& name);

    Converter from_, to_;
    std::vector<UChar> middle_;
};

// Ends the program with a message: a benchmark that measures a failure measures nothing.
[[noreturn]] void giveUp(const std::string& reason);

}  // namespace nls::bench
