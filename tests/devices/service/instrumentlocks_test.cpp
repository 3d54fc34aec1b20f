// How the owner of an instrument's controls locks, in the program that compiles it in.

#include <devices/instrumentcontrols.h>

#include <support/mutexprobe.h>

#include <gtest/gtest.h>

#include <any>
#include <cstdint>
#include <memory>

namespace tarn::tests::instrumentlocks {
namespace {

using devices::ControlRegistry;
using devices::IControlLifecycleObserver;
using devices::InstrumentControls;

/// A device that takes no mutex of its own.
class PlainVna final : public sdk::IVna {
public:
    std::shared_ptr<void> control(sdk::Key /*key*/) override { return nullptr; }
    void addObserver(Observer* added) override { observer = added; }
    void removeObserver(Observer* /*observer*/) override { observer = nullptr; }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Plain"}; }

    Observer* observer = nullptr;
};

/// A control that counts the mutexes which are held while it is notified.
struct NotifiedControl final : IControlLifecycleObserver {
    void onControlsAboutToBeReleased() override { held = MutexProbe::held(); }
    void onControlsAvailable() override { held = MutexProbe::held(); }
    int held = -1;
};

constexpr std::uint64_t key = 1;

/// Locks of the lifecycle mutex, and of the map: to notify a control, to see whether it is missing, to keep a new one.
constexpr int lifecycle = 1;
constexpr int notified = 1;
constexpr int asked = 1;
constexpr int kept = 1;

class InstrumentLocks : public testing::Test {
protected:
    InstrumentLocks()
    {
        registry.addEntry({key, [this](const std::any& /*device*/) -> std::any {
                               heldInCreation = MutexProbe::held();
                               return isOffered ? std::any{notifiedControl} : std::any{};
                           }});
    }

    bool isOffered = true;
    int heldInCreation = -1;
    std::shared_ptr<NotifiedControl> notifiedControl = std::make_shared<NotifiedControl>();
    std::shared_ptr<PlainVna> device = std::make_shared<PlainVna>();
    ControlRegistry registry;
    devices::ControlTypes<NotifiedControl> types;
};

TEST_F(InstrumentLocks, ALookUpLocksTheMapAlone)
{
    const InstrumentControls controls{device, registry, types};
    EXPECT_EQ(locksOf([&] { EXPECT_TRUE(controls.isOffered(key)); }), 1);
    EXPECT_EQ(locksOf([&] { EXPECT_NE(controls.control<NotifiedControl>(key), nullptr); }), 1);
}

TEST_F(InstrumentLocks, ACreationRunsUnderTheLifecycleMutexAndTheMapIsLockedToKeepItsControl)
{
    isOffered = false;
    const InstrumentControls controls{device, registry, types};
    EXPECT_EQ(heldInCreation, 1);
    EXPECT_EQ(locksOf([&] { device->observer->onControlsAvailable(); }), lifecycle + notified + asked);
    isOffered = true;
    heldInCreation = -1;
    EXPECT_EQ(locksOf([&] { device->observer->onControlsAvailable(); }), lifecycle + notified + asked + kept);
    EXPECT_EQ(heldInCreation, 1);
    EXPECT_EQ(locksOf([&] { device->observer->onControlsAvailable(); }), lifecycle + notified + asked);
}

TEST_F(InstrumentLocks, ANotificationRunsUnderTheLifecycleMutexAlone)
{
    const InstrumentControls controls{device, registry, types};
    device->observer->onControlsAvailable();
    EXPECT_EQ(notifiedControl->held, 1);
    notifiedControl->held = -1;
    EXPECT_EQ(locksOf([&] { device->observer->onControlsAboutToBeReleased(); }), lifecycle + notified);
    EXPECT_EQ(notifiedControl->held, 1);
}

TEST_F(InstrumentLocks, AnUndisturbedOperationRunsUnderTheLifecycleMutexAlone)
{
    const InstrumentControls controls{device, registry, types};
    int held = -1;
    EXPECT_EQ(locksOf([&] { controls.undisturbed([&] { held = MutexProbe::held(); }); }), lifecycle);
    EXPECT_EQ(held, 1);
}

} // namespace
} // namespace tarn::tests::instrumentlocks
