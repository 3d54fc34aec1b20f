#pragma once

#include <conformance/description.h>
#include <sdk/key.h>

#include <memory>
#include <span>
#include <string_view>

namespace tarn::conformance {

/// A control that the contract knows.
struct ControlRow {
    std::string_view name;
    sdk::Key key;
    void (*describe)(Description& description, std::shared_ptr<void> control); ///< `control` is never null
};

[[nodiscard]] std::span<const ControlRow> controlRows();

// Of the rows. Each may call the control.
void describeFileMemory(Description& description, std::shared_ptr<void> control);
void describePotentiometers(Description& description, std::shared_ptr<void> control);
void describeUsbId(Description& description, std::shared_ptr<void> control);
void describeSerialNumber(Description& description, std::shared_ptr<void> control);
void describeMemoryOperations(Description& description, std::shared_ptr<void> control);
void describeQuillSynthesis(Description& description, std::shared_ptr<void> control);
void describeQuillPower(Description& description, std::shared_ptr<void> control);
void describeSableSynthesis(Description& description, std::shared_ptr<void> control);
void describeSablePower(Description& description, std::shared_ptr<void> control);
void describeLoLeakage(Description& description, std::shared_ptr<void> control);
void describeDornPower(Description& description, std::shared_ptr<void> control);
void describeDornSynthesis(Description& description, std::shared_ptr<void> control);
void describeVellSynthesis(Description& description, std::shared_ptr<void> control);
void describeSystemTerms(Description& description, std::shared_ptr<void> control);
void describeIfswCalibration(Description& description, std::shared_ptr<void> control);
void describePowerCalibration(Description& description, std::shared_ptr<void> control);
void describeFactoryCorrections(Description& description, std::shared_ptr<void> control);
void describeTemperature(Description& description, std::shared_ptr<void> control);
void describeCalibrations(Description& description, std::shared_ptr<void> control);

} // namespace tarn::conformance
