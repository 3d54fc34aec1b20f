#pragma once

#include <guard/watchdog.h>

#include <memory>
#include <utility>
#include <vector>

namespace tarn::guard {

/// The free calls of one type. Each thread keeps one at hand, so that a request that is completed before the operation
/// returns takes no lock. Thread-safe.
template <class Type>
class Pool {
public:
    static Type& take()
    {
        if (auto* const call = std::exchange(s_atHand.call, nullptr))
            return *call;
        if (auto* const call = shared().take())
            return *call;
        auto made = std::make_unique<Type>();
        auto& call = *made;
        Watchdog::instance().add(std::move(made));
        return call;
    }

    static void giveBack(Type& call)
    {
        if (s_atHand.call)
            shared().giveBack(call);
        else
            s_atHand.call = &call;
    }

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

        void giveBack(Type& call)
        {
            const utils::MutexLock lock{mutex};
            free.push_back(&call);
        }

        utils::Mutex mutex;
        std::vector<Type*> free TARN_GUARDED_BY(mutex);
    };

    struct AtHand {
        AtHand() = default;
        AtHand(const AtHand&) = delete;
        AtHand& operator=(const AtHand&) = delete;
        ~AtHand()
        {
            if (call)
                shared().giveBack(*call);
        }
        Type* call = nullptr;
    };

    static Shared& shared()
    {
        static Shared shared;
        return shared;
    }

    static inline thread_local AtHand s_atHand;
};

} // namespace tarn::guard
