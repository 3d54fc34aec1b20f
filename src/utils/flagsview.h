#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>

namespace tarn::utils {

/// The number of bits of a byte.
inline constexpr std::size_t byte_size = 8;

/// Walks the set bits of a flag value, an enumeration or an unsigned number, from the lowest to the
/// highest; each element is a value with that one bit set. Reentrant.
template <class Flags>
class flags_view { // NOLINT(readability-identifier-naming): spelt like the views of the standard library
    template <class T, bool = std::is_enum_v<T>>
    struct Underlying : std::underlying_type<T> { };
    template <class T>
    struct Underlying<T, false> : std::type_identity<T> { };

    using Bits = std::make_unsigned_t<typename Underlying<Flags>::type>;
    static constexpr std::size_t width = sizeof(Flags) * byte_size;

public:
    class iterator { // NOLINT(readability-identifier-naming): the name that ranges expect
    public:
        using value_type = Flags;
        using difference_type = std::ptrdiff_t;

        constexpr iterator() = default;

        [[nodiscard]] constexpr Flags operator*() const { return static_cast<Flags>(Bits{1} << m_position); }
        constexpr iterator& operator++()
        {
            ++m_position;
            skipClear();
            return *this;
        }
        constexpr iterator operator++(int)
        {
            auto before = *this;
            ++*this;
            return before;
        }
        friend constexpr bool operator==(const iterator&, const iterator&) = default;
        friend constexpr bool operator==(const iterator& it, std::default_sentinel_t /*end*/)
        {
            return it.m_position == width;
        }

    private:
        friend flags_view;
        constexpr explicit iterator(Bits bits)
            : m_bits{bits}
        {
            skipClear();
        }

        constexpr void skipClear()
        {
            while (m_position != width && (m_bits >> m_position & 1U) == 0)
                ++m_position;
        }

        Bits m_bits = 0;
        std::size_t m_position = 0;
    };

    /// Walks the bits of `flags`, of which it keeps a copy.
    constexpr explicit flags_view(Flags flags)
        : m_bits{static_cast<Bits>(flags)}
    {
    }

    /// At the lowest bit that is set.
    [[nodiscard]] constexpr iterator begin() const { return iterator{m_bits}; }

    /// After the highest one.
    [[nodiscard]] constexpr std::default_sentinel_t end() const { return {}; }

private:
    Bits m_bits;
};

} // namespace tarn::utils
