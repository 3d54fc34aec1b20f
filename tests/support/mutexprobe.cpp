#include <support/mutexprobe.h>

#include <cerrno>
#include <pthread.h>

namespace {

thread_local int locked = 0;
thread_local int held = 0;
thread_local int successesLeft = -1; // negative: none fails

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
    ++locked;
    ++held;
    return __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) // NOLINT
{
    --held;
    return __real_pthread_mutex_unlock(mutex);
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

} // namespace tarn::tests
