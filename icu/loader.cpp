#include "icu/loader.hpp"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <span>

#include "icu/control.hpp"
#include "icu/slot_names.hpp"

namespace nls {
namespace {

// A path or a name put together from two parts, in front of its NUL.
class Joined {
public:
    static constexpr std::size_t kRoom = kLongestIcuPath + 1;

    // Does it fit, its NUL included?
    bool set(const char* first, const char* second) {
        const std::size_t ofFirst = std::strlen(first), ofSecond = std::strlen(second);
        if (ofFirst >= kRoom || ofSecond >= kRoom - ofFirst) return false;
        std::memcpy(text_, first, ofFirst);
        std::memcpy(text_ + ofFirst, second, ofSecond + 1);
        return true;
    }
    const char* get() const { return text_; }

private:
    char text_[kRoom];
};

// The directory in front of a build's file names. A variable that is empty counts; a process that runs with more rights
// than its caller doesn't listen to either.
const char* directoryPrefix() {
    for (const char* const variable : {"BINPATHX", "QRD"}) {
        if (const char* const value = secure_getenv(variable)) return value;
    }
    return "";
}

void* loadFile(const char* prefix, const char* file) {
    Joined path;
    return path.set(prefix, file) ? loadLibrary(path.get()).handle : nullptr;
}

// Up to the first name that the library lacks; the slots behind it stay as they are.
bool fillSlots(const nlsIcuVersion& row, void* library, std::span<const NamedSlot> names) {
    for (const NamedSlot& named : names) {
        Joined name;
        void* const address = name.set(named.name, row.entrySuffix) ? symbolAddress(library, name.get()) : nullptr;
        if (address == nullptr) return false;
        row.entryPoints->fill(named.slot, address);
    }
    return true;
}

enum class Side { loaded, noLibrary, noFunction };

Side loadConversionSide(const char* prefix, nlsIcuVersion& row) {
    if (loadFile(prefix, row.libraries[kDataLibrary]) == nullptr) return Side::noLibrary;
    void* const common = loadFile(prefix, row.libraries[kCommonLibrary]);
    if (common == nullptr) return Side::noLibrary;
    const bool filled = fillSlots(row, common, kConversionSide);
    if (&row == &baseBuild()) setBaseFuncs(row);
    return filled ? Side::loaded : Side::noFunction;
}

Side loadCollationSide(const char* prefix, const nlsIcuVersion& row) {
    void* const i18n = loadFile(prefix, row.libraries[kI18nLibrary]);
    if (i18n == nullptr) return Side::noLibrary;
    if (!fillSlots(row, i18n, kCollationSide)) return Side::noFunction;
    if ((row.capabilities & kHasUcaVersion) != 0 && !fillSlots(row, i18n, kUcaVersion)) return Side::noFunction;
    return Side::loaded;
}

// Another thread may have raised it further.
void raiseLevel(nlsIcuVersion& row, int32_t level) {
    int32_t now = loadLevel(row);
    while (now < level &&
           !__atomic_compare_exchange_n(&row.loadLevel, &now, level, true, __ATOMIC_RELEASE, __ATOMIC_ACQUIRE)) {
    }
}

// A row other than the base row has functions of conversion that nobody calls: without them it can still collate.
nlsStatus UL_load_icu(int32_t level, nlsIcuVersion& row) {
    const char* const prefix = directoryPrefix();
    Side conversion = Side::loaded;
    if (loadLevel(row) <= kNotLoaded) conversion = loadConversionSide(prefix, row);
    if (conversion == Side::noLibrary) return NLS_ICU_LOAD;
    const Side last = level == kCollates ? loadCollationSide(prefix, row) : conversion;
    if (last != Side::loaded) return NLS_ICU_LOAD;
    raiseLevel(row, level);
    return NLS_OK;
}

}  // namespace

LoadedLibrary loadLibrary(const char* path) {
    if (std::strlen(path) >= Joined::kRoom) return {nullptr, "the path is too long"};
    void* const handle = dlopen(path, RTLD_LAZY | RTLD_GLOBAL);
    return {handle, handle == nullptr ? dlerror() : nullptr};
}

void* symbolAddress(void* library, const char* name) {
    return dlsym(library, name);
}

nlsStatus UL_init_icu(int32_t level, nlsIcuVersion& row) {
    nlsIcuVersion& base = baseBuild();
    if (loadLevel(base) <= kNotLoaded) {
        if (const nlsStatus bad = UL_load_icu(kConverts, base)) return bad;
    }
    return loadLevel(row) >= level ? NLS_OK : UL_load_icu(level, row);
}

}  // namespace nls
