#pragma once

#include <console/tuningcommand.h>
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
#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/key.h>
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

#include <cstdint>
#include <string_view>

namespace tarn::console {

class CommandLine;
class Tour;

/// What the commands of a control, which the library has as `Type` and the device as `Interface`, are
/// derived from. Besides they have a name, the control's stem with hyphens, a purpose, one sentence for
/// people, and two functions, in a file of their own: `addTo` adds them to the command line, and
/// `tour` is their part of the tour, while the instrument offers the control.
template <class Type, class Interface, std::uint64_t key = Type::registryKey, sdk::Key deviceKey = Interface::key>
struct CommandOf {
    using Control = Type;

    static constexpr std::uint64_t registryKey = key;
    static constexpr sdk::Key sdkKey = deviceKey; ///< under which the device has it
};

/// The same for a control that is described by its settings, by `describe`, in a file of its own.
template <class Type, class Interface, const Tuning& (*describe)()>
struct TuningCommand : CommandOf<Type, Interface> {
    static void addTo(CommandLine& line) { addTuningCommands(line, describe()); }
    static void tour(Tour& tour) { tourTuning(tour, describe()); }
};

/// `files list|space|read|write|delete`: the instrument's file memory.
struct FilesCommand : CommandOf<devices::service::IFileMemoryControl, sdk::service::IFileMemoryControl> {
    static constexpr std::string_view name = "file-memory";
    static constexpr std::string_view purpose = "Keeps small files in the instrument's non-volatile memory.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `potentiometers list|read|write`.
struct PotentiometersCommand
    : CommandOf<devices::service::IPotentiometersControl, sdk::service::IPotentiometersControl> {
    static constexpr std::string_view name = "potentiometers";
    static constexpr std::string_view purpose = "Trims the analogue circuits by digital potentiometers.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `usb show|list|write`.
struct UsbCommand : CommandOf<devices::service::IUsbIdControl, sdk::service::IMemoryUsbIdControl> {
    static constexpr std::string_view name = "usb-id";
    static constexpr std::string_view purpose = "Decides as which model the instrument reports itself over USB.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `serial show|write`.
struct SerialCommand : CommandOf<devices::service::ISerialNumberControl, sdk::service::IMemorySerialNumberControl> {
    static constexpr std::string_view name = "serial-number";
    static constexpr std::string_view purpose = "Keeps the serial number that identifies the instrument.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `memory read|write|erase|check`: the image of the instrument's memory.
struct MemoryCommand : CommandOf<devices::service::IMemoryOperationsControl, sdk::service::IMemoryOperationsControl> {
    static constexpr std::string_view name = "memory-operations";
    static constexpr std::string_view purpose
        = "Reads, writes, erases and checks the instrument's non-volatile memory as a whole.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `quill-synthesis show|get|set|reset`.
struct QuillSynthesisCommand : TuningCommand<devices::service::SdkQuillSynthesisControl,
                                             sdk::service::IQuillSynthesisControl, &quillSynthesisTuning> {
    static constexpr std::string_view name = "quill-synthesis";
    static constexpr std::string_view purpose = "Selects reference and intermediate frequency of a Quill module.";
};

/// `quill-power show|get|set|load|reset|watch`.
struct QuillPowerCommand
    : TuningCommand<devices::service::SdkQuillPowerControl, sdk::service::IQuillPowerControl, &quillPowerTuning> {
    static constexpr std::string_view name = "quill-power";
    static constexpr std::string_view purpose = "Sets power codes, attenuators and amplifiers of a Quill module.";
};

/// `sable-synthesis show|get|set`.
struct SableSynthesisCommand : TuningCommand<devices::service::SdkSableSynthesisControl,
                                             sdk::service::ISableSynthesisControl, &sableSynthesisTuning> {
    static constexpr std::string_view name = "sable-synthesis";
    static constexpr std::string_view purpose
        = "Sets power codes, filters, capacitors and delay of a Sable synthesizer.";
};

/// `sable-power show|get|set|load`.
struct SablePowerCommand
    : TuningCommand<devices::service::SdkSablePowerControl, sdk::service::ISablePowerModuleControl, &sablePowerTuning> {
    static constexpr std::string_view name = "sable-power";
    static constexpr std::string_view purpose = "Sets DACs, attenuators and the DDS correction of a Sable device.";
};

/// `lo-leakage show|on|off`.
struct LoLeakageCommand : CommandOf<devices::service::SdkLoLeakageControl, sdk::service::ILoLeakageControl> {
    static constexpr std::string_view name = "lo-leakage";
    static constexpr std::string_view purpose
        = "Lets the local oscillator reach the test ports, to measure how much of it leaks.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `dorn-power show|get|set|load`.
struct DornPowerCommand
    : TuningCommand<devices::service::SdkDornPowerControl, sdk::service::IDORNPowerControl, &dornPowerTuning> {
    static constexpr std::string_view name = "dorn-power";
    static constexpr std::string_view purpose = "Sets power codes, DACs and receiver gains of a Dorn device.";
};

/// `dorn-synthesis show|get|set`.
struct DornSynthesisCommand : TuningCommand<devices::service::SdkDornSynthesisControl,
                                            sdk::service::IDORNSynthesisControl, &dornSynthesisTuning> {
    static constexpr std::string_view name = "dorn-synthesis";
    static constexpr std::string_view purpose = "Selects the reference frequency of a Dorn device.";
};

/// `vell-synthesis show|get|set`.
struct VellSynthesisCommand : TuningCommand<devices::service::SdkVellSynthesisControl,
                                            sdk::service::IVellSynthesisControl, &vellSynthesisTuning> {
    static constexpr std::string_view name = "vell-synthesis";
    static constexpr std::string_view purpose = "Selects the intermediate frequency of a Vell device.";
};

/// `system-terms plan|override|write|example|example-plan`.
struct SystemTermsCommand : CommandOf<devices::service::ISystemTermsControl, sdk::service::ISystemTermsControl> {
    static constexpr std::string_view name = "system-terms";
    static constexpr std::string_view purpose
        = "Stores the system error terms that the instrument corrects its measurements with.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `ifsw-calibration plan|save|example`.
struct IfswCalibrationCommand
    : CommandOf<devices::service::SdkVellIfswCalibrationControl, sdk::service::IVellIfswCalibrationControl> {
    static constexpr std::string_view name = "ifsw-calibration";
    static constexpr std::string_view purpose = "Stores the factory calibration of the IF switches in the receivers.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `power-calibration plan|save|example`.
struct PowerCalibrationCommand : CommandOf<devices::service::SdkVellFactoryPowerCalibrationControl,
                                           sdk::service::IVellFactoryPowerCalibrationControl> {
    static constexpr std::string_view name = "power-calibration";
    static constexpr std::string_view purpose = "Stores the factory calibration of the power at the test ports.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `corrections list|enable|disable|watch`.
struct CorrectionsCommand : CommandOf<devices::service::SdkFactoryCorrectionControl, sdk::IFactoryCorrectionControl> {
    static constexpr std::string_view name = "corrections";
    static constexpr std::string_view purpose = "Switches the corrections that were stored at the factory.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `temperature show|watch`.
struct TemperatureCommand : CommandOf<devices::service::SdkTemperatureControl, sdk::ITemperatureControl> {
    static constexpr std::string_view name = "temperature";
    static constexpr std::string_view purpose = "Reports the temperatures of the instrument and of its modules.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// `calibrations status|watch`, for both controllers.
struct FirstCalibrationsCommand
    : CommandOf<devices::service::SdkCalibrationControlHandle, sdk::service::calibrations::ICalibrationController,
                devices::service::SdkCalibrationControlHandle::firstRegistryKey,
                sdk::service::calibrations::ICalibrationController::firstKey> {
    static constexpr std::string_view name = "calibrations-1";
    static constexpr std::string_view purpose = "Looks after the first group of calibration units.";
    static void addTo(CommandLine& line);
    static void tour(Tour& tour);
};

/// The second controller; it has no commands of its own.
struct SecondCalibrationsCommand
    : CommandOf<devices::service::SdkCalibrationControlHandle, sdk::service::calibrations::ICalibrationController,
                devices::service::SdkCalibrationControlHandle::secondRegistryKey,
                sdk::service::calibrations::ICalibrationController::secondKey> {
    static constexpr std::string_view name = "calibrations-2";
    static constexpr std::string_view purpose = "Looks after the second group of calibration units.";
    static void addTo(CommandLine& /*line*/) { }
    static void tour(Tour& tour);
};

/// A list of them.
template <class... Commands>
struct ControlCommands {
    using Types = devices::ControlTypes<typename Commands::Control...>; ///< those of their controls
};

/// All of them, in the order of the registry.
using AllControls
    = ControlCommands<FilesCommand, PotentiometersCommand, UsbCommand, SerialCommand, MemoryCommand,
                      QuillSynthesisCommand, QuillPowerCommand, SableSynthesisCommand, SablePowerCommand,
                      LoLeakageCommand, DornPowerCommand, DornSynthesisCommand, VellSynthesisCommand,
                      SystemTermsCommand, IfswCalibrationCommand, PowerCalibrationCommand, CorrectionsCommand,
                      TemperatureCommand, FirstCalibrationsCommand, SecondCalibrationsCommand>;

} // namespace tarn::console
