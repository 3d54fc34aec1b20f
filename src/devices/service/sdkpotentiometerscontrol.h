#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <devices/service/ipotentiometerscontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

namespace tarn::devices::service {

/// `IPotentiometersControl` over the SDK's control of the same name. See there.
class TARN_DEVICES_SERVICE_EXPORT SdkPotentiometersControl final : public IPotentiometersControl {
public:
    /// Threads: reentrant; at once.
    explicit SdkPotentiometersControl(ReacquiringControl<sdk::service::IPotentiometersControl> control);

    [[nodiscard]] std::vector<Potentiometer> potentiometers() const override;
    [[nodiscard]] std::expected<int, Error> readFromEeprom(unsigned long index) override;
    [[nodiscard]] std::expected<void, Error> writeToRam(unsigned long index, int value) override;
    [[nodiscard]] std::expected<void, Error> writeToEeprom(unsigned long index, int value) override;

private:
    ReacquiringControl<sdk::service::IPotentiometersControl> m_control;
};

} // namespace tarn::devices::service
