#pragma once

#include "ticket.h"

#include <sdk/ivna.h>
#include <utils/mutex.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::soak {

/// The device, which tells the ticket of a thread what that asks for, and knows which of the controls that it has
/// handed out are alive. Thread-safe.
class CountedVna final : public sdk::IVna {
public:
    explicit CountedVna(std::shared_ptr<sdk::IVna> device)
        : m_device{std::move(device)}
    {
    }

    using IVna::control;

    std::shared_ptr<void> control(sdk::Key key) override
    {
        auto control = m_device->control(key);
        if (auto* const ticket = Ticket::current())
            ticket->onAsked(control);
        if (control)
            remember(key, control);
        return control;
    }

    void addObserver(Observer* observer) override { m_device->addObserver(observer); }
    void removeObserver(Observer* observer) override { m_device->removeObserver(observer); }
    [[nodiscard]] sdk::Model model() const override { return m_device->model(); }

    /// How many of the controls that were handed out are alive.
    [[nodiscard]] std::size_t liveControls()
    {
        const utils::MutexLock lock{m_mutex};
        std::size_t count = 0;
        for (auto& [key, controls] : m_handedOut) {
            std::erase_if(controls, [](const auto& control) { return control.expired(); });
            count += controls.size();
        }
        return count;
    }

private:
    void remember(sdk::Key key, const std::shared_ptr<void>& control)
    {
        const utils::MutexLock lock{m_mutex};
        auto& controls = m_handedOut[key];
        if (!controls.empty() && !controls.back().owner_before(control) && !control.owner_before(controls.back()))
            return;
        std::erase_if(controls, [](const auto& earlier) { return earlier.expired(); });
        controls.push_back(control);
    }

    const std::shared_ptr<sdk::IVna> m_device;
    utils::Mutex m_mutex;
    std::unordered_map<sdk::Key, std::vector<std::weak_ptr<void>>> m_handedOut TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::soak
