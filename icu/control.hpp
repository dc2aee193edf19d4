// What a process knows of ICU, whichever handle asks.
#pragma once

#include <cstdint>

#include "icu/builds.hpp"

namespace nls {

// Builds belong to the process: an opened handle tells the list of names afresh, and what has been loaded stays. Each
// field has one value besides null, so that threads that write it at once write the same: relaxed atomics.
struct nlsIcuCtl {
    const char* collationList;  // the joined list of all names
    uint32_t collationListLength;
    nlsIcuVersion* versions;
    nlsIcuVersion* convVersion;  // the base row, once a converter has been asked for
    nlsIcuFuncs* convFuncs;      // the table that every conversion goes through, once the base row has it
    nlsIcuVersion* baseVersion;  // set with convFuncs
    nlsIcuFuncs* baseFuncs;      // set with convFuncs
};
extern nlsIcuCtl gicuctl;

// What nlsInit does: the list and the rows. What was loaded before stays in force.
void startIcuControl();

// What the loader does with the base row.
void setBaseFuncs(nlsIcuVersion& row);

inline const nlsIcuFuncs& convFuncs() {
    return *__atomic_load_n(&gicuctl.convFuncs, __ATOMIC_RELAXED);
}

}  // namespace nls
