/* A site's own collation. The library calls these four entry points for collations of kind 2, which a data file or a
   database names. Its defaults open none. A site takes their place by defining all four names in its program, or in a
   library that is loaded before this one: nothing is registered, the dynamic linker finds them.

   Shared by all: text and keys are NUL-terminated bytes; `foldMap` and `exactMap` are the 256 bytes each of the
   collation's record, whatever the site keeps in them; `userSortHandle` is the value that UserSortInit stored for the
   handle, 0 if it stored none. They are called on the caller's thread, with no lock held: comparisons and keys at once
   from several threads where the caller has several.

   Valid C11 and C++20. */
#ifndef NLS_USERSORT_H
#define NLS_USERSORT_H

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

NLS_BEGIN_DECLS

/* Opens the sort. Called once for a handle, at its first collation of kind 2.

   name            of that collation
   userSortHandle  in the handle, 0 before; may be stored to

   NLS_OK: the sort is there. Anything else: it isn't, and the locale that asked isn't made (NLS_BAD_COLLATION; from a
   database NLS_NO_COLL_TABLE). The default answers NLS_NO_USER_SORT. */
NLS_API int32_t UserSortInit(const char* name, uint64_t* userSortHandle);

/* Writes the sort key of `src`, with its NUL, to at most `keySize` bytes at `key`. `mode` is what the caller of
   nlsSortKey gave, without the bits 0x2000 and 0x4000. The default writes nothing. */
NLS_API void UserSortCopy(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                          const unsigned char* exactMap, uint16_t mode, uint64_t userSortHandle);

/* 1: `s1` sorts after `s2`; 0: they are equal; -1: before. The low 16 bits are the caller's result. `compareMode` is
   the caller's. The default answers 0. */
NLS_API int32_t UserSortComp(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                             const unsigned char* exactMap, uint16_t compareMode, uint64_t userSortHandle);

/* Ends the sort of a handle that is being closed. The default does nothing. */
NLS_API void UserSortTerm(uint64_t userSortHandle);

/* What the library itself calls: each passes its arguments on to the entry point of the same purpose, as they are. */
NLS_API int32_t usr_sortinit(const char* name, uint64_t* userSortHandle);
NLS_API void usr_sortcop(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                         const unsigned char* exactMap, uint16_t mode, uint64_t userSortHandle);
NLS_API int32_t usr_stbcmpl(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                            const unsigned char* exactMap, uint16_t compareMode, uint64_t userSortHandle);
NLS_API void usr_sortterm(uint64_t userSortHandle);

/* Ends the sort of a handle if it is open, and forgets it: `userSortOpen` and `userSortHandle` are 0 then. nlsClose
   does this. */
NLS_API void nlsCloseUserSort(nlsHandle* handle);

NLS_END_DECLS

#endif
