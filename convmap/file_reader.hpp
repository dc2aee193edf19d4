// The read callback, as "exactly these bytes, or a failure".
// Tested by tests/convmap/starvation_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "nls/base.h"

namespace nls {

class FileReader {
public:
    FileReader(nlsReadFn readFn, uint32_t fileHandle) : readFn_(readFn), fileHandle_(fileHandle) {}

    // Fills `bytes` from file position `offset`. False when the callback answers anything but their number, and without
    // a call where the last of them lies past the 32 bits of a file position. What `bytes` holds then is open.
    bool read(uint64_t offset, ByteSpan bytes) const;

private:
    nlsReadFn readFn_;
    uint32_t fileHandle_;
};

}  // namespace nls
