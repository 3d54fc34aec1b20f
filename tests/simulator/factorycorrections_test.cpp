#include <simulator/calibrationfixture.h>

#include <sdk/models.h>
#include <support/observedthread.h>

#include <gmock/gmock.h>

#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using Flag = sdk::CorrectionFlag;
using enum sdk::CorrectionFlag;
using test::become;
using test::Corrections;
using test::Journal;
using test::Kind;
using test::ManualInstrument;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto fixed = AdcLinearity | ChannelAlignment | ReferenceOscillator;
constexpr auto delivered = PortExtension | Crosstalk | Temperature | fixed;
constexpr auto ofPower = SourcePower | ReceiverPower | AttenuatorSteps;
constexpr auto ofIfsw = IfSwitch | ReceiverLinearity;

struct CorrectionObserver final : Corrections::Observer {
    explicit CorrectionObserver(Journal& theJournal)
        : journal{theJournal}
    {
    }

    void onSupportedChanged() override { journal.note("supported"); }
    void onValidChanged() override { journal.note("valid"); }
    void onEnabledChanged(Flag correction, bool enabled) override
    {
        journal.note(std::to_string(static_cast<int>(correction)) + (enabled ? " on" : " off"));
    }

    Journal& journal;
};

class FactoryCorrectionTest : public testing::Test {
protected:
    void SetUp() override { corrections().addObserver(&observer); }

    [[nodiscard]] Corrections& corrections() const { return *instrument.control<Corrections>(); }

    template <class Control>
    void write()
    {
        Kind<Control>::write(*instrument.control<Control>());
        instrument.advance(10s);
    }

    void set(Flag correction, bool enabled)
    {
        corrections().setEnabled(correction, enabled);
        instrument.vna->waitUntilIdle();
    }

    ManualInstrument instrument;
    Journal journal;
    CorrectionObserver observer{journal};
};

TEST_F(FactoryCorrectionTest, IsValidAndOnAsDeliveredIfItNeedsNoCalibration)
{
    EXPECT_EQ(corrections().supportedCorrections(), System | ofPower | ofIfsw | delivered);
    EXPECT_EQ(corrections().validCorrections(), delivered);
    EXPECT_EQ(corrections().enabledCorrections(), delivered);
}

TEST_F(FactoryCorrectionTest, BecomesValidWithItsCalibration)
{
    write<test::Power>();
    EXPECT_THAT(journal.take(), ElementsAre("valid"));
    EXPECT_EQ(corrections().validCorrections(), delivered | ofPower);
    write<test::Ifsw>();
    write<test::Terms>();
    EXPECT_THAT(journal.take(), ElementsAre("valid", "valid"));
    EXPECT_EQ(corrections().validCorrections(), delivered | ofPower | ofIfsw | System);
    EXPECT_EQ(corrections().enabledCorrections(), delivered) << "it is for the user to switch on";
    write<test::Terms>();
    EXPECT_THAT(journal.take(), IsEmpty()) << "as valid as before";
}

TEST_F(FactoryCorrectionTest, IsValidBeforeTheWriteTellsItsEnd)
{
    test::WriteObserver<test::Power> writes{journal, "write "};
    instrument.control<test::Power>()->addObserver(&writes);
    write<test::Power>();
    EXPECT_THAT(test::ends(journal.take()), ElementsAre("write started", "valid", "write finished"));
}

TEST_F(FactoryCorrectionTest, StaysInvalidWhenTheWriteFails)
{
    Kind<test::Power>::refuse(*instrument.control<test::Power>());
    instrument.advance(10s);
    FaultPlan plan;
    plan.powerLossEvery = 1;
    instrument.vna->faults().setPlan(plan);
    write<test::Power>();
    EXPECT_THAT(journal.take(), IsEmpty());
    EXPECT_EQ(corrections().validCorrections(), delivered);
}

TEST_F(FactoryCorrectionTest, IsSwitchedAndTellsSoWhenItWasNotSoBefore)
{
    set(Crosstalk, false);
    set(Crosstalk, false);
    EXPECT_THAT(journal.take(), ElementsAre("64 off"));
    EXPECT_EQ(corrections().enabledCorrections() | Crosstalk, delivered);
    EXPECT_EQ(corrections().enabledCorrections() & Crosstalk, None);
    set(Crosstalk, true);
    EXPECT_THAT(journal.take(), ElementsAre("64 on"));
    EXPECT_EQ(corrections().enabledCorrections(), delivered);
    corrections().removeObserver(&observer);
    set(Crosstalk, false);
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(FactoryCorrectionTest, StaysAsItIsWhenItIsInvalidFixedOrNotASingleOne)
{
    for (const auto correction : {None, System, SourcePower, ReferenceOscillator, AdcLinearity,
                                  static_cast<Flag>(1U << 12U), Crosstalk | Temperature}) {
        set(correction, true);
        set(correction, false);
    }
    EXPECT_THAT(journal.take(), IsEmpty());
    EXPECT_EQ(corrections().enabledCorrections(), delivered);
}

TEST_F(FactoryCorrectionTest, CanBeSwitchedUnlessItIsFixed)
{
    EXPECT_EQ(corrections().modifiableCorrections(),
              System | ofPower | ofIfsw | PortExtension | Crosstalk | Temperature);
    write<test::Terms>();
    set(System, true);
    EXPECT_EQ(corrections().enabledCorrections(), delivered | System);
}

TEST_F(FactoryCorrectionTest, CannotBeSwitchedWhileItsCalibrationIsWritten)
{
    write<test::Terms>();
    Kind<test::Terms>::write(*instrument.control<test::Terms>());
    instrument.advance(0ns);
    EXPECT_EQ(corrections().modifiableCorrections() & System, None);
    EXPECT_EQ(corrections().validCorrections() & System, System) << "the old terms are still there";
    set(System, true);
    EXPECT_EQ(corrections().enabledCorrections(), delivered);
    instrument.advance(10s);
    EXPECT_EQ(corrections().modifiableCorrections() & System, System);
}

TEST_F(FactoryCorrectionTest, IsSupportedAndValidAsTheModelOfTheNextOfferWants)
{
    write<test::Power>();
    set(Temperature, false);
    static_cast<void>(journal.take());

    Journal offers;
    test::LifecycleObserver lifecycle{offers};
    lifecycle.atOffer = [&] { corrections().addObserver(&observer); };
    instrument.vna->addObserver(&lifecycle);

    become(instrument, sdk::models::pell::pell101); // a full instrument keeps all it has
    EXPECT_EQ(corrections().validCorrections(), delivered | ofPower);
    EXPECT_THAT(journal.take(), IsEmpty());

    write<test::Terms>();
    EXPECT_THAT(journal.take(), ElementsAre("valid"));
    become(instrument, sdk::models::multiport::lum::lum901);
    EXPECT_THAT(journal.take(), ElementsAre("valid")) << "terms of two ports";
    EXPECT_EQ(corrections().validCorrections(), delivered | ofPower);
    EXPECT_EQ(corrections().enabledCorrections() & Temperature, None);
    instrument.vna->removeObserver(&lifecycle);
}

TEST(FactoryCorrectionStorageTest, StaysAsItIsWhenTheWriteBeginsWhileAnotherSwitchIsBeingSaved)
{
    struct WatchedStorage final : NoStorage {
        std::error_code save(const QJsonObject& /*sections*/, const Blocks& /*blocks*/) override
        {
            if (const auto watch = std::exchange(atSave, nullptr))
                watch();
            return {};
        }

        std::function<void()> atSave; ///< called by the next one
    };
    auto owned = std::make_unique<WatchedStorage>();
    auto& storage = *owned;
    ManualInstrument instrument{{}, std::move(owned)};
    const auto corrections = instrument.control<Corrections>();
    Kind<test::Terms>::write(*instrument.control<test::Terms>());
    instrument.advance(10s);

    std::thread other;
    storage.atSave = [&] {
        std::promise<tests::ObservedThread> entered;
        other = std::thread{[&] {
            entered.set_value({});
            corrections->setEnabled(System, true);
        }};
        const auto switching = entered.get_future().get();
        while (!switching.isWaiting()) // for this save
            std::this_thread::yield();
        Kind<test::Terms>::write(*instrument.control<test::Terms>());
        instrument.advance(0ns);
    };
    corrections->setEnabled(Crosstalk, false);
    other.join();
    EXPECT_EQ(corrections->enabledCorrections() | Crosstalk, delivered);
    instrument.advance(10s);
}

TEST(FactoryCorrectionProfileTest, ChangesWhatIsSupportedWhenAVellInstrumentBecomesAnother)
{
    Settings settings;
    settings.profile = Profile::Vell;
    ManualInstrument instrument{settings};
    Journal journal;
    CorrectionObserver observer{journal};
    test::LifecycleObserver lifecycle{journal};
    lifecycle.atOffer = [&] { instrument.control<Corrections>()->addObserver(&observer); };
    instrument.vna->addObserver(&lifecycle);
    Kind<test::Power>::write(*instrument.control<test::Power>());
    instrument.advance(10s);
    become(instrument, sdk::models::marl::marl301);
    EXPECT_THAT(journal.take(), ElementsAre("about to be released", "available", "supported", "valid"));
    EXPECT_EQ(instrument.control<Corrections>()->supportedCorrections(), System | delivered);
    EXPECT_EQ(instrument.control<Corrections>()->validCorrections(), delivered);
    become(instrument, sdk::models::vell::vell801);
    EXPECT_THAT(journal.take(), ElementsAre("about to be released", "available", "supported", "valid"));
    EXPECT_EQ(instrument.control<Corrections>()->validCorrections(), delivered | ofPower);
    instrument.vna->removeObserver(&lifecycle);
}

TEST(FactoryCorrectionProfileTest, TellsNothingAtAnOfferThatChangesNothing)
{
    ManualInstrument instrument;
    Journal journal;
    CorrectionObserver observer{journal};
    test::LifecycleObserver lifecycle{journal};
    lifecycle.atOffer = [&] { instrument.control<Corrections>()->addObserver(&observer); };
    instrument.vna->addObserver(&lifecycle);
    instrument.vna->drop();
    instrument.vna->offer();
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(journal.take(), ElementsAre("about to be released", "available"));
    instrument.vna->removeObserver(&lifecycle);
}

} // namespace
} // namespace tarn::simulator
