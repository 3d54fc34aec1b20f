#include "quilltuning.h"

#include <support/adaptertest.h>

#include <devices/icontrollifecycleobserver.h>

#include <QMetaMethod>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <tuple>

using tarn::devices::ReacquiringControl;
using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::sdkquillpowercontrol {
namespace {

using Adapter = QuillPower::Adapter;
using Sdk = QuillPower::Sdk;

static_assert(std::is_base_of_v<QObject, Adapter>);
static_assert(!std::is_base_of_v<devices::IControlLifecycleObserver, Adapter>);
static_assert(sizeof(Adapter) == sizeof(QObject) + sizeof(ReacquiringControl<Sdk>), "the handle is its only member");

struct Signal {
    std::string name;
    void (Adapter::*signal)();
};

/// All signals, in the order of their declaration.
const std::vector<Signal> allSignals = {
    {"loPowerChanged", &Adapter::loPowerChanged},
    {"rfPowerChanged", &Adapter::rfPowerChanged},
    {"syntPowerModeChanged", &Adapter::syntPowerModeChanged},
    {"attenuationStepChanged", &Adapter::attenuationStepChanged},
    {"stepAttenuatorModeChanged", &Adapter::stepAttenuatorModeChanged},
    {"discreteAttenuatorEnabledChanged", &Adapter::discreteAttenuatorEnabledChanged},
    {"discreteAttenuatorModeChanged", &Adapter::discreteAttenuatorModeChanged},
    {"attenuationModeChanged", &Adapter::attenuationModeChanged},
    {"commonAttenuationModeChanged", &Adapter::commonAttenuationModeChanged},
    {"commonAttenuationStepChanged", &Adapter::commonAttenuationStepChanged},
    {"ampTPort1Changed", &Adapter::ampTPort1Changed},
    {"ampTPort2Changed", &Adapter::ampTPort2Changed},
    {"ampRPort1Changed", &Adapter::ampRPort1Changed},
};

std::vector<std::string> allNames()
{
    std::vector<std::string> names;
    for (const auto& [name, signal] : allSignals)
        names.push_back(name);
    return names;
}

/// Each operation that emits one signal, and that signal.
struct Emitter {
    std::string signal;
    std::function<void(Adapter&)> run;
};
const std::vector<Emitter> emitters = {
    {"loPowerChanged", [](Adapter& a) { a.setLoPower(1); }},
    {"rfPowerChanged", [](Adapter& a) { a.setRfPower(1); }},
    {"syntPowerModeChanged", [](Adapter& a) { a.setSyntPowerMode(Adapter::SyntPowerMode::High); }},
    {"attenuationModeChanged", [](Adapter& a) { a.setAttenuationMode(Adapter::AttenuationMode::Manual); }},
    {"attenuationStepChanged", [](Adapter& a) { a.setAttenuationStep(1); }},
    {"stepAttenuatorModeChanged", [](Adapter& a) { a.setStepAttenuatorMode(Adapter::StepAttenuatorMode::First); }},
    {"discreteAttenuatorEnabledChanged", [](Adapter& a) { a.enableDiscreteAttenuator(true); }},
    {"discreteAttenuatorModeChanged",
     [](Adapter& a) { a.setDiscreteAttenuatorMode(Adapter::DiscreteAttenuatorMode::Manual); }},
    {"commonAttenuationModeChanged",
     [](Adapter& a) { a.setCommonAttenuationMode(Adapter::CommonAttenuationMode::Manual); }},
    {"commonAttenuationStepChanged", [](Adapter& a) { a.setCommonAttenuationStep(1); }},
    {"ampTPort1Changed", [](Adapter& a) { a.setAmpTPort1(Adapter::AmpGain::High); }},
    {"ampTPort2Changed", [](Adapter& a) { a.setAmpTPort2(Adapter::AmpGain::High); }},
    {"ampRPort1Changed", [](Adapter& a) { a.setAmpRPort1(Adapter::AmpGain::High); }},
};

class QuillPowerControl : public AdapterTest<Sdk, Adapter, QuillPower::Mock> {
protected:
    QuillPowerControl()
    {
        for (const auto& [name, signal] : allSignals) {
            QObject::connect(
                &control, signal, &control,
                [this, name] {
                    heard.push_back(name);
                    if (const auto run = inSlot)
                        run();
                },
                Qt::DirectConnection);
        }
    }

    std::vector<std::string> takeHeard() { return std::exchange(heard, {}); }

    std::vector<std::string> heard;
    std::function<void()> inSlot; ///< runs in the slot of every signal
};

TEST_F(QuillPowerControl, EverySetterEmitsItsOwnSignalAlone)
{
    for (const auto& [signal, run] : emitters) {
        run(control);
        EXPECT_THAT(takeHeard(), ElementsAre(signal));
    }
}

TEST_F(QuillPowerControl, SettingTheSameLoPowerTwiceEmitsItsSignalTwice)
{
    control.setLoPower(5);
    control.setLoPower(5);
    EXPECT_THAT(heard, ElementsAre("loPowerChanged", "loPowerChanged"));
}

TEST_F(QuillPowerControl, ResetEmitsAllSignalsInTheOrderOfTheirDeclaration)
{
    control.reset();
    EXPECT_EQ(heard, allNames());
}

TEST_F(QuillPowerControl, NeitherATableNorAGetterEmitsASignal)
{
    control.setRfPowerCodes({1, 2});
    control.setLoPowerCodes({1, 2});
    for (const auto& entry : QuillPower::operations().entries) {
        if (entry.operation.name.starts_with("set") || entry.operation.name == "reset()")
            continue;
        std::ignore = entry.operation.run(control);
    }
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(QuillPowerControl, ASignalComesAfterTheCallOfTheSdkOnTheCallingThread)
{
    std::vector<std::thread::id> threads;
    inSlot = [&] {
        threads.push_back(std::this_thread::get_id());
        EXPECT_THAT(mock->takeCalls(), testing::SizeIs(1)) << "the call that was made already";
    };
    for (const auto& [signal, run] : emitters)
        run(control);
    std::thread::id other;
    std::thread{[&] {
        other = std::this_thread::get_id();
        emitters.front().run(control);
    }}.join();
    ASSERT_EQ(threads.size(), emitters.size() + 1);
    EXPECT_EQ(threads.back(), other);
    EXPECT_TRUE(std::all_of(threads.begin(), threads.end() - 1,
                            [](auto thread) { return thread == std::this_thread::get_id(); }));
}

TEST_F(QuillPowerControl, ResetEmitsAfterTheCallOfTheSdk)
{
    inSlot = [&] {
        inSlot = nullptr;
        EXPECT_THAT(mock->takeCalls(), ElementsAre("reset()"));
    };
    control.reset();
    EXPECT_FALSE(inSlot);
}

TEST_F(QuillPowerControl, AControlDroppedInASlotLivesUntilTheOperationEnds)
{
    mock.reset();
    device.drop(Sdk::key);
    auto operations = emitters;
    operations.push_back({"all", &Adapter::reset});
    for (const auto& [signal, run] : operations) {
        auto offered = std::make_shared<QuillPower::Mock>();
        const std::weak_ptr<QuillPower::Mock> watched = offered;
        device.offer<Sdk>(Sdk::key, std::move(offered));
        inSlot = [&] {
            device.drop(Sdk::key);
            EXPECT_FALSE(watched.expired());
        };
        heard.clear();
        run(control);
        EXPECT_THAT(heard, testing::Not(IsEmpty()));
        EXPECT_TRUE(watched.expired());
    }
}

TEST_F(QuillPowerControl, AnExceptionOfTheSdkEmitsNothing)
{
    mock->inside = [] { throw std::runtime_error{"device"}; };
    for (const auto& [signal, run] : emitters)
        EXPECT_THROW(run(control), std::runtime_error);
    EXPECT_THROW(control.reset(), std::runtime_error);
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(QuillPowerControl, WithoutTheControlNothingIsEmittedNotEvenByReset)
{
    device.drop(Sdk::key);
    mock.reset();
    for (const auto& [signal, run] : emitters)
        run(control);
    control.reset();
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_EQ(control.maxPowerCode(), 0);
}

TEST_F(QuillPowerControl, SendsAStepAttenuatorModeFromOneToThreeAndZeroForOthers)
{
    control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{3});
    control.setStepAttenuatorMode(Adapter::StepAttenuatorMode{4});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setStepAttenuatorMode(3)", "setStepAttenuatorMode(0)"));
    mock->answer = Sdk::StepAttenuatorMode{7};
    EXPECT_EQ(control.stepAttenuatorMode(), Adapter::StepAttenuatorMode{0});
}

TEST_F(QuillPowerControl, SendsAnAmplifierGainOfOneAndZeroForOthers)
{
    control.setAmpTPort1(Adapter::AmpGain{1});
    control.setAmpTPort1(Adapter::AmpGain{2});
    control.setAmpTPort1(Adapter::AmpGain{257});
    EXPECT_THAT(mock->takeCalls(), ElementsAre("setAmpTPort1(1)", "setAmpTPort1(0)", "setAmpTPort1(0)"));
    static_assert(sizeof(Sdk::AmpGain) == 1);
}

TEST_F(QuillPowerControl, GivesTheSdkTheCallersOwnTable)
{
    const std::vector<std::uint8_t> codes{1, 2, 3};
    control.setRfPowerCodes(codes);
    EXPECT_EQ(std::exchange(mock->bytes, nullptr), codes.data());
    control.setLoPowerCodes(codes);
    EXPECT_EQ(mock->bytes, codes.data());
}

TEST(QuillPowerMetaObject, DeclaresTheSignalsAndNothingElse)
{
    const auto& meta = Adapter::staticMetaObject;
    EXPECT_STREQ(meta.superClass()->className(), "QObject");
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
    EXPECT_EQ(meta.enumeratorCount(), meta.enumeratorOffset());
    EXPECT_EQ(meta.classInfoCount(), meta.classInfoOffset());
    EXPECT_EQ(meta.constructorCount(), 0);
    std::vector<std::string> names;
    for (int i = meta.methodOffset(); i != meta.methodCount(); ++i) {
        const auto method = meta.method(i);
        EXPECT_EQ(method.methodType(), QMetaMethod::Signal);
        EXPECT_EQ(method.parameterCount(), 0);
        names.push_back(method.name().toStdString());
    }
    EXPECT_EQ(names, allNames());
}

TEST(QuillPowerInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::loPower, &Sdk::rfPower, &Sdk::setLoPower, &Sdk::setRfPower, &Sdk::minPowerCode,
                &Sdk::maxPowerCode, &Sdk::setSyntPowerMode, &Sdk::syntPowerMode, &Sdk::setAttenuationMode,
                &Sdk::attenuationMode, &Sdk::setAttenuationStep, &Sdk::attenuationStep, &Sdk::setStepAttenuatorMode,
                &Sdk::stepAttenuatorMode, &Sdk::defaultAttenuationStep, &Sdk::setDiscreteAttenuatorEnabled,
                &Sdk::discreteAttenuatorEnabled, &Sdk::setDiscreteAttenuatorMode, &Sdk::discreteAttenuatorMode,
                &Sdk::setCommonAttenuationMode, &Sdk::commonAttenuationMode, &Sdk::setCommonAttenuationStep,
                &Sdk::commonAttenuationStep, &Sdk::setAmpTPort2, &Sdk::ampTPort2, &Sdk::setAmpRPort1, &Sdk::ampRPort1,
                &Sdk::setAmpTPort1, &Sdk::ampTPort1, &Sdk::setRfPowerCodes, &Sdk::setLoPowerCodes, &Sdk::reset);
}

} // namespace
} // namespace tarn::tests::sdkquillpowercontrol
