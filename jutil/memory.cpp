// Memory: that of the C library.
#include <cstdlib>

#include "jutil.h"

void* dbut_utmalloc(uint32_t size) {
    return std::malloc(size);
}

void dbut_utfree(void* memory) {
    std::free(memory);
}
