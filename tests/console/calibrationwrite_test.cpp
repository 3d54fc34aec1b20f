#include <console/calibrationwrite.h>

#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <support/fakevna.h>
#include <support/mockloleakagecontrol.h>
#include <support/mockvellifswcalibrationcontrol.h>

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace tarn::console {

namespace {

/// Offers nothing and drops it at will.
class EmptyVna final : public sdk::IVna {
public:
    std::shared_ptr<void> control(sdk::Key /*key*/) override { return nullptr; }
    void addObserver(Observer* observer) override { m_observers.push_back(observer); }
    void removeObserver(Observer* observer) override { std::erase(m_observers, observer); }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"empty"}; }

    void dropAndOfferAgain()
    {
        for (auto* const observer : m_observers)
            observer->onControlsAboutToBeReleased();
        for (auto* const observer : m_observers)
            observer->onControlsAvailable();
    }

private:
    std::vector<Observer*> m_observers;
};

class CalibrationWriteTest : public testing::Test {
protected:
    const std::shared_ptr<EmptyVna> device = std::make_shared<EmptyVna>();
    const Instrument instrument{device, Output{{}, {}}, std::chrono::seconds{30}};
    std::vector<std::uint32_t> shown;
    CalibrationWrite write{instrument, 0x1234,
                           [this](LongRequest::Progress progress) { shown.push_back(progress.done); }};
    const WriteEnd lost = std::unexpected{WriteFailure{std::nullopt, false}};

    static WriteEnd failed(const char* reason, bool hasStarted)
    {
        return std::unexpected{WriteFailure{reason, hasStarted}};
    }
};

} // namespace

TEST_F(CalibrationWriteTest, EndsWellWhenTheInstrumentSaysSo)
{
    write.requested();
    write.started();
    write.progress(0);
    write.progress(40);
    write.finished();
    EXPECT_TRUE(write.wait().has_value());
    EXPECT_EQ(shown, (std::vector<std::uint32_t>{0, 40}));
}

TEST_F(CalibrationWriteTest, IsRefusedByAnErrorAlone)
{
    write.requested();
    write.failed("NoData");
    EXPECT_EQ(write.wait(), failed("NoData", false));
}

TEST_F(CalibrationWriteTest, HasFailedByAnErrorAfterItsStart)
{
    write.requested();
    write.started();
    write.failed("WriteFailed");
    EXPECT_EQ(write.wait(), failed("WriteFailed", true));
}

TEST_F(CalibrationWriteTest, HasOneEnd)
{
    write.requested();
    write.started();
    write.finished();
    write.failed("late");
    EXPECT_TRUE(write.wait().has_value());
}

// ---- somebody else's write

TEST_F(CalibrationWriteTest, IsNeitherRefusedNorStartedBeforeItIsRequested)
{
    write.failed("not ours");
    write.started();
    write.progress(10);
    write.finished();
    write.requested();
    write.failed("NoData");
    EXPECT_EQ(write.wait(), failed("NoData", false));
    EXPECT_TRUE(shown.empty());
}

TEST_F(CalibrationWriteTest, ComesAfterOneThatWasStartedBefore)
{
    write.started();
    write.requested();
    write.failed("not ours");
    write.started();
    write.finished();
    EXPECT_TRUE(write.wait().has_value());
}

TEST_F(CalibrationWriteTest, TakesNeitherProgressNorEndOfOneThatWasUnderWayForItsOwn)
{
    write.requested();
    write.progress(90);
    write.finished();
    EXPECT_EQ(write.wait(), lost);
    EXPECT_TRUE(shown.empty());
}

TEST_F(CalibrationWriteTest, TakesTheFailureOfOneThatWasUnderWayNotForItsOwnButTheNextOne)
{
    write.requested();
    write.progress(90);
    write.failed("not ours");
    write.failed("NoData");
    EXPECT_EQ(write.wait(), failed("NoData", false));
}

// ---- drops

TEST_F(CalibrationWriteTest, MayHaveStartedUnheardWhileTheControlsWereAway)
{
    write.requested();
    device->dropAndOfferAgain();
    write.progress(90);
    write.finished();
    EXPECT_TRUE(write.wait().has_value());
    EXPECT_EQ(shown, std::vector<std::uint32_t>{90});
}

TEST_F(CalibrationWriteTest, HasNotStartedUnheardBeforeItIsRequested)
{
    device->dropAndOfferAgain();
    write.requested();
    write.progress(90);
    write.finished();
    EXPECT_EQ(write.wait(), lost);
    EXPECT_TRUE(shown.empty());
}

TEST_F(CalibrationWriteTest, StartsUnheardOnlyAfterTheEndOfOneThatWasUnderWay)
{
    write.requested();
    write.progress(50);
    device->dropAndOfferAgain();
    write.progress(60);
    write.finished();
    write.progress(1);
    write.finished();
    EXPECT_TRUE(write.wait().has_value());
    EXPECT_EQ(shown, std::vector<std::uint32_t>{1});
}

TEST_F(CalibrationWriteTest, IsLostWithTheInstrument)
{
    EXPECT_EQ(write.wait(), lost);
    write.requested();
    write.started();
    device->dropAndOfferAgain();
    EXPECT_EQ(write.wait(), WriteEnd{std::unexpected(WriteFailure{std::nullopt, true})});
}

TEST(CalibrationWriteInAShortTime, IsWaitedForAsLongAsItMayTake)
{
    constexpr std::chrono::milliseconds limit{15}; // of which an eighth is no whole number
    const Instrument instrument{std::make_shared<EmptyVna>(), Output{{}, {}}, limit};
    CalibrationWrite write{instrument, 0x1234, [](LongRequest::Progress) { }};
    EXPECT_EQ(write.wait(), WriteEnd{std::unexpected(WriteFailure{})}) << "nothing is offered";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(write.wait(), WriteEnd{std::unexpected(WriteFailure{std::nullopt, false, true})});
    EXPECT_GE(std::chrono::steady_clock::now() - start, limit);
}

TEST(CalibrationWriteOfARestlessInstrument, SaysWhatIsKnownWhenTheInstrumentThrowsInsteadOfComingBack)
{
    using Ifsw = devices::service::SdkVellIfswCalibrationControl;
    using Sdk = sdk::service::IVellIfswCalibrationControl;
    struct Observer final : WriteObserver<Ifsw> {
        using WriteObserver::WriteObserver;
        void onError(Ifsw::Error /*error*/) override { }
    };
    int arguments = 0;
    const QCoreApplication application{arguments, nullptr};
    const auto device = std::make_shared<tests::FakeVna>();
    device->offer<Sdk>(Sdk::key, std::make_shared<testing::NiceMock<tests::MockVellIfswCalibrationControl>>());
    const Output output{{}, {}};
    const Instrument instrument{device, output, std::chrono::seconds{30}};
    const auto write = [&] {
        writeCalibration<Observer, Ifsw>({"writing it", "the data", "it may be left", "look"}, instrument, output,
                                         [&](Ifsw&) {
                                             device->whenAsked([](sdk::Key) { throw std::runtime_error{"noise"}; });
                                             device->drop(Sdk::key);
                                         });
    };
    try {
        write();
        FAIL() << "did not throw";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::Failed);
        EXPECT_EQ(error.message(), "writing it failed: noise; whether the data was changed is not known");
    }
}

TEST(CalibrationWriteOfARestlessInstrument, IsNotWaitedForWhileTheInstrumentOnlyDropsAndOffersItsControls)
{
    using namespace std::chrono_literals;
    const auto device = std::make_shared<tests::FakeVna>(); // with any control
    device->offer<sdk::service::ILoLeakageControl>(sdk::service::ILoLeakageControl::key,
                                                   std::make_shared<testing::NiceMock<tests::MockLoLeakageControl>>());
    const Instrument instrument{device, Output{{}, {}}, 80ms};
    CalibrationWrite write{instrument, devices::service::SdkLoLeakageControl::registryKey,
                           [](LongRequest::Progress) { }};
    write.requested();
    write.started();
    const auto end = std::chrono::steady_clock::now() + 20s; // instead of for ever
    const std::jthread restless{[&](const std::stop_token& stop) {
        while (!stop.stop_requested() && std::chrono::steady_clock::now() < end) {
            device->announceRelease();
            device->announceAvailable();
            std::this_thread::sleep_for(1ms);
        }
    }};
    EXPECT_EQ(write.wait(), WriteEnd{std::unexpected(WriteFailure{std::nullopt, true, true})});
    EXPECT_LT(std::chrono::steady_clock::now(), end);
}

} // namespace tarn::console
