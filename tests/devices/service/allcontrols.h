#pragma once

#include <devices/instrumentcontrols.h>
#include <devices/service/ifilememorycontrol.h>
#include <devices/service/imemoryoperationscontrol.h>
#include <devices/service/ipotentiometerscontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/isystemtermscontrol.h>
#include <devices/service/iusbidcontrol.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>
#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>

namespace tarn::tests {

/// The public types of all service controls.
using AllControls = devices::ControlTypes<
    devices::service::IFileMemoryControl, devices::service::IPotentiometersControl, devices::service::IUsbIdControl,
    devices::service::ISerialNumberControl, devices::service::IMemoryOperationsControl,
    devices::service::SdkQuillSynthesisControl, devices::service::SdkQuillPowerControl,
    devices::service::SdkSableSynthesisControl, devices::service::SdkSablePowerControl,
    devices::service::SdkLoLeakageControl, devices::service::SdkDornPowerControl,
    devices::service::SdkDornSynthesisControl, devices::service::SdkVellSynthesisControl,
    devices::service::ISystemTermsControl, devices::service::SdkVellIfswCalibrationControl,
    devices::service::SdkVellFactoryPowerCalibrationControl, devices::service::SdkFactoryCorrectionControl,
    devices::service::SdkTemperatureControl, devices::service::SdkCalibrationControlHandle>;

} // namespace tarn::tests
