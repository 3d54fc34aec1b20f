#pragma once

#include <simulator/clock.h>

#include <chrono>

namespace tarn::soak {

/// Real time, a thousand times faster.
class QuickClock final : public simulator::Clock {
public:
    [[nodiscard]] simulator::Duration now() const override
    {
        return (std::chrono::steady_clock::now() - m_start) * speed;
    }

    void wait(simulator::Waiter& waiter, std::optional<simulator::Duration> until) override
    {
        if (until)
            waiter.changed.wait_for(waiter.mutex, (*until - now()) / speed);
        else
            waiter.changed.wait(waiter.mutex);
    }

    void attach(const std::shared_ptr<simulator::Waiter>& /*waiter*/) override { }

private:
    static constexpr int speed = 1000;

    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace tarn::soak
