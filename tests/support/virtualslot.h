#pragma once

#include <array>
#include <bit>
#include <cstddef>

namespace tarn::tests {

/// The position of a virtual operation in its class's table, the first operation after the
/// destructor being 0. It reads the Itanium C++ ABI's form of a pointer to a virtual member: one
/// more than the operation's offset into the table, in which a destructor takes two entries. An
/// operation that is not virtual yields no small number.
template <class Operation>
[[nodiscard]] std::ptrdiff_t slotOf(Operation operation)
{
    constexpr std::ptrdiff_t destructorEntries = 2;
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(operation);
    return (words[0] - 1) / std::ptrdiff_t{sizeof(void*)} - destructorEntries;
}

} // namespace tarn::tests
