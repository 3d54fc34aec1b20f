// The observers of the calibration controls and of the factory corrections under any sequence of what can happen to
// them.

#include <devices/service/sdkfactorycorrectioncontrol.h>

#include <support/calibrationbench.h>
#include <support/mockfactorycorrectioncontrol.h>

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace tarn::tests::observersequences {
namespace {

/// What happens to an observer: calls of the SDK with its adapter, and what it is told on a return.
enum class Event { Registration, Removal, SupportedChanged, ValidChanged };

/// By observers: from one to the next the order is that of a hash map.
using Events = std::map<int, std::vector<Event>>;

/// A calibration control: a flag for each observer keeps it from being registered twice.
template <class Calibration>
struct Flagged : Calibration {
    using Listener = ProgressListener<typename Calibration::Adapter>;
    static constexpr bool hasFlag = true;
    static void tell(typename Calibration::Sdk::Observer& observer) { observer.onWriteProgressChanged(1); }
};

/// The factory corrections: a plain map.
struct Corrections {
    using Sdk = sdk::IFactoryCorrectionControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkFactoryCorrectionControl;
    using Mock = MockFactoryCorrectionControl;

    struct Listener final : Adapter::Observer {
        void onSupportedChanged() override { returned(Event::SupportedChanged); }
        void onValidChanged() override { returned(Event::ValidChanged); }
        void onEnabledChanged(devices::FactoryCorrection /*correction*/, bool enabled) override { heard(enabled); }

        std::function<void(bool)> heard;
        std::function<void(Event)> returned;
    };
    static constexpr bool hasFlag = false;
    static void tell(Sdk::Observer& observer) { observer.onEnabledChanged(sdk::CorrectionFlag::System, true); }
};

/// What the map of observers promises, with or without the registration flag, in its plainest form.
class Model {
public:
    explicit Model(bool hasFlag)
        : m_hasFlag{hasFlag}
    {
    }

    [[nodiscard]] Events add(int observer)
    {
        Events events;
        if (m_flags.try_emplace(observer, false).second && m_isOffered)
            registrate(observer, events);
        return events;
    }

    [[nodiscard]] Events remove(int observer)
    {
        Events events;
        if (!m_flags.contains(observer))
            return events;
        if (m_isOffered)
            unregister(observer, events);
        if (m_isOffered || m_hasFlag)
            m_flags.erase(observer);
        return events;
    }

    [[nodiscard]] Events release()
    {
        Events events;
        for (const auto& [observer, isFlagged] : m_flags) {
            if (m_isOffered && (isFlagged || !m_hasFlag))
                unregister(observer, events);
        }
        return events;
    }

    [[nodiscard]] Events available()
    {
        Events events;
        for (const auto& [observer, isFlagged] : m_flags) {
            if (!m_isOffered || (isFlagged && m_hasFlag))
                continue;
            registrate(observer, events);
            if (!m_hasFlag)
                events[observer] = {Event::Registration, Event::SupportedChanged, Event::ValidChanged};
        }
        return events;
    }

    void offer() { setOffered(true); }
    void drop() { setOffered(false); }

    /// Those who are registered with the control that is offered, as often as they are.
    [[nodiscard]] const std::multiset<int>& heard() const { return m_heard; }

private:
    void registrate(int observer, Events& events)
    {
        m_flags[observer] = true;
        m_heard.insert(observer);
        events[observer].push_back(Event::Registration);
    }

    void unregister(int observer, Events& events)
    {
        m_flags[observer] = false;
        m_heard.erase(observer);
        events[observer].push_back(Event::Removal);
    }

    void setOffered(bool isOffered)
    {
        m_isOffered = isOffered;
        m_heard.clear();
    }

    const bool m_hasFlag;
    std::map<int, bool> m_flags;
    std::multiset<int> m_heard;
    bool m_isOffered = false;
};

template <class Control>
class ObserverSequences : public CalibrationBench<Control> {
protected:
    using Base = CalibrationBench<Control>;
    using typename Base::SdkObserver;
    using Adapter = typename Control::Adapter;
    static constexpr int observerCount = 4;

    ObserverSequences()
    {
        for (int i = 0; i != observerCount; ++i) {
            auto& listener = listeners[static_cast<std::size_t>(i)];
            listener.heard = [this, i](auto) { heard.insert(i); };
            if constexpr (!Control::hasFlag)
                listener.returned = [this, i](Event event) { events[i].push_back(event); };
        }
        this->whenAdded = [this](auto* observer) { events[ownerOf(*observer)].push_back(Event::Registration); };
        this->whenRemoved = [this](auto* observer) { events[ownerOf(*observer)].push_back(Event::Removal); };
    }

    /// Whose adapter this is: whoever hears what it is told.
    int ownerOf(SdkObserver& observer)
    {
        heard.clear();
        Control::tell(observer);
        return heard.size() == 1 ? *heard.begin() : -1;
    }

    /// What may happen next, to the control and to the model; the events that it causes.
    Events step(Adapter& adapter, Model& model, std::mt19937& random)
    {
        const auto observer = static_cast<int>(random() % observerCount);
        auto* const listener = &listeners[static_cast<std::size_t>(observer)];
        switch (random() % 8) {
        case 0:
        case 1:
            adapter.addObserver(listener);
            return model.add(observer);
        case 2:
            adapter.removeObserver(listener);
            return model.remove(observer);
        case 3:
            adapter.onControlsAboutToBeReleased();
            return model.release();
        case 4:
        case 5:
            adapter.onControlsAvailable();
            return model.available();
        case 6:
            this->offer();
            model.offer();
            return {};
        default:
            this->drop();
            model.drop();
            return {};
        }
    }

    std::array<typename Control::Listener, observerCount> listeners;
    std::multiset<int> heard;
    Events events;
};

using Controls = testing::Types<Flagged<Ifsw>, Flagged<Power>, Corrections>;
TYPED_TEST_SUITE(ObserverSequences, Controls);

TYPED_TEST(ObserverSequences, RegisterAndHearAsTheModelSays)
{
    std::size_t eventCount = 0;
    for (unsigned int seed = 0; seed != 4000; ++seed) {
        std::mt19937 random{seed};
        this->drop();
        typename TypeParam::Adapter adapter{this->handle()};
        Model model{TypeParam::hasFlag};
        for (int count = 0; count != 30; ++count) {
            this->events.clear();
            const auto expected = this->step(adapter, model, random);
            ASSERT_EQ(this->events, expected) << "seed " << seed << ", step " << count;
            eventCount += expected.size();

            this->heard.clear();
            this->registered()->notify(&TypeParam::tell);
            ASSERT_EQ(this->heard, model.heard()) << "seed " << seed << ", step " << count;
        }
    }
    EXPECT_GT(eventCount, 10'000U) << "the sequences hardly touched the SDK";
}

template <class Calibration>
class WriteObserverThreads : public CalibrationBench<Calibration> { };

TYPED_TEST_SUITE(WriteObserverThreads, CalibrationControls);

TYPED_TEST(WriteObserverThreads, AnObserverCanGoAsSoonAsItWasRemovedWhateverTheDeviceDoes)
{
    this->offer();
    std::jthread deviceThread{[&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            this->control.onControlsAboutToBeReleased();
            this->offer();
            this->control.onControlsAvailable();
        }
    }};
    std::jthread notifyingThread{[&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            this->registered()->notify(1);
    }};
    std::atomic<int> lateNotifications{0};
    const auto addAndRemove = [&] {
        for (int round = 0; round != 300; ++round) {
            ProgressListener<typename TypeParam::Adapter> listener;
            std::atomic<bool> isGone{false};
            listener.heard = [&](auto) { lateNotifications += isGone ? 1 : 0; };
            this->control.addObserver(&listener);
            this->control.removeObserver(&listener);
            isGone = true;
        }
    };
    std::jthread other{addAndRemove};
    addAndRemove();
    other.join();
    deviceThread.request_stop();
    deviceThread.join();
    EXPECT_EQ(this->registered()->count(), 0U);
    EXPECT_EQ(lateNotifications, 0);
}

} // namespace
} // namespace tarn::tests::observersequences
