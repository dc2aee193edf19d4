// Bytes that sort as their texts do under an order: by memcmp, a beginning first, as SQLite sorts blobs.
//
// The key of a text of one piece that lacks nothing is the library's sort key. Otherwise each piece's key follows,
// with 00 01 between two, and behind them 00 00 and four bytes for each kept value (text_form.hpp), most significant
// first. No piece's key holds a 00 byte, since it holds weights; that of a Thai piece is the ranks of its clusters,
// each of four bytes behind a 01.
#pragma once

#include "integrations/sqlite/order.hpp"

namespace nls::sqlite {

// Throws, with a text for the user, where the library has no key that is sure to sort as the texts do: under a site's
// own sort, in EUC, for texts longer than its keys.
Bytes keyOf(Order& order, ByteView text);

}  // namespace nls::sqlite
