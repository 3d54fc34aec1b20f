#include <devices/service/sdkserialnumbercontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptertest.h>
#include <support/contractoperations.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/progresscontract.h>
#include <support/requestcontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

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

namespace tarn::tests::sdkserialnumbercontrol {
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

struct SerialNumberContract {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using Adapter = SdkSerialNumberControl;
    using Mock = NiceMock<MockMemorySerialNumberControl>;

    static std::vector<Request<Adapter, Mock>> requests()
    {
        return {{"serialNumber", [](Adapter& adapter) { return hasSucceeded(adapter.serialNumber()); },
                 [](Mock& mock, const Take& take) {
                     ON_CALL(mock, serialNumber).WillByDefault([take](const auto& done) { take(endOf(done, 7)); });
                 }},
                {"writeSerialNumber", [](Adapter& adapter) { return hasSucceeded(adapter.writeSerialNumber(1)); },
                 [](Mock& mock, const Take& take) {
                     ON_CALL(mock, writeSerialNumber).WillByDefault(testing::WithArg<1>(take));
                 }}};
    }

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        auto operations = asOperations(requests());
        operations.push_back(attachOperation<Adapter, Mock>());
        operations.push_back(detachOperation<Adapter, Mock>());
        return operations;
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SerialNumber, AdapterContract, SerialNumberContract);
INSTANTIATE_TYPED_TEST_SUITE_P(SerialNumber, RequestContract, SerialNumberContract);

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
} // namespace tarn::tests::sdkserialnumbercontrol
