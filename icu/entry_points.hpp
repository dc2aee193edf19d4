// ICU's functions as a build offers them, found by name while the process runs: no header and no library of ICU is
// needed to build this one.
#pragma once

#include <cstdint>

namespace nls {

// Objects of ICU's; what they hold is ICU's business.
struct IcuConverter;
struct IcuCollator;

// ICU's error code: 0 for success, below 0 a warning, above 0 an error.
using IcuStatus = int32_t;
inline constexpr IcuStatus kIcuOk = 0;
inline constexpr IcuStatus kIcuNotTerminated = -124;  // the units fill their room to the last
inline constexpr IcuStatus kIcuUsedDefault = -127;    // nothing is known of the locale; the root stands in

// A unit of UTF-16 as ICU declares it.
using IcuUnit = char16_t;

// The table of one build. A slot is written by whoever loads the build, perhaps by two threads at once with the same
// addresses, and read by everybody: relaxed atomics, ordered by the build's `loadLevel`.
struct nlsIcuFuncs {
    static constexpr unsigned kSlots = 30;

    void* slots[kSlots];

    IcuConverter* ucnv_open(const char* name, IcuStatus* status) const {
        return at<IcuConverter*(const char*, IcuStatus*)>(0)(name, status);
    }
    void ucnv_close(IcuConverter* converter) const { at<void(IcuConverter*)>(1)(converter); }
    // Both answer the length that the whole text needs. Sizes are bytes on the side of the charset, else units; a
    // source length of -1 is up to the NUL.
    int32_t ucnv_fromUChars(IcuConverter* converter, unsigned char* target, int32_t size, const IcuUnit* source,
                            int32_t length, IcuStatus* status) const {
        return at<int32_t(IcuConverter*, unsigned char*, int32_t, const IcuUnit*, int32_t, IcuStatus*)>(4)(
            converter, target, size, source, length, status);
    }
    int32_t ucnv_toUChars(IcuConverter* converter, IcuUnit* target, int32_t size, const unsigned char* source,
                          int32_t length, IcuStatus* status) const {
        return at<int32_t(IcuConverter*, IcuUnit*, int32_t, const unsigned char*, int32_t, IcuStatus*)>(5)(
            converter, target, size, source, length, status);
    }

    IcuCollator* ucol_open(const char* locale, IcuStatus* status) const {
        return at<IcuCollator*(const char*, IcuStatus*)>(18)(locale, status);
    }
    int32_t ucol_getSortKey(const IcuCollator* collator, const IcuUnit* text, int32_t length, unsigned char* key,
                            int32_t size) const {
        return at<int32_t(const IcuCollator*, const IcuUnit*, int32_t, unsigned char*, int32_t)>(22)(collator, text,
                                                                                                     length, key, size);
    }
    void ucol_setStrength(IcuCollator* collator, int32_t strength) const {
        at<void(IcuCollator*, int32_t)>(23)(collator, strength);
    }
    int32_t ucol_strcoll(const IcuCollator* collator, const IcuUnit* a, int32_t lengthA, const IcuUnit* b,
                         int32_t lengthB) const {
        return at<int32_t(const IcuCollator*, const IcuUnit*, int32_t, const IcuUnit*, int32_t)>(24)(
            collator, a, lengthA, b, lengthB);
    }
    void ucol_close(IcuCollator* collator) const { at<void(IcuCollator*)>(27)(collator); }
    void ucol_getVersion(const IcuCollator* collator, unsigned char (&version)[4]) const {
        at<void(const IcuCollator*, unsigned char*)>(28)(collator, version);
    }
    void ucol_getUCAVersion(const IcuCollator* collator, unsigned char (&version)[4]) const {
        at<void(const IcuCollator*, unsigned char*)>(29)(collator, version);
    }

    void fill(unsigned slot, void* address) { __atomic_store_n(&slots[slot], address, __ATOMIC_RELAXED); }

private:
    template <typename Function>
    Function* at(unsigned slot) const {
        return reinterpret_cast<Function*>(__atomic_load_n(&slots[slot], __ATOMIC_RELAXED));
    }
};

}  // namespace nls
