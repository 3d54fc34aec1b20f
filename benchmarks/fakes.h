#pragma once

#include <devices/reacquiringcontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <memory>
#include <vector>

namespace tarn::benchmarks {

// What is called through an interface, in a file of its own: a compiler that sees it calls it directly, which no
// program does that has more than one.

[[nodiscard]] std::shared_ptr<sdk::service::ILoLeakageControl> makeLoLeakage();

/// Has three intermediate frequencies.
[[nodiscard]] std::shared_ptr<sdk::service::IVellSynthesisControl> makeVellSynthesis();

constexpr unsigned int serialNumber = 1'000'001;

/// Completes every request at once.
class SerialNumber : public sdk::service::IMemorySerialNumberControl {
public:
    bool isAvailable() override;
    void serialNumber(sdk::Completion<unsigned int> done) override;
    void writeSerialNumber(unsigned int number, sdk::Completion<> done) override;
    void addObserver(Observer* observer) override;
    void removeObserver(Observer* observer) override;

    Observer* attached = nullptr; ///< the adapter's
};

/// Completes every request from a thread of its own, one at a time.
[[nodiscard]] std::shared_ptr<SerialNumber> makeRemoteSerialNumber();

/// An observer that counts what it hears.
[[nodiscard]] std::unique_ptr<devices::service::ISerialNumberControl::IObserver> makeEars();

/// Tells all of them, by nothing but a loop.
void tellAll(const std::vector<devices::service::ISerialNumberControl::IObserver*>& observers,
             const devices::service::Progress& progress);

/// The adapter of a control that is always there.
template <class Adapter, class Sdk>
[[nodiscard]] std::shared_ptr<Adapter> adapterOf(const std::shared_ptr<Sdk>& control)
{
    return std::make_shared<Adapter>(
        devices::ReacquiringControl<Sdk>{[control] { return sdk::ControlHandle<Sdk>{control}; }});
}

/// The adapter of the control that `device` has.
template <class Adapter, class Sdk, class Device>
[[nodiscard]] std::shared_ptr<Adapter> adapterOn(const std::shared_ptr<Device>& device)
{
    return std::make_shared<Adapter>(devices::ReacquiringControl<Sdk>{
        [device] { return sdk::ControlHandle<Sdk>{device->template control<Sdk>(Sdk::key)}; }});
}

} // namespace tarn::benchmarks
