#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>

#include <devices/service/access.h>
#include <devices/service/convertall.h>
#include <devices/service/frequencyplanconversion.h>
#include <devices/service/writeobservers.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;

namespace {

using Point = SdkVellFactoryPowerCalibrationControl::PowerCalPoint;

std::vector<Sdk::PowerCalPoint> toSdkPoints(const std::vector<Point>& points)
{
    return convertAll<Sdk::PowerCalPoint>(points, [](const Point& point) -> Sdk::PowerCalPoint {
        return {point.frequency,
                point.nominalPower,
                point.measuredPower,
                point.isSourceAmplifierOn,
                point.isSourceAttenuatorOn,
                point.sourceAttenuation,
                point.isReceiverAttenuatorOn,
                point.receiverAttenuation,
                point.receiverPower};
    });
}

} // namespace

SdkVellFactoryPowerCalibrationControl::SdkVellFactoryPowerCalibrationControl(
    ReacquiringControl<sdk::service::IVellFactoryPowerCalibrationControl> control)
    : m_control{std::move(control)}
    , m_observers{std::make_unique<Observers>()}
{
}

SdkVellFactoryPowerCalibrationControl::~SdkVellFactoryPowerCalibrationControl() = default;

std::vector<vna::FrequencySegment> SdkVellFactoryPowerCalibrationControl::frequencyPlan() const
{
    return valueOr(std::vector<vna::FrequencySegment>{}, m_control,
                   [](Sdk& sdk) { return fromSdkFrequencyPlan(sdk.frequencyPlan()); });
}

void SdkVellFactoryPowerCalibrationControl::saveCalibrationData(
    std::chrono::time_point<std::chrono::system_clock, std::chrono::seconds> time, double temperature,
    std::vector<PowerCalPoint> points)
{
    ifAvailable(m_control, [&](Sdk& sdk) {
        sdk.saveCalibrationData(time.time_since_epoch().count(), toSdkPoints(points), temperature);
    });
}

void SdkVellFactoryPowerCalibrationControl::addObserver(Observer* observer)
{
    m_observers->add(m_control, observer);
}

void SdkVellFactoryPowerCalibrationControl::removeObserver(Observer* observer)
{
    m_observers->remove(m_control, observer);
}

void SdkVellFactoryPowerCalibrationControl::onControlsAboutToBeReleased()
{
    m_observers->detach(m_control);
}

void SdkVellFactoryPowerCalibrationControl::onControlsAvailable()
{
    m_observers->attach(m_control);
}

} // namespace tarn::devices::service
