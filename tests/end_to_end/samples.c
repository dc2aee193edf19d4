/* The library as a stranger uses it: the public headers, libnls.so and the real data file, nothing else.

       samples CONVMAP FOLDER

   Each text of FOLDER goes from UTF-8 into each charset that holds it and back, then by way of every form of Unicode
   and of every other charset of its line. Nothing may be lost, no substitute may stand in the result, and a text has as
   many characters in every charset. The handle starts in the smallest block and is given buffers as it asks for them.
 */
#include <fcntl.h>
#include <nls/nls.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { ROOM = 65536, BUFFER = 262144, MOST_CHARSETS = 16 };

typedef struct {
    unsigned char bytes[ROOM];
    uint32_t length;
} Text;

static nlsHandle* handle;
static unsigned checks, failures, buffers;

static void expect(int good, const char* what, const char* from, const char* to, int status) {
    ++checks;
    if (good) return;
    ++failures;
    printf("%s: %s to %s, status %d\n", what, from, to, status);
}

static uint32_t readFile(uint32_t file, uint32_t offset, void* buffer, uint32_t length) {
    return (uint32_t)pread((int)file, buffer, length, offset);
}

/* A buffer for a handle that has run out of memory. It belongs to the handle to the end of the program. */
static int addBuffer(void) {
    void* const buffer = aligned_alloc(8, BUFFER);
    ++buffers;
    return buffer != NULL && nlsAddBuffer(handle, buffer, BUFFER) == NLS_OK;
}

static nlsLocale* localeOf(const char* charset) {
    nlsLocale* locale = NULL;
    nlsStatus status;
    while ((status = nlsCreateLocale(handle, charset, NLS_NO_COLLATION, NULL, &locale)) == NLS_NO_MEM && addBuffer()) {
    }
    expect(status == NLS_OK, "locale", charset, charset, status);
    return status == NLS_OK ? locale : NULL;
}

/* Null where the data file has no way from the one to the other. A way of two steps that doesn't fit the memory looks
   the same, so the answer is believed when it comes again with a fresh buffer. */
static nlsConversion* conversionOf(const char* from, const char* to) {
    nlsLocale* const source = localeOf(from);
    nlsLocale* const target = localeOf(to);
    nlsConversion* conversion = NULL;
    nlsStatus status = NLS_OK;
    if (source == NULL || target == NULL) return NULL;
    for (int attempt = 0; attempt < 2; ++attempt) {
        status = nlsCreateConversion(handle, source, target, &conversion);
        if (status == NLS_OK) return conversion;
        if (!addBuffer()) break;
    }
    expect(status == NLS_NO_CONV_TABLE, "conversion", from, to, status);
    return NULL;
}

static int convert(const char* from, const char* to, const Text* source, Text* target) {
    static unsigned char scratch[ROOM];
    const nlsConversion* const conversion = conversionOf(from, to);
    if (conversion == NULL) return 0;
    const nlsStatus status = convertBytes(target->bytes, ROOM, source->bytes, (int32_t)source->length, scratch, ROOM,
                                          conversion->table, &target->length, 0);
    expect(status == NLS_OK, "conversion", from, to, status);
    return status == NLS_OK;
}

static int same(const Text* a, const Text* b) {
    return a->length == b->length && memcmp(a->bytes, b->bytes, a->length) == 0;
}

static uint32_t charactersOf(Text* text, const char* charset) {
    uint32_t characters = 0;
    text->bytes[text->length] = 0;
    const nlsStatus status = nlsCountChars(localeOf(charset), NULL, text->bytes, (int32_t)text->length, &characters);
    expect(status == NLS_OK, "characters", charset, charset, status);
    return characters;
}

/* UTF-8 to the charset and back, and from the charset by way of each other form of Unicode. */
static void throughUnicode(const char* charset, Text* utf8) {
    static const char* const forms[] = {"UTF-8",  "UTF-16",   "UTF-16LE", "UTF-16BE",
                                        "UTF-32", "UTF-32LE", "UTF-32BE", "UCS2"};
    static Text legacy, middle, back;
    if (!convert("UTF-8", charset, utf8, &legacy)) {
        expect(0, "no conversion", "UTF-8", charset, 0);
        return;
    }
    expect(charactersOf(&legacy, charset) == charactersOf(utf8, "UTF-8"), "another number of characters", "UTF-8",
           charset, 0);
    for (size_t form = 0; form < sizeof forms / sizeof *forms; ++form) {
        const int there = convert(charset, forms[form], &legacy, &middle);
        expect(there && convert(forms[form], charset, &middle, &back), "no way", charset, forms[form], 0);
        expect(there && same(&legacy, &back), "came back otherwise", charset, forms[form], 0);
    }
}

/* From one charset straight to another, where the data file has such a conversion: as by way of UTF-8. */
static unsigned between(const char* from, const char* to, const Text* utf8) {
    static Text source, target, wanted;
    if (conversionOf(from, to) == NULL) return 0;
    if (!convert("UTF-8", from, utf8, &source) || !convert("UTF-8", to, utf8, &wanted)) return 0;
    expect(convert(from, to, &source, &target) && same(&target, &wanted), "differs from the way by UTF-8", from, to, 0);
    return 1;
}

static int readText(const char* folder, const char* name, Text* text) {
    char path[512];
    snprintf(path, sizeof path, "%s/%s.txt", folder, name);
    FILE* const file = fopen(path, "rb");
    if (file == NULL) return 0;
    text->length = (uint32_t)fread(text->bytes, 1, ROOM - 1, file);
    fclose(file);
    return text->length != 0;
}

int main(int argc, char** argv) {
    static uint64_t block[8192]; /* 64 bytes for each entry of the contents, and little more */
    char line[512];
    unsigned texts = 0, direct = 0;
    if (argc != 3) return 2;
    snprintf(line, sizeof line, "%s/samples.list", argv[2]);
    FILE* const list = fopen(line, "r");
    const int file = open(argv[1], O_RDONLY);
    const nlsStatus opened = file < 0 ? -1 : nlsInit((uint32_t)file, block, sizeof block, readFile, &handle);
    if (list == NULL || opened != NLS_OK) {
        printf("%s or %s can't be opened, status %d\n", argv[1], line, opened);
        return 4;
    }
    while (fgets(line, sizeof line, list) != NULL) {
        static Text utf8;
        const char* charsets[MOST_CHARSETS];
        unsigned count = 0;
        const char* const name = strtok(line, " \n");
        if (name == NULL) continue;
        expect(readText(argv[2], name, &utf8), "no such text", name, "", 0);
        for (char* charset; count < MOST_CHARSETS && (charset = strtok(NULL, " \n")) != NULL; ++count)
            charsets[count] = charset;
        for (unsigned from = 0; from < count; ++from) {
            ++texts;
            throughUnicode(charsets[from], &utf8);
            for (unsigned to = 0; to < count; ++to)
                if (to != from) direct += between(charsets[from], charsets[to], &utf8);
        }
    }
    fclose(list);
    expect(nlsClose(handle) == NLS_OK, "close", argv[1], "", 0);
    printf("%u texts, %u conversions between legacy charsets, %u buffers; %u checks, %u failed\n", texts, direct,
           buffers, checks, failures);
    return failures != 0 || texts == 0;
}
