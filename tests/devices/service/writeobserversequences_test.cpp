// The observers of the two calibration controls under any sequence of what can happen to them.

#include <support/calibrationbench.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::tests {
namespace {

/// A call of the SDK: whether it registers, and whose adapter. An adapter that the SDK never had
/// belongs to nobody.
using Call = std::pair<bool, int>;
constexpr int nobody = -1;

/// What the registration flag promises, in its plainest form.
class Model {
public:
    [[nodiscard]] std::vector<Call> add(int observer)
    {
        if (!m_entries.try_emplace(observer).second)
            return {};
        if (!m_isOffered)
            return {};
        return {registration(observer)};
    }

    [[nodiscard]] std::vector<Call> remove(int observer)
    {
        const auto entry = m_entries.find(observer);
        if (entry == m_entries.end())
            return {};
        std::vector<Call> calls;
        if (m_isOffered)
            calls.push_back(removal(observer));
        m_entries.erase(entry);
        return calls;
    }

    [[nodiscard]] std::vector<Call> release()
    {
        std::vector<Call> calls;
        for (auto& [observer, entry] : m_entries) {
            if (m_isOffered && entry.isFlagged)
                calls.push_back(removal(observer));
        }
        return calls;
    }

    [[nodiscard]] std::vector<Call> available()
    {
        std::vector<Call> calls;
        for (auto& [observer, entry] : m_entries) {
            if (m_isOffered && !entry.isFlagged)
                calls.push_back(registration(observer));
        }
        return calls;
    }

    void offer()
    {
        m_isOffered = true;
        m_heard.clear();
    }

    void drop()
    {
        m_isOffered = false;
        m_heard.clear();
    }

    /// Those who are registered with the control that is offered.
    [[nodiscard]] const std::set<int>& heard() const { return m_heard; }

private:
    struct Entry {
        bool isFlagged = false;
        bool isKnown = false; ///< whether the SDK has ever had its adapter
    };

    Call registration(int observer)
    {
        m_entries[observer] = {true, true};
        m_heard.insert(observer);
        return {true, observer};
    }

    Call removal(int observer)
    {
        auto& entry = m_entries[observer];
        entry.isFlagged = false;
        m_heard.erase(observer);
        return {false, entry.isKnown ? observer : nobody};
    }

    std::map<int, Entry> m_entries;
    std::set<int> m_heard;
    bool m_isOffered = false;
};

template <class Calibration>
class WriteObserverSequences : public CalibrationBench<Calibration> {
protected:
    using Base = CalibrationBench<Calibration>;
    using typename Base::SdkObserver;
    using Adapter = typename Calibration::Adapter;
    static constexpr int observerCount = 4;

    WriteObserverSequences()
    {
        for (int i = 0; i != observerCount; ++i)
            listeners[static_cast<std::size_t>(i)].heard = [this, i](auto) { heard.insert(i); };
        this->whenAdded = [this](SdkObserver* observer) {
            const int owner = ownerOf(*observer);
            owners[observer] = owner;
            calls.emplace_back(true, owner);
        };
        this->whenRemoved = [this](SdkObserver* observer) {
            const auto owner = owners.find(observer);
            calls.emplace_back(false, owner == owners.end() ? nobody : owner->second);
        };
    }

    /// Whose adapter this is: whoever hears what it is told.
    int ownerOf(SdkObserver& observer)
    {
        const auto before = std::exchange(heard, {});
        observer.onWriteProgressChanged(1);
        EXPECT_EQ(heard.size(), 1U);
        const int owner = heard.empty() ? nobody : *heard.begin();
        heard = before;
        return owner;
    }

    /// What may happen next, to the control and to the model; the calls of the SDK that it causes.
    std::vector<Call> step(Adapter& adapter, Model& model, std::mt19937& random)
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
            std::erase_if(owners, [&](const auto& owned) { return owned.second == observer; });
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

    std::array<ProgressListener<Adapter>, observerCount> listeners;
    std::set<int> heard;
    std::map<SdkObserver*, int> owners;
    std::vector<Call> calls;
};

TYPED_TEST_SUITE(WriteObserverSequences, CalibrationControls);

TYPED_TEST(WriteObserverSequences, RegisterAndHearAsTheModelSays)
{
    std::size_t callCount = 0;
    for (unsigned int seed = 0; seed != 4000; ++seed) {
        std::mt19937 random{seed};
        this->drop();
        this->owners.clear();
        typename TypeParam::Adapter adapter{this->handle()};
        Model model;
        for (int count = 0; count != 30; ++count) {
            this->calls.clear();
            auto expected = this->step(adapter, model, random);
            std::ranges::sort(expected);
            std::ranges::sort(this->calls); // the order within one step is that of a hash map
            ASSERT_EQ(this->calls, expected) << "seed " << seed << ", step " << count;
            callCount += expected.size();

            this->heard.clear();
            this->registered()->notify(1);
            ASSERT_EQ(this->heard, model.heard()) << "seed " << seed << ", step " << count;
            ASSERT_EQ(this->registered()->count(), model.heard().size()) << "seed " << seed << ", step " << count;
        }
    }
    EXPECT_GT(callCount, 10'000U) << "the sequences hardly touched the SDK";
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
} // namespace tarn::tests
