#pragma once

#include <guard/athand.h>
#include <guard/watchdog.h>
#include <utils/mutex.h>

#include <vector>

namespace tarn::guard {

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
            if (free.empty())
                return nullptr;
            auto* const object = free.back();
            free.pop_back();
            return object;
        }

        void giveBack(Type* object)
        {
            const utils::MutexLock lock{mutex};
            free.push_back(object);
        }

        utils::Mutex mutex;
        std::vector<Type*> free TARN_GUARDED_BY(mutex);
    };

    static Shared& shared() { return immortal<Shared>(); }
    static void share(Type* object) { shared().giveBack(object); }

    using OfThread = AtHand<Type, &Pool::share>;
};

} // namespace tarn::guard
