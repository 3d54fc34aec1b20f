#include "tuningrows.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace tarn::soak {

namespace {

using Quill = devices::service::SdkQuillPowerControl;

constexpr std::tuple quillSignals{
    &Quill::loPowerChanged,
    &Quill::rfPowerChanged,
    &Quill::syntPowerModeChanged,
    &Quill::attenuationStepChanged,
    &Quill::stepAttenuatorModeChanged,
    &Quill::discreteAttenuatorEnabledChanged,
    &Quill::discreteAttenuatorModeChanged,
    &Quill::attenuationModeChanged,
    &Quill::commonAttenuationModeChanged,
    &Quill::commonAttenuationStepChanged,
    &Quill::ampTPort1Changed,
    &Quill::ampTPort2Changed,
    &Quill::ampRPort1Changed,
};

constexpr std::array references{5e6, 10e6, 12.8e6, 25e6};

} // namespace

Operations<QuillPower::Control> QuillPower::operations()
{
    auto operations = setting<Control>("rfPower", &Control::rfPower, "setRfPower", &Control::setRfPower, place, 8, 1);
    operations.push_back({"reset", Way::Call, Role::Wipes,
                          [](Control& control, const Use&) {
                              control.reset();
                              return Answer{};
                          },
                          1, 1, std::tuple_size_v<decltype(quillSignals)>});
    return operations;
}

/// They come on the thread that makes the operation.
void QuillPower::watchSignals(Control& control)
{
    const auto count = [] {
        if (auto* const ticket = Ticket::current())
            ++ticket->emissions;
    };
    std::apply([&](auto... signal) { (QObject::connect(&control, signal, count), ...); }, quillSignals);
}

Operations<DornSynthesis::Control> DornSynthesis::operations()
{
    return {
        {"currentReferenceFrequency", Way::Call, Role::Reads,
         [](Control& control, const Use&) {
             const auto* const found = std::ranges::find(references, control.currentReferenceFrequency());
             return Answer{.isSuccess = {}, .number = static_cast<std::uint64_t>(found - references.begin())};
         }},
        {"setReferenceFrequency", Way::Call, Role::Writes,
         [](Control& control, const Use& use) {
             control.setReferenceFrequency(references.at(use.number % references.size()));
             return Answer{};
         }},
    };
}

} // namespace tarn::soak
