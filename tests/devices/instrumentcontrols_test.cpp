#include <devices/instrumentcontrols.h>

#include <support/exceptions.h>
#include <support/fakevna.h>
#include <support/observedthread.h>

#include <gmock/gmock.h>

#include <atomic>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tarn::tests {
namespace {

using devices::ControlRegistry;
using devices::ControlTypes;
using devices::IControlLifecycleObserver;
using devices::InstrumentControls;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Journal = std::vector<std::string>;

/// A control that nobody notifies.
struct PlainControl {
    static constexpr std::uint64_t registryKey = 0x11;
    int number;
};

class IPublicControl {
public:
    IPublicControl() = default;
    IPublicControl(const IPublicControl&) = delete;
    IPublicControl& operator=(const IPublicControl&) = delete;
    virtual ~IPublicControl() = default;
};

/// A control that writes down how it is notified. The public type alone does not tell that it can be.
class WatchingControl final : public IPublicControl, public IControlLifecycleObserver {
public:
    WatchingControl(std::string name, Journal& journal)
        : m_name{std::move(name)}
        , m_journal{journal}
    {
    }

    void onControlsAboutToBeReleased() override { m_journal.push_back(m_name + " release"); }
    void onControlsAvailable() override { m_journal.push_back(m_name + " available"); }

private:
    std::string m_name;
    Journal& m_journal;
};

constexpr ControlTypes<PlainControl, IPublicControl> types;

class InstrumentControlsTest : public testing::Test {
protected:
    /// Adds an entry that creates `make()` while its key is in `offered`.
    template <class Make>
    void add(std::uint64_t key, Make make)
    {
        registry.addEntry(ControlRegistry::ControlEntry<sdk::IVna>{key, [this, key, make](sdk::IVna*) -> std::any {
                                                                       created.push_back(key);
                                                                       return offered.contains(key) ? std::any{make()}
                                                                                                    : std::any{};
                                                                   }});
    }

    void addPlain(std::uint64_t key)
    {
        add(key, [] { return std::make_shared<PlainControl>(5); });
    }

    void addWatching(std::uint64_t key, const std::string& name)
    {
        add(key,
            [this, name] { return std::shared_ptr<IPublicControl>{std::make_shared<WatchingControl>(name, journal)}; });
    }

    std::shared_ptr<FakeVna> device = std::make_shared<FakeVna>();
    ControlRegistry registry;
    std::set<std::uint64_t> offered{0x11, 1, 2, 3};
    std::vector<std::uint64_t> created; ///< keys of the creation functions that were called
    Journal journal;
};

TEST_F(InstrumentControlsTest, CreatesEveryControlThatTheDeviceOffersInTheOrderOfTheRegistry)
{
    addWatching(2, "two");
    addPlain(1);
    addPlain(9); // not offered
    const InstrumentControls controls{device, registry, types};
    EXPECT_THAT(created, ElementsAre(2, 1, 9));
    EXPECT_TRUE(controls.isOffered(2));
    EXPECT_TRUE(controls.isOffered(1));
    EXPECT_FALSE(controls.isOffered(9));
    EXPECT_FALSE(controls.isOffered(77)) << "not in the registry";
}

TEST_F(InstrumentControlsTest, GivesTheCreationFunctionsTheDevice)
{
    sdk::IVna* seen = nullptr;
    registry.addEntry(ControlRegistry::ControlEntry<sdk::IVna>{1, [&](sdk::IVna* vna) -> std::any {
                                                                   seen = vna;
                                                                   return {};
                                                               }});
    const InstrumentControls controls{device, registry, types};
    EXPECT_EQ(seen, device.get());
}

TEST_F(InstrumentControlsTest, HandsOutTheSameControlEachTimeTyped)
{
    addPlain(PlainControl::registryKey);
    const InstrumentControls controls{device, registry, types};
    const auto control = controls.control<PlainControl>();
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->number, 5);
    EXPECT_EQ(controls.control<PlainControl>(0x11), control);
    EXPECT_EQ(created.size(), 1U);
}

TEST_F(InstrumentControlsTest, HandsOutNothingForAnotherTypeOrAnotherKey)
{
    addPlain(1);
    addPlain(9); // not offered
    const InstrumentControls controls{device, registry, types};
    EXPECT_EQ(controls.control<IPublicControl>(1), nullptr);
    EXPECT_EQ(controls.control<PlainControl>(9), nullptr);
    EXPECT_EQ(controls.control<PlainControl>(77), nullptr);
}

TEST_F(InstrumentControlsTest, ForwardsEachNotificationInTheOrderOfTheRegistryToThoseThatWantIt)
{
    addWatching(3, "three");
    addPlain(2);
    addWatching(1, "one");
    const InstrumentControls controls{device, registry, types};
    EXPECT_THAT(journal, IsEmpty()) << "being created is no notification";
    device->announceRelease();
    EXPECT_THAT(journal, ElementsAre("three release", "one release"));
    journal.clear();
    device->announceAvailable();
    EXPECT_THAT(journal, ElementsAre("three available", "one available"));
}

TEST_F(InstrumentControlsTest, CreatesWhatIsOfferedLaterAndDoesNotNotifyItOfThat)
{
    addWatching(1, "one");
    addWatching(9, "nine");
    const InstrumentControls controls{device, registry, types};
    offered.insert(9);
    device->announceAvailable();
    EXPECT_TRUE(controls.isOffered(9));
    EXPECT_THAT(journal, ElementsAre("one available"));

    device->announceRelease();
    device->announceAvailable();
    EXPECT_THAT(journal,
                ElementsAre("one available", "one release", "nine release", "one available", "nine available"));
    EXPECT_THAT(created, ElementsAre(1, 9, 9)) << "a control that is there is not created again";
}

TEST_F(InstrumentControlsTest, CreatesNothingWhenControlsAreReleased)
{
    addPlain(9);
    const InstrumentControls controls{device, registry, types};
    offered.insert(9);
    device->announceRelease();
    EXPECT_FALSE(controls.isOffered(9));
}

TEST_F(InstrumentControlsTest, KeepsAControlThatTheDeviceHasDropped)
{
    addPlain(1);
    const InstrumentControls controls{device, registry, types};
    const auto control = controls.control<PlainControl>(1);
    offered.clear();
    device->announceRelease();
    EXPECT_TRUE(controls.isOffered(1));
    EXPECT_EQ(controls.control<PlainControl>(1), control);
}

TEST_F(InstrumentControlsTest, ListensToTheDeviceForAsLongAsItLives)
{
    {
        const InstrumentControls controls{device, registry, types};
        EXPECT_EQ(device->observers().size(), 1U);
    }
    EXPECT_TRUE(device->observers().empty());
}

TEST_F(InstrumentControlsTest, LetsAHandedOutControlOutliveItButNotTheDevice)
{
    bool gone = false;
    struct Guard {
        std::weak_ptr<FakeVna> device;
        bool* gone;
        bool* deviceWasThere;
        ~Guard()
        {
            *gone = true;
            *deviceWasThere = !device.expired();
        }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        Guard(std::weak_ptr<FakeVna> vna, bool* goneFlag, bool* thereFlag)
            : device{std::move(vna)}
            , gone{goneFlag}
            , deviceWasThere{thereFlag}
        {
        }
    };
    bool deviceWasThere = false;
    const std::weak_ptr<FakeVna> life{device};
    add(1, [&] { return std::make_shared<Guard>(life, &gone, &deviceWasThere); });

    std::shared_ptr<Guard> control;
    {
        const InstrumentControls controls{std::move(device), registry, ControlTypes<Guard>{}};
        control = controls.control<Guard>(1);
    }
    EXPECT_FALSE(life.expired());
    EXPECT_FALSE(gone);
    control.reset();
    EXPECT_TRUE(gone);
    EXPECT_TRUE(deviceWasThere);
    EXPECT_TRUE(life.expired());
}

TEST_F(InstrumentControlsTest, RefusesAControlOfATypeThatWasNotNamedAndNamesTheKey)
{
    add(2, [] { return std::make_shared<int>(1); });
    try {
        const InstrumentControls controls{device, registry, types};
        FAIL() << "a control of an unknown type was taken";
    } catch (const std::logic_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("0x0000000000000002"));
    }
    EXPECT_TRUE(device->observers().empty());
}

TEST_F(InstrumentControlsTest, KeepsNothingWhenACreationFunctionThrows)
{
    for (const auto& exception : anyExceptions()) {
        ControlRegistry failing;
        const auto control = std::make_shared<PlainControl>(1);
        failing.addEntry({1, [&](const std::any& /*device*/) { return std::any{control}; }});
        failing.addEntry({2, [&](const std::any& /*device*/) -> std::any { std::rethrow_exception(exception); }});
        EXPECT_EQ(thrownBy([&] { const InstrumentControls controls{device, failing, types}; }), exception);
        EXPECT_TRUE(device->observers().empty());
        EXPECT_EQ(device.use_count(), 1);
        EXPECT_EQ(control.use_count(), 1);
    }
}

/// A control that throws whatever it is told to.
struct ThrowingControl final : IControlLifecycleObserver {
    std::exception_ptr exception;
    void onControlsAboutToBeReleased() override { std::rethrow_exception(exception); }
    void onControlsAvailable() override { std::rethrow_exception(exception); }
};

TEST_F(InstrumentControlsTest, NotifiesAndCreatesTheOthersWhateverOneOfThemThrows)
{
    const auto first = std::make_shared<ThrowingControl>();
    const auto second = std::make_shared<ThrowingControl>();
    add(1, [&] { return first; });
    addWatching(2, "two");
    add(3, [&] { return second; });
    addWatching(9, "nine"); // offered later
    addWatching(PlainControl::registryKey, "last");
    const InstrumentControls controls{device, registry, ControlTypes<IPublicControl, ThrowingControl>{}};
    second->exception = std::make_exception_ptr(std::logic_error{"second"});
    offered.insert(9);
    for (const auto& exception : anyExceptions()) {
        first->exception = exception;
        journal.clear();
        EXPECT_EQ(thrownBy([&] { device->announceRelease(); }), exception) << "the first one reaches the device";
        EXPECT_EQ(thrownBy([&] { device->announceAvailable(); }), exception);
        EXPECT_TRUE(controls.isOffered(9));
        EXPECT_THAT(journal, testing::IsSupersetOf({"two release", "last release", "two available", "last available"}));
    }
}

TEST_F(InstrumentControlsTest, LetsAControlBeLookedUpFromInsideANotification)
{
    struct Curious final : IControlLifecycleObserver {
        std::function<void()> look;
        void onControlsAboutToBeReleased() override { look(); }
        void onControlsAvailable() override { }
    };
    const auto curious = std::make_shared<Curious>();
    add(1, [&] { return curious; });
    const InstrumentControls controls{device, registry, ControlTypes<Curious>{}};
    bool found = false;
    curious->look = [&] { found = controls.control<Curious>(1) != nullptr; };
    device->announceRelease();
    EXPECT_TRUE(found);
}

/// A release that the device announces on a thread of its own; its end is waited for.
class AnnouncedRelease {
public:
    explicit AnnouncedRelease(FakeVna& device)
        : m_thread{[this, &device] {
            m_observed.set_value({});
            device.announceRelease();
            m_isOver = true;
        }}
    {
    }

    /// Whether it is held up by whoever is notified; comes back when that is certain.
    [[nodiscard]] bool waits()
    {
        const auto thread = m_observed.get_future().get();
        while (!m_isOver && !thread.isWaiting())
            std::this_thread::yield();
        return !m_isOver;
    }

private:
    std::promise<ObservedThread> m_observed;
    std::atomic<bool> m_isOver = false;
    std::jthread m_thread;
};

TEST_F(InstrumentControlsTest, MakesANotificationWaitForAControlThatIsBeingCreated)
{
    std::optional<AnnouncedRelease> release;
    add(1, [&] {
        // The device announces a release while this control is half made; it must still hear of it.
        EXPECT_TRUE(release.emplace(*device).waits());
        return std::shared_ptr<IPublicControl>{std::make_shared<WatchingControl>("one", journal)};
    });
    const InstrumentControls controls{device, registry, types};
    release.reset();
    EXPECT_THAT(journal, ElementsAre("one release"));
}

TEST_F(InstrumentControlsTest, MakesANotificationWaitForAnUndisturbedOperation)
{
    addWatching(1, "one");
    offered.insert(1);
    InstrumentControls controls{device, registry, types};
    std::optional<AnnouncedRelease> release;
    controls.undisturbed([&] {
        EXPECT_TRUE(release.emplace(*device).waits());
        EXPECT_THAT(journal, IsEmpty());
    });
    release.reset();
    EXPECT_THAT(journal, ElementsAre("one release"));
}

TEST_F(InstrumentControlsTest, LetsWhatAnUndisturbedOperationThrowsPassAndGoesOn)
{
    addWatching(1, "one");
    offered.insert(1);
    InstrumentControls controls{device, registry, types};
    for (const auto& exception : anyExceptions())
        EXPECT_EQ(thrownBy([&] { controls.undisturbed([&] { std::rethrow_exception(exception); }); }), exception);
    device->announceAvailable(); // would wait for ever
    EXPECT_THAT(journal, ElementsAre("one available"));
}

TEST_F(InstrumentControlsTest, ServesReadersWhileTheDeviceNotifies)
{
    addWatching(1, "one");
    addPlain(9);
    const InstrumentControls controls{device, registry, types};
    offered.insert(9);
    std::jthread deviceThread{[&] {
        for (int round = 0; round != 100; ++round) {
            device->announceRelease();
            device->announceAvailable();
        }
    }};
    while (!controls.isOffered(9))
        std::this_thread::yield();
    EXPECT_NE(controls.control<PlainControl>(9), nullptr);
    deviceThread.join();
    EXPECT_EQ(journal.size(), 200U);
}

} // namespace
} // namespace tarn::tests
