#include "icu/converter.hpp"

#include "icu/loader.hpp"

namespace nls {

OpenedConverter openConverter(const char* name) {
    __atomic_store_n(&gicuctl.convVersion, &baseBuild(), __ATOMIC_RELAXED);
    if (loadLevel(baseBuild()) <= kNotLoaded) {
        if (const nlsStatus bad = UL_init_icu(kConverts, baseBuild())) return {bad, nullptr};
    }
    IcuStatus status = kIcuOk;
    IcuConverter* const converter = convFuncs().ucnv_open(name, &status);
    if (status > kIcuOk) return {status, nullptr};
    return {kIcuOk, converter};
}

}  // namespace nls
