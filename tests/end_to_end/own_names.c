/* A program that has functions of its own under names of the library. The library must go on calling its own: each of
   these ends the program. The one name that a program may share is a variable, nlsTemporaryVers.

       own_names CONVMAP */
#include <fcntl.h>
#include <nls/nls.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#define MINE(name)                                          \
    do {                                                    \
        puts("the library called the program's own " name); \
        exit(1);                                            \
    } while (0)

nlsStatus nlsGetMem(nlsHandle* handle, int32_t size, uint32_t alignment, void** memory) {
    (void)handle, (void)size, (void)alignment, (void)memory;
    MINE("nlsGetMem");
}
nlsStatus findLocale(const nlsHandle* handle, const char* charset, const char* collation, const char* caseName,
                     nlsLocale** locale) {
    (void)handle, (void)charset, (void)collation, (void)caseName, (void)locale;
    MINE("findLocale");
}
int32_t nlsConversionType(const nlsConvTable* table) {
    (void)table;
    MINE("nlsConversionType");
}
nlsStatus convertBytes(unsigned char* target, int32_t targetSize, const unsigned char* source, int32_t sourceLen,
                       unsigned char* scratch, int32_t scratchSize, const nlsConvTable* table, uint32_t* outLen,
                       uint32_t check) {
    (void)target, (void)targetSize, (void)source, (void)sourceLen, (void)scratch, (void)scratchSize, (void)table;
    (void)outLen, (void)check;
    MINE("convertBytes");
}

uint32_t nlsTemporaryVers = 77;

static uint32_t readFile(uint32_t file, uint32_t offset, void* buffer, uint32_t length) {
    return (uint32_t)pread((int)file, buffer, length, offset);
}

int main(int argc, char** argv) {
    static uint64_t block[65536];
    static const unsigned char text[] = {0xC1, 0xE5};
    unsigned char out[16];
    uint32_t length = 0;
    nlsHandle* handle;
    nlsLocale *latin, *utf8;
    nlsConversion* conversion;
    const int file = argc == 2 ? open(argv[1], O_RDONLY) : -1;
    if (file < 0 || nlsInit((uint32_t)file, block, sizeof block, readFile, &handle) != NLS_OK) return 4;
    if (nlsCreateLocale(handle, "ISO8859-1", NLS_NO_COLLATION, NULL, &latin) != NLS_OK) return 2;
    if (nlsCreateLocale(handle, "UTF-8", NLS_NO_COLLATION, NULL, &utf8) != NLS_OK) return 2;
    if (nlsCreateConversion(handle, latin, utf8, &conversion) != NLS_OK) return 2;
    if (nlsConvertBytes(out, sizeof out, text, sizeof text, conversion->table, &length) != NLS_OK || length != 4)
        return 1;
    if (nlsTemporaryVers != 4 && nlsTemporaryVers != 5) {
        printf("nlsTemporaryVers is %u: the library doesn't share the variable\n", nlsTemporaryVers);
        return 1;
    }
    return nlsClose(handle);
}
