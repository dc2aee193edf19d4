// All that a loader may touch: the arena, the data file and its contents, the site's own sort, and the list of the
// collations. A loader takes this in place of the handle, which may be in the middle of being opened.
#pragma once

#include "collation/user_sort.hpp"
#include "convmap/file_reader.hpp"
#include "convmap/toc.hpp"
#include "core/base/arena.hpp"
#include "core/base/handle_block.hpp"
#include "nls/records.h"

namespace nls {

struct LoadContext {
    Arena arena;
    FileReader file;
    Contents contents;
    UserSortSlot userSort;
    nlsCollStruct** newestCollation;  // head of the list that nextColl links
};

inline LoadContext loadContextOf(nlsHandle& handle) {
    return {Arena{handle.freePtr, handle.freeBytes}, FileReader{handle.readFn, handle.fileHandle},
            Contents{{handle.toc, static_cast<std::size_t>(handle.tocCount)}}, userSortSlotOf(handle),
            &handleBlockOf(handle).newestCollation};
}

// What a loader came to. With a failure the object is null, or as far as it got; nothing refers to it then.
template <typename Object>
struct Loaded {
    nlsStatus status;
    Object* object;
};

}  // namespace nls
