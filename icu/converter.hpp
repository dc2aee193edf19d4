// ICU's converters: those that stay open with a conversion table, and the one of UTF-8 that a call opens for itself.
#pragma once

#include "icu/control.hpp"
#include "icu/loader.hpp"
#include "nls/base.h"
#include "nls/status.h"

namespace nls {

struct OpenedConverter {
    IcuStatus status;  // 0 beside a converter; ICU's error, or NLS_ICU_LOAD
    IcuConverter* converter;
};
// Under a name that ICU resolves. Brings in the base build when it is the first.
inline OpenedConverter openConverter(const char* name) {
    __atomic_store_n(&gicuctl.convVersion, &baseBuild(), __ATOMIC_RELAXED);
    if (loadLevel(baseBuild()) <= kNotLoaded) [[unlikely]] {
        if (const nlsStatus bad = UL_init_icu(kConverts, baseBuild())) return {bad, nullptr};
    }
    IcuStatus status = kIcuOk;
    IcuConverter* const converter = convFuncs().ucnv_open(name, &status);
    if (status > kIcuOk) return {status, nullptr};
    return {kIcuOk, converter};
}

// The converter of UTF-8, for a scope.
class Utf8Converter {
public:
    Utf8Converter() : converter_(openConverter("utf8").converter) {}
    Utf8Converter(const Utf8Converter&) = delete;
    Utf8Converter& operator=(const Utf8Converter&) = delete;
    ~Utf8Converter() {
        if (converter_ != nullptr) convFuncs().ucnv_close(converter_);
    }

    bool isOpen() const { return converter_ != nullptr; }
    IcuConverter* get() const { return converter_; }

private:
    IcuConverter* converter_;
};

}  // namespace nls
