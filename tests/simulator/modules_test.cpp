#include <simulator/modulefixture.h>

#include <simulator/profile.h>
#include <simulator/thermalmodel.h>

#include <cmath>
#include <functional>
#include <set>

namespace tarn::simulator {
namespace {

using test::settingsOf;
using test::vary;
using namespace std::chrono_literals;
using test::ManualInstrument;
using enum Profile;

template <class Interface>
struct Offer {
    using Module = Interface;
    std::set<Profile> profiles;
};

const std::tuple offers{
    Offer<test::QuillPower>{{Full, Marl, Glint, Brae, MultiportLum}},
    Offer<test::QuillSynthesis>{{Full, Marl, Glint, Brae, MultiportLum}},
    Offer<test::DornPower>{{Full, Pell, Wisp}},
    Offer<test::DornSynthesis>{{Full, Pell, Wisp}},
    Offer<test::SablePower>{{Full, Zinnia, Tove, MultiportCommon}},
    Offer<test::SableSynthesis>{{Full, Zinnia, Tove, MultiportCommon}},
    Offer<test::VellSynthesis>{{Full, Vell}},
};

TEST(ModulesTest, AreThoseOfTheFamily)
{
    for (const auto& info : profiles()) {
        Settings settings;
        settings.profile = info.profile;
        const ManualInstrument instrument{settings};
        const auto check = [&]<class Interface>(const Offer<Interface>& offer) {
            EXPECT_EQ(instrument.control<Interface>() != nullptr, offer.profiles.contains(info.profile))
                << info.name << " and " << typeid(Interface).name();
        };
        std::apply([&](const auto&... offer) { (check(offer), ...); }, offers);
    }
}

TEST(ModulesTest, KeepTheirSettingsWhenTheControlsAreDropped)
{
    const ManualInstrument instrument;
    const auto check = [&]<class Interface>(const Offer<Interface>&) {
        const auto held = instrument.control<Interface>();
        vary(*held);
        const auto varied = settingsOf(*held);
        instrument.vna->drop();
        EXPECT_EQ(settingsOf(*held), varied) << "a dropped control still works";
        instrument.vna->offer();
        EXPECT_EQ(settingsOf(*instrument.control<Interface>()), varied);
    };
    std::apply([&](const auto&... offer) { (check(offer), ...); }, offers);
}

TEST(ModulesTest, ThrowInsteadOfAnOperationThatIsToThrow)
{
    const ManualInstrument instrument;
    FaultPlan plan;
    plan.throwEvery = 1;
    instrument.vna->faults().setPlan(plan);
    const auto check = [&]<class Interface>(const Offer<Interface>&) {
        const auto module = instrument.control<Interface>();
        EXPECT_THROW(vary(*module), DeviceFault);
        EXPECT_THROW(static_cast<void>(settingsOf(*module)), DeviceFault);
    };
    std::apply([&](const auto&... offer) { (check(offer), ...); }, offers);
    EXPECT_THROW(static_cast<void>(instrument.control<test::QuillPower>()->maxPowerCode()), DeviceFault);
    EXPECT_THROW(instrument.control<test::QuillPower>()->setLoPowerCodes({}), DeviceFault);
    EXPECT_THROW(static_cast<void>(instrument.control<test::VellSynthesis>()->supportedIfs()), DeviceFault);
}

/// By how many kelvin `change` makes a module warmer in the end.
double rise(const std::string& module, double timeConstant, const std::function<void(const ManualInstrument&)>& change)
{
    ManualInstrument changed;
    ManualInstrument usual;
    change(changed);
    for (auto* const instrument : {&changed, &usual})
        instrument->advance(240s);
    const auto warm = changed.control<test::Temperature>()->moduleTemperatures();
    const auto normal = usual.control<test::Temperature>()->moduleTemperatures();
    EXPECT_EQ(warm.at("Receivers"), normal.at("Receivers"));
    EXPECT_EQ(warm.at("Reference"), normal.at("Reference"));
    return (warm.at(module) - normal.at(module)) / (1.0 - std::exp(-240.0 / timeConstant));
}

double rfRise(const std::function<void(const ManualInstrument&)>& change)
{
    return rise("RF source", 240.0, change);
}

double loRise(const std::function<void(const ManualInstrument&)>& change)
{
    return rise("LO", 180.0, change);
}

constexpr double tolerance = 1e-4;

TEST(ModuleHeatTest, IsNoneAsDelivered)
{
    ManualInstrument instrument;
    ThermalModel model{Settings{}.seed, instrument.clock->now()};
    instrument.advance(240s);
    const auto expected = model.measure(instrument.clock->now()).modules;
    for (const auto& [module, temperature] : instrument.control<test::Temperature>()->moduleTemperatures())
        EXPECT_NEAR(temperature, expected.at(module), tolerance) << module;
}

TEST(ModuleHeatTest, OfAQuillModuleFollowsItsCodesAndItsPowerMode)
{
    const auto set = [](void (test::QuillPower::*setter)(std::uint8_t), std::uint8_t code) {
        return [=](const auto& instrument) { (*instrument.template control<test::QuillPower>().*setter)(code); };
    };
    const auto high = [](const auto& instrument) {
        const auto power = instrument.template control<test::QuillPower>();
        power->setSyntPowerMode(test::QuillPower::SyntPowerMode::High);
    };
    using Q = test::QuillPower;
    EXPECT_NEAR(rfRise(set(&Q::setRfPower, 120)), 2.8, tolerance);
    EXPECT_NEAR(rfRise(set(&Q::setRfPower, 8)), -2.8, tolerance);
    EXPECT_NEAR(loRise(set(&Q::setRfPower, 120)), 0.0, tolerance);
    EXPECT_NEAR(loRise(set(&Q::setLoPower, 120)), 2.24, tolerance);
    EXPECT_NEAR(loRise(set(&Q::setLoPower, 8)), -2.24, tolerance);
    EXPECT_NEAR(rfRise(set(&Q::setLoPower, 120)), 0.0, tolerance);
    EXPECT_NEAR(rfRise(high), 2.5, tolerance);
    EXPECT_NEAR(loRise(high), 0.0, tolerance);
}

TEST(ModuleHeatTest, OfADornDeviceFollowsItsCodesWhileTheyAreSetByHand)
{
    const auto codes = [](const auto& instrument) {
        const auto power = instrument.template control<test::DornPower>();
        power->setRfPower(63);
        power->setLoPower(0);
    };
    const auto byHand = [&](const auto& instrument) {
        codes(instrument);
        instrument.template control<test::DornPower>()->setPowerControlMode(test::DornPower::ControlMode::Manual);
    };
    EXPECT_NEAR(rfRise(codes), 0.0, tolerance);
    EXPECT_NEAR(loRise(codes), 0.0, tolerance);
    EXPECT_NEAR(rfRise(byHand), 3.1, tolerance);
    EXPECT_NEAR(loRise(byHand), -2.56, tolerance);
}

TEST(ModuleHeatTest, OfASableDeviceFollowsItsDacWhileItIsSetByHandAndItsPowerMode)
{
    const auto code = [](const auto& instrument) { instrument.template control<test::SablePower>()->setRfDac(4048); };
    const auto byHand = [&](const auto& instrument) {
        code(instrument);
        instrument.template control<test::SablePower>()->setDacMode(test::SablePower::DacMode::Manual);
    };
    const auto high = [](const auto& instrument) {
        instrument.template control<test::SablePower>()->setPowerMode(test::SablePower::PowerMode::High);
    };
    EXPECT_NEAR(rfRise(code), 0.0, tolerance);
    EXPECT_NEAR(rfRise(byHand), 4.0, tolerance);
    EXPECT_NEAR(rfRise(high), 3.0, tolerance);
}

TEST(ModuleHeatTest, AddsUp)
{
    EXPECT_NEAR(loRise([](const auto& instrument) {
                    instrument.template control<test::QuillPower>()->setLoPower(120);
                    instrument.template control<test::Leakage>()->setEnabled(true);
                }),
                6.24, tolerance);
}

TEST(ModuleHeatTest, EndsWithAReset)
{
    EXPECT_NEAR(rfRise([](const auto& instrument) {
                    const auto power = instrument.template control<test::QuillPower>();
                    vary(*power);
                    power->reset();
                }),
                0.0, tolerance);
}

} // namespace
} // namespace tarn::simulator
