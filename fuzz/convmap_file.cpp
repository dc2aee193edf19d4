// Opens any bytes as a data file, makes every locale, table and conversion that it names, and converts text through
// them.
#include "tests/support/everything.hpp"
#include "tests/support/open_handle.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    nls::test::OpenHandle open{{data, data + size}, 1 << 17};
    if (!open.isOpen()) return 0;
    nls::test::Everything{open}.make();
    if (open.handle->busy != 0 || nlsClose(open.handle) != NLS_OK) std::abort();
    return 0;
}
