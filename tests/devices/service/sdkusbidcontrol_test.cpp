#include <devices/service/sdkusbidcontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <sdk/models.h>
#include <support/adaptercontract.h>
#include <support/adaptertest.h>
#include <support/mockmemoryusbidcontrol.h>
#include <support/requestcontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::IUsbIdControl;
using tarn::devices::service::SdkMemoryUsbId;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::sdkusbidcontrol {
namespace {

using Sdk = sdk::service::IMemoryUsbIdControl;
using Properties = IUsbIdControl::DeviceProperties;
using UsbId = IUsbIdControl::UsbId;
using Guid = std::array<std::byte, 16>;

static_assert(std::is_base_of_v<IUsbIdControl, SdkMemoryUsbId>);
static_assert(!std::is_base_of_v<IControlLifecycleObserver, SdkMemoryUsbId>);
static_assert(sizeof(SdkMemoryUsbId) == sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "the handle is its only member");

// Six bytes, the same on both sides.
template <class Id>
constexpr bool isTheUsbId = sizeof(Id) == 6 && std::is_trivially_copyable_v<Id> && std::is_standard_layout_v<Id>
    && offsetof(Id, vendorId) == 0 && offsetof(Id, productId) == 2 && offsetof(Id, deviceRelease) == 4;
static_assert(isTheUsbId<Sdk::UsbId> && isTheUsbId<UsbId>);

// The identity in a slot of eight bytes, the model, 32 bits, 16 bytes.
static_assert(offsetof(Sdk::DeviceRecord, usbId) == 0 && offsetof(Sdk::DeviceRecord, model) == 8);
static_assert(offsetof(Sdk::DeviceRecord, hardwareRevision) == 8 + sizeof(sdk::Model));
static_assert(offsetof(Sdk::DeviceRecord, deviceInterfaceGuid) == 12 + sizeof(sdk::Model));
static_assert(sizeof(Sdk::DeviceRecord::hardwareRevision) == 4 && sizeof(Sdk::DeviceRecord::deviceInterfaceGuid) == 16);
static_assert(offsetof(Properties, usbId) == 0 && offsetof(Properties, modelName) == 8);
static_assert(offsetof(Properties, hardwareRevision) == 8 + sizeof(std::string));
static_assert(offsetof(Properties, deviceInterfaceGuid) == 12 + sizeof(std::string));
static_assert(sizeof(Properties::hardwareRevision) == 4 && sizeof(Properties::deviceInterfaceGuid) == 16);

/// Sixteen bytes that all differ.
Guid guid(unsigned int first)
{
    Guid bytes{};
    for (auto& byte : bytes)
        byte = static_cast<std::byte>(first++);
    return bytes;
}

struct UsbIdContract {
    using Sdk = sdk::service::IMemoryUsbIdControl;
    using Adapter = SdkMemoryUsbId;
    using Mock = NiceMock<MockMemoryUsbIdControl>;
    using Inside = std::function<void()>;

    static std::vector<Request<Adapter, Mock>> requests()
    {
        return {
            {"writeUsbId", [](Adapter& adapter) { return adapter.writeUsbId({}); },
             [](Mock& mock, const Take& take) { ON_CALL(mock, writeUsbId).WillByDefault(testing::WithArg<1>(take)); }}};
    }

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        auto operations = asOperations(requests());
        operations.insert(operations.end(),
                          {{"currentDeviceProperties",
                            [](Adapter& adapter) {
                                return adapter.currentDeviceProperties() == Properties{} ? Outcome::Unavailable
                                                                                         : Outcome::Answered;
                            },
                            [](Mock& mock, const Inside& inside) {
                                ON_CALL(mock, currentDevice).WillByDefault([inside, &mock] {
                                    inside();
                                    return mock.device;
                                });
                            }},
                           {"supportedDevices",
                            [](Adapter& adapter) {
                                return adapter.supportedDevices().empty() ? Outcome::Unavailable : Outcome::Answered;
                            },
                            [](Mock& mock, const Inside& inside) {
                                ON_CALL(mock, supportedDevices).WillByDefault([inside, &mock] {
                                    inside();
                                    return std::vector{mock.device};
                                });
                            }}});
        return operations;
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(UsbId, AdapterContract, UsbIdContract);
INSTANTIATE_TYPED_TEST_SUITE_P(UsbId, RequestContract, UsbIdContract);

/// A device with a USB identity whose every call must be expected.
class SdkMemoryUsbIdTest : public AdapterTest<Sdk, SdkMemoryUsbId, StrictMock<MockMemoryUsbIdControl>> { };

TEST_F(SdkMemoryUsbIdTest, WithoutAControlTheCurrentDeviceIsTheDefaultRecord)
{
    device.drop(Sdk::key);
    mock.reset();
    const auto properties = control.currentDeviceProperties();
    EXPECT_EQ(properties.usbId.vendorId, 0);
    EXPECT_EQ(properties.usbId.productId, 0);
    EXPECT_EQ(properties.usbId.deviceRelease, 0);
    EXPECT_EQ(properties.modelName, "");
    EXPECT_EQ(properties.hardwareRevision, 1U);
    EXPECT_EQ(properties.deviceInterfaceGuid, Guid{});
}

TEST_F(SdkMemoryUsbIdTest, WithoutAControlNoDeviceIsSupportedAndAWriteEndsAtOnce)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_THAT(control.supportedDevices(), IsEmpty());
    EXPECT_FALSE(control.writeUsbId({1, 2, 3}));
}

TEST_F(SdkMemoryUsbIdTest, ConvertsTheCurrentDeviceFieldByField)
{
    EXPECT_CALL(*mock, currentDevice)
        .WillOnce(
            Return(Sdk::DeviceRecord{{0x0102, 0xfffe, 0x8003}, sdk::models::vell::vell801, 0xffff'fff0, guid(0xf0)}));
    const auto properties = control.currentDeviceProperties();
    EXPECT_EQ(properties.usbId.vendorId, 0x0102);
    EXPECT_EQ(properties.usbId.productId, 0xfffe);
    EXPECT_EQ(properties.usbId.deviceRelease, 0x8003);
    EXPECT_EQ(properties.modelName, "Vell 801");
    EXPECT_EQ(properties.hardwareRevision, 0xffff'fff0U);
    EXPECT_EQ(properties.deviceInterfaceGuid, guid(0xf0));
}

TEST_F(SdkMemoryUsbIdTest, KeepsAZeroOfARecordThatIsThere)
{
    EXPECT_CALL(*mock, currentDevice).WillOnce(Return(Sdk::DeviceRecord{{}, sdk::Model{"Pell 101"}, 0, {}}));
    EXPECT_EQ(control.currentDeviceProperties(), (Properties{{}, "Pell 101", 0, {}}));
}

TEST_F(SdkMemoryUsbIdTest, ListsTheSupportedDevicesInOrderWithThoseThatHaveNoName)
{
    EXPECT_CALL(*mock, supportedDevices)
        .WillOnce(Return(std::vector<Sdk::DeviceRecord>{{{9, 8, 7}, sdk::Model{"Wisp 502"}, 2, guid(1)},
                                                        {{1, 2, 3}, sdk::Model{""}, 5, guid(2)},
                                                        {{4, 5, 6}, sdk::Model{"M\xc3\xbc \xe2\x82\xac"}, 0, guid(3)},
                                                        {{0, 0, 1}, sdk::models::any, 1, guid(4)},
                                                        {{9, 8, 7}, sdk::Model{"Wisp 502"}, 2, guid(1)}}));
    EXPECT_THAT(control.supportedDevices(),
                ElementsAre(Properties{{9, 8, 7}, "Wisp 502", 2, guid(1)}, Properties{{1, 2, 3}, "", 5, guid(2)},
                            Properties{{4, 5, 6}, "M\xc3\xbc \xe2\x82\xac", 0, guid(3)},
                            Properties{{0, 0, 1}, "any model", 1, guid(4)},
                            Properties{{9, 8, 7}, "Wisp 502", 2, guid(1)}));
}

TEST_F(SdkMemoryUsbIdTest, TakesNoMoreMemoryThanTheListNeeds)
{
    EXPECT_CALL(*mock, supportedDevices)
        .WillOnce(Return(std::vector(5, Sdk::DeviceRecord{{}, sdk::Model{"a"}, 1, {}})));
    EXPECT_EQ(control.supportedDevices().capacity(), 5U);
}

TEST_F(SdkMemoryUsbIdTest, WritesTheIdentityAsItIsListed)
{
    EXPECT_CALL(*mock, supportedDevices)
        .WillOnce(Return(std::vector<Sdk::DeviceRecord>{{{0x0102, 0xfffe, 0x8003}, sdk::Model{"a"}, 1, {}}}));
    EXPECT_CALL(*mock, writeUsbId(Sdk::UsbId{0x0102, 0xfffe, 0x8003}, _)).WillOnce([](const auto&, const auto& done) {
        done({});
    });
    EXPECT_TRUE(control.writeUsbId(control.supportedDevices().at(0).usbId));
}

TEST(SdkUsbIdInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isAvailable), 0);
    EXPECT_EQ(slotOf(&Sdk::currentDevice), 1);
    EXPECT_EQ(slotOf(&Sdk::supportedDevices), 2);
    EXPECT_EQ(slotOf(&Sdk::writeUsbId), 3);
}

TEST(UsbIdInterface, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(&IUsbIdControl::currentDeviceProperties), 0);
    EXPECT_EQ(slotOf(&IUsbIdControl::supportedDevices), 1);
    EXPECT_EQ(slotOf(&IUsbIdControl::writeUsbId), 2);
}

} // namespace
} // namespace tarn::tests::sdkusbidcontrol
