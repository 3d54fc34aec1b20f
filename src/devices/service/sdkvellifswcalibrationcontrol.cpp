#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <devices/service/access.h>
#include <devices/service/convertall.h>
#include <devices/service/frequencyplanconversion.h>
#include <devices/service/writeobservers.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IVellIfswCalibrationControl;

namespace {

using Adapter = SdkVellIfswCalibrationControl;

Sdk::ReceiverCalibration toSdkReceiverCalibration(const Adapter::ReceiverCalibration& receiver)
{
    auto linearities = convertAll<Sdk::IfswLinearity>(
        receiver.linearities, [](const Adapter::IfswLinearity& linearity) -> Sdk::IfswLinearity {
            return {linearity.level, linearity.magnitudeError, linearity.phaseError};
        });
    auto ratios = convertAll<Sdk::IfswRatio>(receiver.ratios, [](const Adapter::IfswRatio& ratio) -> Sdk::IfswRatio {
        return {ratio.intermediateFrequency, ratio.magnitude, ratio.phase};
    });
    return {std::move(ratios), std::move(linearities)};
}

} // namespace

SdkVellIfswCalibrationControl::SdkVellIfswCalibrationControl(
    ReacquiringControl<sdk::service::IVellIfswCalibrationControl> control)
    : m_control{std::move(control)}
    , m_observers{std::make_unique<Observers>()}
{
}

SdkVellIfswCalibrationControl::~SdkVellIfswCalibrationControl() = default;

std::vector<vna::FrequencySegment> SdkVellIfswCalibrationControl::frequencyPlan() const
{
    return valueOr(std::vector<vna::FrequencySegment>{}, m_control,
                   [](Sdk& sdk) { return fromSdkFrequencyPlan(sdk.frequencyPlan()); });
}

void SdkVellIfswCalibrationControl::saveCalibrationData(IfswCalibrationData data)
{
    ifAvailable(m_control, [&](Sdk& sdk) {
        sdk.saveCalibrationData({std::move(data.frequencies), toSdkReceiverCalibration(data.reference),
                                 toSdkReceiverCalibration(data.reflection),
                                 toSdkReceiverCalibration(data.transmission)});
    });
}

void SdkVellIfswCalibrationControl::addObserver(Observer* observer)
{
    m_observers->add(m_control, observer);
}

void SdkVellIfswCalibrationControl::removeObserver(Observer* observer)
{
    m_observers->remove(m_control, observer);
}

void SdkVellIfswCalibrationControl::onControlsAboutToBeReleased()
{
    m_observers->detach(m_control);
}

void SdkVellIfswCalibrationControl::onControlsAvailable()
{
    m_observers->attach(m_control);
}

} // namespace tarn::devices::service
