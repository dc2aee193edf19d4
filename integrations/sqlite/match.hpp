// LIKE and search in texts of SQLite's under an order. A character that the order's charset lacks equals itself alone.
#pragma once

#include "integrations/sqlite/order.hpp"

namespace nls::sqlite {

// `escape`: the character in front of which "%" and "_" mean themselves; an empty text for none. It may stand in
// front of any other character too; alone at the end of the pattern it matches nothing. Text and pattern end at their
// first NUL, as with SQLite's own LIKE.
bool like(Order& order, ByteView pattern, ByteView text, ByteView escape);

// The number of the character, from 1, at which the first match begins; 0 for none. An empty pattern is found at 1. A
// pattern that holds a NUL is found nowhere.
std::size_t find(Order& order, ByteView text, ByteView pattern);

}  // namespace nls::sqlite
