#include <console/instrument.h>

#include <devices/service/sdkloleakagecontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <support/fakevna.h>
#include <support/mockloleakagecontrol.h>

#include <gmock/gmock.h>

#include <thread>

namespace tarn::console {

namespace {

using Control = devices::service::SdkLoLeakageControl;

class AwaitControl : public testing::Test {
protected:
    void offer()
    {
        device->offer<sdk::service::ILoLeakageControl>(
            sdk::service::ILoLeakageControl::key, std::make_shared<testing::NiceMock<tests::MockLoLeakageControl>>());
    }

    const std::shared_ptr<tests::FakeVna> device = std::make_shared<tests::FakeVna>();
    const Instrument instrument{device, Output{{}, {}}, std::chrono::seconds{30}};
};

} // namespace

TEST_F(AwaitControl, WaitsForOneThatComesForTheFirstTimeUntilItCanBeHad)
{
    const auto observers = device->observers();
    ASSERT_GT(observers.size(), 1U);
    device->announceRelease();
    offer();
    for (auto observer = observers.begin(); observer + 1 != observers.end(); ++observer)
        (*observer)->onControlsAvailable();
    ASSERT_FALSE(instrument.lifecycle().isAway());
    ASSERT_FALSE(instrument.isOffered(Control::registryKey));

    const std::jthread rest{[&] {
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
        observers.back()->onControlsAvailable();
    }};
    instrument.awaitControl(Control::registryKey);
    EXPECT_TRUE(instrument.control<Control>());
}

TEST_F(AwaitControl, SaysThatAnInstrumentNeverOfferedIt)
{
    try {
        instrument.awaitControl(Control::registryKey);
        ADD_FAILURE() << "no error";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::NotOffered);
    }
}

} // namespace tarn::console
