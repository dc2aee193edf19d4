#include "tools/nls/json.hpp"

#include <cstdio>

#include "tools/nls/unicode_check.hpp"

namespace nls::tool {

std::string jsonText(std::string_view text) {
    std::string literal = "\"";
    ByteView rest{reinterpret_cast<const unsigned char*>(text.data()), text.size()};
    while (!rest.empty()) {
        const Unit unit = firstUtf8(rest);
        const unsigned char byte = rest[0];
        if (!unit.fault.empty()) {
            literal += "\\ufffd";
        } else if (byte == '"' || byte == '\\') {
            literal += {'\\', static_cast<char>(byte)};
        } else if (byte < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(byte));
            literal += escape;
        } else {
            literal.append(reinterpret_cast<const char*>(rest.data()), unit.length);
        }
        rest = rest.subspan(unit.length);
    }
    return literal + "\"";
}

}  // namespace nls::tool
