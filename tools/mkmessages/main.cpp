// mkmessages: compiles a message file (docs/message-file.md) from text.
//
// The text is converted into the file's charset; a character that the charset lacks is refused. A text that the bridge
// to Java won't read, because it might not fit there in UTF-8, is told.
// Exit codes: 0 done, 1 a text that is refused, 2 usage, 4 file trouble.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <nls/nls.hpp>

#include "jutil/message_file.hpp"
#include "tools/mkmessages/source.hpp"

namespace {

using namespace nls::mkmessages;

enum ExitCode { kDone = 0, kRefused = 1, kUsage = 2, kFileTrouble = 4 };

// Texts in UTF-8 to the charset of the file.
class Converter {
public:
    Converter(nls::Runtime& runtime, const std::string& charset)
        : utf8_(runtime.locale("UTF-8")), conversion_(runtime.conversion("UTF-8", charset)) {
        const nls::Conversion back = runtime.conversion(charset, "UTF-8");
        uint32_t growth = 0;
        if (nlsGetIntConversionProperty(back.get(), NLS_PROP_GROWTH, &growth) == NLS_OK && growth != 0)
            longestForJava_ = kJavaRoom / growth;
    }

    std::size_t longestForJava() const { return longestForJava_; }

    std::string operator()(const Message& message) const {
        std::string bytes;
        for (const Piece& piece : message.pieces) bytes += piece.raw ? piece.text : converted(piece.text, message.line);
        if (bytes.size() > jutil::kLongestMessage)
            throw Refused(message.line, std::to_string(bytes.size()) + " bytes; a message has at most " +
                                            std::to_string(jutil::kLongestMessage));
        if (bytes.find('\0') != std::string::npos) throw Refused(message.line, "a message holds no NUL");
        return bytes;
    }

private:
    static constexpr std::size_t kJavaRoom = 736;  // bytes of UTF-8

    std::string converted(const std::string& text, std::size_t line) const {
        if (!isUtf8(text)) throw Refused(line, "isn't UTF-8");
        const nls::ConvertedText converted = conversion_(text);
        if (converted.substituted) throw Refused(line, "the charset lacks a character");
        return converted.text;
    }
    bool isUtf8(const std::string& text) const {
        uint32_t characters = 0;
        return nlsValidateString(utf8_.get(), nullptr, reinterpret_cast<const unsigned char*>(text.data()),
                                 static_cast<int32_t>(text.size()), 0, &characters) == NLS_OK;
    }

    nls::Locale utf8_;
    nls::Conversion conversion_;
    std::size_t longestForJava_ = jutil::kLongestMessage;
};

template <typename Record>
void append(std::string& image, const Record& record) {
    image.append(reinterpret_cast<const char*>(&record), sizeof record);
}

void tellWhatJavaRefuses(const std::string& input, const Message& message, std::size_t size, std::size_t longest) {
    if (size <= longest) return;
    std::fprintf(stderr, "mkmessages: %s: line %zu: %zu bytes; Java reads at most %zu of this charset\n", input.c_str(),
                 message.line, size, longest);
}

std::string compile(const std::string& input, const Source& source, const Converter& converter) {
    using jutil::MessageEntry, jutil::MessageHeader;
    MessageHeader header{};
    if (source.charset.size() >= sizeof header.charset) throw Refused(0, "the name of the charset is too long");
    std::memcpy(header.magic, jutil::kMagic, sizeof header.magic);
    std::memcpy(header.charset, source.charset.data(), source.charset.size());
    header.version = jutil::kVersion;
    header.count = static_cast<uint32_t>(source.messages.size());
    std::string entries, texts;
    const std::size_t textsBegin = sizeof header + header.count * sizeof(MessageEntry);
    for (const auto& [number, message] : source.messages) {
        const std::string text = converter(message);
        tellWhatJavaRefuses(input, message, text.size(), converter.longestForJava());
        append(entries, MessageEntry{number, static_cast<uint32_t>(textsBegin + texts.size()),
                                     static_cast<uint32_t>(text.size())});
        texts += text;
    }
    header.fileSize = static_cast<uint32_t>(textsBegin + texts.size());
    std::string image;
    append(image, header);
    return image + entries + texts;
}

void write(const std::string& path, const std::string& image) {
    std::ofstream file{path, std::ios::binary | std::ios::trunc};
    file << image << std::flush;
    if (!file) throw std::system_error(errno, std::generic_category(), path);
}

struct DataFileTrouble : std::runtime_error {
    using std::runtime_error::runtime_error;
};

nls::Runtime openDataFile(const std::string& path) {
    try {
        return nls::Runtime{path};
    } catch (const nls::Error& error) {
        throw DataFileTrouble{error.what()};
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Compiles a message file from text in UTF-8: a line \"charset NAME\", and a line \"NUMBER TEXT\" for each "
        "message."};
    std::string convmap, input, output;
    app.add_option("-D,--data", convmap, "the data file convmap.cp")->envname("ZELCONV")->required();
    app.add_option("TEXT", input, "the messages")->required();
    app.add_option("-o,--output", output, "the message file")->required();
    try {
        app.parse(argc, argv);
        std::ifstream lines{input, std::ios::binary};
        if (!lines) throw std::system_error(errno, std::generic_category(), input);
        const Source source = readSource(lines);
        nls::Runtime runtime = openDataFile(convmap);
        write(output, compile(input, source, Converter{runtime, source.charset}));
        return kDone;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kUsage;
    } catch (const std::system_error& error) {
        std::fprintf(stderr, "mkmessages: %s\n", error.what());
        return kFileTrouble;
    } catch (const DataFileTrouble& error) {
        std::fprintf(stderr, "mkmessages: %s\n", error.what());
        return kFileTrouble;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mkmessages: %s: %s\n", input.c_str(), error.what());
        return kRefused;
    }
}
