#include <support/allocationprobe.h>

#include <atomic>

namespace {

std::atomic<int> blocks{0};
std::atomic<void (*)(std::size_t)> atAllocation{nullptr};
std::atomic<void (*)()> atFree{nullptr};

bool isLarge(std::size_t size)
{
    return size >= tarn::tests::AllocationProbe::large;
}

} // namespace

// The linker sends the program's own calls of `new` and of sized `delete` here (--wrap).
extern "C" {
void* __real__Znwm(std::size_t size); // NOLINT
void* __wrap__Znwm(std::size_t size); // NOLINT
void __real__ZdlPvm(void* block, std::size_t size); // NOLINT
void __wrap__ZdlPvm(void* block, std::size_t size); // NOLINT

void* __wrap__Znwm(std::size_t size) // NOLINT
{
    if (isLarge(size)) {
        ++blocks;
        if (auto* const watch = atAllocation.load())
            watch(size);
    }
    return __real__Znwm(size);
}

void __wrap__ZdlPvm(void* block, std::size_t size) // NOLINT
{
    __real__ZdlPvm(block, size);
    if (auto* const watch = isLarge(size) ? atFree.load() : nullptr)
        watch();
}
}

namespace tarn::tests {

int AllocationProbe::largeBlocks()
{
    return blocks;
}

void AllocationProbe::watchAllocations(void (*watch)(std::size_t size))
{
    atAllocation = watch;
}

void AllocationProbe::watchFrees(void (*watch)())
{
    atFree = watch;
}

} // namespace tarn::tests
