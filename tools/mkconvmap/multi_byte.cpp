#include "tools/mkconvmap/multi_byte.hpp"

namespace nls::mkconvmap {

MultiByteTables packMultiByte(const CharsetSource& charset) {
    fail(charset.place, charset.name + ": multi-byte charsets can't be compiled yet");
}

}  // namespace nls::mkconvmap
