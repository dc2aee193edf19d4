#include "tools/mkconvmap/source_text.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>

namespace nls::mkconvmap {

namespace {

std::string placed(const Place& place, const std::string& reason) {
    if (place.line == 0) return place.file + ": " + reason;
    return place.file + ":" + std::to_string(place.line) + ": " + reason;
}

bool isPrintingAscii(char c) {
    return c > ' ' && c <= '~';
}

std::vector<std::string> fieldsOf(const std::string& text) {
    std::istringstream stream{text};
    std::vector<std::string> fields;
    for (std::string field; stream >> field;) {
        if (field.front() == '#') break;
        fields.push_back(field);
    }
    return fields;
}

uint32_t number(const Place& place, const std::string& field, uint32_t most, int base) {
    uint32_t value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value, base);
    const bool isNumber = error != std::errc::invalid_argument && stop == end;
    if (!isNumber) {
        fail(place, "\"" + field + "\" is no " + (base == 16 ? "hexadecimal" : "decimal") + " number");
    }
    if (error == std::errc::result_out_of_range || value > most) {
        fail(place, field + " is above " + (base == 16 ? hexText(most, 1) : std::to_string(most)));
    }
    return value;
}

}  // namespace

DescriptionError::DescriptionError(const Place& place, const std::string& reason)
    : std::runtime_error(placed(place, reason)) {}

void fail(const Place& place, const std::string& reason) {
    throw DescriptionError(place, reason);
}

const std::string& Line::field(std::size_t index, std::string_view what) const {
    if (index >= fields.size()) fail(place, keyword() + " needs " + std::string{what});
    return fields[index];
}

void Line::endsAfter(std::size_t count) const {
    if (fields.size() > count) fail(place, "\"" + fields[count] + "\" is too much for " + keyword());
}

std::vector<Line> readSource(const std::filesystem::path& file) {
    std::ifstream stream{file, std::ios::binary};
    if (!stream || std::filesystem::is_directory(file)) throw UnreadableFile(file.string());
    std::vector<Line> lines;
    std::string text;
    for (int number = 1; std::getline(stream, text); ++number) {
        const Place place{file.string(), number};
        const auto isControl = [](char c) { return (c >= 0 && c < ' ' && c != '\t') || c == '\x7F'; };
        if (std::any_of(text.begin(), text.end(), isControl)) fail(place, "a control character stands in the line");
        if (auto fields = fieldsOf(text); !fields.empty()) lines.push_back({place, std::move(fields)});
    }
    if (stream.bad()) throw UnreadableFile(file.string());
    return lines;
}

uint32_t hexNumber(const Place& place, const std::string& field, uint32_t most) {
    return number(place, field, most, 16);
}

uint32_t decimalNumber(const Place& place, const std::string& field, uint32_t most) {
    return number(place, field, most, 10);
}

ByteRange byteRange(const Place& place, const std::string& field) {
    const std::size_t dash = field.find('-');
    const uint32_t first = hexNumber(place, field.substr(0, dash), 0xFF);
    const uint32_t last = dash == std::string::npos ? first : hexNumber(place, field.substr(dash + 1), 0xFF);
    if (last < first) fail(place, "the range " + field + " ends before it begins");
    return {static_cast<uint8_t>(first), static_cast<uint8_t>(last)};
}

const std::string& checkedName(const Place& place, const std::string& field) {
    constexpr std::size_t most = 19;
    if (field.size() > most) {
        fail(place, "the name \"" + field + "\" has " + std::to_string(field.size()) +
                        " characters; the data file holds " + std::to_string(most));
    }
    if (field.empty() || !std::all_of(field.begin(), field.end(), isPrintingAscii)) {
        fail(place, "\"" + field + "\" is no name: ASCII characters are wanted");
    }
    return field;
}

std::string hexText(uint32_t value, int digits) {
    std::string text;
    for (; value != 0 || digits > 0; value >>= 4, --digits) text.insert(text.begin(), "0123456789ABCDEF"[value & 0xF]);
    return text;
}

std::string codePointText(uint32_t codePoint) {
    return "U+" + hexText(codePoint, 4);
}

}  // namespace nls::mkconvmap
