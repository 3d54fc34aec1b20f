#include "table.h"

#include "calibrationrows.h"
#include "memoryrows.h"
#include "otherrows.h"
#include "tuningrows.h"

namespace tarn::soak {

namespace {

using devices::service::SdkCalibrationControlHandle;
using sdk::service::calibrations::ICalibrationController;

template <class... Rows>
struct Table {
    static std::unique_ptr<Instrument> makeInstrument(Ledger& ledger)
    {
        return std::make_unique<Instrument>(ledger, devices::ControlTypes<typename Rows::Control...>{});
    }

    static std::vector<std::unique_ptr<Exercise>> makeExercises(Instrument& instrument, std::size_t threads)
    {
        std::vector<std::unique_ptr<Exercise>> exercises;
        (exercises.push_back(std::make_unique<ControlExercise<Rows>>(instrument, exercises.size(), threads)), ...);
        return exercises;
    }
};

using AllControls
    = Table<FileMemory, Potentiometers, UsbIdentity, SerialNumber, MemoryOperations, QuillSynthesis, QuillPower,
            SableSynthesis, SablePower, LoLeakage, DornPower, DornSynthesis, VellSynthesis, SystemTerms,
            IfswCalibration, PowerCalibration, FactoryCorrections, Temperature,
            CalibrationController<SdkCalibrationControlHandle::firstRegistryKey, ICalibrationController::firstKey>,
            CalibrationController<SdkCalibrationControlHandle::secondRegistryKey, ICalibrationController::secondKey>>;

} // namespace

std::unique_ptr<Instrument> makeInstrument(Ledger& ledger)
{
    return AllControls::makeInstrument(ledger);
}

std::vector<std::unique_ptr<Exercise>> makeExercises(Instrument& instrument, std::size_t threads)
{
    return AllControls::makeExercises(instrument, threads);
}

} // namespace tarn::soak
