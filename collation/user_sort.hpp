// What the rest of the library knows of a site's own collation: when it opens and closes. Comparisons and keys call the
// entry points of nls/usersort.h themselves.
#pragma once

#include "nls/records.h"
#include "nls/usersort.h"

namespace nls {

// Opens the sort for a handle, unless it is open already.
inline nlsStatus openUserSort(nlsHandle& handle, const char* collationName) {
    if (handle.userSortOpen != 0) return NLS_OK;
    if (UserSortInit(collationName, &handle.userSortHandle) != 0) return NLS_BAD_COLLATION;
    handle.userSortOpen = 1;
    return NLS_OK;
}

inline void closeUserSort(nlsHandle& handle) {
    if (handle.userSortOpen == 0) return;
    UserSortTerm(handle.userSortHandle);
    handle.userSortOpen = 0;
    handle.userSortHandle = 0;
}

}  // namespace nls
