// ICU as this host has it: where the library looks for its two builds, what it makes of a collation's name, and why it
// can't. The library tells statuses alone, so the steps of a load are taken again here, one by one, until one fails.
// Tested by tests/tools/nls_icu_test.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nls::tool {

// Lets the library of this process take the packs of this program's own installation or build, where nothing else has a
// say: BINPATHX and QRD aren't set, and no build stands under the absolute names of its files.
void useOwnPacks();

// In front of the names of ICU's files.
struct IcuFolder {
    std::string path;
    std::string source;  // who says so, for a user to read
};
IcuFolder icuFolder();

// Does the library hand a collation of this name to ICU?
bool isIcuName(const std::string& collation);
// All that the library lists.
std::vector<std::string> icuNames();

struct IcuVerdict {
    enum class Kind {
        opens,
        opensByFallback,  // ICU has no collation of that very name, and takes the nearest: often its root order
        unknownName,      // the name's build isn't one of the two, or the build knows no such locale
        notLoaded,        // the build can't be loaded
        refused,          // by an error of ICU's
    };
    Kind kind;
    std::string reason;  // of the last two, one line
    bool opened() const { return kind == Kind::opens || kind == Kind::opensByFallback; }
};
IcuVerdict judgeIcuName(const std::string& collation);

// As they stand in the maps of such a collation, in the form 1.2.3.4.
struct IcuVersions {
    std::string collator, uca;
};
IcuVersions icuVersionsOf(const unsigned char* map);

}  // namespace nls::tool
