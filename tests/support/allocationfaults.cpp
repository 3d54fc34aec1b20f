#include <support/allocationfaults.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> liveBlocks{0};
thread_local int left = 0; // allocations until the first that fails; 0 and less: none does
thread_local bool isForEver = false;
thread_local bool hasFailed = false;

bool fails() noexcept
{
    if (left <= 0 || --left > 0)
        return false;
    if (isForEver)
        left = 1;
    hasFailed = true;
    return true;
}

void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept
{
    if (fails())
        return nullptr;
    const auto rounded = (size + alignment - 1) / alignment * alignment; // as aligned_alloc wants it
    void* const block = std::aligned_alloc(alignment, rounded > 0 ? rounded : alignment);
    if (block)
        ++liveBlocks;
    return block;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t))
{
    if (void* const block = allocate(size, alignment))
        return block;
    throw std::bad_alloc{};
}

void release(void* block) noexcept
{
    if (block)
        --liveBlocks;
    std::free(block); // NOLINT(cppcoreguidelines-no-malloc)
}

} // namespace

// All of them: a sanitizer brings its own for those that are missing here.
// clang-format off
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, std::size_t(alignment)); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, std::size_t(alignment)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return allocate(size, std::size_t(alignment)); }
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return allocate(size, std::size_t(alignment)); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { release(block); }
// clang-format on

namespace tarn::tests {

void AllocationFaults::arm(int nth, bool forEver)
{
    left = nth;
    isForEver = forEver;
    hasFailed = false;
}

bool AllocationFaults::disarm()
{
    left = 0;
    return hasFailed;
}

long AllocationFaults::live()
{
    return liveBlocks;
}

} // namespace tarn::tests
