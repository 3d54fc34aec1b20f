#include <conformance/controls.h>

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/idornsynthesiscontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>
#include <sdk/service/iquillpowercontrol.h>
#include <sdk/service/iquillsynthesiscontrol.h>
#include <sdk/service/isablepowermodulecontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>
#include <sdk/service/isystemtermscontrol.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <array>

namespace tarn::conformance {

namespace {

using sdk::service::calibrations::ICalibrationController;

constexpr std::array rows{
    ControlRow{"file-memory", sdk::service::IFileMemoryControl::key, &describeFileMemory},
    ControlRow{"potentiometers", sdk::service::IPotentiometersControl::key, &describePotentiometers},
    ControlRow{"usb-id", sdk::service::IMemoryUsbIdControl::key, &describeUsbId},
    ControlRow{"serial-number", sdk::service::IMemorySerialNumberControl::key, &describeSerialNumber},
    ControlRow{"memory-operations", sdk::service::IMemoryOperationsControl::key, &describeMemoryOperations},
    ControlRow{"quill-synthesis", sdk::service::IQuillSynthesisControl::key, &describeQuillSynthesis},
    ControlRow{"quill-power", sdk::service::IQuillPowerControl::key, &describeQuillPower},
    ControlRow{"sable-synthesis", sdk::service::ISableSynthesisControl::key, &describeSableSynthesis},
    ControlRow{"sable-power", sdk::service::ISablePowerModuleControl::key, &describeSablePower},
    ControlRow{"lo-leakage", sdk::service::ILoLeakageControl::key, &describeLoLeakage},
    ControlRow{"dorn-power", sdk::service::IDORNPowerControl::key, &describeDornPower},
    ControlRow{"dorn-synthesis", sdk::service::IDORNSynthesisControl::key, &describeDornSynthesis},
    ControlRow{"vell-synthesis", sdk::service::IVellSynthesisControl::key, &describeVellSynthesis},
    ControlRow{"system-terms", sdk::service::ISystemTermsControl::key, &describeSystemTerms},
    ControlRow{"ifsw-calibration", sdk::service::IVellIfswCalibrationControl::key, &describeIfswCalibration},
    ControlRow{"power-calibration", sdk::service::IVellFactoryPowerCalibrationControl::key, &describePowerCalibration},
    ControlRow{"corrections", sdk::IFactoryCorrectionControl::key, &describeFactoryCorrections},
    ControlRow{"temperature", sdk::ITemperatureControl::key, &describeTemperature},
    ControlRow{"calibrations-1", ICalibrationController::firstKey, &describeCalibrations},
    ControlRow{"calibrations-2", ICalibrationController::secondKey, &describeCalibrations},
};

} // namespace

std::span<const ControlRow> controlRows()
{
    return rows;
}

} // namespace tarn::conformance
