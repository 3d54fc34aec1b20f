#include <support/mutexprobe.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <pthread.h>

namespace {

thread_local int locked = 0;
thread_local std::array<pthread_mutex_t*, 32> heldMutexes{};
thread_local int held = 0;
thread_local int successesLeft = -1; // negative: none fails
thread_local tarn::tests::MutexProbe::Hooks hooks{};

auto heldEnd()
{
    return heldMutexes.begin() + held;
}

/// As a mutex does that checks for errors; one that waited for itself could not be tested.
bool isHeld(const pthread_mutex_t* mutex)
{
    return std::find(heldMutexes.begin(), heldEnd(), mutex) != heldEnd();
}

void pass()
{
    if (hooks.pass)
        hooks.pass();
}

} // namespace

// The linker sends the program's own calls here (--wrap).
extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex); // NOLINT
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex); // NOLINT
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex); // NOLINT
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex); // NOLINT

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) // NOLINT
{
    if (successesLeft >= 0 && successesLeft-- == 0)
        return EINVAL;
    if (isHeld(mutex))
        return EDEADLK;
    pass();
    while (hooks.wait && pthread_mutex_trylock(mutex) == EBUSY) {
        if (!hooks.wait())
            return EDEADLK;
    }
    if (const int error = hooks.wait ? 0 : __real_pthread_mutex_lock(mutex))
        return error;
    ++locked;
    heldMutexes.at(static_cast<std::size_t>(held++)) = mutex;
    return 0;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) // NOLINT
{
    const auto end = std::remove(heldMutexes.begin(), heldEnd(), mutex);
    held = static_cast<int>(end - heldMutexes.begin());
    const int error = __real_pthread_mutex_unlock(mutex);
    pass();
    return error;
}
}

namespace tarn::tests {

int MutexProbe::locks()
{
    return locked;
}

int MutexProbe::held()
{
    return ::held;
}

void MutexProbe::failAfter(int successes)
{
    successesLeft = successes;
}

void MutexProbe::hook(Hooks wanted)
{
    hooks = wanted;
}

} // namespace tarn::tests
