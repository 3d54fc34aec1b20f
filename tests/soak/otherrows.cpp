#include "otherrows.h"

#include <QObject>

#include <atomic>
#include <optional>

namespace tarn::soak {

namespace {

constexpr auto switched = devices::FactoryCorrection::Crosstalk;

/// What a notification of a switch says, as one number.
std::uint64_t switchValue(std::optional<devices::FactoryCorrection> correction, bool enabled)
{
    return correction ? 2 * static_cast<std::uint64_t>(*correction) + (enabled ? 1 : 0) : 0;
}

/// Tells a hearer of a control's temperature, until `stop`. Stays connected for as long as the control lives: Qt frees
/// a connection under locks that the thread sanitizer does not see.
class Ear final : public QObject {
public:
    using Control = devices::service::SdkTemperatureControl;

    Ear(Control& control, Hearer& hearer)
        : QObject{&control}
        , m_control{control}
        , m_hearer{&hearer}
    {
        connect(&control, &Control::temperaturesChanged, this, &Ear::hear, Qt::DirectConnection);
    }

    void stop() { m_hearer = nullptr; }

private:
    void hear()
    {
        if (auto* const hearer = m_hearer.load())
            hearer->hear(0, std::bit_cast<std::uint64_t>(m_control.temperature()));
    }

    Control& m_control;
    std::atomic<Hearer*> m_hearer;
};

} // namespace

void CorrectionsObservation::Witness::onEnabledChanged(sdk::CorrectionFlag correction, bool enabled)
{
    tell(2, switchValue(devices::fromSdkCorrection(correction), enabled));
}

void CorrectionsObservation::Observer::onEnabledChanged(devices::FactoryCorrection correction, bool enabled)
{
    hear(2, switchValue(correction, enabled));
}

Operations<FactoryCorrections::Control> FactoryCorrections::operations()
{
    return {
        {"isEnabled", Way::Call, Role::Reads,
         [](Control& control, const Use&) {
             return Answer{.isSuccess = {}, .number = control.isEnabled(switched) ? 1U : 0U};
         }},
        {"setEnabled", Way::Call, Role::Writes,
         [](Control& control, const Use& use) {
             control.setEnabled(switched, use.number % place.range != 0);
             return Answer{};
         },
         3},
        {"supported", Way::Call, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.supported());
             return Answer{};
         }},
    };
}

void TemperatureObservation::Witness::onTemperatureChanged()
{
    tell(0, std::bit_cast<std::uint64_t>(double{control->temperature()}));
}

std::shared_ptr<void> TemperatureObservation::stay(Control& control, Hearer& hearer)
{
    return {new Ear{control, hearer}, [](Ear* ear) { ear->stop(); }};
}

std::shared_ptr<void> TemperatureObservation::pass(const Instrument& instrument, Control& /*shared*/, Hearer& hearer)
{
    const auto control = instrument.create<Control>(Control::registryKey);
    control->onControlsAboutToBeReleased(); // as with a watcher
    QObject::connect(control.get(), &Control::temperaturesChanged, [&hearer] { hearer.hear(0); });
    control->onControlsAvailable();
    return control;
}

/// The snapshot is read without the instrument.
Operations<Temperature::Control> Temperature::operations()
{
    return {
        {"temperature", Way::None, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.temperature());
             return Answer{};
         }},
        {"modulesTemperature", Way::None, Role::Neither,
         [](Control& control, const Use&) {
             static_cast<void>(control.modulesTemperature());
             return Answer{};
         }},
    };
}

} // namespace tarn::soak
