// A stored collation field by field, as `nls db dump` and `nls db diff` show it. Of bytes that are shorter than a field
// nothing is shown: a record may say anything. Tested by tests/tools/nls_db_test.cpp.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/base/views.hpp"
#include "tools/stored/stored_file.hpp"

namespace nls::tool {

struct StoredField {
    std::string label, key, value;
    ByteView map;  // 256 entries by byte value, in place of a value; lies in the stored collation
};
std::vector<StoredField> fieldsOf(const stored::StoredCollation& stored);

// The entries in which two maps differ, and the first of them in words: by its character, where `character` knows it.
struct MapDifference {
    std::vector<unsigned> bytes;
    std::string inWords;
};
MapDifference compareMaps(ByteView a, ByteView b, const std::function<std::string(unsigned)>& character);

}  // namespace nls::tool
