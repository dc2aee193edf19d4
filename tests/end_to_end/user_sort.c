/* Whose sort a collation of kind 2 goes by: the library's own, which opens none, or that of site_sort.c, which stands
   in the program or in a library loaded before.

       user_sort CONVMAP default|site */
#include <fcntl.h>
#include <nls/nls.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define CHECK(what)                              \
    do {                                         \
        if (!(what)) {                           \
            printf("%d: %s\n", __LINE__, #what); \
            exit(1);                             \
        }                                        \
    } while (0)

/* The real file, but for its collations: all are of kind 2. */
static uint32_t readFile(uint32_t file, uint32_t offset, void* buffer, uint32_t length) {
    enum { kCollationRecord = 1040, kKind = 1028 };
    if (length == kCollationRecord) {
        const ssize_t count = pread((int)file, buffer, length, offset);
        ((unsigned char*)buffer)[kKind] = 2;
        return (uint32_t)count;
    }
    return (uint32_t)pread((int)file, buffer, length, offset);
}

static void sortBySite(nlsHandle* handle, const nlsLocale* locale) {
    unsigned char longer[] = "aaaa ", shorter[] = "zz", key[8];
    uint16_t result = 7, length = 7;
    CHECK(handle->userSortOpen == 1 && handle->userSortHandle == 77);
    CHECK(nlsCompare(locale, NULL, longer, shorter, 5, &result) == NLS_OK && result == NLS_SORTS_AFTER);
    CHECK(nlsCompareN(locale, NULL, longer, shorter, 1, 2, 5, &result) == NLS_OK && result == NLS_SORTS_BEFORE);
    CHECK(nlsCompareN(locale, NULL, longer, shorter, 2, -1, 5, &result) == NLS_OK && result == NLS_SORTS_EQUAL);
    CHECK(nlsSortKey(locale, NULL, longer, sizeof key, 5, 0, key, &length) == NLS_OK && length == 1 && key[0] == 'F');
    CHECK(nlsSortKey(locale, NULL, longer, sizeof key, 5, 1, key, &length) == NLS_OK && length == 1 && key[0] == 'E');
    CHECK(strcmp((const char*)longer, "aaaa ") == 0 && strcmp((const char*)shorter, "zz") == 0);
    CHECK(getenv("SITE_SORT_ENDED") == NULL);
}

/* A database's record brings no sort of its own: it opens the site's, under its own status where there is none. */
static void sortByRecord(nlsHandle* handle, int site) {
    static uint64_t block[200];
    static unsigned char image[512];
    nlsDbCollation record = {"ISO8859-1", "german", "", 2, 0, sizeof image, 0, image, NULL, NULL};
    nlsLocale* locale = NULL;
    uint32_t size = sizeof block;
    void* given = NULL;
    const unsigned char* const text = (const unsigned char*)"a database's";
    CHECK(nlsDbCollationToLocale(handle, &record, text, &size, block, &locale) == NLS_NO_COLL_TABLE);
    strcpy(record.dbCollation, "basic");
    const nlsStatus status = nlsDbCollationToLocale(handle, &record, text, &size, block, &locale);
    CHECK(status == (site ? NLS_OK : NLS_NO_COLL_TABLE) && handle->busy == 0);
    if (!site) return;
    sortBySite(handle, locale);
    CHECK(nlsCloseDBLocale(locale, &given, &size) == NLS_OK && given == block && size == sizeof block);
}

int main(int argc, char** argv) {
    static uint64_t block[65536];
    nlsHandle* handle;
    nlsLocale *locale = NULL, *german = NULL;
    const int file = argc == 3 ? open(argv[1], O_RDONLY) : -1;
    CHECK(file >= 0);
    const int site = strcmp(argv[2], "site") == 0;
    CHECK(nlsInit((uint32_t)file, block, sizeof block, readFile, &handle) == NLS_OK);
    CHECK(nlsCreateLocale(handle, "ISO8859-1", "german", NULL, &german) == NLS_BAD_COLLATION);
    sortByRecord(handle, site);
    CHECK(nlsCreateLocale(handle, "ISO8859-1", NULL, NULL, &locale) == (site ? NLS_OK : NLS_BAD_COLLATION));
    CHECK((locale != NULL) == site);
    if (site) {
        sortBySite(handle, locale);
        CHECK(nlsCreateLocale(handle, "ISO8859-1", "german", NULL, &german) == NLS_OK); /* it is open by now */
    }
    CHECK(handle->userSortOpen == (uint32_t)site);
    CHECK(nlsClose(handle) == NLS_OK);
    CHECK(handle->userSortOpen == 0 && handle->userSortHandle == 0);
    nlsCloseUserSort(handle);
    const char* const ended = getenv("SITE_SORT_ENDED");
    CHECK(site ? ended != NULL && strcmp(ended, "once") == 0 : ended == NULL);
    return 0;
}
