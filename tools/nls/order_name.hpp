// CHARSET/COLLATION/CASETABLE as it is written on the command line: the parts behind the charset may be left out.
#pragma once

#include <string>

namespace nls::tool {

struct OrderName {
    std::string charset, collation, caseTable;
};

inline OrderName parseOrderName(const std::string& text) {
    OrderName name;
    std::string* const parts[] = {&name.charset, &name.collation, &name.caseTable};
    std::size_t begin = 0;
    for (std::string* const part : parts) {
        const std::size_t slash = part == &name.caseTable ? std::string::npos : text.find('/', begin);
        *part = text.substr(begin, slash == std::string::npos ? slash : slash - begin);
        if (slash == std::string::npos) break;
        begin = slash + 1;
    }
    return name;
}

}  // namespace nls::tool
