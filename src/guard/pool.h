#pragma once

#include <guard/athand.h>
#include <guard/watchdog.h>

#include <memory>
#include <vector>

namespace tarn::guard {

/// The free calls of one type. Each thread keeps one at hand, so that a request that is completed before the operation
/// returns takes no lock. Thread-safe.
template <class Type>
class Pool {
public:
    static Type& take()
    {
        if (auto* const call = OfThread::take())
            return *call;
        if (auto* const call = shared().take())
            return *call;
        auto made = std::make_unique<Type>();
        auto& call = *made;
        Watchdog::instance().add(std::move(made));
        return call;
    }

    static void giveBack(Type& call) { OfThread::keep(&call); }

private:
    struct Shared {
        Type* take()
        {
            const utils::MutexLock lock{mutex};
            if (free.empty())
                return nullptr;
            auto* const call = free.back();
            free.pop_back();
            return call;
        }

        void giveBack(Type* call)
        {
            const utils::MutexLock lock{mutex};
            free.push_back(call);
        }

        utils::Mutex mutex;
        std::vector<Type*> free TARN_GUARDED_BY(mutex);
    };

    static Shared& shared() { return immortal<Shared>(); }
    static void share(Type* call) { shared().giveBack(call); }

    using OfThread = AtHand<Type, &Pool::share>;
};

} // namespace tarn::guard
