#include <simulator/controltable.h>

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
#include <simulator/calibrationcontrollers.h>
#include <simulator/factorycorrections.h>
#include <simulator/filememory.h>
#include <simulator/ifswcalibration.h>
#include <simulator/loleakage.h>
#include <simulator/memoryoperations.h>
#include <simulator/modulecontrols.h>
#include <simulator/potentiometers.h>
#include <simulator/powercalibration.h>
#include <simulator/serialnumber.h>
#include <simulator/systemterms.h>
#include <simulator/temperature.h>
#include <simulator/usbid.h>

#include <algorithm>
#include <array>

namespace tarn::simulator {

namespace {

using sdk::service::calibrations::ICalibrationController;
using enum Profile;
constexpr Families all{Pell, Zinnia, Marl, Tove, Wisp, Glint, Brae, Vell, MultiportLum, MultiportCommon};
constexpr Families quill{Marl, Glint, Brae, MultiportLum};
constexpr Families dorn{Pell, Wisp};
constexpr Families sable{Zinnia, Tove, MultiportCommon};

struct Row {
    sdk::Key key{};
    MakeControl (*install)(const std::shared_ptr<Bench>&) = nullptr;
    Families families;
};

constexpr std::array table{
    Row{sdk::service::IFileMemoryControl::key, installFileMemory, all},
    Row{sdk::service::IPotentiometersControl::key, installPotentiometers, all},
    Row{sdk::service::IMemoryUsbIdControl::key, installUsbId, all},
    Row{sdk::service::IMemorySerialNumberControl::key, installSerialNumber, all},
    Row{sdk::service::IMemoryOperationsControl::key, installMemoryOperations, all},
    Row{sdk::service::IQuillSynthesisControl::key, installQuillSynthesis, quill},
    Row{sdk::service::IQuillPowerControl::key, installQuillPower, quill},
    Row{sdk::service::ISableSynthesisControl::key, installSableSynthesis, sable},
    Row{sdk::service::ISablePowerModuleControl::key, installSablePower, sable},
    Row{sdk::service::ILoLeakageControl::key, installLoLeakage, {Marl, Glint, Brae, Vell, MultiportLum}},
    Row{sdk::service::IDORNPowerControl::key, installDornPower, dorn},
    Row{sdk::service::IDORNSynthesisControl::key, installDornSynthesis, dorn},
    Row{sdk::service::IVellSynthesisControl::key, installVellSynthesis, {Vell}},
    Row{sdk::service::ISystemTermsControl::key, installSystemTerms, all},
    Row{sdk::service::IVellIfswCalibrationControl::key, installIfswCalibration, {Vell}},
    Row{sdk::service::IVellFactoryPowerCalibrationControl::key, installPowerCalibration, {Vell}},
    Row{ICalibrationController::firstKey, installSystemCalibrations, all},
    Row{ICalibrationController::secondKey, installFactoryCalibrations, {Vell}},
    Row{sdk::IFactoryCorrectionControl::key, installFactoryCorrections, all},
    Row{sdk::ITemperatureControl::key, installTemperature, all},
};

} // namespace

std::vector<InstalledControl> installControls(Profile profile, const std::shared_ptr<Bench>& bench)
{
    std::vector<InstalledControl> controls;
    if (profile == Bare)
        return controls;
    for (const auto& row : table)
        controls.push_back({row.key, row.install(bench), row.families});
    return controls;
}

bool isOffered(const InstalledControl& control, Profile profile, sdk::Model model)
{
    return profile == Full || control.families.contains(familyOf(model));
}

} // namespace tarn::simulator
