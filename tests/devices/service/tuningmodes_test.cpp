// The numbers of the modes, which the adapters hand on as numbers: a name means the same on both sides.

#include "tuningcontrols.h"

#include <gtest/gtest.h>

namespace tarn::tests::tuningmodes {
namespace {

/// Whether `modes` have the numbers from `first` on.
template <int first, auto... modes>
constexpr bool areNumberedFrom()
{
    int next = first;
    return ((static_cast<int>(modes) == next++) && ...);
}

template <class... Modes>
constexpr bool areAutomaticOrManual = (areNumberedFrom<0, Modes::Automatic, Modes::Manual>() && ...);

template <class Step>
constexpr bool areThroughFirstAndSecond = areNumberedFrom<0, Step::Through, Step::First, Step::Second>();

template <class Side>
void expectTheNumbersOfQuillPower()
{
    using Power = typename Side::SyntPowerMode;
    using Step = typename Side::StepAttenuatorMode;
    using Gain = typename Side::AmpGain;
    EXPECT_TRUE((areNumberedFrom<0, Power::Normal, Power::High>()));
    EXPECT_TRUE((areAutomaticOrManual<typename Side::AttenuationMode, typename Side::DiscreteAttenuatorMode,
                                      typename Side::CommonAttenuationMode>));
    EXPECT_TRUE(areThroughFirstAndSecond<Step>);
    EXPECT_TRUE((areNumberedFrom<3, Step::Both>()));
    EXPECT_TRUE((areNumberedFrom<0, Gain::Low, Gain::High>()));
}

TEST(TuningModes, OfQuillPowerHaveTheirNumbersOnBothSides)
{
    expectTheNumbersOfQuillPower<QuillPower::Sdk>();
    expectTheNumbersOfQuillPower<QuillPower::Adapter>();
}

TEST(TuningModes, OfDornPowerHaveTheirNumbersOnBothSides)
{
    using Dac = DornPower::Sdk::DacMode; // a Boolean on the other side
    EXPECT_TRUE((areAutomaticOrManual<DornPower::Sdk::ControlMode, DornPower::Adapter::ControlMode>));
    EXPECT_TRUE((areNumberedFrom<0, Dac::Separate, Dac::Union>()));
}

template <class Side>
void expectTheNumbersOfSablePower()
{
    using Power = typename Side::PowerMode;
    using Constant = typename Side::PowerConstant;
    using Correction = typename Side::DdsCorrectionMode;
    EXPECT_TRUE((areAutomaticOrManual<typename Side::DacMode, typename Side::DiscreteAttenuatorMode>));
    EXPECT_TRUE((areNumberedFrom<0, Power::Normal, Power::High>()));
    EXPECT_TRUE(areThroughFirstAndSecond<typename Side::StepAttenuatorMode>);
    EXPECT_TRUE((areNumberedFrom<0, Constant::Code, Constant::Level>()));
    EXPECT_TRUE((areNumberedFrom<0, Correction::Factory, Correction::User>()));
}

TEST(TuningModes, OfSablePowerHaveTheirNumbersOnBothSidesButForTwoStepsOfTheAttenuator)
{
    using SdkStep = SablePower::Sdk::StepAttenuatorMode;
    using Step = SablePower::Adapter::StepAttenuatorMode;
    expectTheNumbersOfSablePower<SablePower::Sdk>();
    expectTheNumbersOfSablePower<SablePower::Adapter>();
    EXPECT_TRUE((areNumberedFrom<3, SdkStep::Both, SdkStep::Automatic>()));
    EXPECT_TRUE((areNumberedFrom<3, Step::Automatic, Step::Both>()));
}

template <class Side>
void expectTheNumbersOfSableSynthesis()
{
    using Power = typename Side::RfPowerMode;
    using Capacitor = typename Side::Capacitor;
    using Capacitance = typename Side::CapacitorMode;
    using RfFilter = typename Side::RfFilter;
    using Filter = typename Side::FilterMode;
    EXPECT_TRUE((areNumberedFrom<1, Power::Fixed, Power::Table>()));
    EXPECT_TRUE((areAutomaticOrManual<typename Side::IfMode, typename Side::DelayMode, Filter>));
    EXPECT_TRUE((areNumberedFrom<2, Filter::Bypass>()));
    EXPECT_TRUE((areNumberedFrom<0, Capacitor::First, Capacitor::Second>()));
    EXPECT_TRUE(
        (areNumberedFrom<0, Capacitance::Automatic, Capacitance::Minimum, Capacitance::Maximum, Capacitance::Range>()));
    EXPECT_TRUE((areNumberedFrom<0, RfFilter::First, RfFilter::Second, RfFilter::Third, RfFilter::Fourth>()));
}

TEST(TuningModes, OfSableSynthesisHaveTheirNumbersOnBothSides)
{
    expectTheNumbersOfSableSynthesis<SableSynthesis::Sdk>();
    expectTheNumbersOfSableSynthesis<SableSynthesis::Adapter>();
}

} // namespace
} // namespace tarn::tests::tuningmodes
