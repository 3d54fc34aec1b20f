#include <simulator/statetest.h>

#include <simulator/calibrationfixture.h>

#include <functional>
#include <future>

namespace tarn::simulator {
namespace {

using test::Journal;

class StateCalibrationTest : public test::StateTest {
protected:
    /// Writes calibration data; returns its end after calling `atEnd` in the notification of it.
    template <class Control>
    static std::string calibrate(sdk::IVna& device, const std::function<void()>& atEnd = [] { })
    {
        Journal journal;
        std::promise<std::string> end;
        test::WriteObserver<Control> observer{journal};
        observer.reaction = [&] {
            const auto event = journal.take().back();
            if (event == "finished" || event.starts_with("error")) {
                atEnd();
                end.set_value(event);
            }
        };
        const auto held = control<Control>(device);
        held->addObserver(&observer);
        test::Kind<Control>::write(*held);
        auto event = end.get_future().get();
        held->removeObserver(&observer);
        return event;
    }
};

TEST_F(StateCalibrationTest, KeepsTheCalibrationsAndTheSwitchesOfTheCorrections)
{
    {
        const auto device = open();
        EXPECT_EQ(calibrate<test::Terms>(*device), "finished");
        EXPECT_EQ(calibrate<test::Ifsw>(*device), "finished");
        EXPECT_EQ(calibrate<test::Power>(*device), "finished");
        control<test::Corrections>(*device)->setEnabled(sdk::CorrectionFlag::System, true);
        control<test::Corrections>(*device)->setEnabled(sdk::CorrectionFlag::Crosstalk, false);
    }
    const auto device = open();
    const auto& stored = static_cast<SimulatedVna&>(*device).calibrations();
    EXPECT_TRUE(stored.systemTerms.data() == test::Kind<test::Terms>::data());
    EXPECT_TRUE(stored.ifsw.data() == test::Kind<test::Ifsw>::data());
    EXPECT_TRUE(stored.power.data() == test::Kind<test::Power>::data());
    for (const auto key : {test::Calibration::firstKey, test::Calibration::secondKey}) {
        for (auto* const unit : device->control<test::Calibration>(key)->units())
            EXPECT_EQ(unit->status(), test::Unit::Status::Valid) << unit->name();
    }
    auto& corrections = *control<test::Corrections>(*device);
    EXPECT_EQ(corrections.validCorrections(), corrections.supportedCorrections());
    EXPECT_EQ(static_cast<int>(corrections.enabledCorrections()), 0x86A1);
}

TEST_F(StateCalibrationTest, HasACalibrationWhenItsEndIsTold)
{
    const auto device = open();
    std::map<QString, QByteArray> then;
    EXPECT_EQ(calibrate<test::Power>(*device, [&] { then = everything(); }), "finished");
    EXPECT_EQ(then, everything());
    EXPECT_EQ(blocks().size(), 1);
    EXPECT_EQ(calibrate<test::Power>(*device), "finished");
    EXPECT_EQ(blocks().size(), 1) << "one for each calibration";
    EXPECT_EQ(calibrate<test::Ifsw>(*device), "finished");
    EXPECT_EQ(blocks().size(), 2);
}

TEST_F(StateCalibrationTest, StaysAsItWasWhenACalibrationOrASwitchCannotBeSaved)
{
    const auto device = open();
    EXPECT_EQ(calibrate<test::Power>(*device), "finished");
    const auto before = everything();
    ASSERT_TRUE(QDir{folder()}.mkdir(QStringLiteral("unfinished"))); // in the way
    EXPECT_EQ(calibrate<test::Power>(*device), "error 4");
    EXPECT_EQ(calibrate<test::Terms>(*device), "error 9");
    auto& corrections = *control<test::Corrections>(*device);
    EXPECT_THROW(corrections.setEnabled(sdk::CorrectionFlag::Crosstalk, false), std::runtime_error);
    EXPECT_EQ(static_cast<int>(corrections.enabledCorrections()), 0x86E0);
    ASSERT_TRUE(QDir{folder()}.rmdir(QStringLiteral("unfinished")));
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(calibrate<test::Terms>(*device), "finished") << "works again";
}

} // namespace
} // namespace tarn::simulator
