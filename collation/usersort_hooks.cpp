// Door: the default entry points of a site's own collation. They stand alone in this file, so that a program that
// brings its own and links the archive doesn't meet these.
#include "nls/usersort.h"

int32_t UserSortInit(const char*, uint64_t*) {
    return NLS_NO_USER_SORT;
}

void UserSortCopy(unsigned char*, const unsigned char*, int32_t, const unsigned char*, const unsigned char*, uint16_t,
                  uint64_t) {}

int32_t UserSortComp(const unsigned char*, const unsigned char*, const unsigned char*, const unsigned char*, uint16_t,
                     uint64_t) {
    return 0;
}

void UserSortTerm(uint64_t) {}
