#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/isystemtermscontrol.h>
#include <sdk/service/isystemtermscontrol.h>

#include <memory>

namespace tarn::devices::service {

/// `ISystemTermsControl` over the SDK's control of the same name. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkSystemTermsControl final : public ISystemTermsControl,
                                                                public IControlLifecycleObserver {
public:
    /// Attaches to the control, if the instrument offers it.
    ///
    /// Threads: reentrant; calls through.
    explicit SdkSystemTermsControl(ReacquiringControl<sdk::service::ISystemTermsControl> control);

    /// Detaches. Not from inside a notification of this control, which walks its observers.
    ///
    /// Threads: reentrant; blocks while one runs on another thread.
    ~SdkSystemTermsControl() override;

    [[nodiscard]] std::vector<vna::FrequencySegment> frequencyPlan() const override;
    void requestWriteTerms(QDateTime time, double temperature, const vna::ErrorTerms& terms) override;
    [[nodiscard]] bool isFrequencyOverrideSupported() const override;
    void requestWriteTerms(QDateTime time, double temperature, std::vector<vna::FrequencySegment> plan,
                           const vna::ErrorTerms& terms) override;
    void addObserver(utils::Association<Observer> observer) override;
    void removeObserver(utils::Association<Observer> observer) override;

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;

private:
    class Listener;

    ReacquiringControl<sdk::service::ISystemTermsControl> m_control;
    std::unique_ptr<Listener> m_listener;
};

} // namespace tarn::devices::service
