// The counts of a library of a guarded pack, and its end where it finds two threads.
#include <cstdio>
#include <cstdlib>

#include "icu/packs/entry.hpp"
#include "icu/packs/held.hpp"

namespace nls::packs {
namespace {

std::atomic<long> opened, closed;

}  // namespace

void countOpened() {
    ++opened;
}
void countClosed() {
    ++closed;
}

void stopForTwoThreads() {
    std::fputs("guard: two threads use one object of ICU's at once\n", stderr);
    std::abort();
}

extern "C" {

long guardOpened() NLS_PACK_ENTRY("nls_guard_opened");
long guardOpened() {
    return opened;
}
long guardClosed() NLS_PACK_ENTRY("nls_guard_closed");
long guardClosed() {
    return closed;
}

}  // extern "C"

}  // namespace nls::packs
