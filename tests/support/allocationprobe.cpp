#include <support/allocationprobe.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int> blocks{0};
std::atomic<void (*)()> atFree{nullptr};

void* allocate(std::size_t size) noexcept
{
    if (size >= tarn::tests::AllocationProbe::large)
        ++blocks;
    return std::malloc(size == 0 ? 1 : size); // NOLINT
}

} // namespace

void* operator new(std::size_t size)
{
    if (void* const block = allocate(size))
        return block;
    throw std::bad_alloc{};
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block); // NOLINT
}

void operator delete(void* block, std::size_t size) noexcept
{
    std::free(block); // NOLINT
    if (auto* const watch = size >= tarn::tests::AllocationProbe::large ? atFree.load() : nullptr)
        watch();
}

void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept
{
    std::free(block); // NOLINT
}

namespace tarn::tests {

int AllocationProbe::largeBlocks()
{
    return blocks;
}

void AllocationProbe::watchFrees(void (*watch)())
{
    atFree = watch;
}

} // namespace tarn::tests
