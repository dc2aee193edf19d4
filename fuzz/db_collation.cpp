// Any bytes as a collation that a database has stored: to a record, to a locale, to comparison, keys, case and words,
// and back to a record whose locale answers the same. What the locale was made from, and the block that it stood in,
// are freed in between, and locales of the arena answer as before.
//
// The input is the file form of docs/stored-collation.md; lengths in it that lie are cut to what is there.
#include <cstdint>

#include "tests/support/stored_world.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static nls::test::StoredRun world;
    if (size <= (std::size_t{1} << 17)) world.run({data, data + size});
    return 0;
}
