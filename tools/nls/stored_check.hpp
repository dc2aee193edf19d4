// Does a stored collation give the order here that it gave where it was stored?
//
// The record is opened as a database would open it. Then these are compared, and each that differs is a reason for "the
// order may differ":
//   - versions and strengths of ICU's maps with those of the ICU at hand, since its order is in no table
//   - kind and weights with the collation of that name in the data file
//   - what a long image holds of the charset, and for kind 3 of its case table, with the data file's, which a locale
//     made from the record takes
//   - the fingerprint that `nls db export` left as the text with that of the opened locale, which stands for all of
//     these, for the way to Shift-JIS, and for the library's walks
// A sort of the site's own always may differ. Tested by tests/tools/nls_db_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "tools/nls/order.hpp"
#include "tools/nls/stored_locale.hpp"

namespace nls::tool {

// The text of a record that carries the fingerprint of its order; nothing for an order in nobody's tables.
std::string printText(const Order& order);

struct StoredVerdict {
    Exit exit = Exit::done;            // done, or loss where the order may differ
    std::vector<std::string> reasons;  // whole sentences without a full stop
    std::vector<std::string> notes;    // what couldn't be compared
};

// In a session of its own. Throws where the record is damaged, or this host lacks what it needs.
StoredVerdict judgeStored(const std::string& dataFile, const stored::StoredCollation& stored);

}  // namespace nls::tool
