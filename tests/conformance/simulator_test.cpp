// The simulated instrument keeps every guarantee, whichever model it is and whatever goes wrong within the contract.

#include <conformance/fakes.h>
#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>

#include <tuple>

namespace tarn::tests {

using conformance::Verdict;

conformance::Options unhurried(std::chrono::milliseconds patience)
{
    auto options = quick();
    options.limit = std::chrono::seconds{20};
    options.patience = patience;
    return options;
}

class KeepingInstrument : public testing::TestWithParam<const char*> { };

TEST_P(KeepingInstrument, KeepsEveryGuarantee)
{
    for (const auto& [name, outcome] : checkAll(simulated(GetParam()), unhurried(std::chrono::milliseconds{20}))) {
        EXPECT_NE(outcome.verdict, Verdict::Broken) << name << ": " << textOf(outcome);
        EXPECT_FALSE(outcome.isStuck) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Addresses, KeepingInstrument,
                         testing::Values("", "profile=bare", "profile=pell", "profile=zinnia", "profile=marl",
                                         "profile=tove", "profile=wisp", "profile=glint", "profile=brae",
                                         "profile=vell", "profile=multiport-lum", "profile=multiport-common",
                                         "completion=inline", "profile=pell,drop-every=3,drop-for=1ms", "fail-every=2",
                                         "throw-every=3", "profile=brae,latency=1ms,drop-every=5,drop-for=3ms"));

TEST(FullInstrument, LeavesNoGuaranteeUnchecked)
{
    for (const auto& [name, outcome] : checkAll(simulated(""), unhurried(std::chrono::milliseconds{1200}))) {
        EXPECT_EQ(outcome.verdict, Verdict::Kept) << name << ": " << outcome.reason << textOf(outcome);
        EXPECT_GT(outcome.seen.calls, 0U) << name;
    }
}

TEST(FullInstrument, ShowsTimesThreadsAndCounts)
{
    const auto elsewhere = conformance::check(guarantee("one-completion"), simulated("latency=2ms")(), quick());
    EXPECT_GT(elsewhere.seen.requests, 20U);
    EXPECT_EQ(elsewhere.seen.completionsElsewhere, elsewhere.seen.requests);
    EXPECT_EQ(elsewhere.seen.completionsInside, 0U);
    EXPECT_GE(elsewhere.seen.longestRequest, std::chrono::milliseconds{2});
    const auto inside = conformance::check(guarantee("one-completion"), simulated("completion=inline")(), quick());
    EXPECT_EQ(inside.seen.completionsInside, inside.seen.requests);
    const auto refused = conformance::check(guarantee("refused-alone"), simulated("")(), quick());
    EXPECT_EQ(refused.seen.completionsInside, 0U); // a write of calibration data has none
    const auto progress = conformance::check(guarantee("progress-rises"), simulated("")(), quick());
    EXPECT_GT(progress.seen.notifications, 10U);
    EXPECT_EQ(progress.seen.notificationThreads, 1U);
}

TEST(FullInstrument, IsAsItWasAfterTheWrites)
{
    const auto device = std::make_shared<simulator::SimulatedVna>();
    const auto state = [&] {
        using Power = sdk::service::IDORNPowerControl;
        using Synthesis = sdk::service::ISableSynthesisControl;
        const auto power = device->control<Power>(Power::key);
        const auto synthesis = device->control<Synthesis>(Synthesis::key);
        return std::tuple{power->loPower(),
                          power->powerControlMode(),
                          power->dacControlMode(),
                          power->dacMode(),
                          power->signalGain(),
                          synthesis->rfFilterMode(),
                          synthesis->measureDelay(),
                          synthesis->rfPowerMode(),
                          device->potentiometers().front().eeprom,
                          device->potentiometers().front().ram};
    };
    device->control<sdk::service::IDORNPowerControl>(sdk::service::IDORNPowerControl::key)->setLoPower(17);
    const auto before = state();
    for (const auto& one : conformance::guarantees())
        EXPECT_NE(conformance::check(one, device, quick()).verdict, Verdict::Broken) << one.name;
    EXPECT_EQ(state(), before);
}

/// Counts what would change the instrument.
class CountingCorrections final : public FakeCorrections {
public:
    void setEnabled(sdk::CorrectionFlag /*correction*/, bool /*value*/) override { ++changes; }

    int changes = 0;
};

class CountingCalibration final : public FakeIfswCalibration {
public:
    void saveCalibrationData(IfswCalibrationData /*data*/) override { ++changes; }

    int changes = 0;
};

TEST(AnyInstrument, IsNotChangedWithoutLeave)
{
    const auto corrections = std::make_shared<CountingCorrections>();
    const auto calibration = std::make_shared<CountingCalibration>();
    const auto device = std::make_shared<FakeVna>();
    device->offer<sdk::IFactoryCorrectionControl>(CountingCorrections::key, corrections);
    device->offer<sdk::service::IVellIfswCalibrationControl>(CountingCalibration::key, calibration);
    auto options = quick();
    options.writes = false;
    for (const auto& one : conformance::guarantees()) {
        const auto outcome = conformance::check(one, device, options);
        EXPECT_EQ(one.isOfWrites, outcome.reason == "it can only be checked by changing the instrument") << one.name;
    }
    EXPECT_EQ(corrections->changes, 0);
    EXPECT_EQ(calibration->changes, 0);
}

/// Takes no change of what it has stored.
class ReadOnlyFiles final : public FakeFiles {
    void writeFile(std::string /*name*/, std::vector<std::uint8_t> /*contents*/, sdk::Completion<> completion) override
    {
        completion(std::make_error_code(std::errc::read_only_file_system));
    }
};

class ReadOnlyPotentiometers final : public FakePotentiometers {
    void writeToEeprom(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override
    {
        completion(std::make_error_code(std::errc::operation_not_permitted));
    }
};

TEST(ReadOnlyInstrument, BreaksNothingByRefusingToBeWritten)
{
    const auto device = std::make_shared<FakeVna>();
    device->offer<sdk::service::IFileMemoryControl>(FakeFiles::key, std::make_shared<ReadOnlyFiles>());
    device->offer<sdk::service::IPotentiometersControl>(FakePotentiometers::key,
                                                        std::make_shared<ReadOnlyPotentiometers>());
    const auto outcome = conformance::check(guarantee("values-survive"), device, quick());
    EXPECT_EQ(outcome.verdict, Verdict::NotChecked) << textOf(outcome);
    EXPECT_THAT(outcome.reason, testing::HasSubstr("ended with the error"));
}

TEST(OwnThread, IsNotCheckedByARequestThatMayNotifyItsCaller)
{
    const auto make = offering<FakeMemory, sdk::service::IMemoryOperationsControl>();
    const auto outcome = conformance::check(guarantee("own-thread"), make(), quick());
    EXPECT_GT(outcome.seen.notifications, 0U);
    EXPECT_EQ(outcome.verdict, Verdict::NotChecked);
    EXPECT_THAT(outcome.reason, testing::HasSubstr("was not notified of an operation without a completion"));
}

TEST(DroppingInstrument, IsSeenToLetItsControlsGo)
{
    const auto outcome = conformance::check(guarantee("handles-expire"), simulated("drop-every=7")(), quick());
    EXPECT_EQ(outcome.verdict, Verdict::Kept) << textOf(outcome);
    EXPECT_GT(outcome.seen.drops, 3U);
    const auto calm = conformance::check(guarantee("handles-expire"), simulated("")(), quick());
    EXPECT_THAT(testing::PrintToString(calm.notes), testing::HasSubstr("has not dropped its controls meanwhile"));
}

} // namespace tarn::tests
