#include <devices/service/sdkserialnumbercontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptertest.h>
#include <support/contractoperations.h>
#include <support/errorcategory.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/progresscontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <future>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::ISerialNumberControl;
using tarn::devices::service::SdkSerialNumberControl;
using testing::_;
using testing::NiceMock;

namespace tarn::tests {
namespace {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Error = ISerialNumberControl::Error;

static_assert(std::is_base_of_v<ISerialNumberControl, SdkSerialNumberControl>);
static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkSerialNumberControl>);
static_assert(sizeof(SdkSerialNumberControl) == 3 * sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "two bases, the handle, the observer");
static_assert(static_cast<int>(Error::Failed) == 0);
static_assert(sizeof(unsigned int) == 4);

constexpr auto greatest = std::numeric_limits<unsigned int>::max();

template <class T>
Outcome outcome(const std::expected<T, Error>& result)
{
    return result ? Outcome::Answered : Outcome::Unavailable;
}

struct SerialNumberContract {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using Adapter = SdkSerialNumberControl;
    using Mock = NiceMock<MockMemorySerialNumberControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {{"serialNumber", [](Adapter& adapter) { return outcome(adapter.serialNumber()); },
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, serialNumber).WillByDefault([inside](const auto& done) {
                         inside();
                         done(1, {});
                     });
                 }},
                {"writeSerialNumber", [](Adapter& adapter) { return outcome(adapter.writeSerialNumber(1)); },
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, writeSerialNumber).WillByDefault([inside](auto, const auto& done) {
                         inside();
                         done({});
                     });
                 }},
                attachOperation<Adapter, Mock>(),
                detachOperation<Adapter, Mock>()};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SerialNumber, AdapterContract, SerialNumberContract);

struct SerialNumberProgress {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = SdkSerialNumberControl;
    using Mock = MockMemorySerialNumberControl;

    struct Listener final : ISerialNumberControl::IObserver {
        void onWriteProgressChanged(const Progress& progress) override { heard(progress); }
        std::function<void(const Progress&)> heard;
    };

    static void notify(SdkObserver& observer, unsigned int done, unsigned int total)
    {
        observer.onWriteProgressChanged(done, total);
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SerialNumber, ProgressContract, SerialNumberProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(SerialNumber, ProgressRecordContract, SerialNumberProgress);

class SdkSerialNumberControlTest
    : public AdapterTest<Sdk, SdkSerialNumberControl, AttachedMock<MockMemorySerialNumberControl, Sdk::Observer>> { };

TEST_F(SdkSerialNumberControlTest, ReadsEveryNumberUnchanged)
{
    for (const unsigned int number : {0U, 1U, 0x8000'0000U, greatest}) {
        EXPECT_CALL(*mock, serialNumber).WillOnce([&](const auto& done) { done(number, {}); });
        EXPECT_EQ(control.serialNumber().value(), number);
    }
}

TEST_F(SdkSerialNumberControlTest, WritesEveryNumberUnchanged)
{
    for (const unsigned int number : {0U, 1U, 0x8000'0000U, greatest}) {
        EXPECT_CALL(*mock, writeSerialNumber(number, _)).WillOnce([](auto, const auto& done) { done({}); });
        EXPECT_TRUE(control.writeSerialNumber(number));
    }
}

TEST_F(SdkSerialNumberControlTest, FailsOnEveryCodeWhoseValueIsNotZeroAndOnNoOther)
{
    const ErrorCategory strange{"strange"};
    for (const auto code : {strange.code(0), strange.code(1), strange.code(-1), std::error_code{},
                            std::make_error_code(std::errc::io_error)}) {
        EXPECT_CALL(*mock, serialNumber).WillOnce([&](const auto& done) { done(7, code); });
        EXPECT_CALL(*mock, writeSerialNumber).WillOnce([&](auto, const auto& done) { done(code); });
        const auto read = control.serialNumber();
        const auto written = control.writeSerialNumber(7);
        EXPECT_EQ(read.has_value(), code.value() == 0);
        EXPECT_EQ(written.has_value(), code.value() == 0);
        if (code.value() != 0) {
            EXPECT_EQ(read.error(), Error::Failed);
            EXPECT_EQ(written.error(), Error::Failed);
        }
    }
}

TEST_F(SdkSerialNumberControlTest, ForwardsTheProgressOfAWriteWhileTheCallerWaits)
{
    SerialNumberProgress::Listener listener;
    std::vector<Progress> heard;
    std::thread::id heardOn;
    listener.heard = [&](const Progress& progress) {
        heard.push_back(progress);
        heardOn = std::this_thread::get_id();
    };
    control.addObserver(listener);
    std::jthread sdkThread;
    EXPECT_CALL(*mock, writeSerialNumber).WillOnce([&](auto, auto done) {
        sdkThread = std::jthread{[this, done = std::move(done)] {
            mock->attached->onWriteProgressChanged(0, 2);
            mock->attached->onWriteProgressChanged(2, 2);
            done({});
        }};
    });
    EXPECT_TRUE(control.writeSerialNumber(7));
    EXPECT_THAT(heard, testing::ElementsAre(Progress{2, 0}, Progress{2, 2}));
    EXPECT_EQ(heardOn, sdkThread.get_id());
}

TEST_F(SdkSerialNumberControlTest, KeepsTwoOutstandingRequestsApartThatCompleteInTheOtherOrder)
{
    std::promise<sdk::Completion<unsigned int>> reading;
    std::promise<sdk::Completion<>> writing;
    EXPECT_CALL(*mock, serialNumber).WillOnce([&](auto done) { reading.set_value(std::move(done)); });
    EXPECT_CALL(*mock, writeSerialNumber).WillOnce([&](auto, auto done) { writing.set_value(std::move(done)); });
    std::jthread reader{[&] { EXPECT_EQ(control.serialNumber().value(), 7U); }};
    const auto doneReading = reading.get_future().get();
    std::jthread writer{[&] { EXPECT_FALSE(control.writeSerialNumber(8)); }};
    writing.get_future().get()(std::make_error_code(std::errc::io_error));
    writer.join();
    doneReading(7, {});
}

TEST_F(SdkSerialNumberControlTest, KeepsTheControlAliveWhileItWaitsForTheCompletion)
{
    std::promise<sdk::Completion<unsigned int>> request;
    EXPECT_CALL(*mock, serialNumber).WillOnce([&](auto done) { request.set_value(std::move(done)); });
    std::jthread caller{[&] { EXPECT_EQ(control.serialNumber().value(), 7U); }};
    const auto done = request.get_future().get();
    device.drop(Sdk::key);
    const std::weak_ptr<Sdk> life{std::exchange(mock, nullptr)};
    EXPECT_FALSE(life.expired());
    done(7, {});
    caller.join();
    EXPECT_TRUE(life.expired());
}

TEST(SdkSerialNumberInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isAvailable), 0);
    EXPECT_EQ(slotOf(&Sdk::serialNumber), 1);
    EXPECT_EQ(slotOf(&Sdk::writeSerialNumber), 2);
    EXPECT_EQ(slotOf(&Sdk::addObserver), 3);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 4);
    EXPECT_EQ(slotOf(&Sdk::Observer::onWriteProgressChanged), 0);
}

TEST(SerialNumberInterface, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(&ISerialNumberControl::serialNumber), 0);
    EXPECT_EQ(slotOf(&ISerialNumberControl::writeSerialNumber), 1);
    EXPECT_EQ(slotOf(&ISerialNumberControl::addObserver), 2);
    EXPECT_EQ(slotOf(&ISerialNumberControl::removeObserver), 3);
    EXPECT_EQ(slotOf(&SdkSerialNumberControl::onControlsAboutToBeReleased), 4);
    EXPECT_EQ(slotOf(&SdkSerialNumberControl::onControlsAvailable), 5);
    EXPECT_EQ(slotOf(&ISerialNumberControl::IObserver::onWriteProgressChanged), 0);
}

} // namespace
} // namespace tarn::tests
