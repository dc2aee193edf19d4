/* What every header of nls starts from: linkage, the status word, scalar names, the read callback.
   Valid C11 and C++20. */
#ifndef NLS_BASE_H
#define NLS_BASE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define NLS_BEGIN_DECLS extern "C" {
#define NLS_END_DECLS }
#else
#define NLS_BEGIN_DECLS
#define NLS_END_DECLS
#endif

/* Marks what libnls.so exports; everything else in it is hidden. */
#define NLS_API __attribute__((visibility("default")))

/* A result that a caller must look at. */
#define NLS_CHECKED __attribute__((warn_unused_result))

/* Result of nearly every operation: 0 is success, the other numbers stand in status.h. */
typedef int32_t nlsStatus;

/* One character of a charset as its bytes, first byte most significant, right-aligned; 0 is the end of a string.
   It is no code point: the same character has another LChar in another charset. */
typedef uint32_t nlsLChar;

/* Reads `length` bytes of the data file, from byte `offset` of the file on, into `buffer`, and returns how many it
   placed there. `fileHandle` is the number that was given to nlsInit, unchanged. Each call names its position, so the
   callback keeps none. Anything but `length` counts as a failed read: fewer bytes, and also an answer above `length`,
   which is how a callback may report an error. */
typedef uint32_t (*nlsReadFn)(uint32_t fileHandle, uint32_t offset, void* buffer, uint32_t length);

#endif
