#include <conformance/description.h>

#include <algorithm>

namespace tarn::conformance {

bool Domain::has(double value) const
{
    return choices.empty() ? value >= lowest && value <= highest : std::ranges::find(choices, value) != choices.end();
}

std::vector<double> Domain::others(double now) const
{
    std::vector<double> others = choices.empty() ? std::vector{now + step, now - step} : choices;
    std::erase_if(others, [&](double value) { return value == now || !has(value); });
    return others;
}

Domain positions(std::size_t count)
{
    Domain domain;
    for (std::size_t position = 0; position < count; ++position)
        domain.choices.push_back(static_cast<double>(position));
    return domain;
}

} // namespace tarn::conformance
