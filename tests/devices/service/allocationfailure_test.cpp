// What is left of an allocation that fails: a `std::bad_alloc` for the caller. The first, the second
// and so on to the last allocation of every public operation fails, alone or with all that follow.
//
// What is up to Qt does not fail here:
// - It allocates the contents of its strings, lists and byte arrays with `malloc`.
// - `QObject::connect`, and with it the construction of `SdkCalibrationControlWatcher`, does not survive it: the
//   sender's list of connections is damaged, and the slot object is lost.

#include "everyoperation.h"

#include <devices/controlregistry.h>
#include <devices/errortermsconversion.h>
#include <devices/instrumentcontrols.h>
#include <devices/modelnames.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/frequencyplanconversion.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/servicecontrols.h>
#include <sdk/ivna.h>

#include <support/allocationfaults.h>
#include <support/devicehandle.h>
#include <support/fakevna.h>
#include <support/onanotherthread.h>
#include <support/plaincontrols.h>
#include <support/signalcounter.h>

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <any>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::tests::allocationfailure {
namespace {

/// An allocation that is to fail, alone or with all that follow.
class Fault {
public:
    Fault(int nth, bool isForEver)
        : m_nth{nth}
        , m_isForEver{isForEver}
    {
    }

    /// Makes the allocation of `call` fail. Whether it came to that; it is reported then.
    template <class Call>
    bool strikes(Call call)
    {
        bool isReported = false;
        AllocationFaults::arm(m_nth, m_isForEver);
        try {
            call();
        } catch (const std::bad_alloc&) {
            isReported = true;
        } catch (...) {
            AllocationFaults::disarm();
            ADD_FAILURE() << "another exception";
        }
        const bool hasFailed = AllocationFaults::disarm();
        EXPECT_EQ(isReported, hasFailed);
        return hasFailed;
    }

private:
    int m_nth;
    bool m_isForEver;
};

/// Calls `attempt` with one fault after the other until it says that it got by without one. How many it met.
template <class Attempt>
int withEveryFault(Attempt attempt)
{
    attempt(Fault{1, false}); // what is made once for all is not what leaks
    int met = 0;
    for (const bool isForEver : {false, true}) {
        for (int nth = 1;; ++nth, ++met) {
            SCOPED_TRACE(testing::Message{} << "allocation " << nth << (isForEver ? " and all that follow" : ""));
            const long before = AllocationFaults::live();
            const bool isMet = attempt(Fault{nth, isForEver});
            EXPECT_EQ(AllocationFaults::live(), before) << "blocks were lost";
            if (!isMet)
                break;
        }
    }
    return met;
}

TEST(AllocationFailure, OfEveryOperationIsReportedAndLeavesNothing)
{
    int met = 0;
    for (const auto& operation : everyOperation()) {
        SCOPED_TRACE(operation.name);
        met += withEveryFault([&](Fault fault) {
            const auto bench = operation.bench();
            bench->drop();
            bench->offer();
            const int before = bench->heard();
            const bool isMet = fault.strikes([&] { bench->run(); });
            if (isMet) {
                EXPECT_EQ(bench->heard(), before) << "somebody was told";
            }
            expectDoneByTheNextCall(operation, *bench);
            EXPECT_TRUE(bench->drop()) << "the control is kept alive";
            return isMet;
        });
    }
    EXPECT_GT(met, 100);
}

TEST(AllocationFailure, OfACreationIsReportedAndLeavesNothing)
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    const std::function<void()> inside;
    const auto device = deviceWithEveryControl(inside);
    const QObject firstOfThisThread; // Qt does not survive it if that one cannot be made
    for (const auto& entry : registry.entries()) {
        SCOPED_TRACE(devices::ControlRegistry::keyText(entry.key));
        const int met = withEveryFault([&](Fault fault) {
            std::any control;
            const bool isMet = fault.strikes([&] { control = entry.create(device.get()); });
            EXPECT_EQ(control.has_value(), !isMet);
            onAnotherThread([&] { EXPECT_TRUE(entry.create(device.get()).has_value()); });
            return isMet;
        });
        EXPECT_GE(met, 2);
    }
}

using devices::service::SdkCalibrationControlHandle;
using devices::service::SdkCalibrationControlWatcher;

auto aController()
{
    return handleTo<sdk::service::calibrations::ICalibrationController>(std::make_shared<PlainCalibrationController>());
}

TEST(AllocationFailure, OfASignalToAWatcherOnAnotherThreadIsReportedAndLeavesNothing)
{
    int argumentCount = 0;
    const QCoreApplication application{argumentCount, nullptr}; // brings the events to their receivers
    SdkCalibrationControlHandle handle{aController()};
    SdkCalibrationControlWatcher watcher{handle};
    int heard = 0;
    const SignalCounter counter{watcher, heard};
    const int met = withEveryFault([&](Fault fault) {
        bool isMet = false;
        heard = 0;
        onAnotherThread([&] { isMet = fault.strikes([&] { handle.onControlsAvailable(); }); });
        onAnotherThread([&] { handle.onControlsAvailable(); });
        QCoreApplication::sendPostedEvents(&watcher);
        EXPECT_EQ(heard, isMet ? 2 : 4);
        return isMet;
    });
    EXPECT_GE(met, 2);
}

using Control = int;
using Handle = sdk::ControlHandle<Control>;
using Reacquiring = devices::ReacquiringControl<Control>;

TEST(AllocationFailure, OfTheFunctionThatAsksForAControlKeepsTheHandleUsable)
{
    const int met = withEveryFault([](Fault fault) {
        auto offered = std::make_shared<Control>(1);
        const auto ask = [&offered, someMore = std::array<int, 16>{}] {
            const auto allocated = std::make_unique<int>(someMore[0]);
            return Handle{offered};
        };
        const Reacquiring control{ask};
        EXPECT_FALSE(fault.strikes([&] { EXPECT_EQ(*control.lock(), 1); })) << "it has a handle already";
        offered = std::make_shared<Control>(2);
        const bool isMet = fault.strikes([&] { EXPECT_EQ(*control.lock(), 2); });
        onAnotherThread([&] { EXPECT_EQ(*control.lock(), 2); });
        EXPECT_EQ(offered.use_count(), 1) << "the control is kept alive";
        return isMet;
    });
    EXPECT_EQ(met, 2);
    EXPECT_GE(withEveryFault([](Fault fault) {
                  const auto offered = std::make_shared<Control>(1);
                  const Reacquiring::Reacquire ask = [&offered, someMore = std::array<int, 16>{}] {
                      const auto allocated = std::make_unique<int>(someMore[0]);
                      return Handle{offered};
                  };
                  return fault.strikes([&] {
                      Reacquiring control{ask};
                      const Reacquiring moved{std::move(control)};
                      EXPECT_EQ(*moved.lock(), 1);
                  });
              }),
              4);
}

TEST(AllocationFailure, OfTheRegistryLeavesItAsItWas)
{
    using devices::ControlRegistry;
    EXPECT_GE(withEveryFault([](Fault fault) {
                  ControlRegistry registry;
                  const ControlRegistry::ControlEntryBase entry{
                      1, [big = std::array<int, 16>{}](const std::any&) { return std::any{big[0]}; }};
                  registry.addEntry(entry);
                  const bool isMet = fault.strikes([&] { registry.addEntry({2, entry.create}); });
                  EXPECT_EQ(registry.entries().size(), isMet ? 1U : 2U);
                  EXPECT_NE(registry.find(1), nullptr);
                  EXPECT_EQ(registry.find(2) == nullptr, isMet);
                  registry.addEntry({3, entry.create});
                  EXPECT_NE(registry.find(3), nullptr);
                  return isMet;
              }),
              2);
}

/// A type of control that no registry has, so that every one of them is refused.
struct Unnamed { };

TEST(AllocationFailure, OfTheOwnerOfAllControlsIsReportedAndLeavesNothing)
{
    devices::ControlRegistry registry;
    registry.addEntry({1, [](const std::any&) { return std::any{std::make_shared<int>(1)}; }});
    registry.addEntry({2, [](const std::any&) { return std::any{std::make_shared<int>(2)}; }});
    const auto device = std::make_shared<FakeVna>();
    const auto make = [&] {
        return std::make_unique<devices::InstrumentControls>(device, registry, devices::ControlTypes<Unnamed, int>{});
    };
    const int met = withEveryFault([&](Fault fault) {
        std::unique_ptr<devices::InstrumentControls> controls;
        const bool isMet = fault.strikes([&] { controls = make(); });
        EXPECT_EQ(device->observers().size(), isMet ? 0U : 1U);
        EXPECT_EQ(controls == nullptr, isMet);
        onAnotherThread([&] { EXPECT_EQ(*make()->control<int>(2), 2); });
        return isMet;
    });
    EXPECT_GE(met, 8);
}

TEST(AllocationFailure, OfOneControlThatReturnsKeepsNoOtherFromReturning)
{
    bool isThere = false;
    devices::ControlRegistry registry;
    for (const std::uint64_t key : {1U, 2U}) {
        registry.addEntry(
            {key, [&isThere](const std::any&) { return isThere ? std::any{std::make_shared<int>(1)} : std::any{}; }});
    }
    const auto device = std::make_shared<FakeVna>();
    const int met = withEveryFault([&](Fault fault) {
        isThere = false;
        const devices::InstrumentControls controls{device, registry, devices::ControlTypes<int>{}};
        isThere = true;
        const auto* const observer = device->observers().at(0);
        const bool isMet = fault.strikes([&] { const_cast<sdk::IVna::Observer*>(observer)->onControlsAvailable(); });
        EXPECT_EQ(controls.isOffered(1) && controls.isOffered(2), !isMet);
        onAnotherThread([&] { device->announceAvailable(); });
        EXPECT_TRUE(controls.isOffered(1) && controls.isOffered(2));
        return isMet;
    });
    EXPECT_GE(met, 8);
}

TEST(AllocationFailure, OfAConversionIsReported)
{
    const vna::ErrorTerms terms{2, {1.0, 2.0}};
    const std::vector<vna::FrequencySegment> plan{{1.0, 2.0, 3}, {4.0, 5.0, 6}};
    const auto sdkPlan = devices::service::toSdkFrequencyPlan(plan);
    const sdk::Model model{"a model whose name needs memory of its own"};
    const auto metBy = [](const auto& convert) {
        return withEveryFault([&](Fault fault) {
            const bool isMet = fault.strikes([&] { std::ignore = convert(); });
            std::ignore = convert();
            return isMet;
        });
    };
    EXPECT_EQ(metBy([&] { return devices::errorTermsToSdk(terms); }), 2 * (1 + 1 + 2 * 3 + 1 + 2 * 3));
    EXPECT_EQ(metBy([&] { return devices::service::toSdkFrequencyPlan(plan); }), 2);
    EXPECT_EQ(metBy([&] { return devices::service::fromSdkFrequencyPlan(sdkPlan); }), 2);
    EXPECT_EQ(metBy([&] { return devices::prettyModelName(model); }), 0) << "Qt's memory alone";
    EXPECT_EQ(metBy([&] { return devices::ControlRegistry::keyText(1); }), 2);
}

} // namespace
} // namespace tarn::tests::allocationfailure
