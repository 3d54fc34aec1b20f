#include <devices/service/sdkloleakagecontrol.h>

#include <support/adaptercontract.h>
#include <support/devicehandle.h>
#include <support/mockloleakagecontrol.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <type_traits>

using tarn::devices::ReacquiringControl;
using tarn::devices::service::SdkLoLeakageControl;
using testing::InSequence;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::sdkloleakagecontrol {
namespace {

using Sdk = sdk::service::ILoLeakageControl;

static_assert(!std::is_polymorphic_v<SdkLoLeakageControl>);
static_assert(sizeof(SdkLoLeakageControl) == sizeof(ReacquiringControl<Sdk>), "the handle is its only member");
static_assert(!std::is_copy_constructible_v<SdkLoLeakageControl>);

struct LoLeakageContract {
    using Sdk = sdk::service::ILoLeakageControl;
    using Adapter = SdkLoLeakageControl;
    using Mock = NiceMock<MockLoLeakageControl>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {{"isEnabled",
                 [](Adapter& adapter) { return adapter.isEnabled() ? Outcome::Answered : Outcome::Unavailable; },
                 [](Mock& mock, const std::function<void()>& inside) {
                     ON_CALL(mock, isEnabled).WillByDefault([inside] {
                         inside();
                         return true;
                     });
                 }},
                {"setEnabled",
                 [](Adapter& adapter) {
                     adapter.setEnabled(true);
                     return Outcome::NoResult;
                 },
                 [](Mock& mock, const std::function<void()>& inside) {
                     ON_CALL(mock, setEnabled).WillByDefault([inside](bool) { inside(); });
                 }}};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(LoLeakage, AdapterContract, LoLeakageContract);

class SdkLoLeakageControlTest : public testing::Test {
protected:
    ReacquiringControl<Sdk> handle() { return handleTo<Sdk>(device, Sdk::key); }

    FakeVna device;
    std::shared_ptr<StrictMock<MockLoLeakageControl>> mock = std::make_shared<StrictMock<MockLoLeakageControl>>();
};

TEST_F(SdkLoLeakageControlTest, ConstructionCallsNeitherTheDeviceNorTheControl)
{
    device.offer<Sdk>(Sdk::key, mock);
    auto reacquiring = handle();
    const int before = device.asked(Sdk::key);
    const SdkLoLeakageControl control{std::move(reacquiring)};
    EXPECT_EQ(device.asked(Sdk::key), before);
}

TEST_F(SdkLoLeakageControlTest, ADeviceThatNeverOffersTheControlReadsAsOffAndIgnoresTheSetter)
{
    SdkLoLeakageControl control{handle()};
    EXPECT_FALSE(control.isEnabled());
    EXPECT_NO_THROW(control.setEnabled(true));
    EXPECT_FALSE(control.isEnabled());
}

TEST_F(SdkLoLeakageControlTest, IsEnabledIsWhatTheDeviceReportsNotWhatWasSetLast)
{
    device.offer<Sdk>(Sdk::key, mock);
    SdkLoLeakageControl control{handle()};
    const InSequence order;
    EXPECT_CALL(*mock, setEnabled(true));
    EXPECT_CALL(*mock, isEnabled).WillOnce(Return(false));
    EXPECT_CALL(*mock, isEnabled).WillOnce(Return(true));
    control.setEnabled(true);
    EXPECT_FALSE(control.isEnabled());
    EXPECT_TRUE(control.isEnabled());
}

TEST_F(SdkLoLeakageControlTest, EverySetReachesTheDeviceWithItsArgumentAndNothingIsReadBack)
{
    device.offer<Sdk>(Sdk::key, mock);
    SdkLoLeakageControl control{handle()};
    const InSequence order;
    EXPECT_CALL(*mock, setEnabled(true)).Times(2); // the same value again is not swallowed
    EXPECT_CALL(*mock, setEnabled(false));
    control.setEnabled(true);
    control.setEnabled(true);
    control.setEnabled(false);
}

TEST_F(SdkLoLeakageControlTest, AfterADropTheNextCallReachesTheNewControl)
{
    device.offer<Sdk>(Sdk::key, mock);
    SdkLoLeakageControl control{handle()};
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_FALSE(control.isEnabled());

    const auto next = std::make_shared<StrictMock<MockLoLeakageControl>>();
    device.offer<Sdk>(Sdk::key, next);
    EXPECT_CALL(*next, isEnabled).WillOnce(Return(true));
    EXPECT_TRUE(control.isEnabled());
}

TEST(SdkLoLeakageInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isEnabled), 0);
    EXPECT_EQ(slotOf(&Sdk::setEnabled), 1);
}

} // namespace
} // namespace tarn::tests::sdkloleakagecontrol
