#include <simulator/thermalmodel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;

constexpr float ripple = 0.05F; // kelvin, the most that a module's temperature swings by
constexpr float tolerance = 1e-4F;

/// Two measurements a whole number of ripple periods apart differ by the heating alone.
float heatingOf(ThermalModel& model, const std::string& module, Duration time, const ThermalModel::Measurement& cold)
{
    return model.measure(time).modules.at(module) - cold.modules.at(module);
}

TEST(ThermalModelTest, StartsAtTheAmbientTemperature)
{
    ThermalModel model{5, 0s};
    EXPECT_GE(model.ambient(), 22.5);
    EXPECT_LE(model.ambient(), 23.5);
    const auto cold = model.measure(0s);
    ASSERT_EQ(cold.modules.size(), 5U);
    for (const auto& [module, temperature] : cold.modules)
        EXPECT_NEAR(temperature, model.ambient(), ripple + tolerance) << module;
}

TEST(ThermalModelTest, WarmsUpByTheExponentialOfEachModule)
{
    ThermalModel model{5, 0s};
    const auto cold = model.measure(0s);
    // rise * (1 - exp(-t / tau)), worked out by hand
    EXPECT_NEAR(heatingOf(model, "LO", 180s, cold), 7.585447F, tolerance); // 12 (1 - 1/e)
    EXPECT_NEAR(heatingOf(model, "Reference", 300s, cold), 3.792723F, tolerance); // 6 (1 - 1/e)
    EXPECT_NEAR(heatingOf(model, "Receivers", 420s, cold), 5.689085F, tolerance); // 9 (1 - 1/e)
    EXPECT_NEAR(heatingOf(model, "RF source", 480s, cold), 12.969971F, tolerance); // 15 (1 - 1/e^2)
    EXPECT_NEAR(heatingOf(model, "Power supply", 600s, cold), 11.378170F, tolerance); // 18 (1 - 1/e)
    EXPECT_NEAR(heatingOf(model, "LO", 24h, cold), 12.0F, tolerance);
}

TEST(ThermalModelTest, CountsTheTimeFromSwitchOn)
{
    ThermalModel model{5, 1000s};
    const auto cold = model.measure(1000s);
    EXPECT_NEAR(heatingOf(model, "LO", 1180s, cold), 7.585447F, tolerance);
}

TEST(ThermalModelTest, DoesNotDependOnHowOftenItIsAsked)
{
    ThermalModel often{5, 0s};
    ThermalModel once{5, 0s};
    for (int second = 0; second < 600; ++second)
        static_cast<void>(often.measure(std::chrono::seconds{second}));
    const auto a = often.measure(600s);
    const auto b = once.measure(600s);
    for (const auto& [module, temperature] : a.modules)
        EXPECT_NEAR(temperature, b.modules.at(module), tolerance) << module;
}

TEST(ThermalModelTest, RipplesByATwentiethOfAKelvinAMinute)
{
    ThermalModel model{5, 0s};
    static_cast<void>(model.measure(24h)); // warm by now
    float least = 1000.0F;
    float most = -1000.0F;
    for (auto time = Duration{24h}; time <= 24h + 60s; time += 100ms) {
        const auto temperature = model.measure(time).modules.at("LO");
        least = std::min(least, temperature);
        most = std::max(most, temperature);
    }
    EXPECT_NEAR(most - least, 2 * ripple, 1e-3F);
    EXPECT_NEAR(most, model.ambient() + 12.0 + ripple, 1e-3);
}

TEST(ThermalModelTest, HeatsOneModuleMoreWhenToldTo)
{
    ThermalModel model{5, 0s};
    const auto cold = model.measure(0s);
    static_cast<void>(model.measure(24h));
    model.setExtraRise(ThermalModel::loModule, "leakage", 4.0, 24h);
    EXPECT_NEAR(heatingOf(model, "LO", 24h, cold), 12.0F, tolerance);
    EXPECT_NEAR(heatingOf(model, "LO", 24h + 180s, cold), 14.528482F, tolerance); // 12 + 4 (1 - 1/e)
    EXPECT_NEAR(heatingOf(model, "Reference", 24h + 180s, cold), 6.0F, tolerance);
    model.setExtraRise(ThermalModel::loModule, "leakage", 0.0, 48h);
    EXPECT_NEAR(heatingOf(model, "LO", 48h, cold), 16.0F, tolerance);
    EXPECT_NEAR(heatingOf(model, "LO", 72h, cold), 12.0F, tolerance);
}

TEST(ThermalModelTest, AddsUpWhatSeveralCausesDoToAModule)
{
    ThermalModel model{5, 0s};
    const auto cold = model.measure(0s);
    model.setExtraRise(ThermalModel::loModule, "leakage", 4.0, 0s);
    model.setExtraRise(ThermalModel::loModule, "power", -1.0, 0s);
    EXPECT_NEAR(heatingOf(model, "LO", 24h, cold), 15.0F, tolerance);
    model.setExtraRise(ThermalModel::loModule, "power", 2.0, 24h);
    EXPECT_NEAR(heatingOf(model, "LO", 48h, cold), 18.0F, tolerance);
    model.setExtraRise(ThermalModel::loModule, "leakage", 0.0, 48h);
    EXPECT_NEAR(heatingOf(model, "LO", 72h, cold), 14.0F, tolerance);
}

TEST(ThermalModelTest, ReportsTheMeanAsTheTemperatureOfTheInstrument)
{
    ThermalModel model{5, 0s};
    const auto measured = model.measure(123s);
    float sum = 0.0F;
    for (const auto& [module, temperature] : measured.modules)
        sum += temperature;
    EXPECT_NEAR(measured.instrument, sum / 5.0F, tolerance);
}

TEST(ThermalModelTest, IsTheSameForTheSameSeedAlone)
{
    ThermalModel first{5, 0s};
    ThermalModel same{5, 0s};
    ThermalModel other{6, 0s};
    const auto measured = first.measure(77s).modules;
    EXPECT_EQ(same.measure(77s).modules, measured);
    EXPECT_NE(other.measure(77s).modules, measured);
}

TEST(ThermalModelTest, DoesNotRunBackwards)
{
    ThermalModel model{5, 0s};
    const auto later = model.measure(600s);
    const auto earlier = model.measure(0s);
    EXPECT_NEAR(earlier.modules.at("LO"), later.modules.at("LO"), 2 * ripple + tolerance);
}

TEST(ThermalModelTest, IgnoresAModuleThatItDoesNotHave)
{
    ThermalModel model{5, 0s};
    ThermalModel untouched{5, 0s};
    model.setExtraRise("Flux capacitor", "time", 100.0, 0s);
    EXPECT_EQ(model.measure(60s).modules, untouched.measure(60s).modules);
}

} // namespace
} // namespace tarn::simulator
