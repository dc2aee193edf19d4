#include "icu/control.hpp"

#include "icu/name_list.hpp"

namespace nls {

nlsIcuCtl gicuctl;

namespace {

template <typename T>
void tell(T& field, T value) {
    __atomic_store_n(&field, value, __ATOMIC_RELAXED);
}

}  // namespace

void startIcuControl() {
    tell(gicuctl.collationList, kAllIcuCollations.data());
    tell(gicuctl.collationListLength, kAllIcuCollationsLength);
    tell(gicuctl.versions, &icuarray[0]);
}

void setBaseFuncs(nlsIcuVersion& row) {
    tell(gicuctl.convFuncs, row.entryPoints);
    tell(gicuctl.baseFuncs, row.entryPoints);
    tell(gicuctl.baseVersion, &row);
}

}  // namespace nls
