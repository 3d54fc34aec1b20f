#include <devices/service/sdkfactorycorrectioncontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptercontract.h>
#include <support/devicehandle.h>
#include <support/exceptions.h>
#include <support/mockfactorycorrectioncontrol.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using tarn::devices::FactoryCorrection;
using tarn::devices::fromSdkCorrection;
using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::toSdkCorrection;
using tarn::devices::service::SdkFactoryCorrectionControl;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::sdkfactorycorrectioncontrol {
namespace {

using Sdk = sdk::IFactoryCorrectionControl;
using Flag = sdk::CorrectionFlag;

static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkFactoryCorrectionControl>);

constexpr auto all = static_cast<Flag>(0xffff);
constexpr auto system = FactoryCorrection::System;

/// A query of one correction, which the mock answers with every correction.
template <class Query, class Stub>
auto query(std::string name, Query ask, Stub stub)
{
    return Operation<SdkFactoryCorrectionControl, NiceMock<MockFactoryCorrectionControl>>{
        std::move(name),
        [ask](SdkFactoryCorrectionControl& adapter) {
            return std::invoke(ask, adapter, system) ? Outcome::Answered : Outcome::Unavailable;
        },
        [stub](auto& mock, const std::function<void()>& inside) {
            stub(mock, [inside] {
                inside();
                return all;
            });
        }};
}

struct FactoryCorrectionContract {
    using Sdk = sdk::IFactoryCorrectionControl;
    using Adapter = SdkFactoryCorrectionControl;
    using Mock = NiceMock<MockFactoryCorrectionControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {query("isValid", &Adapter::isValid,
                      [](Mock& mock, auto answer) { ON_CALL(mock, validCorrections).WillByDefault(answer); }),
                query("isEnabled", &Adapter::isEnabled,
                      [](Mock& mock, auto answer) { ON_CALL(mock, enabledCorrections).WillByDefault(answer); }),
                query("isModifiable", &Adapter::isModifiable,
                      [](Mock& mock, auto answer) { ON_CALL(mock, modifiableCorrections).WillByDefault(answer); }),
                query(
                    "supported", [](const Adapter& adapter, auto) { return !adapter.supported().empty(); },
                    [](Mock& mock, auto answer) { ON_CALL(mock, supportedCorrections).WillByDefault(answer); }),
                {"setEnabled",
                 [](Adapter& adapter) {
                     adapter.setEnabled(system, true);
                     return Outcome::NoResult;
                 },
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, validCorrections).WillByDefault(Return(all));
                     ON_CALL(mock, modifiableCorrections).WillByDefault(Return(all));
                     ON_CALL(mock, setEnabled).WillByDefault(testing::InvokeWithoutArgs(inside));
                 }}};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(FactoryCorrections, AdapterContract, FactoryCorrectionContract);

using Journal = std::vector<std::string>;

/// Writes down what it hears, behind its name.
struct Listener final : SdkFactoryCorrectionControl::Observer {
    Listener(std::string listener, Journal& notebook)
        : name{std::move(listener)}
        , journal{notebook}
    {
    }
    void onSupportedChanged() override { journal.push_back(name + " supported"); }
    void onValidChanged() override { journal.push_back(name + " valid"); }
    void onEnabledChanged(FactoryCorrection correction, bool enabled) override
    {
        journal.push_back(name + " " + std::to_string(static_cast<int>(correction)) + (enabled ? " on" : " off"));
    }

    std::string name;
    Journal& journal;
};

class SdkFactoryCorrectionControlTest : public testing::Test {
protected:
    using Mock = StrictMock<MockFactoryCorrectionControl>;

    void offer()
    {
        mock = std::make_shared<Mock>();
        device.offer<Sdk>(Sdk::key, mock);
    }

    /// Drops the control; the test keeps no reference either.
    void drop()
    {
        device.drop(Sdk::key);
        mock.reset();
    }

    /// Adds `listener`, which is registered once.
    Sdk::Observer* add(Listener& listener)
    {
        Sdk::Observer* attached = nullptr;
        EXPECT_CALL(*mock, addObserver(testing::NotNull()))
            .WillOnce(testing::SaveArg<0>(&attached))
            .RetiresOnSaturation();
        control->addObserver(&listener);
        return attached;
    }

    void construct() { control.emplace(handleTo<Sdk>(device, Sdk::key)); }

    [[nodiscard]] int asked() const { return device.asked(Sdk::key); }

    FakeVna device;
    std::shared_ptr<Mock> mock;
    std::optional<SdkFactoryCorrectionControl> control;
    Journal journal;
    Listener a{"a", journal};
    Listener b{"b", journal};
};

TEST_F(SdkFactoryCorrectionControlTest, ReadsEachQuestionFromItsOwnSet)
{
    offer();
    construct();
    constexpr std::pair<FactoryCorrection, unsigned int> counterparts[] = {
        {FactoryCorrection::System, 0},
        {FactoryCorrection::SourcePower, 1},
        {FactoryCorrection::ReceiverPower, 2},
        {FactoryCorrection::IfSwitch, 3},
        {FactoryCorrection::ReceiverLinearity, 4},
        {FactoryCorrection::PortExtension, 5},
        {FactoryCorrection::Crosstalk, 6},
        {FactoryCorrection::Temperature, 7},
        {FactoryCorrection::AttenuatorSteps, 8},
        {FactoryCorrection::ReferenceOscillator, 15},
    };
    for (const auto& [correction, position] : counterparts) {
        const auto bit = static_cast<std::uint16_t>(1U << position);
        for (const auto set : {bit, static_cast<std::uint16_t>(~bit), std::uint16_t{0}, std::uint16_t{0xffff}}) {
            const bool isSet = (set & bit) != 0;
            const auto flags = static_cast<Flag>(set);
            EXPECT_CALL(*mock, validCorrections).WillOnce(Return(flags));
            EXPECT_EQ(control->isValid(correction), isSet);
            EXPECT_CALL(*mock, enabledCorrections).WillOnce(Return(flags));
            EXPECT_EQ(control->isEnabled(correction), isSet);
            EXPECT_CALL(*mock, modifiableCorrections).WillOnce(Return(flags));
            EXPECT_EQ(control->isModifiable(correction), isSet);
        }
    }
}

TEST_F(SdkFactoryCorrectionControlTest, ListsTheSupportedInTheOrderOfTheirBitsWithoutThoseUnknownHere)
{
    offer();
    construct();
    EXPECT_CALL(*mock, supportedCorrections)
        .WillOnce(Return(Flag::None))
        .WillOnce(Return(Flag::ReferenceOscillator | Flag::AdcLinearity | Flag::System))
        .WillOnce(Return(Flag::AdcLinearity | Flag::ChannelAlignment | static_cast<Flag>(0x7800)))
        .WillOnce(Return(all));
    using enum FactoryCorrection;
    EXPECT_THAT(control->supported(), IsEmpty());
    EXPECT_THAT(control->supported(), ElementsAre(System, ReferenceOscillator));
    EXPECT_THAT(control->supported(), IsEmpty());
    EXPECT_THAT(control->supported(),
                ElementsAre(System, SourcePower, ReceiverPower, IfSwitch, ReceiverLinearity, PortExtension, Crosstalk,
                            FactoryCorrection::Temperature, AttenuatorSteps, ReferenceOscillator));
}

TEST_F(SdkFactoryCorrectionControlTest, SwitchesWhatIsValidAndModifiableAlone)
{
    offer();
    construct();
    const auto bit = toSdkCorrection(FactoryCorrection::PortExtension);
    for (const bool valid : {false, true}) {
        for (const bool modifiable : {false, true}) {
            for (const bool on : {false, true}) {
                EXPECT_CALL(*mock, validCorrections).WillOnce(Return(valid ? bit : Flag::System));
                if (valid)
                    EXPECT_CALL(*mock, modifiableCorrections).WillOnce(Return(modifiable ? bit : Flag::System));
                if (valid && modifiable)
                    EXPECT_CALL(*mock, setEnabled(bit, on));
                control->setEnabled(FactoryCorrection::PortExtension, on);
                testing::Mock::VerifyAndClearExpectations(mock.get());
            }
        }
    }
}

TEST_F(SdkFactoryCorrectionControlTest, SwitchesNothingWhenTheControlGoesBetweenTheSteps)
{
    offer();
    construct();
    EXPECT_CALL(*mock, validCorrections).WillOnce([&] {
        device.drop(Sdk::key);
        return all;
    });
    mock.reset();
    int before = asked();
    control->setEnabled(system, true);
    EXPECT_EQ(asked(), before + 1) << "the second step asks for the control anew, and the last is not reached";

    offer();
    EXPECT_CALL(*mock, validCorrections).WillOnce(Return(all));
    EXPECT_CALL(*mock, modifiableCorrections).WillOnce([&] {
        device.drop(Sdk::key);
        return all;
    });
    before = asked();
    mock.reset();
    control->setEnabled(system, true); // the strict mock expects no switching
    EXPECT_EQ(asked(), before + 2);
}

TEST_F(SdkFactoryCorrectionControlTest, TakesTheThreeStepsOfASwitchingOnTheControlsThatAreThereThen)
{
    offer();
    construct();
    EXPECT_CALL(*mock, validCorrections).WillOnce([&] {
        offer(); // another control
        EXPECT_CALL(*mock, modifiableCorrections).WillOnce(Return(all));
        EXPECT_CALL(*mock, setEnabled(Flag::System, true));
        return all;
    });
    control->setEnabled(system, true);
}

TEST_F(SdkFactoryCorrectionControlTest, RegistersNothingWhenItIsMade)
{
    offer();
    construct(); // the mock expects no call
    EXPECT_EQ(asked(), 1);
    control->onControlsAvailable();
    control->onControlsAboutToBeReleased();
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SdkFactoryCorrectionControlTest, RelaysEveryNotificationOfAKnownCorrection)
{
    offer();
    construct();
    auto* const attached = add(a);
    attached->onSupportedChanged();
    attached->onValidChanged();
    attached->onEnabledChanged(Flag::Crosstalk, true);
    attached->onEnabledChanged(Flag::System, false);
    EXPECT_THAT(journal,
                ElementsAre("a supported", "a valid",
                            "a " + std::to_string(static_cast<int>(FactoryCorrection::Crosstalk)) + " on", "a 0 off"));
}

TEST_F(SdkFactoryCorrectionControlTest, DropsTheSwitchingOfEveryFlagWithoutACounterpart)
{
    offer();
    construct();
    auto* const attached = add(a);
    for (std::uint32_t value = 0; value <= 0xffff; ++value) {
        journal.clear();
        attached->onEnabledChanged(static_cast<Flag>(value), true);
        ASSERT_EQ(journal.size(), fromSdkCorrection(static_cast<Flag>(value)).has_value() ? 1U : 0U) << value;
    }
}

TEST_F(SdkFactoryCorrectionControlTest, KeepsOneAdapterForAnObserverAddedTwiceAndNoneForNull)
{
    offer();
    construct();
    add(a);
    control->addObserver(&a); // the mock expects no further call
    control->addObserver(nullptr);

    EXPECT_CALL(*mock, addObserver).Times(1);
    control->onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("a supported", "a valid"));
}

TEST_F(SdkFactoryCorrectionControlTest, GivesEachObserverAnAdapterOfItsOwn)
{
    offer();
    construct();
    auto* const first = add(a);
    auto* const second = add(b);
    EXPECT_NE(first, second);
    first->onValidChanged();
    second->onValidChanged();
    EXPECT_THAT(journal, ElementsAre("a valid", "b valid"));
}

TEST_F(SdkFactoryCorrectionControlTest, UnregistersAndForgetsARemovedObserver)
{
    offer();
    construct();
    auto* const attached = add(a);
    EXPECT_CALL(*mock, removeObserver(attached)).WillOnce([](Sdk::Observer* observer) {
        observer->onValidChanged(); // the adapter lives until it is unregistered
    });
    control->removeObserver(&a);
    EXPECT_THAT(journal, ElementsAre("a valid"));

    control->removeObserver(&a); // the mock expects no further call
    control->removeObserver(&b);
    control->removeObserver(nullptr);
    control->onControlsAvailable();
    EXPECT_EQ(journal.size(), 1U);
}

TEST_F(SdkFactoryCorrectionControlTest, UnregistersAllOnAReleaseAndTellsOfSupportedThenValidOnTheReturn)
{
    offer();
    construct();
    auto* const first = add(a);
    auto* const second = add(b);
    EXPECT_CALL(*mock, removeObserver(first));
    EXPECT_CALL(*mock, removeObserver(second));
    control->onControlsAboutToBeReleased();
    drop();
    EXPECT_THAT(journal, IsEmpty());

    offer();
    for (auto* const attached : {first, second}) {
        EXPECT_CALL(*mock, addObserver(attached)).WillOnce([this, attached, first](auto*) {
            journal.emplace_back(attached == first ? "a registered" : "b registered");
        });
    }
    control->onControlsAvailable();
    const Journal ofA{"a registered", "a supported", "a valid"};
    const Journal ofB{"b registered", "b supported", "b valid"};
    auto aFirst = ofA;
    aFirst.insert(aFirst.end(), ofB.begin(), ofB.end());
    auto bFirst = ofB;
    bFirst.insert(bFirst.end(), ofA.begin(), ofA.end());
    EXPECT_THAT(journal, testing::AnyOf(aFirst, bFirst)) << "one observer after the other, in the order of the map";
}

TEST_F(SdkFactoryCorrectionControlTest, RegistersAndTellsOnEveryReturnWithoutAFlag)
{
    offer();
    construct();
    auto* const attached = add(a);
    EXPECT_CALL(*mock, addObserver(attached)).Times(2);
    control->onControlsAvailable();
    control->onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("a supported", "a valid", "a supported", "a valid"));
}

TEST_F(SdkFactoryCorrectionControlTest, KeepsAnObserverAddedWhileThereIsNoControl)
{
    construct();
    const int before = asked();
    control->addObserver(&a);
    EXPECT_EQ(asked(), before + 1);
    control->onControlsAvailable(); // there is still none
    EXPECT_THAT(journal, IsEmpty());

    offer();
    EXPECT_CALL(*mock, addObserver);
    control->onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("a supported", "a valid"));
}

TEST_F(SdkFactoryCorrectionControlTest, KeepsAnObserverRemovedWhileThereIsNoControl)
{
    offer();
    construct();
    auto* const attached = add(a);
    drop();
    const int before = asked();
    control->removeObserver(&a);
    EXPECT_EQ(asked(), before + 1);

    offer();
    EXPECT_CALL(*mock, addObserver(attached));
    control->onControlsAvailable();
    EXPECT_THAT(journal, ElementsAre("a supported", "a valid"));

    EXPECT_CALL(*mock, removeObserver(attached));
    control->removeObserver(&a); // now it goes
    control->onControlsAvailable();
    EXPECT_EQ(journal.size(), 2U);
}

TEST_F(SdkFactoryCorrectionControlTest, CallsNeitherTheControlNorTheDeviceWhenItIsDestroyed)
{
    offer();
    construct();
    add(a);
    control.reset(); // the mock expects no call

    construct();
    add(a);
    drop();
    const int before = asked();
    control.reset();
    EXPECT_EQ(asked(), before);
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SdkFactoryCorrectionControlTest, LetsExceptionsOfTheControlPass)
{
    for (const auto& exception : anyExceptions()) {
        offer();
        construct();
        const auto fail = [&](auto*) { std::rethrow_exception(exception); };
        EXPECT_CALL(*mock, addObserver).WillOnce(fail);
        EXPECT_EQ(thrownBy([&] { control->addObserver(&a); }), exception);
        add(a);
        EXPECT_CALL(*mock, addObserver).WillOnce(fail);
        EXPECT_EQ(thrownBy([&] { control->onControlsAvailable(); }), exception);
        EXPECT_CALL(*mock, removeObserver).WillOnce(fail).WillOnce(fail);
        EXPECT_EQ(thrownBy([&] { control->onControlsAboutToBeReleased(); }), exception);
        EXPECT_EQ(thrownBy([&] { control->removeObserver(&a); }), exception);
    }
}

TEST_F(SdkFactoryCorrectionControlTest, AnObserverWhoseRegistrationThrowsHasNotBeenAdded)
{
    offer();
    construct();
    EXPECT_CALL(*mock, addObserver).WillOnce([](auto*) { throw std::runtime_error{"not added"}; });
    EXPECT_THROW(control->addObserver(&a), std::runtime_error);
    control->onControlsAvailable(); // the mock expects no call
    EXPECT_THAT(journal, IsEmpty());
    auto* const attached = add(a);
    EXPECT_CALL(*mock, removeObserver(attached));
    control->removeObserver(&a);
}

TEST(FactoryCorrectionSlots, StandInTheGivenOrder)
{
    EXPECT_EQ(slotOf(&Sdk::supportedCorrections), 0);
    EXPECT_EQ(slotOf(&Sdk::validCorrections), 1);
    EXPECT_EQ(slotOf(&Sdk::enabledCorrections), 2);
    EXPECT_EQ(slotOf(&Sdk::modifiableCorrections), 3);
    EXPECT_EQ(slotOf(&Sdk::setEnabled), 4);
    EXPECT_EQ(slotOf(&Sdk::addObserver), 5);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 6);
    EXPECT_EQ(slotOf(&Sdk::Observer::onSupportedChanged), 0);
    EXPECT_EQ(slotOf(&Sdk::Observer::onValidChanged), 1);
    EXPECT_EQ(slotOf(&Sdk::Observer::onEnabledChanged), 2);
    using Observer = SdkFactoryCorrectionControl::Observer;
    EXPECT_EQ(slotOf(&Observer::onSupportedChanged), 0);
    EXPECT_EQ(slotOf(&Observer::onValidChanged), 1);
    EXPECT_EQ(slotOf(&Observer::onEnabledChanged), 2);
}

} // namespace
} // namespace tarn::tests::sdkfactorycorrectioncontrol
