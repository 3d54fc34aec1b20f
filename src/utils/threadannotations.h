#pragma once

/// Lock annotations that Clang checks with `-Wthread-safety`; other compilers see nothing.
#if defined(__clang__)
#define TARN_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define TARN_THREAD_ANNOTATION(x)
#endif

#define TARN_CAPABILITY(name) TARN_THREAD_ANNOTATION(capability(name))
#define TARN_SCOPED_CAPABILITY TARN_THREAD_ANNOTATION(scoped_lockable)
#define TARN_GUARDED_BY(mutex) TARN_THREAD_ANNOTATION(guarded_by(mutex))
#define TARN_REQUIRES(...) TARN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define TARN_ACQUIRE(...) TARN_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TARN_RELEASE(...) TARN_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
