/* What opening a message file is made of: finding, opening and reading convmap.cp, codes and their texts, and the end
   of a context. Exported for those who know them from before; a Java program calls the native methods.

   Sizes count the NUL of a text, in bytes. Pointers are not null. */
#ifndef NLS_JNI_MESSAGE_HELPERS_H
#define NLS_JNI_MESSAGE_HELPERS_H

#include "nls/base.h"

NLS_BEGIN_DECLS

/* Codes of this family. Codes from 1 to -8 are those of the message functions (jutil.h). */
enum {
    NLS_CONVMAP_OK = -102, /* success */
    NLS_CONVMAP_NO_MEMORY = -100,
    NLS_CONVMAP_NO_CONVERSION = -101, /* a message doesn't convert, or convmap.cp doesn't open */
    NLS_CONVMAP_BUFFER_SMALL = -103,
    NLS_CONVMAP_OPEN_FAILED = -104,
    NLS_CONVMAP_CLOSE_FAILED = -105,
    NLS_CONVMAP_READ_FAILED = -106,
    NLS_CONVMAP_BAD_CHARSET = -107,
    NLS_CONVMAP_BAD_COLLATION = -108,
    NLS_CONVMAP_BAD_CASE_TABLE = -109,
    NLS_CONVMAP_CODEPAGE = -110,
    NLS_CONVMAP_BAD_LOCALE = -111,
    NLS_CONVMAP_BAD_UTF8_LOCALE = -112
};

typedef struct nlsMessageContext nlsMessageContext;

/* The text of a code, a constant; null for 0 and for NLS_CONVMAP_OK. A number that is no code has a text too. */
NLS_API const char* getErrorString(int32_t code);

/* Finds convmap.cp: the value of ZELCONV in the registry, then in the environment; else the directory QRD, looked for
   in the same two places, with the name appended; else the bare name. `path` has `size` bytes.
   NLS_CONVMAP_OK; NLS_CONVMAP_BUFFER_SMALL. */
NLS_API int32_t convMakeFilename(char* path, int32_t size);

/* Appends the path separator and `name` to `path`. NLS_CONVMAP_OK; NLS_CONVMAP_BUFFER_SMALL: it doesn't fit, and the
   separator alone may have been appended. */
NLS_API int32_t appendFileName(char* path, int32_t size, const char* name);

/* Opens convmap.cp for reading. NLS_CONVMAP_OK; NLS_CONVMAP_BUFFER_SMALL; NLS_CONVMAP_OPEN_FAILED: `file` is then all
   ones. */
NLS_API int32_t convOpenFile(uint32_t* file);

/* The bytes read from `offset` on; 0 if none were. */
NLS_API uint32_t convReadFromFile(uint32_t fileHandle, int32_t offset, void* buffer, uint32_t size);

/* Closes the file that `file` names, which stays as it is. NLS_CONVMAP_OK; NLS_CONVMAP_CLOSE_FAILED. */
NLS_API int32_t convFileClose(const uint32_t* file);

/* Ends what a context holds of nls: handle, convmap.cp, memory, in this order; whatever of it is there. The message
   file and the context itself stay. */
NLS_API void cleanupNls(nlsMessageContext* context);

NLS_END_DECLS

#endif
