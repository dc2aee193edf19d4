// What a pack hands out for a converter or a collator of ICU's: the object itself; in a pack with a guard, a record of
// it that sees when two threads use it at once.
//
// A guarded pack counts what it opens and closes. It stops the program when an object is used while another thread uses
// it; and since each use changes the record without order, the thread sanitizer also finds those that missed each
// other.
#pragma once

#ifdef NLS_PACK_GUARD

#include <atomic>

namespace nls::packs {

// guard.cpp
void countOpened();
void countClosed();
[[noreturn]] void stopForTwoThreads();

template <typename Object>
struct Held {
    Object* object;
    std::atomic<bool> inUse;
    unsigned long uses;
};

template <typename Object>
Held<Object>* hold(Object* object) {
    if (object == nullptr) return nullptr;
    countOpened();
    return new Held<Object>{object, false, 0};
}

// The object of a record, for a call.
template <typename Object>
class Use {
public:
    explicit Use(const Held<Object>* held) : held_(const_cast<Held<Object>*>(held)) {
        if (held_ == nullptr) return;
        if (held_->inUse.exchange(true, std::memory_order_relaxed)) stopForTwoThreads();
        ++held_->uses;
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() {
        if (held_ != nullptr) held_->inUse.store(false, std::memory_order_relaxed);
    }
    Object* get() const { return held_ != nullptr ? held_->object : nullptr; }

private:
    Held<Object>* held_;
};

template <typename Object>
void release(Held<Object>* held, void (*close)(Object*)) {
    if (held == nullptr) return;
    countClosed();
    {
        const Use<Object> use{held};
        close(use.get());
    }
    delete held;
}

}  // namespace nls::packs

#else

namespace nls::packs {

template <typename Object>
using Held = Object;

template <typename Object>
Object* hold(Object* object) {
    return object;
}

template <typename Object>
class Use {
public:
    explicit Use(const Object* object) : object_(const_cast<Object*>(object)) {}
    Object* get() const { return object_; }

private:
    Object* object_;
};

template <typename Object>
void release(Object* object, void (*close)(Object*)) {
    close(object);
}

}  // namespace nls::packs

#endif
