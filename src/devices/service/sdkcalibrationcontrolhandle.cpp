#include <devices/service/sdkcalibrationcontrolhandle.h>

#include <utility>

namespace tarn::devices::service {

using sdk::service::calibrations::ICalibrationController;

SdkCalibrationControlHandle::SdkCalibrationControlHandle(ReacquiringControl<ICalibrationController> control)
    : m_control{std::move(control)}
{
}

SdkCalibrationControlHandle::~SdkCalibrationControlHandle() = default;

LockedControl<ICalibrationController> SdkCalibrationControlHandle::lock() const
{
    return m_control.lock();
}

void SdkCalibrationControlHandle::onControlsAboutToBeReleased()
{
    emit controlsAboutToBeReleased();
}

void SdkCalibrationControlHandle::onControlsAvailable()
{
    emit controlsAvailable();
}

} // namespace tarn::devices::service
