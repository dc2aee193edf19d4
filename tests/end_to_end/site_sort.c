/* A site's own sort: texts by their lengths, keys that tell the length. It opens for the collation "basic" alone, and
   keeps 77 in the handle. */
#include <nls/nls.h>
#include <stdlib.h>
#include <string.h>

enum { kOwn = 77 };

static size_t lengthOf(const unsigned char* text) {
    return strlen((const char*)text);
}

int32_t UserSortInit(const char* name, uint64_t* userSortHandle) {
    if (strcmp(name, "basic") != 0) return 1;
    *userSortHandle = kOwn;
    return 0;
}
void UserSortCopy(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                  const unsigned char* exactMap, uint16_t mode, uint64_t userSortHandle) {
    if (keySize < 2 || foldMap == exactMap || mode != 5 || userSortHandle != kOwn) return;
    key[0] = (unsigned char)('A' + lengthOf(src));
    key[1] = 0;
}
int32_t UserSortComp(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                     const unsigned char* exactMap, uint16_t compareMode, uint64_t userSortHandle) {
    if (foldMap == exactMap || compareMode != 5 || userSortHandle != kOwn) return 99;
    return (lengthOf(s1) > lengthOf(s2)) - (lengthOf(s1) < lengthOf(s2));
}
void UserSortTerm(uint64_t userSortHandle) {
    setenv("SITE_SORT_ENDED", userSortHandle == kOwn && getenv("SITE_SORT_ENDED") == NULL ? "once" : "wrongly", 1);
}
