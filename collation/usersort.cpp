// Door: the calls to a site's own collation. Each goes by the global name of the entry point, which the dynamic linker
// may resolve to the site's.
#include "nls/usersort.h"

#include "collation/user_sort.hpp"

int32_t usr_sortinit(const char* name, uint64_t* userSortHandle) {
    return UserSortInit(name, userSortHandle);
}

void usr_sortcop(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                 const unsigned char* exactMap, uint16_t mode, uint64_t userSortHandle) {
    UserSortCopy(key, src, keySize, foldMap, exactMap, mode, userSortHandle);
}

int32_t usr_stbcmpl(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                    const unsigned char* exactMap, uint16_t compareMode, uint64_t userSortHandle) {
    return UserSortComp(s1, s2, foldMap, exactMap, compareMode, userSortHandle);
}

void usr_sortterm(uint64_t userSortHandle) {
    UserSortTerm(userSortHandle);
}

void nlsCloseUserSort(nlsHandle* handle) {
    if (handle != nullptr) nls::closeUserSort(*handle);
}
