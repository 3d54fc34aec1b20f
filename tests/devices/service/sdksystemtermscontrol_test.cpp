#include <devices/service/sdksystemtermscontrol.h>

#include <devices/errortermsconversion.h>
#include <devices/icontrollifecycleobserver.h>
#include <support/contractoperations.h>
#include <support/devicehandle.h>
#include <support/mocksystemtermscontrol.h>
#include <support/progresscontract.h>
#include <support/virtualslot.h>

#include <QTimeZone>
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::ISystemTermsControl;
using tarn::devices::service::SdkSystemTermsControl;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;

namespace tarn::tests::sdksystemtermscontrol {
namespace {

using Sdk = sdk::service::ISystemTermsControl;
using Error = ISystemTermsControl::Error;
using Plan = std::vector<vna::FrequencySegment>;

static_assert(std::is_base_of_v<ISystemTermsControl, SdkSystemTermsControl>);
static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkSystemTermsControl>);
static_assert(sizeof(SdkSystemTermsControl) == 3 * sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "two bases, the handle, the listener");

const QDateTime someTime = QDateTime::fromSecsSinceEpoch(1'700'000'000);
const Plan somePlan{{1e9, 2e9, 2}};

/// Terms of one port at one frequency.
vna::ErrorTerms someTerms()
{
    vna::ErrorTerms terms{1, {1e9}};
    terms.reflection(0, 1) = {{0.01, -0.02}, 0.1, 0.9};
    return terms;
}

struct SystemTermsContract {
    using Sdk = sdk::service::ISystemTermsControl;
    using Adapter = SdkSystemTermsControl;
    using Mock = NiceMock<MockSystemTermsControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {frequencyPlanOperation<Adapter, Mock>(),
                {"requestWriteTerms",
                 noResult<Adapter>([](Adapter& adapter) { adapter.requestWriteTerms(someTime, 1.0, someTerms()); }),
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, writeTerms).WillByDefault(testing::InvokeWithoutArgs(inside));
                 }},
                {"isFrequencyOverrideSupported",
                 [](Adapter& adapter) {
                     return adapter.isFrequencyOverrideSupported() ? Outcome::Answered : Outcome::Unavailable;
                 },
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, isFrequencyOverrideSupported).WillByDefault([inside] {
                         inside();
                         return true;
                     });
                 }},
                {"requestWriteTerms with a plan", noResult<Adapter>([](Adapter& adapter) {
                     adapter.requestWriteTerms(someTime, 1.0, somePlan, someTerms());
                 }),
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, writeTermsForPlan).WillByDefault(testing::InvokeWithoutArgs(inside));
                 }},
                attachOperation<Adapter, Mock>(),
                detachOperation<Adapter, Mock>()};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SystemTerms, AdapterContract, SystemTermsContract);

/// The progress of the terms, whose one number the record carries as `done`.
struct SystemTermsProgress {
    using Sdk = sdk::service::ISystemTermsControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = SdkSystemTermsControl;
    using Mock = MockSystemTermsControl;

    struct Listener final : ISystemTermsControl::Observer {
        void onWriteStarted() override { ADD_FAILURE(); }
        void onWriteProgressChanged(std::uint32_t progress) override { heard({0, progress}); }
        void onWriteFinished() override { ADD_FAILURE(); }
        void onErrorOccurred(Error /*error*/) override { ADD_FAILURE(); }
        std::function<void(const Progress&)> heard;
    };

    static void notify(SdkObserver& observer, unsigned int done, unsigned int /*total*/)
    {
        observer.onWriteProgressChanged(done);
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SystemTerms, ProgressContract, SystemTermsProgress);

/// Writes down what it hears.
struct Listener final : ISystemTermsControl::Observer {
    explicit Listener(std::vector<std::string>& notebook)
        : journal{notebook}
    {
    }
    void onWriteStarted() override { journal.emplace_back("started"); }
    void onWriteProgressChanged(std::uint32_t progress) override { journal.push_back(std::to_string(progress)); }
    void onWriteFinished() override { journal.emplace_back("finished"); }
    void onErrorOccurred(Error error) override
    {
        journal.push_back("error " + std::to_string(static_cast<int>(error)));
    }

    std::vector<std::string>& journal;
};

class SdkSystemTermsControlTest : public testing::Test {
protected:
    using Mock = testing::StrictMock<MockSystemTermsControl>;

    SdkSystemTermsControlTest()
    {
        EXPECT_CALL(*mock, addObserver).WillRepeatedly(testing::SaveArg<0>(&attached));
        EXPECT_CALL(*mock, removeObserver).Times(testing::AnyNumber());
        device.offer<Sdk>(Sdk::key, mock);
        control.emplace(handleTo<Sdk>(device, Sdk::key));
    }

    FakeVna device;
    std::shared_ptr<Mock> mock = std::make_shared<Mock>();
    Sdk::Observer* attached = nullptr;
    std::optional<SdkSystemTermsControl> control;
    std::vector<std::string> journal;
    Listener listener{journal};
};

TEST_F(SdkSystemTermsControlTest, ConvertsTheFrequencyPlanSegmentBySegment)
{
    EXPECT_CALL(*mock, frequencyPlan).WillOnce(Return(sdk::FrequencyPlan{{{3e9, 1e9, -1}, {0.0, 0.0, 0}}}));
    EXPECT_THAT(control->frequencyPlan(),
                ElementsAre(vna::FrequencySegment{3e9, 1e9, 0xffff'ffff}, vna::FrequencySegment{0.0, 0.0, 0}));
}

TEST_F(SdkSystemTermsControlTest, PassesOnWhetherAnOverrideIsSupported)
{
    EXPECT_CALL(*mock, isFrequencyOverrideSupported).WillOnce(Return(false)).WillOnce(Return(true));
    EXPECT_FALSE(control->isFrequencyOverrideSupported());
    EXPECT_TRUE(control->isFrequencyOverrideSupported());
}

TEST_F(SdkSystemTermsControlTest, WritesTheConvertedTermsWithTimeAndTemperature)
{
    EXPECT_CALL(*mock, writeTerms(1'700'000'000, devices::errorTermsToSdk(someTerms()), 23.5));
    control->requestWriteTerms(someTime, 23.5, someTerms());
}

TEST_F(SdkSystemTermsControlTest, WritesForAPlan)
{
    const Plan plan{{1e9, 2e9, 2}, {9e9, 1e9, 0}};
    const sdk::FrequencyPlan sdkPlan{{{1e9, 2e9, 2}, {9e9, 1e9, 0}}};
    EXPECT_CALL(*mock, writeTermsForPlan(-5, sdkPlan, devices::errorTermsToSdk(someTerms()), -1.25));
    control->requestWriteTerms(QDateTime::fromSecsSinceEpoch(-5), -1.25, plan, someTerms());
}

TEST_F(SdkSystemTermsControlTest, SendsTheTimeInWholeSecondsSinceTheEpochWhateverItsZone)
{
    const struct {
        QDateTime time;
        std::int64_t seconds;
    } cases[] = {
        {QDateTime::fromMSecsSinceEpoch(1'999), 1},
        {QDateTime{{1970, 1, 1}, {3, 0}, QTimeZone{3 * 3600}}, 0},
        {QDateTime{{1969, 12, 31}, {23, 59, 59}, Qt::UTC}, -1},
        {QDateTime{{9999, 12, 31}, {23, 59, 59}, Qt::UTC}, 253'402'300'799},
        {QDateTime{}, 0}, // no time at all: what Qt makes of it
    };
    for (const auto& [time, seconds] : cases) {
        EXPECT_EQ(time.toSecsSinceEpoch(), seconds);
        EXPECT_CALL(*mock, writeTerms(seconds, _, _));
        control->requestWriteTerms(time, 0.0, someTerms());
        EXPECT_CALL(*mock, writeTermsForPlan(seconds, _, _, _));
        control->requestWriteTerms(time, 0.0, somePlan, someTerms());
    }
}

TEST_F(SdkSystemTermsControlTest, WritesTermsThatHoldNothing)
{
    EXPECT_CALL(*mock, writeTerms(_, sdk::corrections::ErrorTerms{}, _));
    control->requestWriteTerms(someTime, 0.0, {});
    EXPECT_CALL(*mock, writeTermsForPlan(_, _, sdk::corrections::ErrorTerms{}, _));
    control->requestWriteTerms(someTime, 0.0, somePlan, {});
}

TEST_F(SdkSystemTermsControlTest, DoesNothingAtAllForAnEmptyPlan)
{
    control->addObserver(listener);
    control->requestWriteTerms(someTime, 1.0, Plan{}, someTerms()); // the mock expects no call

    const int before = device.asked(Sdk::key);
    device.drop(Sdk::key);
    mock.reset();
    control->requestWriteTerms(someTime, 1.0, Plan{}, someTerms());
    EXPECT_EQ(device.asked(Sdk::key), before) << "the control was locked";
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SdkSystemTermsControlTest, ReportsNothingWhenAWriteIsDropped)
{
    control->addObserver(listener);
    device.drop(Sdk::key);
    mock.reset();
    control->requestWriteTerms(someTime, 1.0, someTerms());
    control->requestWriteTerms(someTime, 1.0, somePlan, someTerms());
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SdkSystemTermsControlTest, RelaysEveryNotificationToItsCounterpart)
{
    control->addObserver(listener);
    attached->onWriteStarted();
    for (const auto progress : {0U, 1U, 100U, 101U, 0xffff'ffffU})
        attached->onWriteProgressChanged(progress);
    attached->onWriteFinished();
    attached->onErrorOccurred(Sdk::Error::PlanMismatch);
    EXPECT_THAT(journal, ElementsAre("started", "0", "1", "100", "101", "4294967295", "finished", "error 6"));
}

TEST_F(SdkSystemTermsControlTest, RelaysEveryNotificationOncePerRegistration)
{
    control->addObserver(listener);
    control->addObserver(listener);
    attached->onWriteStarted();
    attached->onWriteProgressChanged(7);
    attached->onWriteFinished();
    attached->onErrorOccurred(Sdk::Error::NoTerms);
    EXPECT_THAT(journal, ElementsAre("started", "started", "7", "7", "finished", "finished", "error 1", "error 1"));

    journal.clear();
    control->removeObserver(listener);
    attached->onWriteStarted();
    attached->onErrorOccurred(Sdk::Error::NoTerms);
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SdkSystemTermsControlTest, KeepsTheErrorsOneToNineAndMakesZeroOfAllOthers)
{
    control->addObserver(listener);
    for (unsigned int number = 0; number <= 255; ++number) {
        journal.clear();
        attached->onErrorOccurred(static_cast<Sdk::Error>(number));
        EXPECT_THAT(journal, ElementsAre("error " + std::to_string(number >= 1 && number <= 9 ? number : 0)));
    }
}

TEST_F(SdkSystemTermsControlTest, SynthesisesNothingWhenTheControlReturns)
{
    control->addObserver(listener);
    control->onControlsAboutToBeReleased();
    control->onControlsAvailable();
    EXPECT_THAT(journal, IsEmpty());
}

TEST(SystemTermsSlots, StandInTheGivenOrder)
{
    EXPECT_EQ(slotOf(&Sdk::addObserver), 0);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 1);
    EXPECT_EQ(slotOf(&Sdk::frequencyPlan), 2);
    EXPECT_EQ(slotOf(&Sdk::portCount), 3);
    EXPECT_EQ(slotOf(&Sdk::maximumPointCount), 4);
    EXPECT_EQ(slotOf(&Sdk::writeTerms), 5);
    EXPECT_EQ(slotOf(&Sdk::isFrequencyOverrideSupported), 6);
    EXPECT_EQ(slotOf(&Sdk::writeTermsForPlan), 7);
    EXPECT_EQ(slotOf(&Sdk::Observer::onWriteStarted), 0);
    EXPECT_EQ(slotOf(&Sdk::Observer::onWriteProgressChanged), 1);
    EXPECT_EQ(slotOf(&Sdk::Observer::onWriteFinished), 2);
    EXPECT_EQ(slotOf(&Sdk::Observer::onErrorOccurred), 3);

    using Control = ISystemTermsControl;
    using Write = void (Control::*)(QDateTime, double, const vna::ErrorTerms&);
    using WriteForPlan = void (Control::*)(QDateTime, double, Plan, const vna::ErrorTerms&);
    EXPECT_EQ(slotOf(&Control::frequencyPlan), 0);
    EXPECT_EQ(slotOf(static_cast<Write>(&Control::requestWriteTerms)), 1);
    EXPECT_EQ(slotOf(&Control::isFrequencyOverrideSupported), 2);
    EXPECT_EQ(slotOf(static_cast<WriteForPlan>(&Control::requestWriteTerms)), 3);
    EXPECT_EQ(slotOf(&Control::addObserver), 4);
    EXPECT_EQ(slotOf(&Control::removeObserver), 5);
    EXPECT_EQ(slotOf(&Control::Observer::onWriteStarted), 0);
    EXPECT_EQ(slotOf(&Control::Observer::onWriteProgressChanged), 1);
    EXPECT_EQ(slotOf(&Control::Observer::onWriteFinished), 2);
    EXPECT_EQ(slotOf(&Control::Observer::onErrorOccurred), 3);
}

} // namespace
} // namespace tarn::tests::sdksystemtermscontrol
