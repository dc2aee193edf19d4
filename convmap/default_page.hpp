// The page of a two-stage table that holds nothing: all its entries read as "no mapping". It is a constant of the
// library, shared by all tables of all handles, so it outlives every table that points to it and takes no arena.
#pragma once

namespace nls {

alignas(64) inline constexpr unsigned char kDefaultPage[256] = {};

}  // namespace nls
