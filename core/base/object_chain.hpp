// The chain of objects of a handle: newest first, the handle itself last. Objects enter at the head when they are
// complete; database locales alone ever leave.
//
// An object's typeTag is written after it was linked, so a walk passes over one whose tag is still 0.
// Tested by tests/core/object_chain_test.cpp.
#pragma once

#include "nls/records.h"

namespace nls {

// Puts `object` at the head and gives it the next serial. REQUIRES: its `prev` is null.
void linkObject(nlsHandle& handle, nlsHdr& object);

// Takes `object` off the chain. False, and nothing changed, when it doesn't stand there.
bool unlinkObject(nlsHandle& handle, nlsHdr& object);

// The newest object of the type with the given tag for which `matches` holds; null without one.
template <typename Object, typename Matches>
Object* findOnChain(const nlsHandle& handle, uint16_t typeTag, Matches matches) {
    for (nlsHdr* object = handle.chainHead; object != nullptr; object = object->next) {
        if (object->typeTag != typeTag) continue;
        auto* const candidate = reinterpret_cast<Object*>(object);
        if (matches(*candidate)) return candidate;
    }
    return nullptr;
}

}  // namespace nls
