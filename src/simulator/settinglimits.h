#pragma once

#include <type_traits>
#include <vector>

namespace tarn::simulator {

/// The number that stands for a number or an enumerator.
template <class T>
constexpr double toNumber(T value)
{
    if constexpr (std::is_enum_v<T>)
        return static_cast<std::underlying_type_t<T>>(value);
    else
        return value;
}

/// Takes the values from `lowest` to `highest`; NaN is not among them.
class Within {
public:
    constexpr Within(auto lowest, auto highest)
        : m_lowest{toNumber(lowest)}
        , m_highest{toNumber(highest)}
    {
    }

    /// Throws `std::out_of_range` that says so if the setting `name` cannot be `value`.
    void operator()(const char* name, double value) const;

private:
    double m_lowest;
    double m_highest;
};

/// Takes the positions in a list.
constexpr Within indexOf(const auto& list)
{
    return {0, static_cast<int>(list.size()) - 1};
}

/// Takes the values of a list.
class OneOf {
public:
    explicit OneOf(const auto& list)
        : m_list(list.begin(), list.end())
    {
    }

    /// Throws `std::invalid_argument` that says so if the setting `name` cannot be `value`.
    void operator()(const char* name, double value) const;

private:
    std::vector<double> m_list;
};

} // namespace tarn::simulator
