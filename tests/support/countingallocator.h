#pragma once

#include <cstddef>
#include <memory>

namespace tarn::tests {

/// Counts the blocks that are allocated and not yet freed.
template <class T>
struct CountingAllocator {
    using value_type = T;

    explicit CountingAllocator(int& blocks)
        : live{&blocks}
    {
    }

    template <class U>
    CountingAllocator(const CountingAllocator<U>& other) // NOLINT(google-explicit-constructor)
        : live{other.live}
    {
    }

    T* allocate(std::size_t count)
    {
        ++*live;
        return std::allocator<T>{}.allocate(count);
    }

    void deallocate(T* block, std::size_t count)
    {
        --*live;
        std::allocator<T>{}.deallocate(block, count);
    }

    template <class U>
    friend bool operator==(const CountingAllocator& left, const CountingAllocator<U>& right)
    {
        return left.live == right.live;
    }

    int* live;
};

/// A control whose ownership record is counted in `records`: it is there for as long as somebody
/// holds a reference to the control, even a weak one.
[[nodiscard]] inline std::shared_ptr<int> countedControl(int& records)
{
    return std::allocate_shared<int>(CountingAllocator<int>{records}, 1);
}

} // namespace tarn::tests
