/* The handle on a data file, its arena, and a thread's own block.

   The order of a run: nlsInit once for a file; nlsCreateLocale and nlsCreateConversion (objects.h) as objects are
   needed, and on NLS_NO_MEM from them nlsAddBuffer and the same call again; nlsTlsInit on each thread that wants a
   block of its own; work; nlsTlsClose on each thread; nlsClose; last the caller takes back the block and the buffers.

   All memory is the caller's: objects and tables are laid one behind another into the block and the buffers (the
   arena), where they stay until the handle is closed. Nothing in the arena is ever freed or reused, and a call that
   fails keeps what it took before it failed. A comparison of long texts through ICU alone takes memory (icu.h).

   There are no locks. Calls that change a handle (nlsClose, nlsAddBuffer, nlsGetMem, nlsCloseDBLocale, those that make
   objects) must not overlap on one handle; NLS_BUSY tells of it by chance alone. Finished objects serve many threads.

   Valid C11 and C++20. */
#ifndef NLS_HANDLE_H
#define NLS_HANDLE_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* Smallest sizes, in bytes, of the block of nlsInit and of a buffer of nlsAddBuffer. */
enum { NLS_SMALLEST_BLOCK = 25000, NLS_SMALLEST_BUFFER = 76000 };

/* Makes a handle at the start of `block`, and reads header and table of contents of the data file.

   fileHandle  handed to every call of `readFn`, for the callback's own use; any number
   block       memory of `size` bytes, aligned to 8; it is cleared, and lent to the handle until nlsClose. Not null
   size        in bytes
   readFn      reads from the open data file; base.h has its contract. The library reads during nlsInit and during
               create calls, never later, and never closes the file. Not null
   handle      receives the handle; written on success alone. Not null

   Checks, in this order: size, null pointers, header, version, room for the contents, each record of the contents.
   Answers:
   NLS_OK
   NLS_NO_MEM       size is under 25000: the block isn't touched. Or the contents don't fit: 64 bytes a record
   NLS_BAD_MAGIC    the file's first 16 bytes can't be read, or aren't those of a data file
   NLS_BAD_VERSION  the file's version is neither 4 nor 5
   NLS_BAD_TOC      a record of the contents can't be read, or one that isn't a conversion has no data offset
   NLS_BAD_ARG      a null pointer: the block isn't touched
   After a failure of the file or of its contents the block has been cleared and partly filled; the caller just
   releases it. */
NLS_API NLS_CHECKED nlsStatus nlsInit(uint32_t fileHandle, void* block, int32_t size, nlsReadFn readFn,
                                      nlsHandle** handle);

/* Ends a handle. Its objects stay where they are, and every operation on them answers NLS_BAD_HANDLE from now on, as
   long as the block is there. No call opens the handle again. Null is answered with NLS_BAD_HANDLE.

   NLS_OK; NLS_BAD_HANDLE (none, or closed already); NLS_BUSY. */
NLS_API nlsStatus nlsClose(nlsHandle* handle);

/* Gives the arena of a handle another buffer. What was left in the old one stays idle, so the new buffer must hold all
   that a single create call needs: a multi-byte charset with its maps takes 30000 to 125000 bytes.

   buffer  memory of `size` bytes at any address; it is cleared, and lent to the handle until nlsClose. Not null
   size    in bytes

   Checks, in this order: handle, busy, size, null. NLS_OK; NLS_BAD_HANDLE; NLS_BUSY; NLS_NO_MEM (size is under 76000);
   NLS_BAD_ARG (null). On failure the buffer isn't touched, and the handle works on in the old one. */
NLS_API NLS_CHECKED nlsStatus nlsAddBuffer(nlsHandle* handle, void* buffer, int32_t size);

/* Takes memory from the arena of a handle. All its bytes are zero. It stays until the handle is closed.

   size       in bytes; below 0 answers NLS_NO_MEM
   alignment  the address becomes a multiple of it; 1 (or 0) for any address
   memory     receives the address; written on success alone. Not null

   NLS_OK; NLS_BAD_HANDLE; NLS_BAD_ARG (`memory` is null); NLS_NO_MEM (not enough left in the buffer in use; nothing is
   taken). Whether the handle is busy isn't looked at. */
NLS_API NLS_CHECKED nlsStatus nlsGetMem(nlsHandle* handle, int32_t size, uint32_t alignment, void** memory);

/* Lays a thread's own block into memory of that thread. Operations on locales and conversions accept null in its place;
   a thread that compares through ICU should bring one. It belongs to one thread at a time.

   ownerWord  stored in the block for the caller; never read
   buffer     memory at any address; null asks for the size
   size       in: bytes of `buffer`; out: the bytes to bring, written with NLS_BUF_SMALL alone. Not null
   block      receives the block, at the first multiple of 8 in the buffer, or null with NLS_BUF_SMALL. Not null

   NLS_OK; NLS_BAD_ARG (`size` or `block` is null); NLS_BUF_SMALL (less than 40 bytes behind the alignment; 48 bytes are
   enough at any address). */
NLS_API NLS_CHECKED nlsStatus nlsTlsInit(uint64_t ownerWord, void* buffer, uint32_t* size, nlsTlsBlock** block);

/* Ends a thread's block and gives back what it holds outside its memory. Null is fine. Always NLS_OK. */
NLS_API nlsStatus nlsTlsClose(nlsTlsBlock* block);

/* Version field of the data-file header that was read last in this process, by any handle, accepted or not. For
   diagnosis: the library doesn't read it, and nothing guards it against threads. */
extern NLS_API uint32_t nlsTemporaryVers;

NLS_END_DECLS

#endif
