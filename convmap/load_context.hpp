// All that a loader may touch: the arena, the data file and its contents. A loader takes this in place of the handle,
// which may be in the middle of being opened.
#pragma once

#include "convmap/file_reader.hpp"
#include "convmap/toc.hpp"
#include "core/base/arena.hpp"
#include "nls/records.h"

namespace nls {

struct LoadContext {
    Arena arena;
    FileReader file;
    Contents contents;
};

inline LoadContext loadContextOf(nlsHandle& handle) {
    return {Arena{handle.freePtr, handle.freeBytes}, FileReader{handle.readFn, handle.fileHandle},
            Contents{{handle.toc, static_cast<std::size_t>(handle.tocCount)}}};
}

// What a loader came to. With a failure the object is null, or as far as it got; nothing refers to it then.
template <typename Object>
struct Loaded {
    nlsStatus status;
    Object* object;
};

}  // namespace nls
