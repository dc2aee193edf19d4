// What reading the finished file back throws where the library doesn't see what was described.
#pragma once

#include <stdexcept>

namespace nls::mkconvmap {

// what() names the entry and the first difference.
class ReadBackError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace nls::mkconvmap
