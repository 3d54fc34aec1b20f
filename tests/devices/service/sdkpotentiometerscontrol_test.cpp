#include <devices/service/sdkpotentiometerscontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptercontract.h>
#include <support/adaptertest.h>
#include <support/mockpotentiometerscontrol.h>
#include <support/requestcontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <future>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::IPotentiometersControl;
using tarn::devices::service::SdkPotentiometersControl;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::sdkpotentiometerscontrol {
namespace {

using Sdk = sdk::service::IPotentiometersControl;
using Error = IPotentiometersControl::Error;
using Potentiometer = IPotentiometersControl::Potentiometer;

static_assert(std::is_base_of_v<IPotentiometersControl, SdkPotentiometersControl>);
static_assert(!std::is_base_of_v<IControlLifecycleObserver, SdkPotentiometersControl>);
static_assert(sizeof(SdkPotentiometersControl) == sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "the handle is its only member");
static_assert(static_cast<int>(Error::Failed) == 0);

// The name, then two 32-bit integers, on both sides.
template <class Description>
constexpr bool isTheDescription = std::is_same_v<decltype(Description::name), std::string>
    && std::is_same_v<decltype(Description::minimum), std::int32_t>
    && std::is_same_v<decltype(Description::maximum), std::int32_t> && offsetof(Description, name) == 0
    && offsetof(Description, minimum) == sizeof(std::string)
    && offsetof(Description, maximum) == sizeof(std::string) + 4 && sizeof(Description) == sizeof(std::string) + 8;
static_assert(isTheDescription<Sdk::Potentiometer> && isTheDescription<Potentiometer>);

constexpr auto lowest = std::numeric_limits<int>::min();
constexpr auto highest = std::numeric_limits<int>::max();

struct PotentiometersContract {
    using Sdk = sdk::service::IPotentiometersControl;
    using Adapter = SdkPotentiometersControl;
    using Mock = NiceMock<MockPotentiometersControl>;
    using Inside = std::function<void()>;

    static std::vector<Request<Adapter, Mock>> requests()
    {
        return {
            {"readFromEeprom", [](Adapter& adapter) { return hasSucceeded(adapter.readFromEeprom(0)); },
             [](Mock& mock, const Take& take) {
                 ON_CALL(mock, readFromEeprom).WillByDefault([take](auto, const auto& done) { take(endOf(done, 7)); });
             }},
            {"writeToRam", [](Adapter& adapter) { return hasSucceeded(adapter.writeToRam(0, 1)); },
             [](Mock& mock, const Take& take) { ON_CALL(mock, writeToRam).WillByDefault(testing::WithArg<2>(take)); }},
            {"writeToEeprom", [](Adapter& adapter) { return hasSucceeded(adapter.writeToEeprom(0, 1)); },
             [](Mock& mock, const Take& take) {
                 ON_CALL(mock, writeToEeprom).WillByDefault(testing::WithArg<2>(take));
             }}};
    }

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        auto operations = asOperations(requests());
        operations.push_back({"potentiometers",
                              [](Adapter& adapter) {
                                  return adapter.potentiometers().empty() ? Outcome::Unavailable : Outcome::Answered;
                              },
                              [](Mock& mock, const Inside& inside) {
                                  ON_CALL(mock, potentiometers).WillByDefault([inside] {
                                      inside();
                                      return std::vector<Sdk::Potentiometer>(1);
                                  });
                              }});
        return operations;
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Potentiometers, AdapterContract, PotentiometersContract);
INSTANTIATE_TYPED_TEST_SUITE_P(Potentiometers, RequestContract, PotentiometersContract);

/// A device with potentiometers whose every call must be expected.
class SdkPotentiometersControlTest
    : public AdapterTest<Sdk, SdkPotentiometersControl, StrictMock<MockPotentiometersControl>> { };

TEST_F(SdkPotentiometersControlTest, WithoutAControlTheListIsEmptyAndEveryRequestFails)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_THAT(control.potentiometers(), IsEmpty());
    EXPECT_EQ(control.readFromEeprom(0).error(), Error::Failed);
    EXPECT_EQ(control.writeToRam(0, 1).error(), Error::Failed);
    EXPECT_EQ(control.writeToEeprom(0, 1).error(), Error::Failed);
}

TEST_F(SdkPotentiometersControlTest, CopiesEveryFieldOfTheListInOrder)
{
    EXPECT_CALL(*mock, potentiometers)
        .WillOnce(Return(std::vector<Sdk::Potentiometer>{
            {"z", 0, 255},
            {"", lowest, highest},
            {"D\xc3\xa4mpfung \xe2\x82\xac, longer than a string keeps in itself", -128, -1},
            {std::string{"n\0l", 3}, 9, -9},
            {"z", 0, 255}}));
    EXPECT_THAT(
        control.potentiometers(),
        ElementsAre(Potentiometer{"z", 0, 255}, Potentiometer{"", lowest, highest},
                    Potentiometer{"D\xc3\xa4mpfung \xe2\x82\xac, longer than a string keeps in itself", -128, -1},
                    Potentiometer{std::string{"n\0l", 3}, 9, -9}, Potentiometer{"z", 0, 255}));
}

TEST_F(SdkPotentiometersControlTest, TakesNoMoreMemoryThanTheListNeeds)
{
    EXPECT_CALL(*mock, potentiometers).WillOnce(Return(std::vector<Sdk::Potentiometer>(5)));
    EXPECT_EQ(control.potentiometers().capacity(), 5U);
}

TEST_F(SdkPotentiometersControlTest, GivesTheEmptyListOfAnInstrumentWithoutPotentiometers)
{
    EXPECT_CALL(*mock, potentiometers).WillOnce(Return(std::vector<Sdk::Potentiometer>{}));
    EXPECT_THAT(control.potentiometers(), IsEmpty());
}

TEST_F(SdkPotentiometersControlTest, AsksForTheListEveryTime)
{
    EXPECT_CALL(*mock, potentiometers)
        .WillOnce(Return(std::vector<Sdk::Potentiometer>{{"old", 0, 1}}))
        .WillOnce(Return(std::vector<Sdk::Potentiometer>{{"new", 0, 1}}));
    EXPECT_THAT(control.potentiometers(), ElementsAre(Potentiometer{"old", 0, 1}));
    EXPECT_THAT(control.potentiometers(), ElementsAre(Potentiometer{"new", 0, 1}));
}

TEST_F(SdkPotentiometersControlTest, CarriesEveryIndexAndValueUnchanged)
{
    for (const unsigned long index : {0UL, 1UL, 1UL << 32U, std::numeric_limits<unsigned long>::max()}) {
        for (const int value : {0, 255, -1, lowest, highest}) {
            EXPECT_CALL(*mock, readFromEeprom(index, _)).WillOnce([&](auto, const auto& done) { done(value, {}); });
            EXPECT_CALL(*mock, writeToRam(index, value, _)).WillOnce([](auto, auto, const auto& done) { done({}); });
            EXPECT_EQ(control.readFromEeprom(index).value(), value);
            EXPECT_TRUE(control.writeToRam(index, value));

            EXPECT_CALL(*mock, writeToEeprom(index, value, _)).WillOnce([](auto, auto, const auto& done) { done({}); });
            EXPECT_TRUE(control.writeToEeprom(index, value));
        }
    }
}

TEST_F(SdkPotentiometersControlTest, ListsWhileARequestIsOutstanding)
{
    std::promise<sdk::Completion<>> request;
    EXPECT_CALL(*mock, writeToEeprom).WillOnce([&](auto, auto, auto done) { request.set_value(std::move(done)); });
    EXPECT_CALL(*mock, potentiometers).WillOnce(Return(std::vector<Sdk::Potentiometer>(2)));
    std::jthread writer{[&] { EXPECT_TRUE(control.writeToEeprom(0, 1)); }};
    const auto done = request.get_future().get();
    EXPECT_EQ(control.potentiometers().size(), 2U);
    done({});
}

TEST(SdkPotentiometersInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isAvailable), 0);
    EXPECT_EQ(slotOf(&Sdk::potentiometers), 1);
    EXPECT_EQ(slotOf(&Sdk::readFromEeprom), 2);
    EXPECT_EQ(slotOf(&Sdk::writeToRam), 3);
    EXPECT_EQ(slotOf(&Sdk::writeToEeprom), 4);
}

TEST(PotentiometersInterface, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(&IPotentiometersControl::potentiometers), 0);
    EXPECT_EQ(slotOf(&IPotentiometersControl::readFromEeprom), 1);
    EXPECT_EQ(slotOf(&IPotentiometersControl::writeToRam), 2);
    EXPECT_EQ(slotOf(&IPotentiometersControl::writeToEeprom), 3);
}

} // namespace
} // namespace tarn::tests::sdkpotentiometerscontrol
