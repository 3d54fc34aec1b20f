#pragma once

#include <guard/athand.h>
#include <guard/watchdog.h>
#include <utils/mutex.h>

#include <utility>

namespace tarn::guard {

template <class Type>
class Pool;

/// What can be in a `Pool`. To be given back it needs no memory.
template <class Type>
class Pooled {
    friend class Pool<Type>;
    friend Type;

    Pooled() = default;

    Type* m_next = nullptr; ///< of the free objects
};

/// The free objects of a type that are never destroyed, but used again; `Type::create()` makes more. Each thread keeps
/// one at hand, so that a request that is completed before the operation returns takes no lock. Thread-safe.
template <class Type>
class Pool {
public:
    static Type& take()
    {
        if (auto* const free = OfThread::take())
            return *free;
        if (auto* const free = shared().take())
            return *free;
        return Type::create();
    }

    static void giveBack(Type& object) { OfThread::keep(&object); }

private:
    struct Shared {
        Type* take()
        {
            const utils::MutexLock lock{mutex};
            return free ? std::exchange(free, nextOf(*free)) : nullptr;
        }

        void giveBack(Type* object)
        {
            const utils::MutexLock lock{mutex};
            nextOf(*object) = std::exchange(free, object);
        }

        utils::Mutex mutex;
        Type* free TARN_GUARDED_BY(mutex) = nullptr;
    };

    static Type*& nextOf(Pooled<Type>& object) { return object.m_next; }

    static Shared& shared() { return immortal<Shared>(); }
    static void share(Type* object) { shared().giveBack(object); }

    using OfThread = AtHand<Type, &Pool::share>;
};

} // namespace tarn::guard
