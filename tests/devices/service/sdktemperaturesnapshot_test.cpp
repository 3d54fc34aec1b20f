#include <devices/service/sdktemperaturecontrol.h>

#include "temperaturebench.h"

#include <support/exceptions.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <string>
#include <thread>

using tarn::devices::service::SdkTemperatureControl;
using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::sdktemperaturesnapshot {
namespace {

using Sdk = sdk::ITemperatureControl;
using Module = SdkTemperatureControl::ModuleTemperature;

class SdkTemperatureSnapshotTest : public TemperatureBench { };

TEST_F(SdkTemperatureSnapshotTest, ReadsTheSnapshotWithoutTouchingTheDevice)
{
    offer();
    construct();
    EXPECT_CALL(*mock, temperature).Times(0);
    EXPECT_CALL(*mock, moduleTemperatures).Times(0);
    const int before = device.asked(Sdk::key);
    mock->instrument = 50.0F;
    EXPECT_EQ(control->temperature(), 0.0);
    EXPECT_THAT(control->modulesTemperature(), IsEmpty());
    drop();
    EXPECT_EQ(control->temperature(), 0.0);
    EXPECT_THAT(control->modulesTemperature(), IsEmpty());
    EXPECT_EQ(device.asked(Sdk::key), before);
}

TEST_F(SdkTemperatureSnapshotTest, SortsUpperCaseBeforeLowerCase)
{
    offer();
    mock->modules = {{"B", 1.0F}, {"a", 2.0F}, {"A", 3.0F}};
    construct();
    EXPECT_THAT(control->modulesTemperature(),
                ElementsAre(Module{QStringLiteral("A"), 3.0}, Module{QStringLiteral("B"), 1.0},
                            Module{QStringLiteral("a"), 2.0}));
}

TEST_F(SdkTemperatureSnapshotTest, SortsByUtf16CodeUnitsAndNotByCodePoints)
{
    // U+1F4C8 is greater than U+FF21, but its first code unit is smaller.
    offer();
    mock->modules = {{"\xef\xbc\xa1", 1.0F}, {"\xf0\x9f\x93\x88", 2.0F}, {"\xc3\x84", 3.0F}, {"AA", 4.0F}, {"A", 5.0F}};
    construct();
    EXPECT_THAT(control->modulesTemperature(),
                ElementsAre(Module{QStringLiteral("A"), 5.0}, Module{QStringLiteral("AA"), 4.0},
                            Module{QStringLiteral(u"\u00c4"), 3.0}, Module{QStringLiteral(u"\U0001f4c8"), 2.0},
                            Module{QStringLiteral(u"\uff21"), 1.0}));
}

TEST_F(SdkTemperatureSnapshotTest, TakesTheWholeOfANameThatHasAZeroInIt)
{
    offer();
    mock->modules = {{std::string{"a\0b", 3}, 1.0F}};
    construct();
    const QString whole{QLatin1StringView{"a\0b", 3}};
    EXPECT_EQ(control->modulesTemperature().at(0).name, whole);
}

TEST_F(SdkTemperatureSnapshotTest, WidensEveryFloatExactly)
{
    offer();
    const float odd = 0.1F;
    mock->instrument = std::numeric_limits<float>::denorm_min();
    mock->modules
        = {{"a", odd}, {"b", std::numeric_limits<float>::max()}, {"c", -std::numeric_limits<float>::infinity()}};
    construct();
    EXPECT_EQ(control->temperature(), static_cast<double>(std::numeric_limits<float>::denorm_min()));
    const auto modules = control->modulesTemperature();
    EXPECT_EQ(modules.at(0).temperature, static_cast<double>(odd));
    EXPECT_NE(modules.at(0).temperature, 0.1);
    EXPECT_EQ(modules.at(1).temperature, static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_EQ(modules.at(2).temperature, -std::numeric_limits<double>::infinity());
}

TEST_F(SdkTemperatureSnapshotTest, GivesACopyOfTheSnapshot)
{
    offer();
    mock->modules = {{"a", 1.0F}};
    construct();
    auto copy = control->modulesTemperature();
    copy.clear();
    EXPECT_EQ(control->modulesTemperature().size(), 1U);
}

TEST_F(SdkTemperatureSnapshotTest, ShowsTheOldSnapshotUntilTheNewOneIsComplete)
{
    offer();
    mock->instrument = 1.0F;
    mock->modules = {{"a", 1.0F}};
    construct();
    const auto expectOld = [&] {
        EXPECT_EQ(control->temperature(), 1.0);
        EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("a"), 1.0}));
    };
    const Sdk::ModuleTemperatures newModules{{"a", 2.0F}};
    // Reading the snapshot in here would wait for ever if its mutex were held across the SDK's calls.
    EXPECT_CALL(*mock, moduleTemperatures).WillOnce([&]() -> const Sdk::ModuleTemperatures& {
        expectOld();
        return newModules;
    });
    EXPECT_CALL(*mock, temperature).WillOnce([&] {
        expectOld();
        return 2.0F;
    });
    mock->observer()->onTemperatureChanged();
    EXPECT_EQ(control->temperature(), 2.0);
    EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("a"), 2.0}));
}

TEST_F(SdkTemperatureSnapshotTest, KeepsTheOldSnapshotAndEmitsNothingWhenTheSdkThrowsHalfWay)
{
    offer();
    mock->instrument = 1.0F;
    mock->modules = {{"a", 1.0F}};
    construct();
    mock->modules = {{"a", 2.0F}};
    for (const auto& exception : anyExceptions()) {
        EXPECT_CALL(*mock, temperature).WillOnce([&]() -> float { std::rethrow_exception(exception); });
        EXPECT_EQ(thrownBy([&] { mock->observer()->onTemperatureChanged(); }), exception);
        EXPECT_EQ(control->temperature(), 1.0);
        EXPECT_THAT(control->modulesTemperature(), ElementsAre(Module{QStringLiteral("a"), 1.0}));
    }
    EXPECT_EQ(signalCount, 0);
}

/// Every measurement has one value everywhere, one more than the one before.
class CountingThermometer final : public Sdk {
public:
    float temperature() override { return m_value; }
    const ModuleTemperatures& moduleTemperatures() override
    {
        ++m_value;
        for (const auto* const name : {"a", "b", "c", "d"})
            m_modules[name] = m_value;
        return m_modules;
    }
    void addObserver(Observer* observer) override { attached = observer; }
    void removeObserver(Observer* /*observer*/) override { }

    Observer* attached = nullptr;

private:
    float m_value = 0.0F;
    ModuleTemperatures m_modules;
};

TEST(SdkTemperatureSnapshotThreads, ReadersSeeTheWholeOldOrTheWholeNewSnapshot)
{
    FakeVna device;
    const auto thermometer = std::make_shared<CountingThermometer>();
    device.offer<Sdk>(Sdk::key, thermometer);
    SdkTemperatureControl control{handleTo(device)};
    std::atomic<bool> stop{false};
    std::atomic<int> mixed{0};
    const auto read = [&] {
        while (!stop) {
            const double before = control.temperature();
            const auto modules = control.modulesTemperature();
            const double after = control.temperature();
            const auto fits = [&](const Module& module) {
                return module.temperature == modules.front().temperature && module.temperature >= before
                    && module.temperature <= after;
            };
            if (modules.size() != 4 || !std::ranges::all_of(modules, fits))
                ++mixed;
        }
    };
    std::array readers{std::thread{read}, std::thread{read}};
    for (int round = 0; round != 3000; ++round)
        thermometer->attached->onTemperatureChanged();
    stop = true;
    for (auto& reader : readers)
        reader.join();
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(control.temperature(), 3001.0);
}

} // namespace
} // namespace tarn::tests::sdktemperaturesnapshot
