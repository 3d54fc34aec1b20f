#include <simulator/watchedinstrument.h>

#include <sdk/models.h>
#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::dropEvery;
using test::ManualInstrument;
using test::WatchedInstrument;
using test::withFaults;
using testing::ElementsAre;
using testing::IsEmpty;

using tests::success;

TEST(ProfileTest, OffersEverythingByDefaultAndNothingWhenBare)
{
    Settings bare;
    bare.profile = Profile::Bare;
    const ManualInstrument full;
    const ManualInstrument none{bare};
    for (const auto key : {test::Files::key, test::Leakage::key, test::Temperature::key}) {
        EXPECT_NE(full.vna->control(key), nullptr);
        EXPECT_EQ(none.vna->control(key), nullptr);
    }
    EXPECT_EQ(full.vna->control(sdk::Key{1}), nullptr);
}

TEST(ProfileTest, OffersFilesAndTemperaturesOnEveryFamilyAndLoLeakageOnSome)
{
    const std::set withLeakage{Profile::Full, Profile::Marl, Profile::Glint,
                               Profile::Brae, Profile::Vell, Profile::MultiportLum};
    for (const auto& info : profiles()) {
        if (info.profile == Profile::Bare)
            continue;
        Settings settings;
        settings.profile = info.profile;
        const ManualInstrument instrument{settings};
        EXPECT_NE(instrument.control<test::Files>(), nullptr) << info.name;
        EXPECT_NE(instrument.control<test::Temperature>(), nullptr) << info.name;
        EXPECT_EQ(instrument.control<test::Leakage>() != nullptr, withLeakage.contains(info.profile)) << info.name;
    }
}

TEST(ProfileTest, DecidesTheModel)
{
    const auto model = [](Profile profile) {
        Settings settings;
        settings.profile = profile;
        return ManualInstrument{settings}.vna->model();
    };
    EXPECT_EQ(model(Profile::Pell), sdk::models::pell::pell101);
    EXPECT_EQ(model(Profile::Vell), sdk::models::vell::vell801);
    EXPECT_EQ(model(Profile::MultiportCommon), sdk::models::multiport::common::common1001);
    EXPECT_EQ(model(Profile::Full), sdk::models::vell::vell801);
}

TEST(LifecycleTest, TellsBeforeItDropsAndAfterItOffers)
{
    WatchedInstrument instrument;
    std::weak_ptr<void> control = instrument.control<test::Files>();
    instrument.observer.atRelease = [&] { EXPECT_NE(instrument.control<test::Files>(), nullptr); };
    instrument.observer.atOffer = [&] { EXPECT_NE(instrument.control<test::Files>(), nullptr); };
    instrument.vna->drop();
    EXPECT_TRUE(control.expired());
    EXPECT_EQ(instrument.control<test::Files>(), nullptr);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released"));
    instrument.vna->offer();
    EXPECT_NE(instrument.control<test::Files>(), nullptr);
    EXPECT_THAT(instrument.journal.take(), ElementsAre("available"));
}

TEST(LifecycleTest, DoesNothingWhenThereIsNothingToDropOrToOffer)
{
    WatchedInstrument instrument;
    instrument.vna->offer();
    EXPECT_THAT(instrument.journal.take(), IsEmpty());
    instrument.vna->drop();
    instrument.vna->drop();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released"));
}

TEST(LifecycleTest, OffersNewControlsOverTheSameState)
{
    const ManualInstrument instrument;
    const auto old = instrument.control<test::Files>();
    ASSERT_EQ(test::write(*old, "f", {1}), success);
    instrument.control<test::Leakage>()->setEnabled(true);
    instrument.vna->drop();
    ASSERT_EQ(test::write(*old, "g", {2}), success) << "a control that is held works on";
    instrument.vna->offer();
    const auto fresh = instrument.control<test::Files>();
    EXPECT_NE(fresh, old);
    EXPECT_EQ(test::read(*fresh, "f").first, (test::Bytes{1}));
    EXPECT_EQ(test::read(*fresh, "g").first, (test::Bytes{2}));
    EXPECT_TRUE(instrument.control<test::Leakage>()->isEnabled());
}

TEST(LifecycleTest, CarriesOutLaterWhatAnObserverAsksFor)
{
    WatchedInstrument instrument;
    instrument.observer.atRelease = [&] { instrument.vna->offer(); };
    instrument.vna->drop();
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("about to be released", "available"));
    EXPECT_NE(instrument.control<test::Files>(), nullptr);
}

TEST(LifecycleTest, NotifiesOnTheInstrumentsOwnThreadOneAtATime)
{
    WatchedInstrument instrument{withFaults(dropEvery(1))};
    std::atomic<int> running = 0;
    const auto alone = [&] {
        EXPECT_EQ(++running, 1);
        std::this_thread::yield();
        --running;
    };
    instrument.observer.atRelease = alone;
    instrument.observer.atOffer = alone;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                if (const auto leakage = instrument.control<test::Leakage>())
                    static_cast<void>(leakage->isEnabled());
                instrument.vna->drop();
                instrument.vna->offer();
            }
        });
    }
    threads.clear();
    instrument.vna->waitUntilIdle();
    EXPECT_NE(instrument.control<test::Files>(), nullptr);
}

TEST(LifecycleTest, NotifiesNobodyWhenTheDeviceIsDestroyed)
{
    auto settings = withFaults(dropEvery(1));
    settings.latency = 1h;
    WatchedInstrument instrument{settings};
    instrument.control<test::Files>()->spaceInfo([&](auto, auto) { instrument.journal.note("completed"); });
    instrument.vna.reset();
    EXPECT_THAT(instrument.journal.take(), ElementsAre("completed"));
}

TEST(InstancesTest, ShareNothingButTheClock)
{
    ManualInstrument first;
    FaultPlan plan;
    plan.failEvery = 1;
    const auto second = std::make_unique<SimulatedVna>(withFaults(plan), first.clock, std::make_unique<NoStorage>());
    auto& files = *first.control<test::Files>();
    const auto others = second->control<test::Files>(test::Files::key);
    EXPECT_EQ(test::write(files, "f", {1}), success);
    EXPECT_EQ(test::write(*others, "f", {1}), Error::Io);
    second->drop();
    EXPECT_NE(first.control<test::Files>(), nullptr);
    first.control<test::Leakage>()->setEnabled(true);
    second->offer();
    EXPECT_FALSE(second->control<test::Leakage>(test::Leakage::key)->isEnabled());
}

} // namespace
} // namespace tarn::simulator
