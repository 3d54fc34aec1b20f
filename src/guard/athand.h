#pragma once

#include <utility>

namespace tarn::guard {

/// One free object that each thread keeps at hand, so that the next use of such an object costs nothing. `dispose`
/// takes those that a thread has no use for, and the one that it has at its end. Thread-safe.
template <class Type, void (*dispose)(Type*)>
class AtHand {
public:
    /// The thread's object, or null if it has none.
    [[nodiscard]] static Type* take() { return std::exchange(s_object, nullptr); }

    static void keep(Type* object)
    {
        if (s_object)
            return dispose(object);
        s_object = object;
        static thread_local const AtThreadEnd disposeOfIt;
    }

private:
    struct AtThreadEnd {
        AtThreadEnd() = default;
        AtThreadEnd(const AtThreadEnd&) = delete;
        AtThreadEnd& operator=(const AtThreadEnd&) = delete;
        ~AtThreadEnd()
        {
            if (auto* const object = take())
                dispose(object);
        }
    };

    static inline thread_local Type* s_object = nullptr;
};

} // namespace tarn::guard
