#include "tools/nls/icu_install.hpp"

#include <sys/auxv.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <span>

#include "icu/packaging.hpp"
#include "icu/slot_names.hpp"
#include "nls/nls.h"
#include "tools/nls/data_file.hpp"

namespace nls::tool {
namespace {

namespace fs = std::filesystem;

constexpr int32_t usedDefault = -127;   // ICU's U_USING_DEFAULT_WARNING
constexpr int32_t usedFallback = -128;  // U_USING_FALLBACK_WARNING
constexpr std::size_t longestLocale = 32;

struct Build {
    std::span<const char* const> files;  // data, common, i18n
    std::string suffix;
};
const Build base{iculib_2_4, kBaseSuffix};
const Build newer{iculib_4_8, kNewerSuffix};

bool isThere(const std::string& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

bool ownPacksInUse = false;

// A library as the library loads it, or why it can't.
struct Loaded {
    void* library = nullptr;
    std::string reason;
};
Loaded load(const std::string& path) {
    if (path.size() > kLongestIcuPath) {
        return {nullptr, "the path " + path + " has " + std::to_string(path.size()) + " bytes, and at most " +
                             std::to_string(kLongestIcuPath) + " can be used"};
    }
    uint32_t status = 0;
    const char* error = nullptr;
    void* const library = nlsLoadLibrary(path.c_str(), &status, &error);
    if (library != nullptr) return {library, {}};
    const std::string told = error != nullptr ? error : "can't be loaded";
    return {nullptr, told.starts_with(path) ? told : path + ": " + told};
}

// The first that is missing; empty if none is.
std::string missingOf(std::span<const NamedSlot> functions, void* library, const Build& build) {
    for (const NamedSlot& function : functions) {
        std::string name = function.name;
        name += build.suffix;
        if (nlsGetProcAddress(library, name.c_str()) == nullptr) return name;
    }
    return {};
}

// What keeps a library of a build from being used.
std::optional<std::string> troubleOf(const Build& build, unsigned file, std::span<const NamedSlot> functions) {
    const std::string path = icuFolder().path + build.files[file];
    const Loaded loaded = load(path);
    if (loaded.library == nullptr) return loaded.reason;
    const std::string missing = missingOf(functions, loaded.library, build);
    if (missing.empty()) return std::nullopt;
    return path + ": has no function " + missing;
}

// The base build converts for both; the newer one's functions of conversion are nobody's.
std::string whyNotLoaded(bool isNewer) {
    const Build& build = isNewer ? newer : base;
    std::optional<std::string> trouble = troubleOf(base, 0, {});
    if (!trouble) trouble = troubleOf(base, 1, kConversionSide);
    if (!trouble && isNewer) trouble = troubleOf(newer, 0, {});
    if (!trouble && isNewer) trouble = troubleOf(newer, 1, {});
    if (!trouble) trouble = troubleOf(build, 2, kCollationSide);
    if (!trouble && isNewer) trouble = troubleOf(newer, 2, kUcaVersion);
    return trouble.value_or("the reason has just gone away");
}

// The library keeps ICU's warning to itself. REQUIRES: the locale opens.
bool fallsBack(bool isNewer, const char* locale) {
    using Open = void* (*)(const char*, int32_t*);
    using Close = void (*)(void*);
    const Build& build = isNewer ? newer : base;
    void* const library = load(icuFolder().path + build.files[2]).library;
    if (library == nullptr) return false;
    const auto open = reinterpret_cast<Open>(nlsGetProcAddress(library, ("ucol_open" + build.suffix).c_str()));
    const auto close = reinterpret_cast<Close>(nlsGetProcAddress(library, ("ucol_close" + build.suffix).c_str()));
    if (open == nullptr || close == nullptr) return false;
    int32_t status = 0;
    close(open(locale, &status));
    return status == usedFallback;
}

IcuVerdict verdictOf(int32_t status, bool isNewer) {
    using Kind = IcuVerdict::Kind;
    if (status == usedDefault) return {Kind::unknownName, {}};
    if (status == NLS_ICU_LOAD) return {Kind::notLoaded, whyNotLoaded(isNewer)};
    return {Kind::refused, "ICU's error " + std::to_string(status)};
}

std::string dotted(const unsigned char* version) {
    std::string text;
    for (unsigned i = 0; i < 4; ++i) text += (i == 0 ? "" : ".") + std::to_string(version[i]);
    return text;
}

}  // namespace

void useOwnPacks() {
    if (std::getenv("BINPATHX") != nullptr || std::getenv("QRD") != nullptr || isThere(base.files[1])) return;
    const fs::path program = programFolder();
    for (const char* const place : {NLS_ICU_PACKS_FROM_BIN, "../../icu/packs"}) {
        const std::string folder = (program / place).lexically_normal();
        if (program.empty() || !isThere(folder + base.files[1])) continue;
        ownPacksInUse = setenv("BINPATHX", folder.c_str(), 1) == 0;
        return;
    }
}

IcuFolder icuFolder() {
    for (const char* const variable : {"BINPATHX", "QRD"}) {
        const char* const value = secure_getenv(variable);
        if (value != nullptr) return {value, ownPacksInUse ? "the packs of this program" : variable};
    }
    if (getauxval(AT_SECURE) != 0) return {"", "BINPATHX and QRD don't count in a process with raised rights"};
    return {"", "BINPATHX and QRD aren't set, and this program has no packs beside it"};
}

bool isIcuName(const std::string& collation) {
    return collation.starts_with("ICU-") || collation.starts_with("ICU_");
}

std::vector<std::string> icuNames() {
    uint32_t length = 0;
    const char* const list = nlsICUCollationList(&length);
    std::vector<std::string> names;
    for (const char* name = list; name != nullptr && name < list + length;) {
        const char* const end = std::find(name, list + length, ',');
        names.emplace_back(name, end);
        name = end + 1;
    }
    return names;
}

IcuVerdict judgeIcuName(const std::string& collation) {
    using Kind = IcuVerdict::Kind;
    nlsCollStruct coll{};
    nlsIcuInfo info{};
    std::array<char, longestLocale> locale{};
    if (nlsIcuFillInfo(&coll, &info, collation.c_str()) != NLS_OK ||
        nlsIcuGetIcuFromZel(&info, info.icuLocale, locale.data(), int32_t{longestLocale}) != NLS_OK) {
        return {Kind::unknownName, {}};
    }
    const bool isNewer = *info.versionText != '\0';
    nlsTlsBlock block{};
    void* collator = nullptr;
    const nlsStatus status = nlsIcuGetTlsCollator(&info, &block, &collator);
    nlsIcuTlsClose(&block);
    if (status != NLS_OK) return verdictOf(block.icuStatus, isNewer);
    return {fallsBack(isNewer, locale.data()) ? Kind::opensByFallback : Kind::opens, {}};
}

IcuVersions icuVersionsOf(const unsigned char* map) {
    constexpr std::size_t collatorVersion = 16, ucaVersion = 20;
    return {dotted(map + collatorVersion), dotted(map + ucaVersion)};
}

}  // namespace nls::tool
