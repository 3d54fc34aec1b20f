#include <simulator/manualinstrument.h>
#include <support/observedthread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::ManualInstrument;
using test::TemperatureObserver;

constexpr float loLeakageAfterOneTau = 2.528482F; // 4 K (1 - 1/e)

TEST(LoLeakageTest, IsOffUntilItIsSwitchedOn)
{
    const ManualInstrument instrument;
    auto& leakage = *instrument.control<test::Leakage>();
    EXPECT_FALSE(leakage.isEnabled());
    leakage.setEnabled(true);
    EXPECT_TRUE(leakage.isEnabled());
    leakage.setEnabled(false);
    EXPECT_FALSE(leakage.isEnabled());
}

TEST(LoLeakageTest, HeatsTheLoModule)
{
    ManualInstrument leaking;
    ManualInstrument silent;
    leaking.control<test::Leakage>()->setEnabled(true);
    leaking.advance(180s);
    silent.advance(180s);
    const auto warm = leaking.control<test::Temperature>()->moduleTemperatures();
    const auto usual = silent.control<test::Temperature>()->moduleTemperatures();
    EXPECT_NEAR(warm.at("LO") - usual.at("LO"), loLeakageAfterOneTau, 1e-4F);
    EXPECT_FLOAT_EQ(warm.at("Reference"), usual.at("Reference"));
}

class TemperatureTest : public testing::Test {
protected:
    ManualInstrument instrument;
    std::shared_ptr<test::Temperature> temperature = instrument.control<test::Temperature>();
};

TEST_F(TemperatureTest, MeasuresAtSwitchOn)
{
    EXPECT_EQ(temperature->moduleTemperatures().size(), 5U);
    EXPECT_NEAR(temperature->temperature(), 23.0F, 0.6F);
}

TEST_F(TemperatureTest, TellsItsObserversOnceASecond)
{
    int notified = 0;
    TemperatureObserver observer{[&] { ++notified; }};
    temperature->addObserver(&observer);
    temperature->addObserver(&observer);
    instrument.advance(999ms);
    EXPECT_EQ(notified, 0);
    instrument.advance(1ms);
    EXPECT_EQ(notified, 1);
    instrument.advance(10s);
    EXPECT_EQ(notified, 11);
    temperature->removeObserver(&observer);
    instrument.advance(10s);
    EXPECT_EQ(notified, 11);
}

TEST_F(TemperatureTest, KeepsTheValuesOfTheLastMeasurement)
{
    const auto first = temperature->temperature();
    instrument.advance(999ms);
    EXPECT_EQ(temperature->temperature(), first);
    instrument.advance(1ms);
    EXPECT_GT(temperature->temperature(), first);
}

TEST_F(TemperatureTest, ShowsTheNewValuesInsideTheNotification)
{
    float before = temperature->temperature();
    bool isWarmer = false;
    TemperatureObserver observer{[&] { isWarmer = temperature->temperature() > before; }};
    temperature->addObserver(&observer);
    instrument.advance(1s);
    temperature->removeObserver(&observer);
    EXPECT_TRUE(isWarmer);
}

TEST_F(TemperatureTest, LeavesTheMapThatAThreadWasGivenUntilThatThreadAsksAgain)
{
    const auto& mine = temperature->moduleTemperatures();
    const auto copy = mine;
    instrument.advance(60s);
    std::thread{[&] {
        for (int i = 0; i < 100; ++i)
            static_cast<void>(temperature->moduleTemperatures());
    }}.join();
    EXPECT_EQ(mine, copy);
    EXPECT_NE(temperature->moduleTemperatures(), copy);
}

TEST_F(TemperatureTest, LetsEveryThreadWalkItsMapWhileTheInstrumentMeasures)
{
    std::vector<std::jthread> walkers;
    for (int thread = 0; thread < 4; ++thread) {
        walkers.emplace_back([this] {
            for (int round = 0; round < 200; ++round) {
                for (const auto& [module, value] : temperature->moduleTemperatures())
                    EXPECT_GT(value, 20.0F) << module;
            }
        });
    }
    instrument.advance(100s);
}

TEST_F(TemperatureTest, WaitsForARunningNotificationBeforeRemovalReturns)
{
    const tests::ObservedThread remover;
    std::promise<void> entered;
    std::atomic<bool> isRemoving = false;
    std::atomic<bool> isRemoved = false;
    bool hasLeft = false;
    TemperatureObserver observer{[&] {
        entered.set_value();
        while (!isRemoved && !(isRemoving && remover.isWaiting()))
            std::this_thread::yield();
        hasLeft = !isRemoved;
    }};
    temperature->addObserver(&observer);
    instrument.clock->advance(1s);
    entered.get_future().wait();
    isRemoving = true;
    temperature->removeObserver(&observer);
    isRemoved = true;
    instrument.vna->waitUntilIdle();
    EXPECT_TRUE(hasLeft);
}

TEST_F(TemperatureTest, TakesARegistrationThroughAHeldControlForTheOfferOfThatTime)
{
    int notified = 0;
    TemperatureObserver observer{[&] { ++notified; }};
    instrument.vna->drop();
    temperature->addObserver(&observer); // while nothing is offered
    instrument.advance(1s);
    EXPECT_EQ(notified, 0) << "nobody could remove it any more";
    instrument.vna->offer();
    instrument.advance(1s);
    EXPECT_EQ(notified, 0);
    temperature->addObserver(&observer);
    instrument.advance(1s);
    EXPECT_EQ(notified, 1);
    temperature->removeObserver(&observer);
}

TEST_F(TemperatureTest, EndsARegistrationWhenTheControlIsDropped)
{
    int notified = 0;
    TemperatureObserver observer{[&] { ++notified; }};
    temperature->addObserver(&observer);
    instrument.vna->drop();
    instrument.advance(2s);
    EXPECT_EQ(notified, 0);
    instrument.vna->offer();
    instrument.advance(2s);
    EXPECT_EQ(notified, 0);
    EXPECT_GT(temperature->temperature(), 20.0F) << "a dropped control still works";
    instrument.control<test::Temperature>()->addObserver(&observer);
    instrument.advance(2s);
    EXPECT_EQ(notified, 2);
}

TEST_F(TemperatureTest, GoesOnMeasuringWhenAnObserverThrows)
{
    TemperatureObserver thrower{[] { throw std::runtime_error{"no"}; }};
    int notified = 0;
    TemperatureObserver other{[&] { ++notified; }};
    temperature->addObserver(&thrower);
    temperature->addObserver(&other);
    instrument.advance(3s);
    EXPECT_EQ(notified, 3);
}

TEST(SeedTest, MakesTheSameInstrumentOfTheSameSeed)
{
    const auto measured = [](std::uint64_t seed) {
        Settings settings;
        settings.seed = seed;
        ManualInstrument instrument{settings};
        instrument.advance(90s);
        return instrument.control<test::Temperature>()->moduleTemperatures();
    };
    EXPECT_EQ(measured(1), measured(1));
    EXPECT_NE(measured(1), measured(2));
}

} // namespace
} // namespace tarn::simulator
