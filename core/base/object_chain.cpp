#include "core/base/object_chain.hpp"

namespace nls {

void linkObject(nlsHandle& handle, nlsHdr& object) {
    nlsHdr* const oldHead = handle.chainHead;
    oldHead->prev = &object;
    object.next = oldHead;
    object.serial = static_cast<uint16_t>(oldHead->serial + 1);
    handle.chainHead = &object;
}

bool unlinkObject(nlsHandle& handle, nlsHdr& object) {
    for (nlsHdr* place = handle.chainHead; place != nullptr; place = place->next) {
        if (place != &object) continue;
        if (object.prev != nullptr) object.prev->next = object.next;
        if (object.next != nullptr) object.next->prev = object.prev;
        if (handle.chainHead == &object) handle.chainHead = object.next;
        return true;
    }
    return false;
}

}  // namespace nls
