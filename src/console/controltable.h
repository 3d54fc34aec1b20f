#pragma once

#include <console/calibrationscommand.h>
#include <console/correctionscommand.h>
#include <console/filescommand.h>
#include <console/ifswcalibrationcommand.h>
#include <console/loleakagecommand.h>
#include <console/memorycommand.h>
#include <console/potentiometerscommand.h>
#include <console/powercalibrationcommand.h>
#include <console/serialcommand.h>
#include <console/systemtermscommand.h>
#include <console/temperaturecommand.h>
#include <console/usbcommand.h>
#include <devices/instrumentcontrols.h>
#include <sdk/key.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarn::console {

/// What the program knows about one control.
struct ControlRow {
    std::string_view name; ///< the control's stem with hyphens
    std::uint64_t registryKey;
    sdk::Key sdkKey; ///< under which the device has it
    std::string_view purpose; ///< one sentence for people
    void (*addTo)(CommandLine&); ///< adds its commands
    void (*tour)(Tour&); ///< its part of the tour; the instrument offers the control
};

/// A list of control commands. Each is a struct with the type of its control (`Control`) and the
/// members of a row.
template <class... Commands>
struct ControlCommands {
    using Types = devices::ControlTypes<typename Commands::Control...>;

    static constexpr ControlRow rows[] = {
        {Commands::name, Commands::registryKey, Commands::sdkKey, Commands::purpose, &Commands::addTo,
         &Commands::tour}...,
    };
};

/// All of them, in the order of the registry; a new control is a new line here.
using AllControls = ControlCommands<
    // clang-format off
    FilesCommand,
    PotentiometersCommand,
    UsbCommand,
    SerialCommand,
    MemoryCommand,
    LoLeakageCommand,
    SystemTermsCommand,
    IfswCalibrationCommand,
    PowerCalibrationCommand,
    CorrectionsCommand,
    TemperatureCommand,
    FirstCalibrationsCommand,
    SecondCalibrationsCommand
    // clang-format on
    >;

using AllControlTypes = AllControls::Types;

/// The rows of all controls.
[[nodiscard]] std::span<const ControlRow> controlRows();

/// The row of the control under `registryKey`, or null.
[[nodiscard]] const ControlRow* findControlRow(std::uint64_t registryKey);

/// The name of the control under `registryKey`; its key if there is no row for it.
[[nodiscard]] std::string controlName(std::uint64_t registryKey);

} // namespace tarn::console
