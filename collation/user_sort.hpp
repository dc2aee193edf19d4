// What the rest of the library knows of a site's own collation: when it opens and closes. Comparisons and keys call the
// entry points of nls/usersort.h themselves.
#pragma once

#include "nls/records.h"
#include "nls/usersort.h"

namespace nls {

// Where a handle keeps what it knows of the sort; for those who may not see the handle itself.
struct UserSortSlot {
    uint64_t* handle;  // the site's value
    uint32_t* open;    // 1 once it is open
};

inline UserSortSlot userSortSlotOf(nlsHandle& handle) {
    return {&handle.userSortHandle, &handle.userSortOpen};
}

// Opens the sort for a handle, unless it is open already.
inline nlsStatus openUserSort(UserSortSlot slot, const char* collationName) {
    if (*slot.open != 0) return NLS_OK;
    if (UserSortInit(collationName, slot.handle) != 0) return NLS_BAD_COLLATION;
    *slot.open = 1;
    return NLS_OK;
}

inline void closeUserSort(nlsHandle& handle) {
    if (handle.userSortOpen == 0) return;
    UserSortTerm(handle.userSortHandle);
    handle.userSortOpen = 0;
    handle.userSortHandle = 0;
}

}  // namespace nls
