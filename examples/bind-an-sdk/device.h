#pragma once

#include "controls.h"
#include "observers.h"

#include <sdk/ivna.h>

#include <memory>
#include <mutex>
#include <unordered_map>

namespace binding {

/// A connected instrument.
class Device final : public sdk::IVna {
public:
    /// `opened` is what `vv_open` returned. Closes and frees it.
    explicit Device(vv_device* opened);
    ~Device() override;

    using sdk::IVna::control;
    [[nodiscard]] std::shared_ptr<void> control(sdk::Key key) override;
    void addObserver(Observer* observer) override;
    void removeObserver(Observer* observer) override;
    [[nodiscard]] sdk::Model model() const override;

private:
    using Controls = std::unordered_map<sdk::Key, std::shared_ptr<void>>;

    static void onEvent(void* context, int event, unsigned done, unsigned total) noexcept;
    void offer();
    void drop();
    void notifyProgress(unsigned done, unsigned total);

    const Handle m_handle;
    Observers<Observer> m_observers;
    std::mutex m_mutex; ///< guards the map alone
    Controls m_controls; ///< those on offer
};

} // namespace binding
