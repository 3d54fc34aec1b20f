#pragma once

#include "ledger.h"
#include "ticket.h"

#include <sdk/itemperaturecontrol.h>
#include <sdk/ivna.h>
#include <utils/mutex.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::soak {

/// The device, which knows for whom it is asked for a control (the ticket of a thread, or else a notification of the
/// lifecycle or of the temperatures) and which of the controls that it has handed out are alive. Thread-safe.
class CountedVna final : public sdk::IVna {
public:
    CountedVna(std::shared_ptr<sdk::IVna> device, Ledger& ledger)
        : m_device{std::move(device)}
        , m_ledger{ledger}
    {
    }

    using IVna::control;

    std::shared_ptr<void> control(sdk::Key key) override
    {
        auto control = m_device->control(key);
        if (auto* const ticket = Ticket::current())
            ticket->onAsked(control);
        else if (!s_isNotifying)
            m_strayAsks += key == sdk::ITemperatureControl::key ? 0U : 1U; // or else of an adapter that is notified
        else if (isNeedless(key, control))
            m_ledger.note(Breach::Duplicated, "a notification asked for a control although the handle was alive");
        ++m_asks;
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

    /// Those of the adapter that all share.
    [[nodiscard]] Handles& handles(sdk::Key key)
    {
        const utils::MutexLock lock{m_mutex};
        return m_handles[key];
    }

    /// Around a notification of the lifecycle, on the instrument's thread.
    void beginNotification()
    {
        s_isNotifying = true;
        forAllHandles([](Handles& handles) { handles.begin(); });
    }
    void endNotification()
    {
        forAllHandles([](Handles& handles) { handles.end(); });
        s_isNotifying = false;
    }

    /// How often it was asked.
    [[nodiscard]] std::uint64_t asks() const { return m_asks; }

    /// How often of that for nobody known, since the last call.
    std::uint64_t takeStrayAsks() { return m_strayAsks.exchange(0); }

private:
    template <class Action>
    void forAllHandles(Action action)
    {
        const utils::MutexLock lock{m_mutex};
        for (auto& [key, handles] : m_handles)
            action(handles);
    }

    /// Not of an adapter that nobody uses yet: it is being created.
    bool isNeedless(sdk::Key key, const std::shared_ptr<void>& answer)
    {
        const utils::MutexLock lock{m_mutex};
        const auto used = m_handles.find(key);
        return used != m_handles.end() && used->second.answer(answer);
    }

    void remember(sdk::Key key, const std::shared_ptr<void>& control)
    {
        const utils::MutexLock lock{m_mutex};
        auto& controls = m_handedOut[key];
        if (!controls.empty() && !controls.back().owner_before(control) && !control.owner_before(controls.back()))
            return;
        std::erase_if(controls, [](const auto& earlier) { return earlier.expired(); });
        controls.push_back(control);
    }

    static inline thread_local bool s_isNotifying = false;

    const std::shared_ptr<sdk::IVna> m_device;
    Ledger& m_ledger;
    std::atomic<std::uint64_t> m_asks = 0;
    std::atomic<std::uint64_t> m_strayAsks = 0;
    utils::Mutex m_mutex;
    std::unordered_map<sdk::Key, std::vector<std::weak_ptr<void>>> m_handedOut TARN_GUARDED_BY(m_mutex);
    std::unordered_map<sdk::Key, Handles> m_handles TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::soak
