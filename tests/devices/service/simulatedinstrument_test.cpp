// The adapters, obtained as a host does, while a simulated instrument with threads of its own comes and goes.

#include "allcontrols.h"
#include "heard.h"

#include <devices/instrumentcontrols.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/servicecontrols.h>
#include <simulator/calibrations.h>
#include <simulator/simulatedvna.h>

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <tuple>
#include <vector>

namespace tarn::tests::simulatedinstrument {
namespace {

using namespace devices;
using namespace devices::service;
using namespace std::chrono_literals;

using Terms = ISystemTermsControl;
using Ifsw = SdkVellIfswCalibrationControl;
using Power = SdkVellFactoryPowerCalibrationControl;
using Corrections = SdkFactoryCorrectionControl;
using Memory = IMemoryOperationsControl;
using SerialNumber = ISerialNumberControl;
using Handle = SdkCalibrationControlHandle;
using Watcher = SdkCalibrationControlWatcher;

ControlRegistry serviceControls()
{
    ControlRegistry registry;
    servicecontrols::registrate(&registry);
    return registry;
}

/// The points of a plan, from the lowest to the highest.
std::vector<double> pointsOf(const std::vector<vna::FrequencySegment>& plan)
{
    std::vector<double> points;
    for (const auto& [start, stop, count] : plan) {
        for (std::uint32_t i = 0; i != count; ++i)
            points.push_back(count == 1 ? start : start + (i * (stop - start) / (count - 1)));
    }
    return points;
}

/// One setting of each module.
using Tuning = std::array<double, 7>;

/// An observer of each control that can be left whether or not the instrument offers it.
using Observers = std::tuple<Hearing<Terms>, Hearing<Ifsw>, Hearing<Power>, Hearing<Memory>, Hearing<SerialNumber>>;

template <class Check>
void forEach(Observers& observers, Check check)
{
    std::apply([&](auto&... observer) { (check(observer), ...); }, observers);
}

class SimulatedInstrument : public testing::Test {
protected:
    SimulatedInstrument()
    {
        for (auto* const watcher : {&first, &second}) {
            QObject::connect(
                watcher, &Watcher::unitStatusChanged, watcher, [this] { ++unitChanges; }, Qt::DirectConnection);
            QObject::connect(
                watcher, &Watcher::saveProgressChanged, watcher,
                [this](int percent) { wrongProgress += percent < 0 || percent > 100 ? 1 : 0; }, Qt::DirectConnection);
        }
    }

    static simulator::Settings settings()
    {
        simulator::Settings settings;
        settings.memorySize = 1U << 16U;
        return settings;
    }

    template <class Control>
    [[nodiscard]] std::shared_ptr<Control> control() const
    {
        return controls.control<Control>();
    }

    template <class Control>
    void add(Hearing<Control>& observer)
    {
        observer.heard.isRemoved = false;
        if constexpr (requires(Control& to) { to.addObserver(&observer); })
            control<Control>()->addObserver(&observer);
        else
            control<Control>()->addObserver(observer);
    }

    template <class Control>
    void remove(Hearing<Control>& observer)
    {
        if constexpr (requires(Control& from) { from.removeObserver(&observer); })
            control<Control>()->removeObserver(&observer);
        else
            control<Control>()->removeObserver(observer);
        observer.heard.isRemoved = true;
    }

    void addAll(Observers& observers)
    {
        forEach(observers, [this](auto& observer) { add(observer); });
    }
    void removeAll(Observers& observers)
    {
        forEach(observers, [this](auto& observer) { remove(observer); });
    }

    /// Writes each kind of calibration data, measured `seconds` after the epoch, each followed by a
    /// write that is refused.
    void writeCalibrations(int seconds)
    {
        const auto time = QDateTime::fromSecsSinceEpoch(seconds);
        const auto plan = control<Terms>()->frequencyPlan();
        control<Terms>()->requestWriteTerms(time, 30.0, {2, termsPoints});
        control<Terms>()->requestWriteTerms(time, 30.0, plan, {2, termsPoints});
        control<Terms>()->requestWriteTerms(time, 30.0, {});

        const Ifsw::ReceiverCalibration receiver{{{1e6, 1.0, 0.0}}, {{-20.0, 0.0, 0.0}}};
        control<Ifsw>()->saveCalibrationData({ifswPoints, receiver, receiver, receiver});
        control<Ifsw>()->saveCalibrationData({});

        std::vector<Power::PowerCalPoint> points;
        for (const auto frequency : powerPoints)
            points.push_back({frequency, 0.0F, 0.0F, true, false, 0.0F, true, 10.0F, -10.0F});
        const std::chrono::sys_seconds powerTime{std::chrono::seconds{seconds}};
        control<Power>()->saveCalibrationData(powerTime, 30.0, points);
        control<Power>()->saveCalibrationData(powerTime, 30.0, {});
    }

    /// Whatever becomes of it: the instrument may be busy or away.
    void useMemory()
    {
        const auto memory = control<Memory>();
        std::ignore = memory->write(std::vector<std::byte>(5000, std::byte{7}));
        std::ignore = memory->integrityCheck();
        std::ignore = memory->read();
        std::ignore = control<SerialNumber>()->writeSerialNumber(7);
        std::ignore = control<SerialNumber>()->serialNumber();
    }

    void switchCorrection(bool enabled)
    {
        control<Corrections>()->setEnabled(FactoryCorrection::System, enabled);
        std::ignore = control<Corrections>()->supported();
    }

    /// What each module has of one setting, which is one of three.
    static Tuning tuning(int number)
    {
        const std::array references{5e6, 10e6, 25e6};
        return {number + 1.0,   number + 64.0,  number + 10.0,
                number + 100.0, number + 200.0, references[static_cast<std::size_t>(number)],
                number + 2.0};
    }

    /// Sets these and reads them back; 0 stands for a control that is away.
    Tuning tune(int number)
    {
        const auto [quillIf, quillPower, sableRow, sableDac, dornDac, dornReference, vellIf] = tuning(number);
        control<SdkQuillSynthesisControl>()->setSelectedIf(static_cast<int>(quillIf));
        control<SdkQuillPowerControl>()->setLoPower(static_cast<std::uint8_t>(quillPower));
        control<SdkSableSynthesisControl>()->setRfPowerRangePower(0, static_cast<std::uint8_t>(sableRow));
        control<SdkSablePowerControl>()->setSplitDac(static_cast<std::uint16_t>(sableDac));
        control<SdkDornPowerControl>()->setDacA(static_cast<std::uint16_t>(dornDac));
        control<SdkDornSynthesisControl>()->setReferenceFrequency(dornReference);
        control<SdkVellSynthesisControl>()->setSelectedIf(static_cast<int>(vellIf));
        const auto rows = control<SdkSableSynthesisControl>()->rfPowerRangeTable();
        return {static_cast<double>(control<SdkQuillSynthesisControl>()->selectedIf()),
                static_cast<double>(control<SdkQuillPowerControl>()->loPower()),
                rows.empty() ? 0.0 : rows.front().power,
                static_cast<double>(control<SdkSablePowerControl>()->splitDac()),
                static_cast<double>(control<SdkDornPowerControl>()->dacA()),
                control<SdkDornSynthesisControl>()->currentReferenceFrequency(),
                static_cast<double>(control<SdkVellSynthesisControl>()->selectedIf())};
    }

    /// Whether every setting is away or has been set.
    static bool isPossible(const Tuning& tuned)
    {
        for (std::size_t i = 0; i != tuned.size(); ++i) {
            if (tuned[i] != 0.0 && tuned[i] != tuning(0)[i] && tuned[i] != tuning(1)[i] && tuned[i] != tuning(2)[i])
                return false;
        }
        return true;
    }

    /// Waits, for a long time if need be, and brings this thread's events to their receivers.
    template <class Condition>
    [[nodiscard]] static bool waitFor(Condition isTrue)
    {
        for (const auto end = std::chrono::steady_clock::now() + 60s; std::chrono::steady_clock::now() < end;) {
            QCoreApplication::sendPostedEvents();
            if (isTrue())
                return true;
            std::this_thread::sleep_for(100us);
        }
        return false;
    }

    /// Waits until the writes of `seconds`, and with them all before, are done and told.
    [[nodiscard]] bool waitForCalibrations(int seconds)
    {
        const bool isStored = waitFor([&] {
            const auto stored = vna->calibrations().power.data();
            return stored && stored->time == seconds;
        });
        vna->waitUntilIdle();
        return isStored;
    }

    int argumentCount = 0;
    const QCoreApplication application{argumentCount, nullptr};
    const std::shared_ptr<simulator::SimulatedVna> vna = std::make_shared<simulator::SimulatedVna>(settings());
    const ControlRegistry registry = serviceControls();
    InstrumentControls controls{vna, registry, AllControls{}};
    const std::vector<double> termsPoints = pointsOf(control<Terms>()->frequencyPlan());
    const std::vector<double> ifswPoints = pointsOf(control<Ifsw>()->frequencyPlan());
    const std::vector<double> powerPoints = pointsOf(control<Power>()->frequencyPlan());
    std::atomic<int> unitChanges = 0;
    std::atomic<int> wrongProgress = 0;
    Watcher first{*controls.control<Handle>(Handle::firstRegistryKey)};
    Watcher second{*controls.control<Handle>(Handle::secondRegistryKey)};
};

TEST_F(SimulatedInstrument, ThatComesAndGoesLosesNoEndAndTellsNobodyWhoHasGone)
{
    Observers stayed;
    Observers alsoStayed;
    addAll(stayed);
    addAll(alsoStayed);
    Observers others[2];
    Hearing<Corrections> corrections[3];

    std::atomic<bool> isOver = false;
    const auto comeAndGo = [&] {
        while (!isOver) {
            vna->drop();
            vna->offer();
            // this thread alone takes the controls away, so they are there
            controls.undisturbed([&] { add(corrections[0]); });
            std::this_thread::yield();
            controls.undisturbed([&] { remove(corrections[0]); });
        }
    };
    const auto write = [&] {
        for (int round = 0; round != 100; ++round) {
            writeCalibrations(round);
            switchCorrection(round % 2 == 0);
            std::this_thread::sleep_for(2ms); // about what the writes take
            useMemory();
        }
    };
    std::atomic<int> wrongTunings = 0;
    const auto tuneOn = [&] {
        for (int round = 0; !isOver; ++round)
            wrongTunings += isPossible(tune(round % 3)) ? 0 : 1;
    };
    const auto observe = [&](Observers& observers, Hearing<Corrections>& correctionObserver) {
        while (!isOver) {
            addAll(observers);
            controls.undisturbed([&] { add(correctionObserver); });
            removeAll(observers);
            controls.undisturbed([&] { control<Corrections>()->removeObserver(&correctionObserver); });
        }
    };
    EXPECT_EQ(tune(0), tuning(0));
    std::vector<std::future<void>> threads;
    threads.push_back(std::async(std::launch::async, write));
    threads.push_back(std::async(std::launch::async, comeAndGo));
    threads.push_back(std::async(std::launch::async, tuneOn));
    for (int i = 0; i != 2; ++i)
        threads.push_back(std::async(std::launch::async, observe, std::ref(others[i]), std::ref(corrections[i + 1])));
    const auto hasEnded = [](const auto& thread) { return thread.wait_for(0s) == std::future_status::ready; };
    EXPECT_TRUE(waitFor([&] { return hasEnded(threads.front()); }));
    isOver = true;
    ASSERT_TRUE(waitFor([&] { return std::ranges::all_of(threads, hasEnded); }));
    for (auto& thread : threads)
        EXPECT_NO_THROW(thread.get());

    // The instrument is there, and stays.
    QCoreApplication::sendPostedEvents(); // the watchers follow
    EXPECT_EQ(wrongTunings, 0);
    for (const int number : {0, 1, 2})
        EXPECT_EQ(tune(number), tuning(number));
    for (auto& observer : corrections)
        add(observer);
    const int unitChangesBefore = unitChanges;
    writeCalibrations(1000);
    ASSERT_TRUE(waitForCalibrations(1000));
    switchCorrection(false);
    switchCorrection(true);
    useMemory();
    EXPECT_GE(unitChanges, unitChangesBefore + 8) << "the beginnings and ends of four writes";
    EXPECT_EQ(wrongProgress, 0);
    const auto expectWhole = [](const Heard& heard, const Heard& other) {
        EXPECT_GT(heard.starts, 1);
        EXPECT_GT(heard.refusals, 1);
        EXPECT_EQ(heard.finishes, heard.starts);
        EXPECT_EQ(heard.disorder, 0);
        EXPECT_EQ(heard.starts, other.starts);
        EXPECT_EQ(heard.refusals, other.refusals);
    };
    expectWhole(std::get<0>(stayed).heard, std::get<0>(alsoStayed).heard);
    expectWhole(std::get<1>(stayed).heard, std::get<1>(alsoStayed).heard);
    expectWhole(std::get<2>(stayed).heard, std::get<2>(alsoStayed).heard);

    // And now that nobody observes any more.
    EXPECT_GT(std::get<3>(stayed).heard.all, 0);
    EXPECT_GT(std::get<4>(stayed).heard.all, 0);
    for (auto& observer : corrections) {
        EXPECT_GT(observer.heard.all, 0);
        remove(observer);
    }
    removeAll(stayed);
    removeAll(alsoStayed);
    writeCalibrations(2000);
    switchCorrection(false);
    ASSERT_TRUE(waitForCalibrations(2000));
    useMemory();
    for (auto* const observers : {&stayed, &alsoStayed, &others[0], &others[1]})
        forEach(*observers, [](auto& observer) { EXPECT_EQ(observer.heard.late, 0); });
    for (const auto& observer : corrections)
        EXPECT_EQ(observer.heard.late, 0);
}

} // namespace
} // namespace tarn::tests::simulatedinstrument
