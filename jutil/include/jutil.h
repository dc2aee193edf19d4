/* What the Java bridge of libnls.so expects of libjutil.so: memory, text, paths, a registry, files, a database's log
   and a message file. The folder jutil/ has a plain implementation. A site with a library of its own puts it in its
   place, under the SONAME libjutil.so; what such a library has to promise is all told here.

   All text is NUL-terminated bytes; sizes count the NUL, lengths don't, both in bytes. Pointers are not null unless
   said. Valid C11 and C++20. */
#ifndef JUTIL_H
#define JUTIL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define JUTIL_API __attribute__((visibility("default")))

/* ---- Text and memory ---- */

/* Length of `text`. */
JUTIL_API uint32_t dbut_stlen(const char* text);

/* Copies `source`, at most `limit` bytes of it, and closes `target` with a NUL; nothing of `source` behind the limit is
   read. `target` has room for `limit` + 1 bytes. The number of bytes copied, without the NUL. */
JUTIL_API uint32_t dbut_stncop(char* target, const char* source, uint32_t limit);

/* Memory of `size` bytes, aligned for any type, with any content; null when there is none. */
JUTIL_API void* dbut_utmalloc(uint32_t size);

/* Releases what dbut_utmalloc gave. Null does nothing. */
JUTIL_API void dbut_utfree(void* memory);

/* ---- Configuration and paths ---- */

/* Results of dbut_utLookupRegistry beside 0; any other number also means that the name isn't there. */
enum { DBUT_VALUE_TOO_LONG = -30017, DBUT_NO_SUCH_NAME = -1 };

/* Looks `name` up in the platform's configuration store. 0: `buffer`, of `size` bytes, holds the value. */
JUTIL_API int32_t dbut_utLookupRegistry(const char* name, char* buffer, int32_t size);

/* Copies the value of an environment variable into `buffer`, cut to `size` - 1 bytes. Without such a variable the
   buffer stays as it was. */
JUTIL_API void dbut_utgetenvwithsize(const char* name, char* buffer, int32_t size);

/* Adds the path separator, one byte, at the end of `path`. */
JUTIL_API void dbut_utfpsep(char* path);

/* Appends `name` to `path`. The caller has seen to the room. */
JUTIL_API void dbut_utfpcat(char* path, const char* name);

/* ---- Files ---- */

/* Opens a file for reading. `mode` and `share` are 0, `attributes` is -1. The file's handle, which is neither 0 nor -1;
   -1 on failure, with the reason in `errorNumber`. */
JUTIL_API int32_t dbut_utOsOpen(const char* path, int32_t mode, int32_t attributes, int32_t share,
                                int32_t* errorNumber);

/* Closes a file. `flags` is 0. -1 on failure, else 0. */
JUTIL_API int32_t dbut_utOsClose(uint32_t handle, int32_t flags);

/* Reads `size` bytes from byte `offset` of the file on; `bytesRead` tells how many came, fewer at the end of the file
   and 0 after a failure, the reason of which is in `errorNumber`. 0, or -1 after a failure. It keeps no position, so
   threads may read one file at once. */
JUTIL_API int32_t dbut_utReadFromFile(uint32_t handle, int32_t offset, void* buffer, uint32_t size, uint32_t* bytesRead,
                                      int32_t* errorNumber);

/* ---- The log of a database ---- */

enum { JU_LOG_CONTEXT = 536 }; /* bytes of a log context */

/* Builds the path of a database's log from the database's name. 0 when `buffer`, of `size` bytes, holds it. */
JUTIL_API int32_t juLogMakeFilename(const char* database, char* buffer, int32_t size);

/* Opens a log: with `create` 1 one that need not exist, with 0 an existing one. `context` has 536 bytes, which the
   functions below use until juLogClose. 0 on success; after a failure the context holds nothing to close. */
JUTIL_API int32_t juLogOpen(void* context, const char* path, int32_t create);

/* Writes one message. Either text may be null; `flag` is 1 or 0. 0 on success. A null context is a failure. */
JUTIL_API int32_t juLogWrite(void* context, const char* text1, const char* text2, int32_t flag);

/* Closes a log. Null does nothing. The context's memory stays the caller's. The result isn't looked at. */
JUTIL_API int32_t juLogClose(void* context);

/* ---- Message files ---- */

/* A context, of JU_ZLM_CONTEXT bytes: the first 568 are juZlmOpen's, the rest is the caller's and is left alone. Two
   places in it are read by the caller after juZlmOpen. The caller has cleared the context before. */
enum {
    JU_ZLM_CONTEXT = 608,
    JU_ZLM_ERROR_TEXT = 16, /* const char*: why juZlmOpen failed; null or empty where a code says it all */
    JU_ZLM_CHARSET = 540,   /* name of the charset of the file, at most 27 bytes and a NUL */
    JU_ZLM_TEXT = 516       /* bytes of the buffer of juZlmLookup */
};

/* Codes of the message functions. */
enum {
    JU_ZLM_OK = 0,
    JU_ZLM_WRONG_VERSION = 1, /* a warning: the file is open */
    JU_ZLM_NO_FILE = -1,      /* the file can't be opened */
    JU_ZLM_READ = -2,         /* it can't be read, or isn't a message file */
    JU_ZLM_BAD_CONTEXT = -3,  /* no context, or one that isn't open */
    JU_ZLM_BUFFER_SMALL = -5, /* a path or a message is too long for the buffer */
    JU_ZLM_BAD_LOCALE = -6,   /* the locale hasn't three characters */
    JU_ZLM_NO_DIRECTORY = -7, /* QRD isn't set */
    JU_ZLM_NO_MESSAGE = -8    /* the file doesn't have the message */
};

/* Builds the path of the message file of a locale, a text of three characters; null counts as a bad one. 0 when
   `buffer`, of `size` bytes, holds it; else a code below 0. */
JUTIL_API int32_t juZlmMakeFilename(const char* locale, char* buffer, int32_t size);

/* Opens a message file. 0; a code above 0, with which the file is open all the same; or a code below 0. */
JUTIL_API int32_t juZlmOpen(void* context, const char* path);

/* Writes the message of that number into `text`, which has JU_ZLM_TEXT bytes and begins with a NUL: at most 512 bytes
   in the file's charset, none of them a NUL, and a NUL. 0; else a code, and `text` may tell why. A null context is
   answered with JU_ZLM_BAD_CONTEXT. */
JUTIL_API int32_t juZlmLookup(void* context, int32_t number, char* text);

/* Closes a message file. Null, and a context whose juZlmOpen failed, do nothing. The context's memory stays the
   caller's. The result isn't looked at. */
JUTIL_API int32_t juZlmClose(void* context);

#ifdef __cplusplus
}
#endif

#endif
